#include "platform/usbtmc_devices.h"

#ifdef __linux__
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <linux/usb/tmc.h>
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace corlune {
namespace {

#ifdef __linux__

struct RequestRow {
  UsbTmcRequest request;
  unsigned long code;
};

constexpr std::array kRequests{RequestRow{UsbTmcRequest::Clear, USBTMC_IOCTL_CLEAR},
                               RequestRow{UsbTmcRequest::SetTimeOut, USBTMC_IOCTL_SET_TIMEOUT},
                               RequestRow{UsbTmcRequest::SetEnd, USBTMC_IOCTL_EOM_ENABLE},
                               RequestRow{UsbTmcRequest::SetTerminator, USBTMC_IOCTL_CONFIG_TERMCHAR},
                               RequestRow{UsbTmcRequest::ReadStatusByte, USBTMC488_IOCTL_READ_STB},
                               RequestRow{UsbTmcRequest::SetRemote, USBTMC488_IOCTL_REN_CONTROL},
                               RequestRow{UsbTmcRequest::GoToLocal, USBTMC488_IOCTL_GOTO_LOCAL},
                               RequestRow{UsbTmcRequest::HowReadEnded, USBTMC_IOCTL_MSG_IN_ATTR}};
static_assert(sizeof(UsbTmcTerminator) == sizeof(usbtmc_termchar));

std::string FirstLine(const std::filesystem::path& path) {
  std::string line;
  std::ifstream file(path);
  std::getline(file, line);
  return line;
}

std::uint16_t HexNumber(const std::string& text) {
  return static_cast<std::uint16_t>(std::strtoul(text.c_str(), nullptr, 16));
}

template <class Result>
Result OrError(Result result) {
  return result < 0 ? -static_cast<Result>(errno) : result;
}

class KernelDevices : public UsbTmcDevices {
 public:
  std::vector<UsbTmcNode> List() override {
    std::vector<UsbTmcNode> nodes;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/sys/class/usbmisc", error)) {
      const std::string name = entry.path().filename().string();
      if (!name.starts_with("usbtmc")) continue;
      // The class entry points at the USB interface; the ids stand one level up, at the device.
      const std::filesystem::path device = entry.path() / "device" / "..";
      nodes.push_back({"/dev/" + name, HexNumber(FirstLine(device / "idVendor")),
                       HexNumber(FirstLine(device / "idProduct")), FirstLine(device / "serial")});
    }
    std::sort(nodes.begin(), nodes.end(),
              [](const UsbTmcNode& a, const UsbTmcNode& b) { return a.Path < b.Path; });
    return nodes;
  }
  int Open(const std::string& path) override { return OrError(open(path.c_str(), O_RDWR | O_CLOEXEC)); }
  int Close(int descriptor) override { return OrError(close(descriptor)); }
  std::int64_t Read(int descriptor, void* buffer, std::size_t size) override {
    return OrError(static_cast<std::int64_t>(read(descriptor, buffer, size)));
  }
  std::int64_t Write(int descriptor, const void* data, std::size_t size) override {
    return OrError(static_cast<std::int64_t>(write(descriptor, data, size)));
  }
  int Control(int descriptor, UsbTmcRequest request, void* argument) override {
    const auto* const row =
        std::find_if(kRequests.begin(), kRequests.end(),
                     [request](const RequestRow& each) { return each.request == request; });
    return OrError(ioctl(descriptor, row->code, argument));
  }
};

#else

class KernelDevices : public UsbTmcDevices {
 public:
  std::vector<UsbTmcNode> List() override { return {}; }
  int Open(const std::string&) override { return -1; }
  int Close(int) override { return -1; }
  std::int64_t Read(int, void*, std::size_t) override { return -1; }
  std::int64_t Write(int, const void*, std::size_t) override { return -1; }
  int Control(int, UsbTmcRequest, void*) override { return -1; }
};

#endif

}  // namespace

UsbTmcDevices& SystemUsbTmcDevices() {
  static KernelDevices devices;
  return devices;
}

}  // namespace corlune
