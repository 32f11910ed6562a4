#include "platform/language.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <cstdlib>
#include <string_view>
#endif

namespace corlune {

std::uint16_t SystemDefaultLanguageId() {
#ifdef _WIN32
  return GetSystemDefaultLangID();
#else
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(name);
    if (value == nullptr || *value == '\0') continue;
    const std::string_view locale(value);
    const std::string_view language = locale.substr(0, locale.find_first_of("_.@"));
    return language == "ja" ? kJapaneseLanguageId : kEnglishLanguageId;
  }
  return kEnglishLanguageId;
#endif
}

bool CheckLanguage() {
  return SystemDefaultLanguageId() != kJapaneseLanguageId;
}

}  // namespace corlune
