// A regular file open for reading in pieces. Opening never waits: a named pipe, device or folder is refused.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace corlune {

class RegularFile {
 public:
  explicit RegularFile(const std::string& path);  // UTF-8
  ~RegularFile();
  RegularFile(const RegularFile&) = delete;
  RegularFile& operator=(const RegularFile&) = delete;

  bool IsOpen() const { return handle_ >= 0; }
  std::int64_t Size() const { return size_; }  // bytes, as it was when opened

  // Reads `count` bytes from `offset` into `target`. Fewer come back only when the file ends before that.
  // nullopt when reading fails.
  std::optional<std::size_t> ReadAt(std::int64_t offset, void* target, std::size_t count);

 private:
  int handle_ = -1;
  std::int64_t size_ = 0;
};

}  // namespace corlune
