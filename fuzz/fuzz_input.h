// Shared by the fuzz targets: the entry point, and a file in memory for readers that take a path.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace corlune::fuzz {

inline std::string_view Text(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// Says what broke and aborts, so that the fuzzer keeps the input.
inline void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "broken: %s\n", what);
  std::abort();
}

// A file of this process, on a memory file system where there is one; removed at the end.
class ScratchFile {
 public:
  explicit ScratchFile(const std::string& ending) {
    const char* folder = std::filesystem::is_directory("/dev/shm") ? "/dev/shm" : "/tmp";
    std::string pattern = std::string(folder) + "/corlune-fuzz-XXXXXX" + ending;
    const int file = mkstemps(pattern.data(), static_cast<int>(ending.size()));
    Require(file >= 0, "scratch file");
    path_ = pattern;
    handle_ = std::fopen(path_.c_str(), "wb");
    Require(handle_ != nullptr, "scratch file");
  }
  ~ScratchFile() {
    std::fclose(handle_);
    std::filesystem::remove(path_);
  }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  const std::string& Path() const { return path_; }
  // Makes the file `bytes`, followed by zeros up to `length` when that is longer.
  void Set(std::string_view bytes, std::size_t length = 0) {
    std::filesystem::resize_file(path_, 0);
    std::rewind(handle_);
    std::fwrite(bytes.data(), 1, bytes.size(), handle_);
    std::fflush(handle_);
    if (length > bytes.size()) std::filesystem::resize_file(path_, length);
  }

 private:
  std::string path_;
  std::FILE* handle_ = nullptr;
};

}  // namespace corlune::fuzz
