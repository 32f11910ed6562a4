// Waveform files: reading a ".txt" or ".wdb" file into the block that ":TRACe:DATA" carries to the
// instrument. docs/waveform-files.md describes the layouts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "core/catalogue.h"

namespace corlune {

inline constexpr std::int32_t kMinWaveformPoints = 4096;
inline constexpr std::int32_t kMaxWaveformPoints = 524288;

enum class WaveformProblem {
  None,
  CannotAccess,  // ArbCannotAccess: no path, no such file, a folder or pipe, not readable
  BadExtension,  // WrongFileName: neither ".wdb" nor ".txt"
  Insufficient,  // ArbTooShort: the file ends before the data do
  Invalid,       // ArbInvalid: a value that is no integer from -32767 to 32767
  BadCount,      // no message: the number of values is not one that the instrument takes
};

// Message of a problem; nullopt when it has none.
std::optional<TextId> MessageOf(WaveformProblem problem);

// Bytes whose memory is kept from use to use and never filled with zeros first.
class WaveformBlock {
 public:
  const std::uint8_t* data() const { return bytes_.get(); }
  std::size_t size() const { return size_; }
  const std::uint8_t* begin() const { return data(); }
  const std::uint8_t* end() const { return data() + size_; }

  // Memory for at least `size` bytes, their values indeterminate.
  std::uint8_t* Prepare(std::size_t size);
  // How much of the prepared memory counts.
  void SetSize(std::size_t size) { size_ = size; }

 private:
  std::unique_ptr<std::uint8_t[]> bytes_;
  std::size_t capacity_ = 0;
  std::size_t size_ = 0;
};

// Why a file was refused, more exactly than its message says: one clause for a console or a dialog's row.
struct WaveformReason {
  std::optional<TextId> text;  // nullopt without a problem
  std::string number;          // what stands in its place $1
};
std::string ReasonText(const WaveformReason& reason, const MessageCatalogue& catalogue);

struct WaveformRead {
  WaveformProblem problem = WaveformProblem::None;
  WaveformReason reason;
  bool arrayForm = true;        // false: point pairs
  std::int32_t pointCount = 0;  // points or pairs
  WaveformBlock block;          // empty unless problem is None
};

// Reads the file at `path` (UTF-8), which is taken as it stands: resolve relative names first. The form
// that reuses `read` needs no further memory for any number of files.
void ReadArbFile(const std::string& path, WaveformRead& read);
[[nodiscard]] WaveformRead ReadArbFile(const std::string& path);
// Form and size alone, as far as they can be told without going through the points: everything but the block
// of a ".wdb" file, and why a file cannot be used at all. False: a ".txt" file, whose values have to be
// counted by ReadArbFile.
bool ReadArbHeader(const std::string& path, WaveformRead& read);

}  // namespace corlune
