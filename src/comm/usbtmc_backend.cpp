#include "comm/usbtmc_backend.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <utility>

#include "core/files.h"
#include "core/profile_file.h"

namespace corlune {

namespace {

CommStatus Converted(ViStatus status) {
  if (status >= VI_SUCCESS) return CommStatus::Success;
  return status == VI_ERROR_TMO ? CommStatus::TimeOut : CommStatus::Error;
}

std::string Hex(ViStatus status) {
  std::array<char, 12> text;
  std::snprintf(text.data(), text.size(), "%08X", static_cast<unsigned>(status));
  return text.data();
}

// Reverses the bytes of each whole group; a shorter rest stays.
std::vector<std::uint8_t> Swapped(std::span<const std::uint8_t> data, std::size_t group) {
  std::vector<std::uint8_t> bytes(data.begin(), data.end());
  for (std::size_t i = 0; i + group <= bytes.size(); i += group) {
    const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(i);
    std::reverse(first, first + static_cast<std::ptrdiff_t>(group));
  }
  return bytes;
}

// A file name as the library's C interface takes it.
std::string LibraryFileName(const std::string& path) {
#ifdef _WIN32
  return EncodeText(path);
#else
  return path;
#endif
}

}  // namespace

std::string SerialOfResource(const std::string& resource) {
  std::size_t begin = 0;
  for (int field = 0; field < 3; ++field) {
    begin = resource.find("::", begin);
    if (begin == std::string::npos) return resource;
    begin += 2;
  }
  const std::size_t end = resource.find("::", begin);
  return end == std::string::npos ? resource : resource.substr(begin, end - begin);
}

UsbTmcMdl::UsbTmcMdl(const BackendServices& services, LibraryLoader<VisaTable> loader)
    : GpBackendBase(services), loader_(std::move(loader)) {}

UsbTmcMdl::~UsbTmcMdl() {
  Release();
}

bool UsbTmcMdl::BindLibrary() {
  problem_.clear();
  if (!visa_) visa_ = loader_(&problem_);
  return visa_ != nullptr;
}

ViSession UsbTmcMdl::OpenResourceManager() {
  if (!BindLibrary()) return 0;
  ViSession manager = 0;
  const ViStatus status = visa_->OpenDefaultRM(&manager);
  if (!Failed(Converted(status))) return manager;
  problem_ = "VISA resource manager does not open: status " + Hex(status);
  return 0;
}

CommStatus UsbTmcMdl::Open(const InitOptions& options) {
  Release();
  lost_ = {};
  timeOutCode_ = kTimeOut300ms;
  names_ = {};
  const std::string names = options.Value("USBTMC_NAME");
  std::size_t index = 0;
  for (const std::string_view name : SplitList(names, '/')) {
    if (index < names_.size()) names_[index++] = TrimBlanks(name);
  }
  const std::int16_t device = options.Number("USBTMC_DEVNO");
  SetDevice(device >= 0 && static_cast<std::size_t>(device) < kUsbTmcDevices ? device : std::int16_t{0});

  resourceManager_ = OpenResourceManager();
  if (resourceManager_ == 0) return Checked("GP_INIT", CommStatus::Error);
  if (names_[static_cast<std::size_t>(Device())].empty()) return CommStatus::Success;
  const CommStatus status = OpenDevice("GP_INIT", static_cast<std::size_t>(Device()));
  if (Failed(status)) Release();
  return status;
}

CommStatus UsbTmcMdl::Close() {
  if (resourceManager_ == 0) return CommStatus::Success;
  const CommStatus remote = GP_REN(false);
  // An unplugged device refuses; its session is given back all the same.
  const CommStatus closed = Checked("GP_END", Release());
  return Failed(remote) ? remote : closed;
}

CommStatus UsbTmcMdl::Release() {
  CommStatus status = CommStatus::Success;
  const auto close = [&](ViSession& session) {
    if (session == 0) return;
    const CommStatus closed = Converted(visa_->Close(std::exchange(session, 0)));
    if (!Failed(status)) status = closed;
  };
  for (ViSession& session : sessions_) close(session);
  close(resourceManager_);
  return status;
}

CommStatus UsbTmcMdl::OpenDevice(const char* operation, std::size_t index) {
  if (resourceManager_ == 0 || names_[index].empty()) return Checked(operation, CommStatus::Error);
  ViSession session = 0;
  const ViStatus opened = visa_->Open(resourceManager_, names_[index].c_str(), VI_NO_LOCK, 0, &session);
  CommStatus status = Checked(operation, Converted(opened));
  if (Failed(status)) {
    problem_ = names_[index] + " does not open: status " + Hex(opened);
    if (opened == VI_ERROR_NPERMISSION) problem_ += ", access refused; the rule 60-corlune.rules gives it";
    return status;
  }
  sessions_[index] = session;
  // Not every instrument has a remote state; one that refuses still talks.
  GP_REN(true);
  status =
      Checked(operation,
              Converted(visa_->SetAttribute(session, VI_ATTR_TMO_VALUE, TimeOutMilliseconds(timeOutCode_))));
  if (!Failed(status)) status = GP_MTerm(TerminatorCode());
  if (Failed(status)) visa_->Close(std::exchange(sessions_[index], 0));
  return status;
}

CommStatus UsbTmcMdl::Select(const char* operation, Transfer transfer, std::int16_t /*address*/) {
  if (Device() < 0 || static_cast<std::size_t>(Device()) >= kUsbTmcDevices) {
    SetDevice(0);
    return Checked(operation, CommStatus::Error);
  }
  const auto index = static_cast<std::size_t>(Device());
  if (sessions_[index] != 0 || transfer == Transfer::Poll) return CommStatus::Success;
  return OpenDevice(operation, index);
}

CommStatus UsbTmcMdl::Exchanged(ViStatus status, std::size_t index) {
  if (status == VI_ERROR_CONN_LOST) {
    lost_[index] = true;
    problem_ = names_[index] + " was unplugged: status " + Hex(status);
  }
  return Converted(status);
}

bool UsbTmcMdl::ConnectionLost(std::int16_t address) const {
  return address >= 0 && static_cast<std::size_t>(address) < lost_.size() &&
         lost_[static_cast<std::size_t>(address)];
}

CommStatus UsbTmcMdl::WriteBytes(const void* data, std::size_t size) {
  if (size > std::numeric_limits<ViUInt32>::max()) return CommStatus::BufferOverflow;
  ViUInt32 written = 0;
  return Exchanged(
      visa_->Write(CurrentSession(), static_cast<ViConstBuf>(data), static_cast<ViUInt32>(size), &written),
      CurrentIndex());
}

CommStatus UsbTmcMdl::Write(const std::string& text) {
  const std::string message = text + std::string(WriteTerminator());
  return WriteBytes(message.data(), message.size());
}

CommStatus UsbTmcMdl::Read(std::span<char> buffer, Received& received) {
  ViUInt32 count = 0;
  const ViStatus status = visa_->Read(CurrentSession(), reinterpret_cast<ViPBuf>(buffer.data()),
                                      static_cast<ViUInt32>(buffer.size()), &count);
  received.count = std::min<std::size_t>(count, buffer.size());
  received.ended = status != VI_SUCCESS_MAX_CNT;
  return Exchanged(status, CurrentIndex());
}

CommStatus UsbTmcMdl::GP_SDC(std::size_t index) {
  if (sessions_[index] == 0) return CommStatus::Success;
  const CommStatus status = Checked("GP_SDC", Exchanged(visa_->Clear(sessions_[index]), index));
  LogDevice(static_cast<std::int16_t>(index), '<', "GP_SDC", status);
  return status;
}

CommStatus UsbTmcMdl::DeviceClear() {
  for (std::size_t index = 0; index < sessions_.size(); ++index) {
    const CommStatus status = GP_SDC(index);
    if (Failed(status)) return status;
  }
  return CommStatus::Success;
}

CommStatus UsbTmcMdl::SerialPoll(std::int16_t& statusByte) {
  if (CurrentSession() == 0) return CommStatus::Success;
  ViUInt16 byte = 0;
  const CommStatus status = Exchanged(visa_->ReadSTB(CurrentSession(), &byte), CurrentIndex());
  statusByte = static_cast<std::int16_t>(byte);
  return status;
}

CommStatus UsbTmcMdl::ForEachSession(const std::function<ViStatus(ViSession)>& action) {
  for (std::size_t index = 0; index < sessions_.size(); ++index) {
    if (sessions_[index] == 0) continue;
    const CommStatus status = Exchanged(action(sessions_[index]), index);
    if (Failed(status)) return status;
  }
  return CommStatus::Success;
}

CommStatus UsbTmcMdl::SetTimeOut(std::int16_t code) {
  timeOutCode_ = code;
  return ForEachSession([&](ViSession session) {
    return visa_->SetAttribute(session, VI_ATTR_TMO_VALUE, TimeOutMilliseconds(code));
  });
}

CommStatus UsbTmcMdl::SetTerminator(std::int16_t code) {
  return ForEachSession([&](ViSession session) {
    const ViStatus status = visa_->SetAttribute(session, VI_ATTR_TERMCHAR, TerminatorOf(code).endOfRead);
    return status < VI_SUCCESS ? status : visa_->SetAttribute(session, VI_ATTR_TERMCHAR_EN, VI_TRUE);
  });
}

CommStatus UsbTmcMdl::RefuseTerminator() {
  SetTerminatorCode(kTerminatorNone);
  return CommStatus::Error;
}

CommStatus UsbTmcMdl::SetEndOnWrite(bool on) {
  return ForEachSession([&](ViSession session) {
    return visa_->SetAttribute(session, VI_ATTR_SEND_END_EN, on ? VI_TRUE : VI_FALSE);
  });
}

CommStatus UsbTmcMdl::SetRemote(bool on) {
  const ViUInt16 mode = on ? VI_GPIB_REN_ASSERT : VI_GPIB_REN_DEASSERT_GTL;
  return ForEachSession([&](ViSession session) { return visa_->GpibControlREN(session, mode); });
}

std::string UsbTmcMdl::DeviceName(std::int16_t device) const {
  const auto index = static_cast<std::size_t>(device);
  return device >= 0 && index < names_.size() ? names_[index] : std::string();
}

CommStatus UsbTmcMdl::WriteBlock(const std::string& header, std::span<const std::uint8_t> data) {
  constexpr const char* kOperation = "GP_Send_AsciiBinary_Data";
  CommStatus status = GP_EOI(false);
  const bool begun = !Failed(status);
  if (begun) status = Checked(kOperation, WriteBytes(header.data(), header.size()));
  // Whatever happened, the next command must end its message again.
  const CommStatus endOn = GP_EOI(true);
  if (!Failed(status)) status = endOn;
  if (!Failed(status)) status = Checked(kOperation, WriteBytes(data.data(), data.size()));
  if (begun && Failed(status)) {
    // The instrument may wait for the rest of the header or of the block; without a clear it would take the
    // next commands for it.
    const CommStatus cleared = Converted(visa_->Clear(CurrentSession()));
    LogDevice(Device(), '<', "GP_SDC", cleared);
  }
  return status;
}

CommStatus UsbTmcMdl::GP_Send_AsciiBinary_Data(const std::string& header, std::span<const std::uint8_t> data,
                                               std::int16_t address, std::int16_t elementFormat,
                                               bool swapBytes) {
  const std::int16_t device = RememberDevice(address);
  CommStatus status = Select("GP_Send_AsciiBinary_Data", Transfer::Send, address);
  if (!Failed(status)) {
    status =
        swapBytes ? WriteBlock(header, Swapped(data, elementFormat == 2 ? 4 : 2)) : WriteBlock(header, data);
  }
  LogBlock(device, data, elementFormat, status);
  return status;
}

CommStatus UsbTmcMdl::Gp_Recv_ToFile(std::int16_t address, const std::string& fileName,
                                     std::uint32_t byteCount, std::uint32_t& bytesRead) {
  constexpr const char* kOperation = "GP_Receive_Binary_Data";
  bytesRead = 0;
  const std::int16_t device = RememberDevice(address);
  CommStatus status = Select(kOperation, Transfer::Receive, address);
  if (!Failed(status)) {
    const ViSession session = CurrentSession();
    // A block may hold line feeds; they must not end the read.
    status = Converted(visa_->SetAttribute(session, VI_ATTR_TERMCHAR_EN, VI_FALSE));
    if (!Failed(status)) {
      ViUInt32 count = 0;
      const ViStatus read = visa_->ReadToFile(session, LibraryFileName(fileName).c_str(), byteCount, &count);
      status = Exchanged(read, CurrentIndex());
      bytesRead = count;
      if (read == VI_SUCCESS_MAX_CNT) status = DropRest();
    }
    const CommStatus restored = Converted(visa_->SetAttribute(session, VI_ATTR_TERMCHAR_EN, VI_TRUE));
    if (!Failed(status)) status = restored;
    Checked(kOperation, status);
  }
  if (Failed(status)) LogDevice(device, '<', " Gp_Recv_ToFile \"", status);
  return status;
}

int UsbTmcMdl::GP_Find_Devices(const std::string& expression) {
  found_.clear();
  ViSession manager = OpenResourceManager();
  if (manager == 0) return 0;
  ViFindList list = 0;
  ViUInt32 matches = 0;
  std::array<ViChar, VI_FIND_BUFLEN> description{};
  ViStatus status = visa_->FindRsrc(manager, expression.c_str(), &list, &matches, description.data());
  // The list is open even when it holds nothing more than the first description.
  const bool searched = status >= VI_SUCCESS;
  while (status >= VI_SUCCESS && found_.size() < matches) {
    description.back() = '\0';
    const std::string resource = description.data();
    found_.push_back({resource, SerialOfResource(resource)});
    if (found_.size() == std::min<std::size_t>(matches, kUsbTmcDevices)) break;
    status = visa_->FindNext(list, description.data());
  }
  if (searched) visa_->Close(list);
  visa_->Close(manager);
  // A list that breaks off has no more than what was read.
  const std::size_t count = status >= VI_SUCCESS && !found_.empty() ? matches : found_.size();
  return static_cast<int>(std::min<std::size_t>(count, std::numeric_limits<int>::max()));
}

}  // namespace corlune
