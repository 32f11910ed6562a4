#include "graph/wave_cache.h"

#include <algorithm>
#include <utility>

namespace corlune {

namespace {

constexpr std::size_t kKept = 4;  // files of up to 5 MiB each

}  // namespace

std::shared_ptr<const WaveFile> WaveCache::Find(const std::string& path) {
  const auto found =
      std::find_if(files_.begin(), files_.end(), [&](const auto& file) { return file->Path == path; });
  if (found == files_.end()) return nullptr;
  std::shared_ptr<const WaveFile> file = *found;
  files_.erase(found);
  if (StampOf(path) != file->Stamp) return nullptr;
  files_.push_front(file);
  return file;
}

std::shared_ptr<const WaveFile> WaveCache::Read(const std::string& path) {
  std::erase_if(files_, [&](const auto& file) { return file->Path == path; });
  auto file = std::make_shared<WaveFile>();
  file->Path = path;
  // Before it is read: a change meanwhile is then noticed the next time.
  file->Stamp = StampOf(path);
  ReadArbFile(path, read_);
  file->Reason = read_.reason;
  if (read_.problem == WaveformProblem::None) file->Wave.emplace(read_);
  files_.push_front(file);
  if (files_.size() > kKept) files_.pop_back();
  return file;
}

}  // namespace corlune
