#include "core/catalogue.h"

#include <cassert>

#include "core/catalogue_texts.h"

namespace corlune {
TextId Next(TextId base, int offset) {
  const auto next = static_cast<TextId>(static_cast<int>(base) + offset);
  assert(*TextOf(next).english != '\0');
  return next;
}

std::string MessageCatalogue::GetResString(TextId id) const {
  const CatalogueText text = TextOf(id);
  return English() ? text.english : text.japanese;
}

std::string MessageCatalogue::GetResString(TextId id, const std::vector<std::string>& arguments) const {
  return ReplaceArgs(GetResString(id), arguments);
}

std::string MessageCatalogue::GetFixedString(FixedText id) {
  switch (id) {
    case FixedText::SiblingTitle:
      return "Tavrin Plindor for QM2210/20";
    case FixedText::OneChannelModel:
      return "QM2210";
    case FixedText::TwoChannelModel:
      return "QM2220";
  }
  return {};
}

std::string ReplaceArgs(std::string_view text, const std::vector<std::string>& arguments) {
  std::string result;
  result.reserve(text.size());
  std::size_t at = 0;
  for (;;) {
    const std::size_t dollar = text.find('$', at);
    if (dollar == std::string_view::npos) break;
    result += text.substr(at, dollar - at);
    at = dollar + 1;
    if (at == text.size()) break;
    const char next = text[at++];
    if (next >= '1' && next <= '9') {
      const auto index = static_cast<std::size_t>(next - '1');
      if (index < arguments.size()) result += arguments[index];
    } else {
      result += next;
    }
  }
  result += text.substr(at);
  return result;
}

PromptAnswer ShowMessage(Prompts& prompts, const MessageCatalogue& catalogue, TextId id, PromptIcon icon,
                         PromptButtons buttons, const std::vector<std::string>& arguments,
                         std::optional<PromptAnswer> escape) {
  MessageRequest request;
  request.text = catalogue.GetResString(id, arguments);
  request.icon = icon;
  request.buttons = buttons;
  request.escape = escape;
  return prompts.Message(request);
}

}  // namespace corlune
