#include "comm/builtin_visa.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/ascii_case.h"

namespace corlune {
namespace {

constexpr std::uint32_t kShortestTimeOut = 100;  // ms, of the kernel's driver
constexpr std::size_t kFilePart = 65536;

struct Session {
  int descriptor = -1;
  UsbTmcTerminator terminator{'\n', 0};
};

struct FindList {
  std::vector<std::string> names;
  std::size_t next = 1;
};

struct Face {
  UsbTmcDevices* devices = nullptr;
  std::map<ViObject, Session> sessions;
  std::map<ViObject, FindList> lists;
  ViObject lastHandle = 1;  // 1 is the resource manager
};

Face& TheFace() {
  static Face face;
  return face;
}

std::string ResourceName(const UsbTmcNode& node) {
  std::array<char, 40> prefix{};
  std::snprintf(prefix.data(), prefix.size(), "USB0::0x%04X::0x%04X::", static_cast<unsigned>(node.Vendor),
                static_cast<unsigned>(node.Product));
  return prefix.data() + node.Serial + "::INSTR";
}

// "?" stands for any character, "*" repeats what stands before it; the program's searches use no more.
bool Matches(std::string_view name, std::string_view expression) {
  if (expression.empty()) return name.empty();
  const auto fits = [&](std::size_t at) {
    return at < name.size() && (expression[0] == '?' || SameAsciiLetter(expression[0], name[at]));
  };
  if (expression.size() < 2 || expression[1] != '*') {
    return fits(0) && Matches(name.substr(1), expression.substr(1));
  }
  for (std::size_t taken = 0;; ++taken) {
    if (Matches(name.substr(taken), expression.substr(2))) return true;
    if (!fits(taken)) return false;
  }
}

ViStatus StatusOf(std::int64_t result) {
  if (result >= 0) return VI_SUCCESS;
  switch (-result) {
    case ETIMEDOUT:
      return VI_ERROR_TMO;
    case ENODEV:
    case ENXIO:
      return VI_ERROR_CONN_LOST;
    case EACCES:
    case EPERM:
      return VI_ERROR_NPERMISSION;
    case ENOENT:
      return VI_ERROR_RSRC_NFOUND;
    case EBUSY:
      return VI_ERROR_RSRC_LOCKED;
    default:
      return VI_ERROR_IO;
  }
}

Session* Find(ViObject handle) {
  const auto found = TheFace().sessions.find(handle);
  return found == TheFace().sessions.end() ? nullptr : &found->second;
}

ViStatus Control(const Session& session, UsbTmcRequest request, void* argument) {
  return StatusOf(TheFace().devices->Control(session.descriptor, request, argument));
}

void CopyName(ViChar* out, const std::string& name) {
  const std::size_t length = std::min<std::size_t>(name.size(), VI_FIND_BUFLEN - 1);
  std::memcpy(out, name.data(), length);
  out[length] = '\0';
}

ViStatus CORLUNE_LIBRARY_CALL OpenDefaultRM(ViPSession manager) {
  *manager = 1;
  return VI_SUCCESS;
}

ViStatus CORLUNE_LIBRARY_CALL FindRsrc(ViSession, ViConstString expression, ViPFindList list, ViPUInt32 count,
                                       ViChar* name) {
  FindList found;
  for (const UsbTmcNode& node : TheFace().devices->List()) {
    const std::string resource = ResourceName(node);
    if (Matches(resource, expression)) found.names.push_back(resource);
  }
  *count = static_cast<ViUInt32>(found.names.size());
  if (found.names.empty()) return VI_ERROR_RSRC_NFOUND;
  CopyName(name, found.names.front());
  *list = ++TheFace().lastHandle;
  TheFace().lists.emplace(*list, std::move(found));
  return VI_SUCCESS;
}

ViStatus CORLUNE_LIBRARY_CALL FindNext(ViFindList list, ViChar* name) {
  const auto found = TheFace().lists.find(list);
  if (found == TheFace().lists.end()) return VI_ERROR_INV_OBJECT;
  if (found->second.next >= found->second.names.size()) return VI_ERROR_RSRC_NFOUND;
  CopyName(name, found->second.names[found->second.next++]);
  return VI_SUCCESS;
}

ViStatus CORLUNE_LIBRARY_CALL Open(ViSession, ViConstRsrc name, ViAccessMode, ViUInt32, ViPSession session) {
  *session = VI_NULL;
  for (const UsbTmcNode& node : TheFace().devices->List()) {
    if (!EqualIgnoringCase(ResourceName(node), name)) continue;
    const int descriptor = TheFace().devices->Open(node.Path);
    if (descriptor < 0) return StatusOf(descriptor);
    *session = ++TheFace().lastHandle;
    TheFace().sessions.emplace(*session, Session{descriptor});
    return VI_SUCCESS;
  }
  return VI_ERROR_RSRC_NFOUND;
}

ViStatus CORLUNE_LIBRARY_CALL Close(ViObject object) {
  Face& face = TheFace();
  if (Session* const session = Find(object)) {
    const int closed = face.devices->Close(session->descriptor);
    face.sessions.erase(object);
    return StatusOf(closed);
  }
  return face.lists.erase(object) > 0 || object == 1 ? VI_SUCCESS : VI_ERROR_INV_OBJECT;
}

ViStatus CORLUNE_LIBRARY_CALL SetAttribute(ViObject object, ViAttr attribute, ViAttrState state) {
  Session* const session = Find(object);
  if (session == nullptr) return VI_ERROR_INV_OBJECT;
  auto milliseconds = std::max(static_cast<std::uint32_t>(state), kShortestTimeOut);
  auto flag = static_cast<std::uint8_t>(state);
  switch (attribute) {
    case VI_ATTR_TMO_VALUE:
      return Control(*session, UsbTmcRequest::SetTimeOut, &milliseconds);
    case VI_ATTR_SEND_END_EN:
      return Control(*session, UsbTmcRequest::SetEnd, &flag);
    case VI_ATTR_TERMCHAR:
      session->terminator.Character = flag;
      break;
    case VI_ATTR_TERMCHAR_EN:
      session->terminator.Enabled = flag;
      break;
    default:
      return VI_ERROR_NSUP_ATTR;
  }
  // An instrument whose interface knows no terminator refuses one that is on. It ends its replies with END.
  UsbTmcTerminator wanted = session->terminator;
  const ViStatus status = Control(*session, UsbTmcRequest::SetTerminator, &wanted);
  return status == VI_ERROR_IO ? VI_SUCCESS : status;
}

// The driver sends at most what fits into its own buffers; the rest follows.
ViStatus CORLUNE_LIBRARY_CALL Write(ViSession handle, ViConstBuf data, ViUInt32 size, ViPUInt32 count) {
  *count = 0;
  const Session* const session = Find(handle);
  if (session == nullptr) return VI_ERROR_INV_OBJECT;
  while (*count < size) {
    const std::int64_t written = TheFace().devices->Write(session->descriptor, data + *count, size - *count);
    if (written <= 0) return written == 0 ? VI_ERROR_IO : StatusOf(written);
    *count += static_cast<ViUInt32>(written);
  }
  return VI_SUCCESS;
}

ViStatus CORLUNE_LIBRARY_CALL Read(ViSession handle, ViPBuf buffer, ViUInt32 size, ViPUInt32 count) {
  *count = 0;
  const Session* const session = Find(handle);
  if (session == nullptr) return VI_ERROR_INV_OBJECT;
  const std::int64_t got = TheFace().devices->Read(session->descriptor, buffer, size);
  if (got < 0) return StatusOf(got);
  *count = static_cast<ViUInt32>(got);
  std::uint8_t end = 0;
  // A driver that cannot say it reads on until END or the terminator.
  if (Control(*session, UsbTmcRequest::HowReadEnded, &end) != VI_SUCCESS) {
    end = *count < size ? kUsbTmcEnd : 0;
  }
  if ((end & kUsbTmcEnd) != 0) return VI_SUCCESS;
  return (end & kUsbTmcTerminated) != 0 ? VI_SUCCESS_TERM_CHAR : VI_SUCCESS_MAX_CNT;
}

ViStatus CORLUNE_LIBRARY_CALL ReadToFile(ViSession handle, ViConstString name, ViUInt32 size,
                                         ViPUInt32 count) {
  *count = 0;
  std::ofstream file(name, std::ios::binary | std::ios::trunc);
  if (!file) return VI_ERROR_FILE_ACCESS;
  std::vector<ViByte> part(kFilePart);
  ViStatus status = VI_SUCCESS_MAX_CNT;
  while (status == VI_SUCCESS_MAX_CNT && *count < size) {
    ViUInt32 got = 0;
    const auto wanted = static_cast<ViUInt32>(std::min<std::size_t>(part.size(), size - *count));
    status = Read(handle, part.data(), wanted, &got);
    if (status < VI_SUCCESS) return status;
    if (got == 0 && status == VI_SUCCESS_MAX_CNT) return VI_ERROR_IO;
    *count += got;
    file.write(reinterpret_cast<const char*>(part.data()), static_cast<std::streamsize>(got));
  }
  file.close();
  return file ? status : VI_ERROR_FILE_IO;
}

ViStatus CORLUNE_LIBRARY_CALL ReadStatusByte(ViSession handle, ViPUInt16 status) {
  const Session* const session = Find(handle);
  if (session == nullptr) return VI_ERROR_INV_OBJECT;
  std::uint8_t byte = 0;
  const ViStatus read = Control(*session, UsbTmcRequest::ReadStatusByte, &byte);
  *status = byte;
  return read;
}

ViStatus CORLUNE_LIBRARY_CALL Clear(ViSession handle) {
  const Session* const session = Find(handle);
  return session == nullptr ? VI_ERROR_INV_OBJECT : Control(*session, UsbTmcRequest::Clear, nullptr);
}

ViStatus CORLUNE_LIBRARY_CALL SetRemote(ViSession handle, ViUInt16 mode) {
  const Session* const session = Find(handle);
  if (session == nullptr) return VI_ERROR_INV_OBJECT;
  const bool local = mode == VI_GPIB_REN_DEASSERT_GTL;
  std::uint8_t on = local ? 0 : 1;
  const ViStatus gone = local ? Control(*session, UsbTmcRequest::GoToLocal, nullptr) : VI_SUCCESS;
  const ViStatus status = Control(*session, UsbTmcRequest::SetRemote, &on);
  return status < VI_SUCCESS ? status : gone;
}

}  // namespace

const VisaTable& BuiltinVisa(UsbTmcDevices& devices) {
  static const VisaTable table{
      &OpenDefaultRM, &FindRsrc,   &FindNext,       &Open,  &Close,     &SetAttribute,           &Read,
      &Write,         &ReadToFile, &ReadStatusByte, &Clear, &SetRemote, "VISA library: built in"};
  TheFace().devices = &devices;
  return table;
}

}  // namespace corlune
