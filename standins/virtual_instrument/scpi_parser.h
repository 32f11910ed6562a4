// SCPI program messages: where one ends, which units it holds, and which command a header names.
//
// A message is a sequence of units separated by ";". A unit is a header (mnemonics joined by ":") and
// arguments separated by ",": decimal numbers, words, quoted texts, IEEE 488.2 blocks. Nothing is copied:
// arguments are views into the message, so a block of a megabyte costs no more than one of ten bytes.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace corlune {

// Error numbers of the SCPI standard, as far as the parser finds them itself.
enum class ScpiError : int {
  None = 0,
  InvalidCharacter = -101,
  Syntax = -102,
  InvalidSeparator = -103,
  DataType = -104,
  ParameterNotAllowed = -108,
  MissingParameter = -109,
  UndefinedHeader = -113,
  HeaderSuffixRange = -114,
  InvalidNumber = -121,
  InvalidSuffix = -131,
  InvalidString = -151,
  InvalidBlock = -161,
  SettingsConflict = -221,
  OutOfRange = -222,
  IllegalValue = -224,
  OutOfMemory = -225,
  CorruptData = -230,
  NotFound = -256,
  StillRunning = -284,
  QueueOverflow = -350,
  InputOverrun = -363,
  Interrupted = -410,
  Unterminated = -420,
};
std::string_view ScpiErrorText(ScpiError error);

struct ScpiArgument {
  enum class Kind { Number, Word, Text, Block };
  Kind kind = Kind::Word;
  std::string_view raw;    // as sent, without the blanks around it
  double number = 0;       // Kind::Number
  std::string text;        // Kind::Text, quotes removed and doubled quotes halved
  std::string_view block;  // Kind::Block, the bytes behind the block header
};

// One mnemonic of a header as it was sent: upper case, its trailing digits apart.
struct ScpiNode {
  std::string name;
  int suffix = 1;
  bool hasSuffix = false;
  bool operator==(const ScpiNode&) const = default;
};

struct ScpiUnit {
  bool common = false;    // "*..." command: one node, named with its "*"
  bool absolute = false;  // began with ":"
  bool query = false;
  std::vector<ScpiNode> nodes;
  std::vector<ScpiArgument> arguments;
};

struct ScpiMessageSpan {
  std::size_t content = 0;  // without the line feed that ends the message
  std::size_t whole = 0;
};
// The first message of `bytes`; nullopt while it is not complete. Line feeds in texts and blocks do not
// count, neither does one that is the last byte of a block. With `end` (END came with the last byte) the rest
// is a message in any case.
std::optional<ScpiMessageSpan> FirstScpiMessage(std::string_view bytes, bool end);

// Takes a message (without its final line feed) apart, unit by unit.
class ScpiUnitReader {
 public:
  explicit ScpiUnitReader(std::string_view message) : rest_(message) {}
  // Next unit; nullopt at the end or when the unit is malformed, which Error() tells. Empty units are
  // skipped.
  std::optional<ScpiUnit> Next();
  ScpiError Error() const { return error_; }
  std::string_view Rest() const { return rest_; }  // not yet read

 private:
  bool ReadHeader(ScpiUnit& unit);
  bool ReadArguments(ScpiUnit& unit);
  bool ReadText(ScpiArgument& argument);
  bool ReadBlock(ScpiArgument& argument);
  bool ReadPlain(ScpiArgument& argument);
  bool Fail(ScpiError error);
  void SkipBlanks();

  std::string_view rest_;
  ScpiError error_ = ScpiError::None;
};

// A command's header as the manual writes it: "OUTPut#[:STATe]". Capital letters are the short form, both
// forms and either letter case are taken, nothing between them; brackets mark nodes that may be left out;
// "#" allows a numeric suffix, 1 when it is not sent.
class ScpiPattern {
 public:
  explicit ScpiPattern(std::string_view text);
  // The suffixes of the "#" nodes in order; nullopt when the header is another one.
  std::optional<std::vector<int>> Match(std::span<const ScpiNode> nodes) const;

 private:
  struct Segment {
    std::string shortName;
    std::string longName;
    bool suffix = false;
    bool optional = false;
  };
  bool MatchFrom(std::size_t segment, std::span<const ScpiNode> nodes, std::vector<int>& suffixes) const;

  std::vector<Segment> segments_;
};

// True when `word` is the short or the long form of `pattern` ("STARt"), in either letter case.
bool ScpiWordIs(std::string_view word, std::string_view pattern);

}  // namespace corlune
