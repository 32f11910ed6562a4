// The system's default language.
#pragma once

#include <cstdint>

namespace corlune {

inline constexpr std::uint16_t kJapaneseLanguageId = 1041;
inline constexpr std::uint16_t kEnglishLanguageId = 1033;

// Language id of the system. Where the system has locales instead: kJapaneseLanguageId when the locale of
// messages is Japanese (LC_ALL, else LC_MESSAGES, else LANG), otherwise kEnglishLanguageId.
std::uint16_t SystemDefaultLanguageId();

// True when the interface language is English: the default language is not Japanese.
bool CheckLanguage();

}  // namespace corlune
