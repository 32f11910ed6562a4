#include "standins/virtual_instrument/virtual_bench.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <utility>

#include "core/ascii_case.h"

namespace corlune {
namespace {

struct Model {
  std::string_view name;
  int channels;
  std::uint16_t product;
};

constexpr std::array kModels{Model{"QM2210", 1, 0x2210}, Model{"QM2220", 2, 0x2220}};

const Model* FindModel(std::string_view name) {
  const auto* const found =
      std::find_if(kModels.begin(), kModels.end(), [name](const Model& model) { return model.name == name; });
  return found == kModels.end() ? nullptr : found;
}

bool IsSerial(std::string_view text) {
  return !text.empty() && text.size() <= 20 && std::all_of(text.begin(), text.end(), [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' || c == '_';
  });
}

// Takes the text up to `mark` from the front; without a mark all of it, and nothing (null) is left.
std::optional<std::string_view> CutField(std::string_view& text, char mark) {
  if (text.data() == nullptr) return std::nullopt;
  const std::size_t at = text.find(mark);
  const std::string_view field = text.substr(0, at);
  text = at == std::string_view::npos ? std::string_view() : text.substr(at + 1);
  return field;
}

Connectors Everywhere(int number) {
  const int address = number + 1;  // the controller is 0; 1 is free
  return {true, address <= kLastGpibAddress ? address : 0, number <= kLastUsb488Id ? number : 0};
}

std::optional<Connectors> ParseConnectors(std::string_view text) {
  Connectors connectors{false};
  while (auto field = CutField(text, '+')) {
    const std::string_view name = CutField(*field, '=').value_or("");
    const std::string_view value = *field;
    int number = 0;
    const auto [end, problem] = std::from_chars(value.data(), value.data() + value.size(), number);
    const bool numbered = problem == std::errc() && end == value.data() + value.size();
    if (EqualIgnoringCase(name, "usbtmc") && value.data() == nullptr) {
      connectors.usbTmc = true;
    } else if (EqualIgnoringCase(name, "gpib") && numbered && number >= 1 && number <= kLastGpibAddress) {
      connectors.gpib = number;
    } else if (EqualIgnoringCase(name, "usb488") && numbered && number >= 1 && number <= kLastUsb488Id) {
      connectors.usb488 = number;
    } else {
      return std::nullopt;
    }
  }
  return connectors;
}

bool Meet(const Connectors& one, const Connectors& other) {
  return (one.gpib != 0 && one.gpib == other.gpib) || (one.usb488 != 0 && one.usb488 == other.usb488);
}

}  // namespace

VirtualInstrument& VirtualBench::Add(InstrumentIdentity identity, Connectors connectors) {
  connectors_.push_back(connectors);
  return *instruments_.emplace_back(std::make_unique<VirtualInstrument>(std::move(identity), clock_));
}

VirtualInstrument* VirtualBench::OnGpib(int address) {
  for (std::size_t i = 0; i < Count(); ++i) {
    if (address != 0 && connectors_[i].gpib == address && At(i).Present()) return &At(i);
  }
  return nullptr;
}

VirtualInstrument* VirtualBench::OnUsb488(int id) {
  for (std::size_t i = 0; i < Count(); ++i) {
    if (id != 0 && connectors_[i].usb488 == id && At(i).Present()) return &At(i);
  }
  return nullptr;
}

std::uint16_t VirtualBench::UsbProduct(const InstrumentIdentity& identity) {
  const Model* const model = FindModel(identity.model);
  return model == nullptr ? std::uint16_t{0} : model->product;
}

std::string VirtualBench::ResourceName(const InstrumentIdentity& identity) {
  std::array<char, 40> prefix{};
  std::snprintf(prefix.data(), prefix.size(), "USB0::0x%04X::0x%04X::", static_cast<unsigned>(kUsbVendor),
                static_cast<unsigned>(UsbProduct(identity)));
  return prefix.data() + identity.serial + "::INSTR";
}

bool VirtualBench::AddFromText(std::string_view instruments, std::string_view faults, std::string* error) {
  struct Wanted {
    InstrumentIdentity identity;
    Connectors connectors;
    FaultPlan plan;
  };
  std::vector<Wanted> wanted;
  while (!instruments.empty()) {
    const std::size_t length = std::min(instruments.find(','), instruments.size());
    const std::string_view entry = instruments.substr(0, length);
    instruments.remove_prefix(std::min(length + 1, instruments.size()));
    std::string_view rest = entry;
    const Model* const model = FindModel(CutField(rest, ':').value_or(""));
    const std::string serial(CutField(rest, ':').value_or(""));
    const int number = static_cast<int>(wanted.size()) + 1;
    const auto connectors = rest.data() == nullptr ? Everywhere(number) : ParseConnectors(rest);
    const bool taken = std::any_of(wanted.begin(), wanted.end(), [&](const Wanted& other) {
      return other.identity.serial == serial || (connectors && Meet(other.connectors, *connectors));
    });
    if (model == nullptr || !IsSerial(serial) || !connectors || taken) {
      if (error != nullptr) *error = "not an instrument: " + std::string(entry);
      return false;
    }
    auto plan = ParseFaults(faults, serial, error);
    if (!plan) return false;
    wanted.push_back(
        {{std::string(model->name), serial, model->channels}, *connectors, FaultPlan(std::move(*plan))});
  }
  for (Wanted& each : wanted) {
    Add(std::move(each.identity), each.connectors).SetFaults(std::move(each.plan));
  }
  return true;
}

}  // namespace corlune
