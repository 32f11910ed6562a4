// FileStamp: by what a file is known to be the same as before, without reading it.
#pragma once

#include <cstdint>
#include <string>

namespace corlune {

struct FileStamp {
  std::int64_t Size = -1;  // bytes; -1: no such file
  std::int64_t Time = 0;   // of the last change, in the file system's own ticks
  bool Exists() const { return Size >= 0; }
  bool operator==(const FileStamp&) const = default;
};

// Asks the file system; `path` in UTF-8.
FileStamp StampOf(const std::string& path);

}  // namespace corlune
