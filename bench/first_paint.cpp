// How long a program needs until its window is on the screen: starts it, waits until a large window is mapped
// and its middle line shows something, ends it and prints one line of JSON.
//   first_paint PROGRAM [ARGUMENT...]
// wall_ms counts from the start of the process; cpu_ms is the processor time of the process until then. Meant
// for an X server of its own without a window manager, whose frames could be taken for the window.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>
#include <signal.h>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>
#include <xcb/xcb.h>

namespace {

constexpr int kLeastWidth = 400;  // pixels; dialogs and helper windows are smaller
constexpr auto kLongest = std::chrono::seconds(60);
constexpr useconds_t kLookEvery = 500;  // us

struct FreeDeleter {
  void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using Reply = std::unique_ptr<T, FreeDeleter>;

struct Area {
  std::int16_t x = 0;
  std::int16_t y = 0;
  std::uint16_t width = 0;
  std::uint16_t height = 0;
};

using Pixels = std::vector<std::uint32_t>;

class Screen {
 public:
  Screen() : connection_(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(connection_.get()) != 0) return;
    screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data;
    const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_.get(), screen_->root, XCB_CW_EVENT_MASK, &events);
    xcb_flush(connection_.get());
  }
  bool IsOpen() const { return screen_ != nullptr; }

  Area Whole() const { return {0, 0, screen_->width_in_pixels, screen_->height_in_pixels}; }

  // The next large window that was mapped, clipped to the screen; nullopt when there is none yet.
  std::optional<Area> NextWindow() {
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) {
      if ((event->response_type & 0x7F) != XCB_MAP_NOTIFY) continue;
      const auto window = reinterpret_cast<const xcb_map_notify_event_t*>(event.get())->window;
      const auto cookie = xcb_get_geometry(connection_.get(), window);
      const Reply<xcb_get_geometry_reply_t> geometry{
          xcb_get_geometry_reply(connection_.get(), cookie, nullptr)};
      if (!geometry || geometry->width < kLeastWidth) continue;
      const Area whole = Whole();
      if (geometry->x < 0 || geometry->y < 0) continue;
      return Area{geometry->x, geometry->y,
                  static_cast<std::uint16_t>(std::min<int>(geometry->width, whole.width - geometry->x)),
                  static_cast<std::uint16_t>(std::min<int>(geometry->height, whole.height - geometry->y))};
    }
    return std::nullopt;
  }

  Pixels Read(const Area& area) {
    const auto cookie = xcb_get_image(connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, screen_->root, area.x,
                                      area.y, area.width, area.height, ~0U);
    const Reply<xcb_get_image_reply_t> image{xcb_get_image_reply(connection_.get(), cookie, nullptr)};
    if (!image) return {};
    const auto* bytes = reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(image.get()));
    return {bytes, bytes + xcb_get_image_data_length(image.get()) / static_cast<int>(sizeof(std::uint32_t))};
  }

 private:
  struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
  };
  std::unique_ptr<xcb_connection_t, Disconnect> connection_;
  xcb_screen_t* screen_ = nullptr;
};

// True when most of the window's middle line is no longer what the empty screen showed there.
bool IsPainted(Screen& screen, const Area& window, const Pixels& empty) {
  const auto y = static_cast<std::int16_t>(window.y + window.height / 2);
  const Pixels now = screen.Read({window.x, y, window.width, 1});
  const std::size_t at =
      static_cast<std::size_t>(y) * screen.Whole().width + static_cast<std::size_t>(window.x);
  if (now.size() < window.width || at + now.size() > empty.size()) return false;
  std::size_t changed = 0;
  for (std::size_t i = 0; i < now.size(); ++i) changed += now[i] != empty[at + i] ? 1U : 0U;
  return changed * 2 > now.size();
}

double Milliseconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) * 1000 + static_cast<double>(time.tv_usec) / 1000;
}

// Runs until the window is painted; nullopt when the program ended or nothing came.
std::optional<Area> AwaitPaint(Screen& screen, const Pixels& empty, pid_t process,
                               std::chrono::steady_clock::time_point deadline) {
  std::optional<Area> window;
  while (std::chrono::steady_clock::now() < deadline) {
    if (const auto mapped = screen.NextWindow()) window = mapped;
    if (window && IsPainted(screen, *window, empty)) return window;
    siginfo_t ended{};
    if (waitid(P_PID, static_cast<id_t>(process), &ended, WEXITED | WNOHANG | WNOWAIT) == 0 &&
        ended.si_pid != 0) {
      return std::nullopt;
    }
    usleep(kLookEvery);
  }
  return std::nullopt;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::cerr << "first_paint PROGRAM [ARGUMENT...]" << std::endl;
    return 2;
  }
  Screen screen;
  if (!screen.IsOpen()) {
    std::cerr << "no X server" << std::endl;
    return 1;
  }
  const Pixels empty = screen.Read(screen.Whole());

  const auto start = std::chrono::steady_clock::now();
  pid_t process = 0;
  if (posix_spawn(&process, argv[1], nullptr, nullptr, argv + 1, environ) != 0) {
    std::cerr << argv[1] << " does not start" << std::endl;
    return 1;
  }
  const auto window = AwaitPaint(screen, empty, process, start + kLongest);
  const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - start;
  kill(process, SIGKILL);  // at once, so that its processor time ends here
  rusage usage{};
  wait4(process, nullptr, 0, &usage);
  if (!window) {
    std::cerr << argv[1] << " shows no window" << std::endl;
    return 1;
  }
  std::cout << "{\"wall_ms\": " << wall.count()
            << ", \"cpu_ms\": " << Milliseconds(usage.ru_utime) + Milliseconds(usage.ru_stime)
            << ", \"width\": " << window->width << ", \"height\": " << window->height << "}" << std::endl;
  return 0;
}
