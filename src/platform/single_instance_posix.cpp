// The lock is on the folder itself, so links and renames do not matter and nothing is left behind after a
// crash. The socket stands in a folder of the user, under a short name made from the folder's number: socket
// names are limited to about a hundred bytes, folder names are not. Whoever holds the lock owns that name; a
// socket that a crash left there is removed.
#ifndef _WIN32

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <poll.h>
#include <string_view>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "platform/clock.h"
#include "platform/file_descriptor.h"
#include "platform/single_instance.h"

namespace corlune {
namespace {

constexpr int kReadLimit = 500;  // ms
constexpr int kConnectAttempts = 40;
constexpr int kConnectPause = 25;  // ms
constexpr int kWaitingStarts = 8;

bool IsOwnFolder(const std::string& path) {
  struct stat info {};
  return lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode) && info.st_uid == geteuid() &&
         (info.st_mode & 0077) == 0 && access(path.c_str(), W_OK | X_OK) == 0;
}

// A folder that only this user can enter, the same for every session of the user. Empty when there is none.
std::string RuntimeFolder() {
  const std::string user = std::to_string(geteuid());
  std::string runtime = "/run/user/" + user;
  if (IsOwnFolder(runtime)) return runtime;
  std::string temporary = "/tmp/corlune-" + user;
  mkdir(temporary.c_str(), 0700);
  return IsOwnFolder(temporary) ? temporary : std::string();
}

std::string Hexadecimal(std::uint64_t value) {
  std::string text;
  for (; value != 0; value >>= 4) text += "0123456789abcdef"[value & 15];
  return text;
}

std::optional<sockaddr_un> AddressOf(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.empty() || path.size() >= sizeof(address.sun_path)) return std::nullopt;
  path.copy(address.sun_path, path.size());
  return address;
}

FileDescriptor LocalSocket(int flags) {
  return FileDescriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0));
}

const sockaddr* Generic(const sockaddr_un& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}

bool IsOwnPeer(int connection) {
  ucred peer{};
  socklen_t size = sizeof(peer);
  return getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == geteuid();
}

bool SendAll(int connection, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

// Everything up to the sender's close; nullopt when it is too long or takes too long.
std::optional<std::string> ReadToEnd(int connection) {
  const std::uint32_t begin = TickMilliseconds();
  std::string message;
  std::array<char, 4096> buffer{};
  for (;;) {
    const int left = kReadLimit - static_cast<int>(TickMilliseconds() - begin);
    pollfd ready{connection, POLLIN, 0};
    const int answer = poll(&ready, 1, std::max(left, 0));
    if (answer < 0 && errno == EINTR) continue;
    if (answer <= 0) return std::nullopt;
    const ssize_t got = recv(connection, buffer.data(), buffer.size(), 0);
    if (got < 0) return std::nullopt;
    if (got == 0) return message;
    message.append(buffer.data(), static_cast<std::size_t>(got));
    if (message.size() > SingleInstance::kLongestMessage) return std::nullopt;
  }
}

enum class LockResult { Taken, Held, Unknown };

LockResult Lock(const FileDescriptor& file) {
  if (!file.IsOpen()) return LockResult::Unknown;
  if (flock(file.Get(), LOCK_EX | LOCK_NB) == 0) return LockResult::Taken;
  return errno == EWOULDBLOCK ? LockResult::Held : LockResult::Unknown;
}

}  // namespace

struct SingleInstance::State {
  bool first = true;
  FileDescriptor lock;
  FileDescriptor listener;
  std::string socketPath;

  ~State() {
    // Before the lock ends: afterwards the name belongs to the next instance.
    if (listener.IsOpen()) unlink(socketPath.c_str());
  }

  void Claim(const std::string& folder) {
    lock = FileDescriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    struct stat info {};
    if (!lock.IsOpen() || fstat(lock.Get(), &info) != 0) return;
    const std::string runtime = RuntimeFolder();
    const std::string name =
        runtime + "/corlune-" + Hexadecimal(info.st_dev) + "-" + Hexadecimal(info.st_ino);
    if (!runtime.empty()) socketPath = name + ".socket";
    LockResult result = Lock(lock);
    if (result == LockResult::Unknown && !runtime.empty()) {
      // Network file systems do not lock folders; a lock file at least finds the starts on this machine.
      lock = FileDescriptor(open((name + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
      result = Lock(lock);
    }
    first = result != LockResult::Held;
    if (result == LockResult::Taken) Listen();
  }

  // Without a socket the program still is the first one; only the messages do not arrive.
  void Listen() {
    const auto address = AddressOf(socketPath);
    FileDescriptor created = LocalSocket(SOCK_NONBLOCK);
    if (!address || !created.IsOpen()) return;
    unlink(socketPath.c_str());
    if (bind(created.Get(), Generic(*address), sizeof(*address)) != 0) return;
    if (listen(created.Get(), kWaitingStarts) != 0) {
      unlink(socketPath.c_str());
      return;
    }
    listener = std::move(created);
  }
};

SingleInstance::SingleInstance(std::unique_ptr<State> state) : state_(std::move(state)) {}
SingleInstance::SingleInstance(SingleInstance&&) noexcept = default;
SingleInstance& SingleInstance::operator=(SingleInstance&&) noexcept = default;
SingleInstance::~SingleInstance() = default;

SingleInstance SingleInstance::Acquire(const std::string& folder) {
  auto state = std::make_unique<State>();
  state->Claim(folder);
  return SingleInstance(std::move(state));
}

bool SingleInstance::IsFirst() const {
  return state_->first;
}
int SingleInstance::ListenFd() const {
  return state_->listener.Get();
}

bool SingleInstance::Notify(const std::string& message) const {
  const auto address = AddressOf(state_->socketPath);
  if (state_->first || !address || message.size() > kLongestMessage) return false;
  const FileDescriptor connection = LocalSocket(0);
  const timeval limit{1, 0};
  setsockopt(connection.Get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof(limit));
  for (int attempt = 0; connect(connection.Get(), Generic(*address), sizeof(*address)) != 0; ++attempt) {
    // The first instance has its lock but not its socket yet, or is about to end.
    if (attempt == kConnectAttempts || (errno != ENOENT && errno != ECONNREFUSED)) return false;
    poll(nullptr, 0, kConnectPause);
  }
  return SendAll(connection.Get(), message);
}

std::optional<std::string> SingleInstance::TakeMessage() {
  while (state_->listener.IsOpen()) {
    const FileDescriptor connection(accept4(state_->listener.Get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!connection.IsOpen()) {
      if (errno == EINTR || errno == ECONNABORTED) continue;
      break;
    }
    if (!IsOwnPeer(connection.Get())) continue;
    if (auto message = ReadToEnd(connection.Get())) return message;
  }
  return std::nullopt;
}

}  // namespace corlune

#endif
