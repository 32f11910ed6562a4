#include "platform/folders.h"

#include <filesystem>
#include <system_error>

#include "platform/file_access.h"

#ifdef _WIN32
#include <windows.h>

#include "platform/wide_text.h"
#else
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>
#endif

namespace corlune {
namespace {

namespace fs = std::filesystem;

fs::path PathOf(const std::string& utf8) {
  return fs::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string TextOf(const fs::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

}  // namespace

#ifdef _WIN32

std::string ProgramFile() {
  std::wstring buffer(32768, L'\0');
  const DWORD length = GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
  return ToUtf8({buffer.data(), length});
}

std::string UserConfigFolder() {
  std::wstring buffer(32768, L'\0');
  const DWORD length = GetEnvironmentVariableW(L"APPDATA", buffer.data(), static_cast<DWORD>(buffer.size()));
  return ToUtf8({buffer.data(), length});
}

bool FolderWritable(const std::string& path) {
  // The attributes of a folder say nothing about its access list; only trying does.
  const std::wstring probe = (PathOf(path) / L"corlune-write-probe.tmp").wstring();
  const HANDLE file = CreateFileW(probe.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  CloseHandle(file);
  return true;
}

#else

std::string ProgramFile() {
  std::error_code error;
  const fs::path file = fs::read_symlink("/proc/self/exe", error);
  return error ? std::string() : file.string();
}

std::string UserConfigFolder() {
  // A relative value is to be ignored.
  const char* config = std::getenv("XDG_CONFIG_HOME");
  if (config != nullptr && *config == '/') return config;
  const char* home = std::getenv("HOME");
  if (home == nullptr || *home == '\0') {
    const passwd* user = getpwuid(getuid());
    home = user != nullptr ? user->pw_dir : nullptr;
  }
  if (home == nullptr || *home == '\0') return {};
  return std::string(home) + "/.config";
}

bool FolderWritable(const std::string& path) {
  std::error_code error;
  return fs::is_directory(path, error) && access(path.c_str(), W_OK | X_OK) == 0;
}

#endif

std::string ProgramFolder() {
  return TextOf(PathOf(ProgramFile()).parent_path());
}

std::string ApplicationFolderFor(const std::string& programFolder, const std::string& userConfigFolder) {
  if (FolderWritable(programFolder) || userConfigFolder.empty()) return programFolder;
  const fs::path folder = PathOf(userConfigFolder) / "Corlune";
  std::error_code error;
  fs::create_directories(folder, error);
  std::string path = TextOf(folder);
  if (!FolderWritable(path)) return programFolder;
  const std::string definition = TextOf(folder / kModelDefinitionName);
  if (!IsRegularFile(definition)) {
    const auto shipped = ReadFileBytes(TextOf(PathOf(programFolder) / kModelDefinitionName));
    // When the copy fails the start reports the missing definition.
    if (shipped) ReplaceFileBytes(definition, *shipped, nullptr);
  }
  return path;
}

std::string DefaultApplicationFolder() {
  return ApplicationFolderFor(ProgramFolder(), UserConfigFolder());
}

}  // namespace corlune
