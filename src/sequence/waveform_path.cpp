#include "sequence/waveform_path.h"

#include <algorithm>
#include <filesystem>

#include "core/files.h"

namespace corlune {

namespace {

bool IsSeparator(char c) {
  return c == '/' || c == '\\';
}

std::filesystem::path FileSystemPath(const std::string& utf8) {
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string Utf8Of(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

bool IsRelative(const ArbFileEntry& entry) {
  return !entry.FilePath.empty() && !IsAbsolutePath(entry.FilePath);
}

bool SameFolder(const std::string& one, const std::string& other) {
  if (one == other) return true;
  std::error_code error;
  return std::filesystem::equivalent(FileSystemPath(one), FileSystemPath(other), error) && !error;
}

// Empty when the folder cannot be made absolute.
std::string AbsoluteFolder(const std::string& folder) {
  std::error_code error;
  const auto absolute = std::filesystem::absolute(FileSystemPath(folder), error);
  return error ? std::string() : Utf8Of(absolute.lexically_normal());
}

}  // namespace

bool IsAbsolutePath(std::string_view path) {
  if (path.empty()) return false;
  if (IsSeparator(path[0])) return true;
  const char drive = static_cast<char>(path[0] | 0x20);
  return path.size() > 1 && path[1] == ':' && drive >= 'a' && drive <= 'z';
}

std::string FolderOf(std::string_view path) {
#ifdef _WIN32
  const std::size_t end = path.find_last_of("/\\");
#else
  const std::size_t end = path.find_last_of('/');
#endif
  if (end == std::string_view::npos) return ".";
  if (end == 0) return std::string(path.substr(0, 1));
  return std::string(path.substr(0, end));
}

std::string WaveformFolder(const AppState& state) {
  return state.CurrentFilePath.empty() ? state.AppFolder : FolderOf(state.CurrentFilePath);
}

std::string ResolveWaveformPath(const std::string& stored, const std::string& folder) {
  if (stored.empty() || folder.empty() || IsAbsolutePath(stored)) return stored;
  return JoinPath(folder, stored);
}

bool HasRelativeWaveformPath(const SequenceData& sequence) {
  return std::any_of(sequence.Channels.ArbFiles.begin(), sequence.Channels.ArbFiles.end(), IsRelative);
}

bool KeepWaveformPaths(SequenceData& sequence, const std::string& from, const std::string& to) {
  bool changed = false;
  std::string absolute;
  for (ArbFileEntry& entry : sequence.Channels.ArbFiles) {
    if (!IsRelative(entry)) continue;
    if (absolute.empty()) {
      if (SameFolder(from, to)) return false;
      absolute = AbsoluteFolder(from);
      if (absolute.empty()) return false;
    }
    std::string path = ResolveWaveformPath(entry.FilePath, absolute);
    if (!FileExists(path)) continue;
    entry.FilePath = std::move(path);
    changed = true;
  }
  return changed;
}

}  // namespace corlune
