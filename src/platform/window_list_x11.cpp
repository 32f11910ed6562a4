// Over XCB, not Xlib: its errors are values, where Xlib ends the program when a window vanishes or the
// display goes away meanwhile. The library is loaded at run time; a console machine need not have it.
#ifndef _WIN32

#include <array>
#include <cstdlib>
#include <memory>
#include <optional>
#include <xcb/xcb.h>

#include "platform/code_page.h"
#include "platform/shared_library.h"
#include "platform/window_list.h"

namespace corlune {
namespace {

constexpr std::uint32_t kLongestProperty = 16384;  // in units of four bytes
constexpr int kDeepestWindow = 3;                  // below the root: a manager's frames, then the client
constexpr std::size_t kMostWindows = 4096;

struct XcbLibrary {
  decltype(&xcb_connect) Connect = nullptr;
  decltype(&xcb_connection_has_error) HasError = nullptr;
  decltype(&xcb_disconnect) Disconnect = nullptr;
  decltype(&xcb_get_setup) GetSetup = nullptr;
  decltype(&xcb_setup_roots_iterator) RootsIterator = nullptr;
  decltype(&xcb_intern_atom) InternAtom = nullptr;
  decltype(&xcb_intern_atom_reply) InternAtomReply = nullptr;
  decltype(&xcb_get_property) GetProperty = nullptr;
  decltype(&xcb_get_property_reply) GetPropertyReply = nullptr;
  decltype(&xcb_get_property_value) PropertyValue = nullptr;
  decltype(&xcb_get_property_value_length) PropertyLength = nullptr;
  decltype(&xcb_query_tree) QueryTree = nullptr;
  decltype(&xcb_query_tree_reply) QueryTreeReply = nullptr;
  decltype(&xcb_query_tree_children) TreeChildren = nullptr;
  decltype(&xcb_query_tree_children_length) TreeChildrenLength = nullptr;
  decltype(&xcb_get_window_attributes) GetAttributes = nullptr;
  decltype(&xcb_get_window_attributes_reply) GetAttributesReply = nullptr;

  bool Load(const SharedLibrary& library) {
    const auto row = [](const char* name, auto& slot) {
      return SymbolRow{name, reinterpret_cast<void**>(&slot), false};
    };
    const std::array rows = {
        row("xcb_connect", Connect),
        row("xcb_connection_has_error", HasError),
        row("xcb_disconnect", Disconnect),
        row("xcb_get_setup", GetSetup),
        row("xcb_setup_roots_iterator", RootsIterator),
        row("xcb_intern_atom", InternAtom),
        row("xcb_intern_atom_reply", InternAtomReply),
        row("xcb_get_property", GetProperty),
        row("xcb_get_property_reply", GetPropertyReply),
        row("xcb_get_property_value", PropertyValue),
        row("xcb_get_property_value_length", PropertyLength),
        row("xcb_query_tree", QueryTree),
        row("xcb_query_tree_reply", QueryTreeReply),
        row("xcb_query_tree_children", TreeChildren),
        row("xcb_query_tree_children_length", TreeChildrenLength),
        row("xcb_get_window_attributes", GetAttributes),
        row("xcb_get_window_attributes_reply", GetAttributesReply),
    };
    return LoadSymbols(library, rows, nullptr);
  }
};

// Replies are allocated by the library with malloc.
struct FreeReply {
  void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, FreeReply>;

struct Property {
  xcb_atom_t type = XCB_ATOM_NONE;
  std::string bytes;
};

class Display {
 public:
  explicit Display(const XcbLibrary& xcb) : xcb_(xcb), connection_(xcb.Connect(nullptr, nullptr)) {
    if (!IsOpen()) return;
    supportingCheck_ = Atom("_NET_SUPPORTING_WM_CHECK");
    clientList_ = Atom("_NET_CLIENT_LIST");
    utf8Name_ = Atom("_NET_WM_NAME");
  }
  ~Display() { xcb_.Disconnect(connection_); }
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;

  std::vector<std::string> Titles() const {
    std::vector<std::string> titles;
    if (!IsOpen()) return titles;
    // All but the first screen are separate displays of the past.
    const auto screens = xcb_.RootsIterator(xcb_.GetSetup(connection_));
    if (screens.rem == 0) return titles;
    const xcb_window_t root = screens.data->root;
    if (const auto clients = Clients(root)) {
      for (const xcb_window_t window : *clients) AddTitle(titles, window);
    } else {
      std::size_t visited = 0;
      WalkBelow(root, 1, visited, titles);
    }
    return titles;
  }

 private:
  bool IsOpen() const { return xcb_.HasError(connection_) == 0; }

  xcb_atom_t Atom(std::string_view name) const {
    const auto cookie = xcb_.InternAtom(connection_, 1, static_cast<std::uint16_t>(name.size()), name.data());
    const ReplyPointer<xcb_intern_atom_reply_t> reply(xcb_.InternAtomReply(connection_, cookie, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
  }

  std::optional<Property> Read(xcb_window_t window, xcb_atom_t name) const {
    if (name == XCB_ATOM_NONE) return std::nullopt;
    const auto cookie =
        xcb_.GetProperty(connection_, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, kLongestProperty);
    const ReplyPointer<xcb_get_property_reply_t> reply(xcb_.GetPropertyReply(connection_, cookie, nullptr));
    if (!reply || reply->type == XCB_ATOM_NONE) return std::nullopt;
    const auto* value = static_cast<const char*>(xcb_.PropertyValue(reply.get()));
    return Property{reply->type,
                    std::string(value, static_cast<std::size_t>(xcb_.PropertyLength(reply.get())))};
  }

  std::vector<xcb_window_t> Windows(const Property& property) const {
    std::vector<xcb_window_t> windows(property.bytes.size() / sizeof(xcb_window_t));
    property.bytes.copy(reinterpret_cast<char*>(windows.data()), windows.size() * sizeof(xcb_window_t));
    return windows;
  }

  // The windows of a manager that is alive: a dead one leaves its list behind, but not its check window.
  std::optional<std::vector<xcb_window_t>> Clients(xcb_window_t root) const {
    const auto onRoot = Read(root, supportingCheck_);
    if (!onRoot || Windows(*onRoot).empty()) return std::nullopt;
    const xcb_window_t check = Windows(*onRoot)[0];
    const auto onCheck = Read(check, supportingCheck_);
    if (!onCheck || Windows(*onCheck).empty() || Windows(*onCheck)[0] != check) return std::nullopt;
    const auto list = Read(root, clientList_);
    if (!list) return std::nullopt;
    return Windows(*list);
  }

  bool AddTitle(std::vector<std::string>& titles, xcb_window_t window) const {
    auto title = Read(window, utf8Name_);
    if (!title || title->bytes.empty()) {
      title = Read(window, XCB_ATOM_WM_NAME);
      if (!title || title->bytes.empty()) return false;
      if (title->type == XCB_ATOM_STRING) {  // western text; other types keep their bytes
        title->bytes = CodePageToUtf8(title->bytes, kWesternCodePage).value_or(title->bytes);
      }
    }
    titles.push_back(title->bytes);
    return true;
  }

  void WalkBelow(xcb_window_t parent, int depth, std::size_t& visited,
                 std::vector<std::string>& titles) const {
    const ReplyPointer<xcb_query_tree_reply_t> tree(
        xcb_.QueryTreeReply(connection_, xcb_.QueryTree(connection_, parent), nullptr));
    if (!tree) return;
    const xcb_window_t* children = xcb_.TreeChildren(tree.get());
    for (int i = 0; i < xcb_.TreeChildrenLength(tree.get()) && visited < kMostWindows; ++i) {
      ++visited;
      const ReplyPointer<xcb_get_window_attributes_reply_t> attributes(
          xcb_.GetAttributesReply(connection_, xcb_.GetAttributes(connection_, children[i]), nullptr));
      if (!attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE) continue;
      if (!AddTitle(titles, children[i]) && depth < kDeepestWindow) {
        WalkBelow(children[i], depth + 1, visited, titles);
      }
    }
  }

  const XcbLibrary& xcb_;
  xcb_connection_t* connection_;
  xcb_atom_t supportingCheck_ = XCB_ATOM_NONE;
  xcb_atom_t clientList_ = XCB_ATOM_NONE;
  xcb_atom_t utf8Name_ = XCB_ATOM_NONE;
};

}  // namespace

std::vector<std::string> VisibleWindowTitles() {
  const auto library = SharedLibrary::Open("libxcb.so.1", nullptr);
  XcbLibrary xcb;
  if (!library || !xcb.Load(*library)) return {};
  return Display(xcb).Titles();
}

}  // namespace corlune

#endif
