#include "standins/virtual_instrument/scpi_parser.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "core/ascii_case.h"
#include "core/numbers.h"

namespace corlune {
namespace {

constexpr std::array kErrorTexts{
    std::pair{ScpiError::None, "No error"},
    std::pair{ScpiError::InvalidCharacter, "Invalid character"},
    std::pair{ScpiError::Syntax, "Syntax error"},
    std::pair{ScpiError::InvalidSeparator, "Invalid separator"},
    std::pair{ScpiError::DataType, "Data type error"},
    std::pair{ScpiError::ParameterNotAllowed, "Parameter not allowed"},
    std::pair{ScpiError::MissingParameter, "Missing parameter"},
    std::pair{ScpiError::UndefinedHeader, "Undefined header"},
    std::pair{ScpiError::HeaderSuffixRange, "Header suffix out of range"},
    std::pair{ScpiError::InvalidNumber, "Invalid character in number"},
    std::pair{ScpiError::InvalidSuffix, "Invalid suffix"},
    std::pair{ScpiError::InvalidString, "Invalid string data"},
    std::pair{ScpiError::InvalidBlock, "Invalid block data"},
    std::pair{ScpiError::SettingsConflict, "Settings conflict"},
    std::pair{ScpiError::OutOfRange, "Data out of range"},
    std::pair{ScpiError::IllegalValue, "Illegal parameter value"},
    std::pair{ScpiError::OutOfMemory, "Out of memory"},
    std::pair{ScpiError::CorruptData, "Data corrupt or stale"},
    std::pair{ScpiError::NotFound, "File name not found"},
    std::pair{ScpiError::StillRunning, "Program currently running"},
    std::pair{ScpiError::QueueOverflow, "Queue overflow"},
    std::pair{ScpiError::InputOverrun, "Input buffer overrun"},
    std::pair{ScpiError::Interrupted, "Query INTERRUPTED"},
    std::pair{ScpiError::Unterminated, "Query UNTERMINATED"},
};

// IEEE 488.2 white space: every control character but the line feed, and the blank.
bool IsBlank(char c) {
  return static_cast<unsigned char>(c) <= 0x20 && c != '\n';
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
bool IsLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

struct BlockHeader {
  std::size_t headerLength = 0;
  std::size_t dataLength = 0;
  bool indefinite = false;
};

// The header of the block at the start of `text` ("#0", or "#", the number of digits, the digits); nullopt
// when it is none.
std::optional<BlockHeader> ReadBlockHeader(std::string_view text) {
  if (text.size() < 2 || text[0] != '#' || !IsDigit(text[1])) return std::nullopt;
  const auto digits = static_cast<std::size_t>(text[1] - '0');
  if (digits == 0) return BlockHeader{2, 0, true};
  if (text.size() < 2 + digits) return std::nullopt;
  std::size_t length = 0;
  for (const char c : text.substr(2, digits)) {
    if (!IsDigit(c)) return std::nullopt;
    length = length * 10 + static_cast<std::size_t>(c - '0');
  }
  return BlockHeader{2 + digits, length, false};
}

// "#H1F", "#Q17", "#B101".
std::optional<double> ReadNonDecimal(std::string_view text) {
  if (text.size() < 3 || text[0] != '#') return std::nullopt;
  const char kind = UpperAscii(text[1]);
  const int base = kind == 'H' ? 16 : kind == 'Q' ? 8 : kind == 'B' ? 2 : 0;
  if (base == 0) return std::nullopt;
  double value = 0;
  for (const char raw : text.substr(2)) {
    const char c = UpperAscii(raw);
    const int digit = IsDigit(c) ? c - '0' : c >= 'A' && c <= 'F' ? c - 'A' + 10 : 99;
    if (digit >= base) return std::nullopt;
    value = value * base + digit;
  }
  return value;
}

}  // namespace

std::string_view ScpiErrorText(ScpiError error) {
  for (const auto& [number, text] : kErrorTexts) {
    if (number == error) return text;
  }
  return "Device error";
}

std::optional<ScpiMessageSpan> FirstScpiMessage(std::string_view bytes, bool end) {
  char quote = 0;
  std::size_t blockEnd = 0;
  bool argumentStart = false;  // behind a blank or a comma, where "#" begins a block
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const char c = bytes[i];
    if (quote != 0) {
      if (c == quote) quote = 0;
      continue;
    }
    if (c == '\n') return ScpiMessageSpan{i, i + 1};
    if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '#' && argumentStart) {
      if (const auto header = ReadBlockHeader(bytes.substr(i))) {
        if (header->indefinite) break;  // ends with END only
        const std::size_t whole = header->headerLength + header->dataLength;
        if (whole > bytes.size() - i) break;
        i += whole - 1;
        blockEnd = i + 1;
      }
    }
    argumentStart = c == ',' || IsBlank(c);
  }
  if (!end || bytes.empty()) return std::nullopt;
  const bool lineFeed = bytes.back() == '\n' && blockEnd != bytes.size();
  return ScpiMessageSpan{bytes.size() - (lineFeed ? 1 : 0), bytes.size()};
}

void ScpiUnitReader::SkipBlanks() {
  while (!rest_.empty() && IsBlank(rest_.front())) rest_.remove_prefix(1);
}

bool ScpiUnitReader::Fail(ScpiError error) {
  error_ = error;
  rest_ = {};
  return false;
}

std::optional<ScpiUnit> ScpiUnitReader::Next() {
  for (;;) {
    SkipBlanks();
    if (rest_.empty()) return std::nullopt;
    if (rest_.front() != ';') break;
    rest_.remove_prefix(1);
  }
  ScpiUnit unit;
  if (!ReadHeader(unit) || !ReadArguments(unit)) return std::nullopt;
  return unit;
}

bool ScpiUnitReader::ReadHeader(ScpiUnit& unit) {
  if (rest_.front() == '*') {
    unit.common = true;
  } else if (rest_.front() == ':') {
    unit.absolute = true;
    rest_.remove_prefix(1);
  }
  for (;;) {
    ScpiNode node;
    std::size_t length = unit.common ? 1 : 0;
    while (length < rest_.size() && (IsLetter(rest_[length]) || (length > 0 && rest_[length] == '_')))
      ++length;
    if (length == (unit.common ? 1U : 0U)) {
      return Fail(rest_.empty() || IsBlank(rest_.front()) || IsDigit(rest_.front()) || rest_.front() == ':' ||
                          rest_.front() == ';' || rest_.front() == '*' || rest_.front() == '?'
                      ? ScpiError::Syntax
                      : ScpiError::InvalidCharacter);
    }
    node.name = UpperAscii(rest_.substr(0, length));
    rest_.remove_prefix(length);
    std::size_t digits = 0;
    int suffix = 0;
    for (; digits < rest_.size() && IsDigit(rest_[digits]); ++digits) {
      suffix = std::min(suffix * 10 + (rest_[digits] - '0'), 1'000'000);
    }
    if (digits > 0) {
      node.suffix = suffix;
      node.hasSuffix = true;
      rest_.remove_prefix(digits);
    }
    unit.nodes.push_back(std::move(node));
    if (rest_.empty() || rest_.front() != ':' || unit.common) break;
    rest_.remove_prefix(1);
  }
  if (!rest_.empty() && rest_.front() == '?') {
    unit.query = true;
    rest_.remove_prefix(1);
  }
  if (!rest_.empty() && !IsBlank(rest_.front()) && rest_.front() != ';') {
    return Fail(rest_.front() == ',' || rest_.front() == ':' ? ScpiError::InvalidSeparator
                                                             : ScpiError::InvalidCharacter);
  }
  return true;
}

bool ScpiUnitReader::ReadArguments(ScpiUnit& unit) {
  SkipBlanks();
  if (rest_.empty() || rest_.front() == ';') return true;
  for (;;) {
    ScpiArgument argument;
    const char first = rest_.front();
    bool read = false;
    if (first == '"' || first == '\'') {
      read = ReadText(argument);
    } else if (first == '#' && rest_.size() > 1 && !IsLetter(rest_[1])) {
      read = ReadBlock(argument);
    } else {
      read = ReadPlain(argument);
    }
    if (!read) return false;
    const bool block = argument.kind == ScpiArgument::Kind::Block;
    unit.arguments.push_back(std::move(argument));
    SkipBlanks();
    if (rest_.empty() || rest_.front() == ';') return true;
    // Bytes behind a block mean that its length was wrong.
    if (rest_.front() != ',') return Fail(block ? ScpiError::InvalidBlock : ScpiError::InvalidSeparator);
    rest_.remove_prefix(1);
    SkipBlanks();
    if (rest_.empty()) return Fail(ScpiError::Syntax);
  }
}

bool ScpiUnitReader::ReadText(ScpiArgument& argument) {
  const char quote = rest_.front();
  argument.kind = ScpiArgument::Kind::Text;
  for (std::size_t i = 1; i < rest_.size(); ++i) {
    if (rest_[i] == quote) {
      if (i + 1 < rest_.size() && rest_[i + 1] == quote) {
        ++i;
      } else {
        argument.raw = rest_.substr(0, i + 1);
        rest_.remove_prefix(i + 1);
        return true;
      }
    }
    argument.text += rest_[i];
  }
  return Fail(ScpiError::InvalidString);
}

bool ScpiUnitReader::ReadBlock(ScpiArgument& argument) {
  const auto header = ReadBlockHeader(rest_);
  if (!header) return Fail(ScpiError::InvalidBlock);
  const std::size_t available = rest_.size() - header->headerLength;
  const std::size_t length = header->indefinite ? available : header->dataLength;
  if (length > available) return Fail(ScpiError::InvalidBlock);
  argument.kind = ScpiArgument::Kind::Block;
  argument.block = rest_.substr(header->headerLength, length);
  argument.raw = rest_.substr(0, header->headerLength + length);
  rest_.remove_prefix(header->headerLength + length);
  return true;
}

bool ScpiUnitReader::ReadPlain(ScpiArgument& argument) {
  std::size_t length = 0;
  while (length < rest_.size() && rest_[length] != ',' && rest_[length] != ';') {
    if (rest_[length] == '"' || rest_[length] == '\'') return Fail(ScpiError::InvalidSeparator);
    ++length;
  }
  std::string_view raw = rest_.substr(0, length);
  rest_.remove_prefix(length);
  while (!raw.empty() && IsBlank(raw.back())) raw.remove_suffix(1);
  if (raw.empty()) return Fail(ScpiError::Syntax);
  argument.raw = raw;
  const char first = raw.front();
  if (IsLetter(first)) {
    argument.kind = ScpiArgument::Kind::Word;
    return true;
  }
  if (!IsDigit(first) && first != '+' && first != '-' && first != '.' && first != '#') {
    return Fail(ScpiError::InvalidCharacter);
  }
  const auto number = first == '#' ? ReadNonDecimal(raw) : ParseNumber(raw);
  if (!number) {
    // No command of this instrument takes a unit: a number with letters behind it carries an invalid suffix.
    return Fail(first != '#' && IsLetter(raw.back()) ? ScpiError::InvalidSuffix : ScpiError::InvalidNumber);
  }
  argument.kind = ScpiArgument::Kind::Number;
  argument.number = *number;
  return true;
}

bool ScpiWordIs(std::string_view word, std::string_view pattern) {
  std::size_t shortLength = 0;
  while (shortLength < pattern.size() && !(pattern[shortLength] >= 'a' && pattern[shortLength] <= 'z')) {
    ++shortLength;
  }
  if (word.size() != shortLength && word.size() != pattern.size()) return false;
  return std::equal(word.begin(), word.end(), pattern.begin(), SameAsciiLetter);
}

ScpiPattern::ScpiPattern(std::string_view text) {
  bool optional = false;
  while (!text.empty()) {
    if (text.front() == '[') optional = true;
    if (text.front() == '[' || text.front() == ']' || text.front() == ':') {
      if (text.front() == ']') optional = false;
      text.remove_prefix(1);
      continue;
    }
    const std::size_t length = std::min(text.find_first_of(":[]"), text.size());
    std::string_view word = text.substr(0, length);
    text.remove_prefix(length);
    Segment segment;
    segment.optional = optional;
    if (word.back() == '#') {
      segment.suffix = true;
      word.remove_suffix(1);
    }
    const auto lower = std::find_if(word.begin(), word.end(), [](char c) { return c >= 'a' && c <= 'z'; });
    segment.shortName = std::string(word.begin(), lower);
    segment.longName = UpperAscii(word);
    segments_.push_back(std::move(segment));
  }
}

bool ScpiPattern::MatchFrom(std::size_t segment, std::span<const ScpiNode> nodes,
                            std::vector<int>& suffixes) const {
  if (segment == segments_.size()) return nodes.empty();
  const Segment& wanted = segments_[segment];
  if (!nodes.empty()) {
    const ScpiNode& node = nodes.front();
    const bool named = node.name == wanted.shortName || node.name == wanted.longName;
    if (named && (wanted.suffix || !node.hasSuffix)) {
      const std::size_t before = suffixes.size();
      if (wanted.suffix) suffixes.push_back(node.suffix);
      if (MatchFrom(segment + 1, nodes.subspan(1), suffixes)) return true;
      suffixes.resize(before);
    }
  }
  if (!wanted.optional) return false;
  const std::size_t before = suffixes.size();
  if (wanted.suffix) suffixes.push_back(1);
  if (MatchFrom(segment + 1, nodes, suffixes)) return true;
  suffixes.resize(before);
  return false;
}

std::optional<std::vector<int>> ScpiPattern::Match(std::span<const ScpiNode> nodes) const {
  std::vector<int> suffixes;
  if (!MatchFrom(0, nodes, suffixes)) return std::nullopt;
  return suffixes;
}

}  // namespace corlune
