#include "platform/code_page.h"

#include "platform/language.h"

#ifdef _WIN32
#include <windows.h>

#include "platform/wide_text.h"
#else
#include <array>
#include <cerrno>
#include <cstdint>
#include <iconv.h>
#endif

namespace corlune {

int SystemCodePage() {
  return SystemDefaultLanguageId() == kJapaneseLanguageId ? kJapaneseCodePage : kWesternCodePage;
}

bool IsLeadByte(unsigned char byte, int codePage) {
  return codePage == kJapaneseCodePage && ((byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC));
}

#ifdef _WIN32

std::optional<std::string> CodePageToUtf8(std::string_view bytes, int codePage) {
  const int size = static_cast<int>(bytes.size());
  if (size == 0) return std::string();
  const int length = MultiByteToWideChar(static_cast<UINT>(codePage), 0, bytes.data(), size, nullptr, 0);
  if (length == 0) return std::nullopt;
  std::wstring wide(static_cast<std::size_t>(length), L'\0');
  MultiByteToWideChar(static_cast<UINT>(codePage), 0, bytes.data(), size, wide.data(), length);
  return ToUtf8(wide);
}

std::optional<std::string> Utf8ToCodePage(std::string_view text, int codePage) {
  if (text.empty()) return std::string();
  const int size = static_cast<int>(text.size());
  const int wideLength = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, nullptr, 0);
  if (wideLength == 0) return std::nullopt;
  std::wstring wide(static_cast<std::size_t>(wideLength), L'\0');
  MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, wide.data(), wideLength);
  BOOL replaced = FALSE;
  const int length = WideCharToMultiByte(static_cast<UINT>(codePage), WC_NO_BEST_FIT_CHARS, wide.data(),
                                         wideLength, nullptr, 0, nullptr, &replaced);
  if (length == 0 || replaced != FALSE) return std::nullopt;
  std::string bytes(static_cast<std::size_t>(length), '\0');
  WideCharToMultiByte(static_cast<UINT>(codePage), WC_NO_BEST_FIT_CHARS, wide.data(), wideLength,
                      bytes.data(), length, nullptr, &replaced);
  return bytes;
}

#else

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

// Owns one conversion.
class Converter {
 public:
  Converter(const std::string& to, const std::string& from) : handle_(iconv_open(to.c_str(), from.c_str())) {}
  ~Converter() {
    if (IsOpen()) iconv_close(handle_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  // iconv_open answers (iconv_t)-1.
  bool IsOpen() const { return reinterpret_cast<std::intptr_t>(handle_) != -1; }

  // Converts from the beginning of `input` and removes what it has read. False when it met a character that
  // does not convert; that character is then the first of `input`.
  bool Convert(std::string_view& input, std::string& output) {
    // iconv takes the input as char*, but does not write to it.
    char* in = const_cast<char*>(input.data());
    std::size_t inLeft = input.size();
    std::array<char, 4096> buffer;
    while (inLeft > 0) {
      char* out = buffer.data();
      std::size_t outLeft = buffer.size();
      const std::size_t answer = iconv(handle_, &in, &inLeft, &out, &outLeft);
      const int reason = errno;
      output.append(buffer.data(), buffer.size() - outLeft);
      if (answer == static_cast<std::size_t>(-1) && reason != E2BIG) {
        input.remove_prefix(input.size() - inLeft);
        return false;
      }
    }
    input = {};
    return true;
  }

 private:
  iconv_t handle_;
};

std::string NameOf(int codePage) {
  return "CP" + std::to_string(codePage);
}

void AppendUndefined(std::string& output, unsigned char byte, int codePage) {
  if (codePage == kWesternCodePage) {  // U+0080..U+009F as Windows does
    output += '\xC2';
    output += static_cast<char>(byte);
  } else {
    output += kReplacement;
  }
}

}  // namespace

std::optional<std::string> CodePageToUtf8(std::string_view bytes, int codePage) {
  Converter converter("UTF-8", NameOf(codePage));
  if (!converter.IsOpen()) return std::nullopt;
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 2);
  while (!converter.Convert(bytes, text)) {
    AppendUndefined(text, static_cast<unsigned char>(bytes[0]), codePage);
    bytes.remove_prefix(1);
  }
  return text;
}

std::optional<std::string> Utf8ToCodePage(std::string_view text, int codePage) {
  Converter converter(NameOf(codePage), "UTF-8");
  std::string bytes;
  bytes.reserve(text.size());
  if (!converter.IsOpen() || !converter.Convert(text, bytes)) return std::nullopt;
  return bytes;
}

#endif

}  // namespace corlune
