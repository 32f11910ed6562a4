#include "platform/window_list.h"

#include <algorithm>

namespace corlune {

bool ContainsTitle(const std::vector<std::string>& titles, const std::string& titlePart) {
  if (titlePart.empty()) return false;
  return std::any_of(titles.begin(), titles.end(),
                     [&](const std::string& title) { return title.find(titlePart) != std::string::npos; });
}

bool IsSiblingRunning(const std::string& titlePart) {
  return ContainsTitle(VisibleWindowTitles(), titlePart);
}

}  // namespace corlune
