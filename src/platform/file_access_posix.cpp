#ifndef _WIN32

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "platform/file_access.h"
#include "platform/file_descriptor.h"

namespace corlune {
namespace {

constexpr int kNameAttempts = 100;
constexpr const char* kNeighbourPrefix = ".corlune-";
constexpr const char* kNeighbourEnding = ".tmp";
constexpr int kLinkLimit = 40;
constexpr mode_t kPermissionBits = 07777;

std::string ErrorText(int code) {
  return std::generic_category().message(code);
}

bool Fail(std::string* error, const std::string& what, const std::string& path, int code) {
  if (error != nullptr) *error = what + " '" + path + "': " + ErrorText(code);
  return false;
}

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// The file that `path` names once its last component is no link any more; a link to a file that does not
// exist yet names the file to create.
std::string FollowLinks(std::string path) {
  for (int i = 0; i < kLinkLimit; ++i) {
    std::array<char, PATH_MAX> buffer{};
    const ssize_t length = readlink(path.c_str(), buffer.data(), buffer.size());
    if (length <= 0) break;
    const std::string target(buffer.data(), static_cast<std::size_t>(length));
    path = target[0] == '/' ? target : FolderOf(path).append("/").append(target);
  }
  return path;
}

// Returns 0 or the error number.
int WriteAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

// Some file systems cannot flush; that is no reason to refuse the save.
int Flush(int descriptor) {
  if (fsync(descriptor) == 0 || errno == EINVAL || errno == ENOSYS || errno == ENOTSUP) return 0;
  return errno;
}

// True while `path` is the name of the open file.
bool IsNameOf(const std::string& path, const FileDescriptor& file) {
  struct stat named {};
  struct stat opened {};
  return lstat(path.c_str(), &named) == 0 && fstat(file.Get(), &opened) == 0 &&
         named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
}

// Neighbours are locked for as long as somebody writes them; the others are those of processes that died.
void RemoveAbandonedNeighbours(const std::string& folder) {
  const auto closeFolder = [](DIR* open) { closedir(open); };
  const std::unique_ptr<DIR, decltype(closeFolder)> entries(opendir(folder.c_str()), closeFolder);
  if (!entries) return;
  while (const dirent* entry = readdir(entries.get())) {
    const std::string_view name = entry->d_name;
    if (!name.starts_with(kNeighbourPrefix) || !name.ends_with(kNeighbourEnding)) continue;
    const std::string path = folder + "/" + entry->d_name;
    const FileDescriptor file(open(path.c_str(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (file.IsOpen() && flock(file.Get(), LOCK_EX | LOCK_NB) == 0 && IsNameOf(path, file))
      unlink(path.c_str());
  }
}

// A new, empty and locked file beside `target`. Opened with the permissions of a new file, so the user's mask
// holds.
FileDescriptor CreateNeighbour(const std::string& target, std::string& neighbour) {
  const std::string folder = FolderOf(target);
  RemoveAbandonedNeighbours(folder);
  for (int i = 0; i < kNameAttempts; ++i) {
    neighbour = folder + "/" + kNeighbourPrefix + std::to_string(getpid()) + "-" + std::to_string(i) +
                kNeighbourEnding;
    FileDescriptor file(open(neighbour.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!file.IsOpen() && errno != EEXIST) return file;
    // Another process may take it for abandoned before the lock; the next name then.
    if (!file.IsOpen() || (flock(file.Get(), LOCK_EX) == 0 && !IsNameOf(neighbour, file))) continue;
    return file;
  }
  errno = EEXIST;
  return FileDescriptor();
}

// The rename itself lives in the folder.
void FlushFolder(const std::string& folder) {
  const FileDescriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (descriptor.IsOpen()) fsync(descriptor.Get());
}

bool WriteDirectly(const std::string& path, std::string_view bytes, std::string* error) {
  const FileDescriptor file(open(path.c_str(), O_WRONLY | O_CLOEXEC));
  const int code = file.IsOpen() ? WriteAll(file.Get(), bytes) : errno;
  return code == 0 || Fail(error, "cannot write", path, code);
}

// Fills the neighbour; returns 0 or the error number.
int FillNeighbour(FileDescriptor& file, std::string_view bytes, const struct stat* old) {
  if (old != nullptr) {
    // Before the content, which may be private. The owner can be kept only by a privileged user; for
    // everybody else the file becomes his own.
    const bool sameOwner = fchown(file.Get(), old->st_uid, old->st_gid) == 0;
    const mode_t mode = old->st_mode & (sameOwner ? kPermissionBits : 0777);
    if (fchmod(file.Get(), mode) != 0) return errno;
  }
  if (const int code = WriteAll(file.Get(), bytes)) return code;
  if (const int code = Flush(file.Get())) return code;
  return file.Close();
}

}  // namespace

bool IsRegularFile(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

bool PathExists(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0;
}

std::optional<std::string> ReadFileBytes(const std::string& path) {
  // Not blocking: opening a pipe without a writer would wait for ever.
  const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat info {};
  if (!file.IsOpen() || fstat(file.Get(), &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
  // One byte more than expected shows the end of the file, or that it has grown meanwhile.
  std::string bytes(static_cast<std::size_t>(info.st_size) + 1, '\0');
  std::size_t filled = 0;
  for (;;) {
    if (filled == bytes.size()) bytes.resize(bytes.size() + 4096);
    const ssize_t got = read(file.Get(), bytes.data() + filled, bytes.size() - filled);
    if (got < 0) {
      if (errno == EINTR) continue;
      return std::nullopt;
    }
    if (got == 0) break;
    filled += static_cast<std::size_t>(got);
  }
  bytes.resize(filled);
  return bytes;
}

bool ReplaceFileBytes(const std::string& path, std::string_view bytes, std::string* error) {
  struct stat old {};
  const bool exists = stat(path.c_str(), &old) == 0;
  // Anything but a missing file (a loop of links, a folder one may not enter) is a reason to stop.
  if (!exists && errno != ENOENT) return Fail(error, "cannot write", path, errno);
  if (exists && S_ISDIR(old.st_mode)) return Fail(error, "cannot write", path, EISDIR);
  if (exists && !S_ISREG(old.st_mode)) return WriteDirectly(path, bytes, error);
  if (exists && access(path.c_str(), W_OK) != 0) return Fail(error, "cannot write", path, errno);

  const std::string target = FollowLinks(path);
  std::string neighbour;
  FileDescriptor file = CreateNeighbour(target, neighbour);
  if (!file.IsOpen()) return Fail(error, "cannot write in the folder of", target, errno);
  // Keeps the lock until the neighbour has its new name.
  const FileDescriptor lock(fcntl(file.Get(), F_DUPFD_CLOEXEC, 0));
  int code = FillNeighbour(file, bytes, exists ? &old : nullptr);
  if (code == 0 && std::rename(neighbour.c_str(), target.c_str()) != 0) code = errno;
  if (code != 0) {
    unlink(neighbour.c_str());
    return Fail(error, "cannot write", path, code);
  }
  FlushFolder(FolderOf(target));
  return true;
}

}  // namespace corlune

#endif
