#ifdef _WIN32

#include <cstdint>
#include <windows.h>

#include "platform/single_instance.h"
#include "platform/wide_text.h"

namespace corlune {
namespace {

constexpr int kConnectAttempts = 40;
constexpr DWORD kConnectPause = 25;  // ms

class Handle {
 public:
  explicit Handle(HANDLE handle = nullptr) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() { Reset(nullptr); }
  void Reset(HANDLE handle) {
    if (handle_ != nullptr) CloseHandle(handle_);
    handle_ = handle == INVALID_HANDLE_VALUE ? nullptr : handle;
  }
  HANDLE Get() const { return handle_; }
  bool IsOpen() const { return handle_ != nullptr; }

 private:
  HANDLE handle_;
};

// The folder's number on its volume: one name for every way to write its path.
std::wstring NameOf(const std::string& folder) {
  const Handle directory(CreateFileW(ToWide(folder).c_str(), 0,
                                     FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                     OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  BY_HANDLE_FILE_INFORMATION info{};
  if (!directory.IsOpen() || GetFileInformationByHandle(directory.Get(), &info) == 0) return {};
  return L"corlune-" + std::to_wstring(info.dwVolumeSerialNumber) + L"-" +
         std::to_wstring(info.nFileIndexHigh) + L"-" + std::to_wstring(info.nFileIndexLow);
}

}  // namespace

struct SingleInstance::State {
  bool first = true;
  std::wstring pipeName;
  Handle mutex;
  Handle pipe;
};

SingleInstance::SingleInstance(std::unique_ptr<State> state) : state_(std::move(state)) {}
SingleInstance::SingleInstance(SingleInstance&&) noexcept = default;
SingleInstance& SingleInstance::operator=(SingleInstance&&) noexcept = default;
SingleInstance::~SingleInstance() = default;

SingleInstance SingleInstance::Acquire(const std::string& folder) {
  auto state = std::make_unique<State>();
  const std::wstring name = NameOf(folder);
  if (!name.empty()) {
    state->pipeName = L"\\\\.\\pipe\\" + name;
    state->mutex.Reset(CreateMutexW(nullptr, FALSE, (L"Global\\" + name).c_str()));
    // Another user's mutex is there but cannot be opened.
    const DWORD reason = GetLastError();
    state->first = state->mutex.IsOpen() ? reason != ERROR_ALREADY_EXISTS : reason != ERROR_ACCESS_DENIED;
    if (state->first) {
      state->pipe.Reset(CreateNamedPipeW(
          state->pipeName.c_str(), PIPE_ACCESS_INBOUND | FILE_FLAG_FIRST_PIPE_INSTANCE,
          PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE | PIPE_NOWAIT | PIPE_REJECT_REMOTE_CLIENTS, 1, 0,
          kLongestMessage + 1, 0, nullptr));
    }
  }
  return SingleInstance(std::move(state));
}

bool SingleInstance::IsFirst() const {
  return state_->first;
}
int SingleInstance::ListenFd() const {
  return -1;
}

bool SingleInstance::Notify(const std::string& message) const {
  if (state_->first || message.size() > kLongestMessage) return false;
  for (int attempt = 0; attempt <= kConnectAttempts; ++attempt) {
    const Handle pipe(
        CreateFileW(state_->pipeName.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    if (pipe.IsOpen()) {
      // A message of no bytes does not travel through a pipe, so every message ends with NUL.
      DWORD written = 0;
      const auto size = static_cast<DWORD>(message.size() + 1);
      return WriteFile(pipe.Get(), message.c_str(), size, &written, nullptr) != 0 && written == size;
    }
    Sleep(kConnectPause);
  }
  return false;
}

std::optional<std::string> SingleInstance::TakeMessage() {
  if (!state_->pipe.IsOpen()) return std::nullopt;
  ConnectNamedPipe(state_->pipe.Get(), nullptr);  // does not wait; begins to listen after a disconnect
  std::string message(kLongestMessage + 1, '\0');
  DWORD got = 0;
  const BOOL done =
      ReadFile(state_->pipe.Get(), message.data(), static_cast<DWORD>(message.size()), &got, nullptr);
  const DWORD reason = GetLastError();
  if (done == 0 || got == 0) {
    // The sender has gone without a message: make room for the next one.
    if (reason == ERROR_BROKEN_PIPE) DisconnectNamedPipe(state_->pipe.Get());
    return std::nullopt;
  }
  DisconnectNamedPipe(state_->pipe.Get());
  ConnectNamedPipe(state_->pipe.Get(), nullptr);
  message.resize(got - 1);
  return message;
}

}  // namespace corlune

#endif
