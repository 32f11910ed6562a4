// Where a waveform file named in a sequence lies. A path that is not absolute counts from the folder of the
// sequence file, so that a folder with a sequence and its waveforms can be moved as a whole.
#pragma once

#include <string>
#include <string_view>

#include "core/app_state.h"
#include "sequence/sequence_data.h"

namespace corlune {

// Absolute on any platform: "/...", "\...", "C:..." (a file from another system is never taken as relative).
bool IsAbsolutePath(std::string_view path);

// Folder part of `path` without its separator; "." when it has none.
std::string FolderOf(std::string_view path);

// Folder that relative waveform paths count from: that of the sequence's file, else the application folder.
std::string WaveformFolder(const AppState& state);

// `stored` as it can be opened. An empty path stays empty, an absolute one as it is.
std::string ResolveWaveformPath(const std::string& stored, const std::string& folder);
inline std::string ResolveWaveformPath(const std::string& stored, const AppState& state) {
  return ResolveWaveformPath(stored, WaveformFolder(state));
}

bool HasRelativeWaveformPath(const SequenceData& sequence);

// Before a sequence moves from folder `from` to folder `to`: makes the relative paths whose file exists
// absolute, so that they go on naming it. Other paths keep their text. True when a path was changed.
bool KeepWaveformPaths(SequenceData& sequence, const std::string& from, const std::string& to);

}  // namespace corlune
