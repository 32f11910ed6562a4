// WaveCache: the waveform files that were drawn last, so that each is read once as long as it does not
// change.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>

#include "graph/signal_wave.h"
#include "sequence/file_stamp.h"

namespace corlune {

// A file as it was when it was read: its points, or why there are none.
struct WaveFile {
  std::string Path;
  FileStamp Stamp;
  std::optional<SignalWave> Wave;
  WaveformReason Reason;
};

class WaveCache {
 public:
  // What was read of the file, when it is still the same; asks the file system, reads nothing. nullptr: Read
  // it.
  std::shared_ptr<const WaveFile> Find(const std::string& path);
  // Reads the file, a few milliseconds for the largest; nothing is asked or shown. The file that was not
  // wanted for the longest time makes room.
  std::shared_ptr<const WaveFile> Read(const std::string& path);

 private:
  std::deque<std::shared_ptr<const WaveFile>> files_;  // the latest in front
  WaveformRead read_;                                  // its memory is used again
};

}  // namespace corlune
