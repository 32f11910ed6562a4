#include "sequence/file_stamp.h"

#include <filesystem>

namespace corlune {

FileStamp StampOf(const std::string& path) {
  namespace fs = std::filesystem;
  const fs::path file(std::u8string(path.begin(), path.end()));
  std::error_code error;
  const auto size = fs::file_size(file, error);
  if (error) return {};
  const auto time = fs::last_write_time(file, error);
  if (error) return {};
  return {static_cast<std::int64_t>(size), static_cast<std::int64_t>(time.time_since_epoch().count())};
}

}  // namespace corlune
