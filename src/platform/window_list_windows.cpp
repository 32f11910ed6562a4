#ifdef _WIN32

#include <windows.h>

#include "platform/wide_text.h"
#include "platform/window_list.h"

namespace corlune {
namespace {

BOOL CALLBACK AddTitle(HWND window, LPARAM titles) {
  const int length = GetWindowTextLengthW(window);
  if (IsWindowVisible(window) == 0 || length <= 0) return TRUE;
  std::wstring title(static_cast<std::size_t>(length) + 1, L'\0');
  const int got = GetWindowTextW(window, title.data(), length + 1);
  title.resize(static_cast<std::size_t>(got));
  reinterpret_cast<std::vector<std::string>*>(titles)->push_back(ToUtf8(title));
  return TRUE;
}

}  // namespace

std::vector<std::string> VisibleWindowTitles() {
  std::vector<std::string> titles;
  EnumWindows(&AddTitle, reinterpret_cast<LPARAM>(&titles));
  return titles;
}

}  // namespace corlune

#endif
