#include "cli/temporary_folder.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>

#include "compile/transfer_file.h"

namespace corlune {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPrefix = "corlune-cli-";
constexpr std::string_view kPlaces = "XXXXXX";

FileDescriptor OpenFolder(const std::string& path) {
  return FileDescriptor(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

// Only files that this program puts there: the name may be somebody else's idea as well.
void RemoveFolder(const fs::path& folder) {
  std::error_code error;
  for (const char* const name : {kSendFileName, kReceiveFileName}) fs::remove(folder / name, error);
  fs::remove(folder, error);
}

void RemoveAbandoned(const fs::path& parent) {
  std::error_code error;
  for (fs::directory_iterator entry(parent, error); !error && entry != fs::directory_iterator();
       entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (!name.starts_with(kPrefix) || name.size() != kPrefix.size() + kPlaces.size()) continue;
    const FileDescriptor folder = OpenFolder(entry->path().string());
    struct stat info {};
    const bool own = folder.IsOpen() && fstat(folder.Get(), &info) == 0 && info.st_uid == getuid();
    if (own && flock(folder.Get(), LOCK_EX | LOCK_NB) == 0) RemoveFolder(entry->path());
  }
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
  std::error_code error;
  const auto parent = fs::temp_directory_path(error);
  if (error) return;
  RemoveAbandoned(parent);
  // A process that tidies up may come between making and locking; then its lock goes with the folder.
  for (int attempt = 0; path_.empty() && attempt < 10; ++attempt) {
    std::string path = (parent / kPrefix).string().append(kPlaces);
    if (mkdtemp(path.data()) == nullptr) return;
    lock_ = OpenFolder(path);
    if (lock_.IsOpen()) flock(lock_.Get(), LOCK_EX);
    if (fs::exists(path, error)) path_ = path;
  }
}

void TemporaryFolder::Remove() {
  if (path_.empty()) return;
  RemoveFolder(path_);
}

}  // namespace corlune
