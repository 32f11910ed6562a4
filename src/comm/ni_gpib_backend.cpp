#include "comm/ni_gpib_backend.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace corlune {

namespace {

// GPIB command bytes
constexpr char kDeviceClear = 0x14;
constexpr char kUnlisten = 0x3F;
constexpr char kUntalk = 0x5F;
constexpr int kListenBase = 0x20;
constexpr int kTalkBase = 0x40;

constexpr long kNoCount = 0xDEAD37F0L;  // count where no call was made

// "gpib0".."gpib3"; any other name counts as board 0.
int BoardIndexOf(const std::string& name) {
  if (name.size() != 5 || (name.compare(0, 4, "gpib") != 0 && name.compare(0, 4, "GPIB") != 0)) return 0;
  return name[4] >= '0' && name[4] <= '3' ? name[4] - '0' : 0;
}

}  // namespace

NiGpibMdl::NiGpibMdl(const BackendServices& services, LibraryLoader<Ni488Table> loader)
    : GpBackendBase(services), loader_(std::move(loader)) {}

// The library must not write into the variables of an object that is gone.
NiGpibMdl::~NiGpibMdl() {
  UnregisterGlobals();
}

bool NiGpibMdl::RegisterGlobals() {
  if (registered_ || !gpib_->RegisterGlobals || !gpib_->UnregisterGlobals) return true;
  int result = gpib_->RegisterGlobals(&ibsta_, &iberr_, &ibcnt_, &ibcntl_);
  if (result == 1) {  // registered by someone else on this thread
    gpib_->UnregisterGlobals();
    result = gpib_->RegisterGlobals(&ibsta_, &iberr_, &ibcnt_, &ibcntl_);
  }
  registered_ = result == 0;
  if (registered_) return true;
  if (result == 2 || result == 3) gpib_->UnregisterGlobals();
  ibsta_ = NI488_ERR;
  iberr_ = 0;
  ibcntl_ = kNoCount;
  return false;
}

void NiGpibMdl::UnregisterGlobals() {
  if (std::exchange(registered_, false)) gpib_->UnregisterGlobals();
}

CommStatus NiGpibMdl::Converted() const {
  const int status = Status();
  if ((status & NI488_ERR) != 0) {
    return ErrorCode() == NI488_ENEB ? CommStatus::NoBoard : CommStatus::Error;
  }
  return (status & NI488_TIMO) != 0 ? CommStatus::TimeOut : CommStatus::Success;
}

CommStatus NiGpibMdl::Open(const InitOptions& options) {
  board_ = -1;
  ownAddress_ = options.Number("MYADRS");
  std::string name = options.Value("BOARD_NAME");
  if (name.empty()) name = "gpib0";
  boardIndex_ = BoardIndexOf(name);

  problem_.clear();
  if (!gpib_) gpib_ = loader_(&problem_);
  if (!gpib_) return Checked("GP_INIT", CommStatus::NoBoard);
  if (!RegisterGlobals()) {
    problem_ = "NI-488.2 library refuses to report its status to this thread";
    return Checked("GP_INIT", CommStatus::Error);
  }
  const int found = gpib_->Find(name.c_str());
  CommStatus status = Converted();
  if (found < 0 && !Failed(status)) status = CommStatus::Error;
  if (Failed(Checked("GP_INIT", status))) return status;
  board_ = found;

  gpib_->Config(board_, NI488_IBC_AUTOPOLL, 0);
  status = GP_IFC();
  status = status | GP_REN(true);
  status = status | GP_MTerm(kTerminatorLf);
  status = status | GP_EOI(true);
  return status | GP_Time_Out(kTimeOut300ms);
}

CommStatus NiGpibMdl::Close() {
  return board_ < 0 ? CommStatus::Success : GP_REN(false);
}

CommStatus NiGpibMdl::SendCommandBytes(std::span<const char> bytes) {
  gpib_->Command(board_, bytes.data(), static_cast<long>(bytes.size()));
  return Converted();
}

CommStatus NiGpibMdl::Select(const char* operation, Transfer transfer, std::int16_t address) {
  if (board_ < 0) return Checked(operation, CommStatus::NoBoard);
  // A serial poll addresses by itself; without an address the bus stays as it was addressed before.
  if (transfer == Transfer::Poll || address == kSameDevice) return CommStatus::Success;
  const std::int16_t talker = transfer == Transfer::Send ? ownAddress_ : address;
  const std::int16_t listener = transfer == Transfer::Send ? address : ownAddress_;
  const std::array<char, 4> bytes{kUntalk, kUnlisten, static_cast<char>(kTalkBase + talker),
                                  static_cast<char>(kListenBase + listener)};
  return Checked(operation, SendCommandBytes(bytes));
}

CommStatus NiGpibMdl::Write(const std::string& text) {
  const std::string message = text + std::string(WriteTerminator());
  gpib_->Write(board_, message.data(), static_cast<long>(message.size()));
  return Converted();
}

CommStatus NiGpibMdl::Read(std::span<char> buffer, Received& received) {
  gpib_->Read(board_, buffer.data(), static_cast<long>(buffer.size()));
  const CommStatus status = Converted();
  if (Failed(status)) return status;
  received.count = static_cast<std::size_t>(std::clamp(Count(), 0L, static_cast<long>(buffer.size())));
  received.ended = received.count < buffer.size() || (Status() & NI488_END) != 0;
  return status;
}

CommStatus NiGpibMdl::InterfaceClear() {
  if (board_ < 0) return CommStatus::NoBoard;
  gpib_->SendInterfaceClear(board_);
  return Converted();
}

CommStatus NiGpibMdl::DeviceClear() {
  if (board_ < 0) return CommStatus::NoBoard;
  return SendCommandBytes(std::array<char, 1>{kDeviceClear});
}

CommStatus NiGpibMdl::SerialPoll(std::int16_t& statusByte) {
  gpib_->ReadStatusByte(boardIndex_, Device(), &statusByte);
  return Converted();
}

CommStatus NiGpibMdl::SetTimeOut(std::int16_t code) {
  if (board_ < 0) return CommStatus::NoBoard;
  gpib_->TimeOut(board_, code);  // the family's codes are the library's
  return Converted();
}

CommStatus NiGpibMdl::SetTerminator(std::int16_t code) {
  if (board_ < 0) return CommStatus::NoBoard;
  const int end = TerminatorOf(code).endOfRead;
  gpib_->EndOfString(board_, end == 0 ? 0 : NI488_EOS_BIN | NI488_EOS_REOS | end);
  return Converted();
}

CommStatus NiGpibMdl::SetEndOnWrite(bool on) {
  if (board_ < 0) return CommStatus::NoBoard;
  gpib_->EndOfTransfer(board_, on ? 1 : 0);
  return Converted();
}

CommStatus NiGpibMdl::SetRemote(bool on) {
  if (board_ < 0) return CommStatus::NoBoard;
  gpib_->RemoteEnable(board_, on ? 1 : 0);
  return Converted();
}

}  // namespace corlune
