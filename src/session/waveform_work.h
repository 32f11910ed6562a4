// What a session tells about work on the waveforms in an instrument while it is under way, and at its end.
#pragma once

#include <cstdint>
#include <functional>

namespace corlune {

struct WaveformStep {
  int Number = 0;  // ARB number that is being dealt with
  int Done = 0;    // waveforms, of Count
  int Count = 0;
  std::int64_t BytesDone = 0;  // of their files; 0 where none is sent
  std::int64_t BytesAll = 0;
  std::int32_t TimeLeft = 0;  // ms, as far as the waits have a fixed length
};

// Called before every waveform and every second of a wait. False: end behind the waveform under way.
using WaveformWatch = std::function<bool(const WaveformStep& step)>;

enum class WaveformEnd {
  Done,
  Ended,    // the watch or an end of the program wanted it; what was done stays
  Refused,  // nothing was exchanged; a message said why, unless the person said no
  Failed    // a message said why; what was done before stays
};

struct WaveformOutcome {
  WaveformEnd End = WaveformEnd::Refused;
  int Done = 0;    // waveforms
  int Number = 0;  // ARB number at fault; 0: none
};

}  // namespace corlune
