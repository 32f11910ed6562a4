#include "comm/gp_backend_base.h"

#include <algorithm>
#include <array>

#include "comm/comm_log.h"

namespace corlune {

namespace {

constexpr std::size_t kLoggedValues = 15;
// Bounds for the rest of an overlong reply: 16 MiB, or 5 s for a device that only trickles.
constexpr int kDropReads = 4096;
constexpr std::size_t kDropBuffer = 4096;
constexpr std::uint32_t kDropMilliseconds = 5000;

std::string Quoted(std::string_view operation, std::string_view text) {
  std::string line;
  line.reserve(operation.size() + text.size() + 2);
  line += operation;
  line += '"';
  line += text;
  line += '"';
  return line;
}

// The element at `offset`, low byte first; shorter at the end of the data.
std::int32_t Element(std::span<const std::uint8_t> data, std::size_t offset, std::size_t size) {
  std::uint32_t bits = 0;
  for (std::size_t i = std::min(size, data.size() - offset); i-- > 0;) bits = bits << 8 | data[offset + i];
  if (size == 2) return static_cast<std::int16_t>(bits);
  return static_cast<std::int32_t>(bits);
}

}  // namespace

std::string CutReply(std::string_view received) {
  std::size_t length = received.find('\r');
  if (length == std::string_view::npos) length = received.find('\n');
  received = received.substr(0, length);
  const std::size_t last = received.find_last_not_of(' ');
  return std::string(received.substr(0, last + 1));
}

CommStatus GpBackendBase::GP_Init(const std::string& initString, bool emptyLog) {
  const InitOptions options(initString);
  logPath_ = options.LogPath(services_.state.AppFolder);
  showErrorDialog_ = options.Has("VIEW_ERR_DIALOG");
  if (emptyLog) EmptyCommLog(logPath_);
  terminatorCode_ = kTerminatorLf;
  device_ = 0;
  const CommStatus status = Open(options);
  const std::string remark = Failed(status) ? LibraryProblem() : LibraryOrigin();
  if (!remark.empty()) Log(remark, CommStatus::Success);
  Log("GP_INIT", status);
  return status;
}

CommStatus GpBackendBase::GP_End() {
  const CommStatus status = Close();
  Log("ALL < GP_END", status);
  return status;
}

CommStatus GpBackendBase::GP_Send_Str(std::int16_t address, const std::string& text) {
  const std::int16_t device = RememberDevice(address);
  CommStatus status = Select("GP_Send_Str", Transfer::Send, address);
  if (!Failed(status)) status = Checked("GP_Send_Str", Write(text));
  if (LogIsOn()) LogDevice(device, '<', Quoted(" GP_Send_Str ", text), status);
  return status;
}

CommStatus GpBackendBase::GP_Receive_Str(std::int16_t address, std::string& reply) {
  const std::int16_t device = RememberDevice(address);
  std::array<char, kReceiveBuffer> buffer;
  Received received;
  CommStatus status = Select("GP_Receive_Str", Transfer::Receive, address);
  if (!Failed(status)) {
    status = Read(buffer, received);
    if (!Failed(status) && !received.ended) status = DropRest();
    Checked("GP_Receive_Str", status);
  }
  std::string text;
  if (!Failed(status)) text = CutReply({buffer.data(), std::min(received.count, buffer.size())});
  if (LogIsOn()) LogDevice(device, '>', Quoted(" GP_Receive_Str ", text), status);
  if (!Failed(status)) reply = std::move(text);
  return status;
}

CommStatus GpBackendBase::DropRest() {
  std::array<char, kDropBuffer> scratch;
  const std::uint32_t deadline = services_.clock.Now() + kDropMilliseconds;
  for (int reads = 0; reads < kDropReads && !TickReached(services_.clock.Now(), deadline); ++reads) {
    Received received;
    // A device that stops without an end has nothing more to drop; what was kept is good.
    if (Failed(Read(scratch, received)) || received.ended) return CommStatus::Success;
  }
  return CommStatus::BufferOverflow;
}

CommStatus GpBackendBase::GP_IFC() {
  const CommStatus status = Checked("GP_IFC", InterfaceClear());
  LogAll("GP_IFC", status);
  return status;
}

CommStatus GpBackendBase::GP_DCL() {
  const CommStatus status = Checked("GP_DCL", DeviceClear());
  LogAll(DeviceClearName(), status);
  return status;
}

CommStatus GpBackendBase::GP_REN(bool on) {
  const CommStatus status = Checked("GP_REN", SetRemote(on));
  LogAll("GP_REN", status);
  return status;
}

CommStatus GpBackendBase::GP_EOI(bool on) {
  const CommStatus status = Checked("GP_EOI", SetEndOnWrite(on));
  LogAll("GP_EOI", status);
  return status;
}

CommStatus GpBackendBase::GP_Spoll(std::int16_t address, std::int16_t& statusByte) {
  const std::int16_t device = RememberDevice(address);
  std::int16_t byte = 0;
  CommStatus status = Select("GP_Spoll", Transfer::Poll, address);
  if (!Failed(status)) status = Checked("GP_Spoll", SerialPoll(byte));
  if (LogIsOn()) LogDevice(device, '<', Quoted("GP_Spoll", SerialPollLogText(byte)), status);
  if (!Failed(status)) statusByte = byte;
  return status;
}

CommStatus GpBackendBase::GP_Time_Out(std::int16_t code) {
  const CommStatus status = Checked("GP_Time_Out", SetTimeOut(code));
  LogAll("GP_Time_Out", TimeOutLogName(code), status);
  return status;
}

CommStatus GpBackendBase::GP_MTerm(std::int16_t code) {
  CommStatus status = CommStatus::Success;
  if (IsTerminatorCode(code)) {
    terminatorCode_ = code;
    status = SetTerminator(code);
  } else {
    status = RefuseTerminator();
  }
  Checked("GP_MTerm", status);
  // A refused code has no name; where it is accepted silently the terminator in force is named.
  const bool named = IsTerminatorCode(code) || !Failed(status);
  LogAll("GP_MTerm", named ? TerminatorOf(terminatorCode_).name : std::string_view(), status);
  return status;
}

CommStatus GpBackendBase::GP_Send_AsciiBinary_Data(const std::string& /*header*/,
                                                   std::span<const std::uint8_t> /*data*/,
                                                   std::int16_t /*address*/, std::int16_t /*elementFormat*/,
                                                   bool /*swapBytes*/) {
  return CommStatus::Success;
}

CommStatus GpBackendBase::Gp_Recv_ToFile(std::int16_t /*address*/, const std::string& /*fileName*/,
                                         std::uint32_t /*byteCount*/, std::uint32_t& /*bytesRead*/) {
  return CommStatus::Error;
}

CommStatus GpBackendBase::Checked(std::string_view operation, CommStatus status) {
  CheckStatus(operation, status, showErrorDialog_, services_.prompts, services_.endProgram);
  return status;
}

void GpBackendBase::Log(std::string_view line, CommStatus status) const {
  WriteCommLog(logPath_, line, status);
}

void GpBackendBase::LogDevice(std::int16_t device, char direction, std::string_view text,
                              CommStatus status) const {
  if (!LogIsOn()) return;
  std::string line = DeviceName(device);
  line += ' ';
  line += direction;
  line += ' ';
  line += text;
  Log(line, status);
}

void GpBackendBase::LogBlock(std::int16_t device, std::span<const std::uint8_t> data,
                             std::int16_t elementFormat, CommStatus status) const {
  if (!LogIsOn()) return;
  const std::size_t size = elementFormat == 2 ? 4 : elementFormat == 1 ? 2 : 1;
  std::string values;
  for (std::size_t i = 0; i < kLoggedValues && i * size < data.size(); ++i) {
    if (i > 0) values += ',';
    values += std::to_string(Element(data, i * size, size));
  }
  LogDevice(device, '<', Quoted(" GP_Send_AsciiBinary_Data ", values), status);
}

void GpBackendBase::LogAll(std::string_view operation, CommStatus status) const {
  if (!LogIsOn()) return;
  Log("ALL < " + std::string(operation), status);
}

void GpBackendBase::LogAll(std::string_view operation, std::string_view quoted, CommStatus status) const {
  if (LogIsOn()) LogAll(Quoted(operation, quoted), status);
}

std::int16_t GpBackendBase::RememberDevice(std::int16_t address) {
  if (address != kSameDevice) device_ = address;
  return device_;
}

}  // namespace corlune
