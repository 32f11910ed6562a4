// Libraries that are bound when they are first used. A missing library or symbol is an ordinary failure
// with a reason a person can read, never a refusal to start.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace corlune {

// Owns one loaded library; it is released with the last owner.
class SharedLibrary {
 public:
  // A path with a separator is loaded from there, a bare name is searched by the system loader. On failure
  // *error (may be null) is the loader's reason.
  static std::optional<SharedLibrary> Open(const std::string& path, std::string* error);

  SharedLibrary(SharedLibrary&& other) noexcept
      : handle_(std::exchange(other.handle_, nullptr)), path_(std::move(other.path_)) {}
  SharedLibrary& operator=(SharedLibrary&& other) noexcept {
    std::swap(handle_, other.handle_);
    std::swap(path_, other.path_);
    return *this;
  }
  SharedLibrary(const SharedLibrary&) = delete;
  SharedLibrary& operator=(const SharedLibrary&) = delete;
  ~SharedLibrary();

  // Address of an exported name; null when the library has none. Valid as long as the library is owned.
  void* Symbol(const char* name) const;
  // The file that the system loaded.
  std::string LoadedFrom() const;
  // As given to Open.
  const std::string& Path() const { return path_; }

 private:
  SharedLibrary(void* handle, std::string path) : handle_(handle), path_(std::move(path)) {}

  void* handle_ = nullptr;
  std::string path_;
};

// One function of a library: its exported name and the pointer that receives its address.
struct SymbolRow {
  const char* name = "";
  void** slot = nullptr;
  bool optional = false;  // the slot stays null when the library lacks it
};

// Fills every slot. When a required symbol is missing: clears all slots, names the first missing one in
// *missing (may be null) and returns false.
bool LoadSymbols(const SharedLibrary& library, std::span<const SymbolRow> rows, std::string* missing);

// Opens the first of `names` that loads: every name in the program's folder, then every name by the system
// loader. A name with a separator is loaded from there only. `attempts` (may be null) receives one line
// "name: reason" for each failure.
std::optional<SharedLibrary> OpenFirst(std::span<const std::string> names, const std::string& programFolder,
                                       std::vector<std::string>* attempts);

}  // namespace corlune
