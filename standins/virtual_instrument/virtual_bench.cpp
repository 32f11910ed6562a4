#include "standins/virtual_instrument/virtual_bench.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

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

}  // namespace

VirtualInstrument& VirtualBench::Add(InstrumentIdentity identity) {
  return *instruments_.emplace_back(std::make_unique<VirtualInstrument>(std::move(identity), clock_));
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
    FaultPlan plan;
  };
  std::vector<Wanted> wanted;
  while (!instruments.empty()) {
    const std::size_t length = std::min(instruments.find(','), instruments.size());
    const std::string_view entry = instruments.substr(0, length);
    instruments.remove_prefix(std::min(length + 1, instruments.size()));
    const std::size_t colon = std::min(entry.find(':'), entry.size());
    const Model* const model = FindModel(entry.substr(0, colon));
    const std::string serial(entry.substr(std::min(colon + 1, entry.size())));
    const bool twice = std::any_of(wanted.begin(), wanted.end(),
                                   [&](const Wanted& other) { return other.identity.serial == serial; });
    if (model == nullptr || !IsSerial(serial) || twice) {
      if (error != nullptr) *error = "not an instrument: " + std::string(entry);
      return false;
    }
    auto plan = ParseFaults(faults, serial, error);
    if (!plan) return false;
    wanted.push_back({{std::string(model->name), serial, model->channels}, FaultPlan(std::move(*plan))});
  }
  for (Wanted& each : wanted) Add(std::move(each.identity)).SetFaults(std::move(each.plan));
  return true;
}

}  // namespace corlune
