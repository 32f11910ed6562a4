#include "core/catalogue.h"

#include <algorithm>

#include "core/catalogue_texts.h"

namespace corlune {
namespace {

constexpr int kEnglishOffset = 10000;

}  // namespace

std::string MessageCatalogue::GetResString(int id) const {
  const auto rows = CatalogueTexts();
  const auto row = std::lower_bound(rows.begin(), rows.end(), id,
                                    [](const CatalogueText& text, int wanted) { return text.id < wanted; });
  if (row == rows.end() || row->id != id) return {};
  return English() ? row->english : row->japanese;
}

std::string MessageCatalogue::GetResString(int id, const std::vector<std::string>& arguments) const {
  return ReplaceArgs(GetResString(id), arguments);
}

std::string MessageCatalogue::GetFixedString(int id) {
  switch (id) {
    case 20000:
      return "Tavrin Plindor for QM2210/20";  // window title of the sibling editor
    case 21000:
      return "QM2210";
    case 21001:
      return "QM2220";
    default:
      return {};
  }
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

PromptAnswer ShowMessage(Prompts& prompts, const MessageCatalogue& catalogue, int id, PromptIcon icon,
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
