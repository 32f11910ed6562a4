// WaveFacts: form and size of waveform files, each found out once as long as the file does not change.
#pragma once

#include <string>
#include <unordered_map>

#include "sequence/file_stamp.h"
#include "sequence/waveform_file.h"

namespace corlune {

// A file as it was when it was looked at.
struct WaveFact {
  FileStamp Stamp;
  WaveformProblem Problem = WaveformProblem::None;
  WaveformReason Reason;  // with a problem
  bool ArrayForm = true;
  std::int32_t Points = 0;  // points or pairs; 0 with a problem
  bool Usable() const { return Problem == WaveformProblem::None; }
};

class WaveFacts {
 public:
  // What is known of the file as it is now. Asks the file system, and reads no more than a header. nullptr:
  // its values have to be counted. The answer is valid until the next call.
  const WaveFact* Find(const std::string& path);
  // The same, and counts where it has to: a few milliseconds for the largest file.
  const WaveFact& Count(const std::string& path);

 private:
  const WaveFact& Keep(const std::string& path, const FileStamp& stamp);

  std::unordered_map<std::string, WaveFact> facts_;
  WaveformRead read_;  // its memory is used again
};

}  // namespace corlune
