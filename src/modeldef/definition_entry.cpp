#include "modeldef/definition_entry.h"

#include <array>
#include <utility>

#include "core/numbers.h"

namespace corlune::modeldef {

namespace {

std::string Quoted(std::string_view text) {
  constexpr std::size_t kShown = 40;  // enough to find the item in the file
  std::string shown(text.substr(0, kShown));
  while (text.size() > kShown && !shown.empty() && (static_cast<unsigned char>(shown.back()) & 0x80U) != 0) {
    shown.pop_back();  // never ends within a character
  }
  return "\"" + shown + (text.size() > kShown ? "...\"" : "\"");
}

// Value of one hexadecimal digit, -1 for another character.
int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

std::array<std::uint8_t, 3> HexBytes(std::string_view item) {
  std::array<std::uint8_t, 3> bytes{};
  bool good = item.size() == 2 * bytes.size();
  for (std::size_t i = 0; good && i < bytes.size(); ++i) {
    const int high = HexDigit(item[2 * i]);
    const int low = HexDigit(item[2 * i + 1]);
    good = high >= 0 && low >= 0;
    if (good) bytes[i] = static_cast<std::uint8_t>(high * 16 + low);
  }
  if (!good) Refuse(Quoted(item) + " is no colour of six hexadecimal digits");
  return bytes;
}

}  // namespace

void Refuse(std::string reason) {
  throw BadEntry{std::move(reason)};
}

DefinitionEntry::DefinitionEntry(const IniEntry& entry, bool japanese) : entry_(entry), japanese_(japanese) {
  if (!entry_.value.empty()) items_ = SplitList(entry_.value);
}

int DefinitionEntry::KeyDigit(int maximum, std::size_t fromEnd) const {
  const std::string_view key = entry_.key;
  const char digit = fromEnd < key.size() ? key[key.size() - 1 - fromEnd] : ' ';
  if (digit < '0' || digit > '9') Refuse("the key has no object number");
  if (digit - '0' > maximum) {
    Refuse("object number " + std::string(1, digit) + " is above " + std::to_string(maximum));
  }
  return digit - '0';
}

std::string_view DefinitionEntry::Item(std::size_t index) const {
  if (!Has(index)) Refuse("item " + std::to_string(index + 1) + " is missing");
  return items_[index];
}

std::string DefinitionEntry::Text(std::size_t index) const {
  return std::string(Item(index));
}

std::string DefinitionEntry::TrimmedText(std::size_t index) const {
  return std::string(TrimBlanks(Item(index)));
}

std::int16_t DefinitionEntry::Int16(std::size_t index) const {
  const auto value = ParseInt16(Item(index));
  if (!value) Refuse(Quoted(Item(index)) + " is no 16-bit integer");
  return *value;
}

std::int32_t DefinitionEntry::Int32(std::size_t index) const {
  const auto value = ParseInt32(Item(index));
  if (!value) Refuse(Quoted(Item(index)) + " is no 32-bit integer");
  return *value;
}

double DefinitionEntry::Number(std::size_t index) const {
  const auto value = ParseNumber(Item(index));
  if (!value) Refuse(Quoted(Item(index)) + " is no number");
  return *value;
}

Color DefinitionEntry::RedGreenBlue(std::size_t index) const {
  const auto bytes = HexBytes(Item(index));
  return {bytes[0], bytes[1], bytes[2]};
}

Color DefinitionEntry::BlueGreenRed(std::size_t index) const {
  const auto bytes = HexBytes(Item(index));
  return {bytes[2], bytes[1], bytes[0]};
}

std::int16_t DefinitionEntry::Int16In(std::size_t index, int minimum, int maximum) const {
  const std::int16_t value = Int16(index);
  if (value < minimum || value > maximum) {
    Refuse(std::to_string(value) + " lies outside " + std::to_string(minimum) + " to " +
           std::to_string(maximum));
  }
  return value;
}

RangeSpec DefinitionEntry::Range(std::size_t first) const {
  const RangeSpec range{Int32(first), Int32(first + 1), Int32(first + 2)};
  if (range.Minimum > range.Maximum) Refuse("the minimum is above the maximum");
  return range;
}

std::vector<std::string> DefinitionEntry::Texts(std::size_t first, std::size_t capacity) const {
  std::vector<std::string> texts;
  for (std::size_t i = first; i < items_.size(); ++i) texts.emplace_back(items_[i]);
  if (texts.size() > capacity) Refuse("more than " + std::to_string(capacity) + " items");
  return texts;
}

TextList DefinitionEntry::CountedTexts(std::size_t capacity) const {
  TextList list;
  list.Count = Int16In(0, 0, static_cast<int>(capacity));
  list.Texts = Texts(1, capacity);
  if (list.Texts.size() < static_cast<std::size_t>(list.Count)) {
    Refuse("the count is " + std::to_string(list.Count) + " but only " + std::to_string(list.Texts.size()) +
           " texts follow");
  }
  list.Texts.resize(static_cast<std::size_t>(list.Count));
  return list;
}

std::string DefinitionEntry::AllButLast() const {
  if (items_.size() < 2) Refuse("item 2 is missing");
  return std::string(entry_.value.substr(0, entry_.value.size() - items_.back().size() - 1));
}

}  // namespace corlune::modeldef
