#include "sequence/regular_file.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace corlune {

namespace {

#ifdef _WIN32

int OpenToRead(const std::filesystem::path& path) {
  return _wopen(path.c_str(), _O_RDONLY | _O_BINARY);
}

std::int64_t SizeOf(int handle) {
  return _filelengthi64(handle);
}

void Close(int handle) {
  _close(handle);
}

std::int64_t ReadPiece(int handle, std::int64_t offset, char* target, std::size_t count) {
  if (_lseeki64(handle, offset, SEEK_SET) < 0) return -1;
  return _read(handle, target, static_cast<unsigned>(count));
}

#else

int OpenToRead(const std::filesystem::path& path) {
  // Something else may have taken the name since it was looked at; a pipe must not make the open wait.
  return ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
}

// -1 for anything but a regular file.
std::int64_t SizeOf(int handle) {
  struct stat status {};
  if (::fstat(handle, &status) != 0 || !S_ISREG(status.st_mode)) return -1;
  return status.st_size;
}

void Close(int handle) {
  ::close(handle);
}

std::int64_t ReadPiece(int handle, std::int64_t offset, char* target, std::size_t count) {
  std::int64_t got = 0;
  do {
    got = ::pread(handle, target, count, offset);
  } while (got < 0 && errno == EINTR);
  return got;
}

#endif

}  // namespace

RegularFile::RegularFile(const std::string& path) {
  const std::filesystem::path file(std::u8string(path.begin(), path.end()));
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) return;
  const int handle = OpenToRead(file);
  if (handle < 0) return;
  size_ = SizeOf(handle);
  if (size_ < 0) {
    Close(handle);
    size_ = 0;
    return;
  }
  handle_ = handle;
}

RegularFile::~RegularFile() {
  if (handle_ >= 0) Close(handle_);
}

std::optional<std::size_t> RegularFile::ReadAt(std::int64_t offset, void* target, std::size_t count) {
  std::size_t done = 0;
  while (done < count) {
    const std::int64_t got = ReadPiece(handle_, offset + static_cast<std::int64_t>(done),
                                       static_cast<char*>(target) + done, count - done);
    if (got < 0) return std::nullopt;
    if (got == 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}

}  // namespace corlune
