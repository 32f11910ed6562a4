// The kernel's USBTMC devices as its driver documents them, with the instruments of a virtual bench behind
// them.
#pragma once

#include <cerrno>
#include <map>
#include <string>
#include <vector>

#include "platform/usbtmc_devices.h"
#include "standins/virtual_instrument/instrument_io.h"
#include "standins/virtual_instrument/virtual_bench.h"

namespace corlune::testing {

class BenchDevices : public UsbTmcDevices {
 public:
  BenchDevices(VirtualBench& bench, const InstrumentIo& io) : bench_(bench), io_(io) {}

  std::vector<UsbTmcNode> List() override {
    std::vector<UsbTmcNode> nodes;
    for (std::size_t i = 0; i < bench_.Count(); ++i) {
      const InstrumentIdentity& identity = bench_.At(i).Identity();
      if (!bench_.OnUsbTmc(i)) continue;
      nodes.push_back({std::to_string(i), kUsbVendor, VirtualBench::UsbProduct(identity), identity.serial});
    }
    return nodes;
  }
  int Open(const std::string& path) override {
    if (refused != 0) return -refused;
    open_[++last_].instrument = &bench_.At(std::stoul(path));
    return last_;
  }
  int Close(int descriptor) override { return open_.erase(descriptor) > 0 ? 0 : -EBADF; }
  std::int64_t Read(int descriptor, void* buffer, std::size_t size) override {
    Device& device = open_.at(descriptor);
    std::optional<char> terminator;
    if (device.terminator.Enabled != 0) terminator = static_cast<char>(device.terminator.Character);
    const Exchanged read =
        io_.Read(*device.instrument, {static_cast<char*>(buffer), size}, terminator, device.timeOut);
    device.ended =
        static_cast<std::uint8_t>((read.end ? kUsbTmcEnd : 0) | (read.terminator ? kUsbTmcTerminated : 0));
    return ResultOf(read, static_cast<std::int64_t>(read.count));
  }
  // In parts, as the driver may.
  std::int64_t Write(int descriptor, const void* data, std::size_t size) override {
    Device& device = open_.at(descriptor);
    const std::size_t part = std::min(size, longestWrite);
    const Exchanged written = io_.Write(*device.instrument, {static_cast<const char*>(data), part},
                                        device.end != 0 && part == size, device.timeOut);
    return ResultOf(written, static_cast<std::int64_t>(part));
  }
  int Control(int descriptor, UsbTmcRequest request, void* argument) override {
    Device& device = open_.at(descriptor);
    if (device.instrument->Faults().Unplugged()) return -ENODEV;
    Exchanged done;
    switch (request) {
      case UsbTmcRequest::Clear:
        done = io_.Clear(*device.instrument, device.timeOut);
        break;
      case UsbTmcRequest::SetTimeOut:
        device.timeOut = *static_cast<std::uint32_t*>(argument);
        return device.timeOut < 100 ? -EINVAL : 0;
      case UsbTmcRequest::SetEnd:
        device.end = *static_cast<std::uint8_t*>(argument);
        break;
      case UsbTmcRequest::SetTerminator:
        device.terminator = *static_cast<UsbTmcTerminator*>(argument);
        break;
      case UsbTmcRequest::ReadStatusByte:
        done = io_.Poll(*device.instrument, *static_cast<std::uint8_t*>(argument), device.timeOut);
        break;
      case UsbTmcRequest::SetRemote:
        device.instrument->SetRemote(*static_cast<std::uint8_t*>(argument) != 0);
        break;
      case UsbTmcRequest::GoToLocal:
        device.instrument->SetRemote(false);
        break;
      case UsbTmcRequest::HowReadEnded:
        *static_cast<std::uint8_t*>(argument) = device.ended;
        break;
    }
    return static_cast<int>(ResultOf(done, 0));
  }

  std::size_t OpenDevices() const { return open_.size(); }
  int refused = 0;  // an error number: nothing can be opened
  std::size_t longestWrite = std::size_t{2} << 20;

 private:
  struct Device {
    VirtualInstrument* instrument = nullptr;
    std::uint32_t timeOut = 5000;
    std::uint8_t end = 1;
    UsbTmcTerminator terminator;
    std::uint8_t ended = 0;
  };
  static std::int64_t ResultOf(const Exchanged& exchanged, std::int64_t done) {
    switch (exchanged.kind) {
      case Exchanged::Kind::Done:
        return done;
      case Exchanged::Kind::TimeOut:
        return -ETIMEDOUT;
      case Exchanged::Kind::Error:
        return -exchanged.status;
      default:
        return -ENODEV;
    }
  }

  VirtualBench& bench_;
  const InstrumentIo& io_;
  std::map<int, Device> open_;
  int last_ = 2;
};

}  // namespace corlune::testing
