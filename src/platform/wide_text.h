// UTF-8 to the wide texts of the Windows interfaces and back. Included on Windows only.
#pragma once

#ifdef _WIN32

#include <string>
#include <string_view>

namespace corlune {

std::wstring ToWide(std::string_view utf8);
std::string ToUtf8(std::wstring_view wide);
// Text of GetLastError().
std::string LastErrorText();

}  // namespace corlune

#endif
