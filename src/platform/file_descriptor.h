// Owner of a file descriptor. POSIX only.
#pragma once

#ifndef _WIN32

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace corlune {

class FileDescriptor {
 public:
  explicit FileDescriptor(int descriptor = -1) : descriptor_(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() {
    const int kept = errno;  // callers report the error that came before
    Close();
    errno = kept;
  }

  int Get() const { return descriptor_; }
  bool IsOpen() const { return descriptor_ >= 0; }
  // 0 or the error number; some file systems report a failed write only here.
  int Close() {
    if (!IsOpen()) return 0;
    return close(std::exchange(descriptor_, -1)) == 0 || errno == EINTR ? 0 : errno;
  }

 private:
  int descriptor_;
};

}  // namespace corlune

#endif
