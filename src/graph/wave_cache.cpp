#include "graph/wave_cache.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace corlune {

namespace {

constexpr std::size_t kKept = 4;  // files of up to 5 MiB each

struct Stamp {
  std::int64_t Size = -1;
  std::int64_t Time = 0;
};

Stamp StampOf(const std::string& path) {
  namespace fs = std::filesystem;
  const fs::path file(std::u8string(path.begin(), path.end()));
  std::error_code error;
  const auto size = fs::file_size(file, error);
  if (error) return {};
  const auto time = fs::last_write_time(file, error);
  if (error) return {};
  return {static_cast<std::int64_t>(size), static_cast<std::int64_t>(time.time_since_epoch().count())};
}

}  // namespace

std::shared_ptr<const WaveFile> WaveCache::Find(const std::string& path) {
  const auto found =
      std::find_if(files_.begin(), files_.end(), [&](const auto& file) { return file->Path == path; });
  if (found == files_.end()) return nullptr;
  const Stamp stamp = StampOf(path);
  std::shared_ptr<const WaveFile> file = *found;
  files_.erase(found);
  if (stamp.Size != file->Size || stamp.Time != file->Time) return nullptr;
  files_.push_front(file);
  return file;
}

std::shared_ptr<const WaveFile> WaveCache::Read(const std::string& path) {
  std::erase_if(files_, [&](const auto& file) { return file->Path == path; });
  auto file = std::make_shared<WaveFile>();
  file->Path = path;
  // Before it is read: a change meanwhile is then noticed the next time.
  const Stamp stamp = StampOf(path);
  file->Size = stamp.Size;
  file->Time = stamp.Time;
  ReadArbFile(path, read_);
  file->Reason = read_.reason;
  if (read_.problem == WaveformProblem::None) file->Wave.emplace(read_);
  files_.push_front(file);
  if (files_.size() > kKept) files_.pop_back();
  return file;
}

}  // namespace corlune
