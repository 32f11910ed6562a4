// The values of a ".txt" waveform, as they come in pieces of text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace corlune {

// Takes integers that are separated by commas or line breaks and lays them down big-endian. Blanks around a
// value, blank lines and a comma at the end of a line or of the file do not count; an empty place between two
// commas does, as a value that is none.
class TextWaveform {
 public:
  // `points`: room for kMaxWaveformPoints values of two bytes.
  explicit TextWaveform(std::uint8_t* points) : points_(points) {}

  // `text` must end with a separator.
  void Take(std::string_view text);
  // More values than any waveform holds: the rest need not be read.
  bool Full() const;

  std::int32_t Count() const { return count_; }                // values so far, also those that are none
  std::int32_t FirstInvalid() const { return firstInvalid_; }  // counted from 1; 0: all are valid

 private:
  const char* TakeSlowly(const char* next, const char* end);
  void Store(std::int32_t value);
  void StoreInvalid();

  std::uint8_t* points_;
  std::int32_t count_ = 0;
  std::int32_t firstInvalid_ = 0;
  bool afterComma_ = true;  // nothing but blanks since the last comma or the start
};

}  // namespace corlune
