#include "platform/window_list.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

namespace corlune {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

// A display of the test's own; DISPLAY names it while the object lives.
class TestDisplay {
 public:
  TestDisplay() {
    if (const char* old = std::getenv("DISPLAY")) old_ = old;
    int ends[2];
    if (pipe(ends) != 0) return;
    server_ = fork();
    if (server_ == 0) {
      const std::string end = std::to_string(ends[1]);
      close(ends[0]);
      execlp("Xvfb", "Xvfb", "-displayfd", end.c_str(), "-screen", "0", "320x240x24", "-nolisten", "tcp",
             nullptr);
      _exit(127);
    }
    close(ends[1]);
    // The server writes its number and a line feed once it takes connections.
    std::string number = ":";
    for (char c = 0; read(ends[0], &c, 1) == 1 && c != '\n';) number += c;
    close(ends[0]);
    setenv("DISPLAY", number.c_str(), 1);
    connection_ = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection_) == 0) {
      root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    }
  }
  ~TestDisplay() {
    if (connection_ != nullptr) xcb_disconnect(connection_);
    if (server_ > 0) {
      kill(server_, SIGTERM);
      waitpid(server_, nullptr, 0);
    }
    old_ ? setenv("DISPLAY", old_->c_str(), 1) : unsetenv("DISPLAY");
  }
  TestDisplay(const TestDisplay&) = delete;
  TestDisplay& operator=(const TestDisplay&) = delete;

  xcb_window_t Root() const { return root_; }

  xcb_window_t Window(xcb_window_t parent, bool mapped) {
    const xcb_window_t window = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, parent, 0, 0, 50, 50, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    if (mapped) xcb_map_window(connection_, window);
    return window;
  }
  void Destroy(xcb_window_t window) { xcb_destroy_window(connection_, window); }

  void SetText(xcb_window_t window, const char* property, const char* type, const char* text) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, Atom(property), Atom(type), 8,
                        static_cast<std::uint32_t>(std::strlen(text)), text);
  }
  void SetWindows(xcb_window_t window, const char* property, std::vector<xcb_window_t> windows) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, Atom(property), XCB_ATOM_WINDOW, 32,
                        static_cast<std::uint32_t>(windows.size()), windows.data());
  }

  std::vector<std::string> Titles() {
    Atom("a reply means that everything before has been done");
    return VisibleWindowTitles();
  }

 private:
  xcb_atom_t Atom(const char* name) {
    auto* reply = xcb_intern_atom_reply(
        connection_, xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(std::strlen(name)), name),
        nullptr);
    if (reply == nullptr) return XCB_ATOM_NONE;
    const xcb_atom_t atom = reply->atom;
    std::free(reply);
    return atom;
  }

  std::optional<std::string> old_;
  pid_t server_ = -1;
  xcb_connection_t* connection_ = nullptr;
  xcb_window_t root_ = XCB_WINDOW_NONE;
};

TEST(VisibleWindowTitles, WithoutAManagerAreTheViewableWindows) {
  TestDisplay display;
  ASSERT_NE(display.Root(), XCB_WINDOW_NONE);
  EXPECT_THAT(display.Titles(), IsEmpty());

  display.SetText(display.Window(display.Root(), true), "_NET_WM_NAME", "UTF8_STRING", "波形 – shown");
  display.SetText(display.Window(display.Root(), false), "_NET_WM_NAME", "UTF8_STRING", "hidden");
  const xcb_window_t frame = display.Window(display.Root(), true);
  display.SetText(display.Window(frame, true), "WM_NAME", "STRING", "framed \xB5");
  const xcb_window_t hiddenFrame = display.Window(display.Root(), false);
  display.SetText(display.Window(hiddenFrame, true), "WM_NAME", "STRING", "in a hidden frame");
  EXPECT_THAT(display.Titles(), UnorderedElementsAre("波形 – shown", "framed µ"));
}

TEST(VisibleWindowTitles, OfAManagerAreItsClients) {
  TestDisplay display;
  ASSERT_NE(display.Root(), XCB_WINDOW_NONE);
  const xcb_window_t minimised = display.Window(display.Root(), false);
  display.SetText(minimised, "_NET_WM_NAME", "UTF8_STRING", "minimised");
  const xcb_window_t gone = display.Window(display.Root(), true);
  display.SetText(display.Window(display.Root(), true), "WM_NAME", "STRING", "not managed");
  const xcb_window_t check = display.Window(display.Root(), false);
  for (const xcb_window_t window : {display.Root(), check}) {
    display.SetWindows(window, "_NET_SUPPORTING_WM_CHECK", {check});
  }
  display.SetWindows(display.Root(), "_NET_CLIENT_LIST", {minimised, gone});
  display.Destroy(gone);
  EXPECT_THAT(display.Titles(), ElementsAre("minimised"));

  // A manager that has ended leaves its list, but not its check window.
  display.Destroy(check);
  EXPECT_THAT(display.Titles(), ElementsAre("not managed"));
}

TEST(VisibleWindowTitles, AreEmptyWithoutADisplay) {
  const char* old = std::getenv("DISPLAY");
  const std::string kept = old != nullptr ? old : "";
  setenv("DISPLAY", "/none/such:99", 1);
  EXPECT_THAT(VisibleWindowTitles(), IsEmpty());
  EXPECT_FALSE(IsSiblingRunning("x"));
  old != nullptr ? setenv("DISPLAY", kept.c_str(), 1) : unsetenv("DISPLAY");
}

TEST(ContainsTitle, LooksForAPartInTheSameCase) {
  const std::vector<std::string> titles = {"mail", "a.wdb - Tavrin Plindor for QM2210/20 *"};
  EXPECT_TRUE(ContainsTitle(titles, "Tavrin Plindor for QM2210/20"));
  EXPECT_FALSE(ContainsTitle(titles, "tavrin plindor for QM2210/20"));
  EXPECT_FALSE(ContainsTitle(titles, ""));
}

}  // namespace
}  // namespace corlune
