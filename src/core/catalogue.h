// The message catalogue: every text a person sees, in Japanese (id) and English (id + 10000).
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/ports.h"
#include "core/text_id.h"

namespace corlune {

class MessageCatalogue {
 public:
  // `langOffset`: 10000 for English, 0 for Japanese.
  explicit MessageCatalogue(std::int32_t langOffset) : langOffset_(langOffset) {}

  // Text of `id` in the chosen language, UTF-8; line breaks are "\n". Empty for a number that is no id.
  std::string GetResString(TextId id) const;
  // GetResString with its placeholders filled.
  std::string GetResString(TextId id, const std::vector<std::string>& arguments) const;
  static std::string GetFixedString(FixedText id);

  bool English() const { return langOffset_ != 0; }

 private:
  std::int32_t langOffset_;
};

// Replaces "$1".."$9" by the arguments, left to right. "$" and another character gives that character; a
// "$" at the end is dropped; a placeholder without an argument gives nothing.
std::string ReplaceArgs(std::string_view text, const std::vector<std::string>& arguments);

// Shows catalogue message `id`; `escape` as in MessageRequest.
PromptAnswer ShowMessage(Prompts& prompts, const MessageCatalogue& catalogue, TextId id, PromptIcon icon,
                         PromptButtons buttons = PromptButtons::Ok,
                         const std::vector<std::string>& arguments = {},
                         std::optional<PromptAnswer> escape = std::nullopt);

inline constexpr const char* kApplicationTitle = "Corlune";

}  // namespace corlune
