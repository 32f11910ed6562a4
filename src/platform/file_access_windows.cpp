#ifdef _WIN32

#include <algorithm>
#include <cwchar>
#include <windows.h>

#include "platform/file_access.h"
#include "platform/wide_text.h"

namespace corlune {
namespace {

constexpr std::size_t kLargestPart = 1u << 30;
constexpr const wchar_t* kNeighbour = L".corlune-";  // process number and ".tmp" follow

class FileHandle {
 public:
  explicit FileHandle(HANDLE handle) : handle_(handle) {}
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;
  ~FileHandle() {
    if (IsOpen()) CloseHandle(handle_);
  }
  HANDLE Get() const { return handle_; }
  bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE && handle_ != nullptr; }

 private:
  HANDLE handle_;
};

bool Fail(std::string* error, const std::string& path) {
  if (error != nullptr) *error = "cannot write '" + path + "': " + LastErrorText();
  return false;
}

bool WriteAndFlush(const std::wstring& path, std::string_view bytes) {
  const FileHandle file(
      CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file.IsOpen()) return false;
  while (!bytes.empty()) {
    DWORD written = 0;
    const auto part = static_cast<DWORD>(std::min(bytes.size(), kLargestPart));
    if (WriteFile(file.Get(), bytes.data(), part, &written, nullptr) == 0) return false;
    bytes.remove_prefix(written);
  }
  return FlushFileBuffers(file.Get()) != 0;
}

bool IsRunning(DWORD process) {
  const FileHandle handle(OpenProcess(SYNCHRONIZE, FALSE, process));
  return handle.IsOpen() || GetLastError() != ERROR_INVALID_PARAMETER;
}

// Neighbours of `target` whose process has died.
void RemoveAbandonedNeighbours(const std::wstring& target) {
  const std::wstring folder = target.substr(0, target.find_last_of(L"\\/:") + 1);
  WIN32_FIND_DATAW found{};
  const HANDLE search = FindFirstFileW((target + kNeighbour + L"*.tmp").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return;
  do {
    const std::wstring name = found.cFileName;
    const DWORD process = std::wcstoul(name.c_str() + name.rfind(L'-') + 1, nullptr, 10);
    if (!IsRunning(process)) DeleteFileW((folder + name).c_str());
  } while (FindNextFileW(search, &found) != 0);
  FindClose(search);
}

}  // namespace

bool IsRegularFile(const std::string& path) {
  const DWORD attributes = GetFileAttributesW(ToWide(path).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool PathExists(const std::string& path) {
  return GetFileAttributesW(ToWide(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::optional<std::string> ReadFileBytes(const std::string& path) {
  if (!IsRegularFile(path)) return std::nullopt;
  const FileHandle file(CreateFileW(ToWide(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, 0, nullptr));
  if (!file.IsOpen()) return std::nullopt;
  std::string bytes;
  char buffer[65536];
  for (;;) {
    DWORD got = 0;
    if (ReadFile(file.Get(), buffer, sizeof(buffer), &got, nullptr) == 0) return std::nullopt;
    if (got == 0) return bytes;
    bytes.append(buffer, got);
  }
}

bool ReplaceFileBytes(const std::string& path, std::string_view bytes, std::string* error) {
  const std::wstring target = ToWide(path);
  const DWORD attributes = GetFileAttributesW(target.c_str());
  const bool exists = attributes != INVALID_FILE_ATTRIBUTES;
  if (exists && (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)) != 0) {
    SetLastError(ERROR_ACCESS_DENIED);
    return Fail(error, path);
  }
  std::wstring neighbour = target + kNeighbour + std::to_wstring(GetCurrentProcessId()) + L".tmp";
  RemoveAbandonedNeighbours(target);
  DeleteFileW(neighbour.c_str());  // left by an earlier process of the same number
  // ReplaceFile keeps attributes and access list of the old file; it needs one.
  const bool done =
      WriteAndFlush(neighbour, bytes) &&
      (exists ? ::ReplaceFileW(target.c_str(), neighbour.c_str(), nullptr, 0, nullptr, nullptr) != 0
              : MoveFileExW(neighbour.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH) != 0);
  if (done) return true;
  Fail(error, path);
  DeleteFileW(neighbour.c_str());
  return false;
}

}  // namespace corlune

#endif
