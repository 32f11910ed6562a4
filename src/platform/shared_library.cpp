#include "platform/shared_library.h"

#ifdef _WIN32
#include <windows.h>

#include "platform/wide_text.h"
#else
#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>
#endif

namespace corlune {
namespace {

#ifdef _WIN32
constexpr const char* kSeparators = "\\/";
constexpr char kSeparator = '\\';

void* LoadOne(const std::string& path, std::string* error) {
  const bool hasFolder = path.find_first_of(kSeparators) != std::string::npos;
  // A library's own neighbours are found beside it.
  HMODULE module =
      LoadLibraryExW(ToWide(path).c_str(), nullptr, hasFolder ? LOAD_WITH_ALTERED_SEARCH_PATH : 0);
  if (module == nullptr && error != nullptr) *error = LastErrorText();
  return reinterpret_cast<void*>(module);
}

void* FindOne(void* handle, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle), name));
}

void UnloadOne(void* handle) {
  FreeLibrary(static_cast<HMODULE>(handle));
}

std::string FileOf(void* handle) {
  std::wstring file(MAX_PATH, L'\0');
  DWORD length = 0;
  while ((length = GetModuleFileNameW(static_cast<HMODULE>(handle), file.data(),
                                      static_cast<DWORD>(file.size()))) == file.size()) {
    file.resize(file.size() * 2);
  }
  file.resize(length);
  return FromWide(file);
}

bool IsThere(const std::string& path) {
  return GetFileAttributesW(ToWide(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}
#else
constexpr const char* kSeparators = "/";
constexpr char kSeparator = '/';

void* LoadOne(const std::string& path, std::string* error) {
  dlerror();
  void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr && error != nullptr) {
    const char* reason = dlerror();
    *error = reason != nullptr ? reason : "cannot be loaded";
    // The loader begins with the name, which whoever reports the attempt says already.
    if (error->compare(0, path.size() + 2, path + ": ") == 0) error->erase(0, path.size() + 2);
  }
  return handle;
}

void* FindOne(void* handle, const char* name) {
  return dlsym(handle, name);
}

void UnloadOne(void* handle) {
  dlclose(handle);
}

std::string FileOf(void* handle) {
  link_map* map = nullptr;
  return dlinfo(handle, RTLD_DI_LINKMAP, &map) == 0 && map != nullptr ? map->l_name : std::string();
}

bool IsThere(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0;
}
#endif

}  // namespace

std::optional<SharedLibrary> SharedLibrary::Open(const std::string& path, std::string* error) {
  if (path.empty()) {  // the loader would answer with the program itself
    if (error != nullptr) *error = "no library name";
    return std::nullopt;
  }
  void* handle = LoadOne(path, error);
  if (handle == nullptr) return std::nullopt;
  return SharedLibrary(handle, path);
}

SharedLibrary::~SharedLibrary() {
  if (handle_ != nullptr) UnloadOne(handle_);
}

void* SharedLibrary::Symbol(const char* name) const {
  return handle_ == nullptr ? nullptr : FindOne(handle_, name);
}

std::string SharedLibrary::LoadedFrom() const {
  const std::string file = handle_ == nullptr ? std::string() : FileOf(handle_);
  return file.empty() ? path_ : file;
}

bool LoadSymbols(const SharedLibrary& library, std::span<const SymbolRow> rows, std::string* missing) {
  for (const SymbolRow& row : rows) *row.slot = nullptr;
  for (const SymbolRow& row : rows) {
    *row.slot = library.Symbol(row.name);
    if (*row.slot != nullptr || row.optional) continue;
    for (const SymbolRow& filled : rows) *filled.slot = nullptr;
    if (missing != nullptr) *missing = row.name;
    return false;
  }
  return true;
}

std::optional<SharedLibrary> OpenFirst(std::span<const std::string> names, const std::string& programFolder,
                                       std::vector<std::string>* attempts) {
  const auto open = [&](const std::string& path, const std::string& shownName) {
    std::string error;
    auto library = SharedLibrary::Open(path, &error);
    if (!library && attempts != nullptr) attempts->push_back(shownName + ": " + error);
    return library;
  };
  const auto hasFolder = [](const std::string& name) {
    return name.find_first_of(kSeparators) != std::string::npos;
  };
  for (const std::string& name : names) {
    if (name.empty() || hasFolder(name) || programFolder.empty()) continue;
    std::string path = programFolder;
    path.append(1, kSeparator).append(name);
    // Absent is the usual case and the loader reports it once more below; present but unusable is worth
    // its own line.
    if (!IsThere(path)) continue;
    if (auto library = open(path, path)) return library;
  }
  for (const std::string& name : names) {
    if (auto library = open(name, name)) return library;
  }
  return std::nullopt;
}

}  // namespace corlune
