#include "platform/window_list.h"

#include <cstdio>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include "support/environment.h"

namespace corlune {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

// A display of the test's own, without a window manager; it ends with the connection to it.
class TestDisplay {
 public:
  TestDisplay() {
    char number[16] = ":";
    server_ = popen("exec Xvfb -displayfd 1 -terminate -screen 0 320x240x24 -nolisten tcp 2>/dev/null", "r");
    if (std::fgets(number + 1, 15, server_) == nullptr) return;
    number[std::strcspn(number, "\n")] = '\0';
    environment_.Set(number);
    connection_ = xcb_connect(nullptr, nullptr);
    root = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
  }
  ~TestDisplay() {
    if (connection_ != nullptr) xcb_disconnect(connection_);
    pclose(server_);
  }
  TestDisplay(const TestDisplay&) = delete;
  TestDisplay& operator=(const TestDisplay&) = delete;

  xcb_window_t Window(xcb_window_t parent, bool mapped, const char* property = nullptr,
                      const char* type = nullptr, const char* title = nullptr) {
    const xcb_window_t window = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, parent, 0, 0, 50, 50, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    if (mapped) xcb_map_window(connection_, window);
    if (title != nullptr) {
      xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, Atom(property), Atom(type), 8,
                          static_cast<std::uint32_t>(std::strlen(title)), title);
    }
    return window;
  }
  void Destroy(xcb_window_t window) { xcb_destroy_window(connection_, window); }
  void SetWindows(xcb_window_t window, const char* property, std::vector<xcb_window_t> windows) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, Atom(property), XCB_ATOM_WINDOW, 32,
                        static_cast<std::uint32_t>(windows.size()), windows.data());
  }
  std::vector<std::string> Titles() {
    Atom("a reply means that everything before has been done");
    return VisibleWindowTitles();
  }

  xcb_window_t root = XCB_WINDOW_NONE;

 private:
  xcb_atom_t Atom(const char* name) {
    const auto length = static_cast<std::uint16_t>(std::strlen(name));
    auto* reply = xcb_intern_atom_reply(connection_, xcb_intern_atom(connection_, 0, length, name), nullptr);
    const xcb_atom_t atom = reply == nullptr ? xcb_atom_t{XCB_ATOM_NONE} : reply->atom;
    std::free(reply);
    return atom;
  }

  const testing::Environment environment_{{"DISPLAY"}};
  std::FILE* server_ = nullptr;
  xcb_connection_t* connection_ = nullptr;
};

TEST(VisibleWindowTitles, AreThoseOfViewableWindowsOrOfAManagersClients) {
  TestDisplay display;
  ASSERT_NE(display.root, XCB_WINDOW_NONE);
  EXPECT_THAT(display.Titles(), IsEmpty());
  display.Window(display.root, true, "_NET_WM_NAME", "UTF8_STRING", "波形 – shown");
  const xcb_window_t minimised = display.Window(display.root, false, "_NET_WM_NAME", "UTF8_STRING", "hidden");
  const xcb_window_t frame = display.Window(display.root, true);
  display.Window(frame, true, "WM_NAME", "STRING", "framed \xB5");
  const xcb_window_t hiddenFrame = display.Window(display.root, false);
  display.Window(hiddenFrame, true, "WM_NAME", "STRING", "in a hidden frame");
  EXPECT_THAT(display.Titles(), UnorderedElementsAre("波形 – shown", "framed µ"));

  const xcb_window_t check = display.Window(display.root, false);
  for (const xcb_window_t window : {display.root, check}) {
    display.SetWindows(window, "_NET_SUPPORTING_WM_CHECK", {check});
  }
  display.SetWindows(display.root, "_NET_CLIENT_LIST", {minimised, frame});
  display.Destroy(frame);
  EXPECT_THAT(display.Titles(), ElementsAre("hidden"));
  // A manager that has ended leaves its list, but not its check window.
  display.Destroy(check);
  EXPECT_THAT(display.Titles(), ElementsAre("波形 – shown"));
}

TEST(VisibleWindowTitles, AreEmptyWithoutADisplay) {
  const testing::Environment environment({"DISPLAY"});
  environment.Set("/none/such:99");
  EXPECT_THAT(VisibleWindowTitles(), IsEmpty());
  EXPECT_FALSE(IsSiblingRunning("x"));
}

TEST(ContainsTitle, LooksForAPartInTheSameCase) {
  const std::vector<std::string> titles = {"mail", "a.wdb - Tavrin Plindor for QM2210/20 *"};
  EXPECT_TRUE(ContainsTitle(titles, "Tavrin Plindor for QM2210/20"));
  EXPECT_FALSE(ContainsTitle(titles, "tavrin plindor for QM2210/20"));
  EXPECT_FALSE(ContainsTitle(titles, ""));
}

}  // namespace
}  // namespace corlune
