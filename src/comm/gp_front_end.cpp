#include "comm/gp_front_end.h"

#include <cstddef>
#include <utility>

#include "comm/io_libraries.h"

namespace corlune {

GpFrontEnd::GpFrontEnd(AppState& state, std::array<std::unique_ptr<GpFamily>, 5> backends,
                       InstrumentSearch* search)
    : state_(state), backends_(std::move(backends)), search_(search) {}

GpFamily* GpFrontEnd::Current() const {
  const auto code = static_cast<std::int16_t>(route_.value_or(state_.CurrentInterface));
  if (code < 0 || static_cast<std::size_t>(code) >= backends_.size()) return nullptr;
  return backends_[static_cast<std::size_t>(code)].get();
}

CommStatus GpFrontEnd::GP_Init(const std::string& initString, bool emptyLog) {
  GpFamily* backend = Current();
  return backend ? backend->GP_Init(initString, emptyLog) : CommStatus::Error;
}

CommStatus GpFrontEnd::GP_End() {
  GpFamily* backend = Current();
  return backend ? backend->GP_End() : CommStatus::Error;
}

CommStatus GpFrontEnd::GP_Send_Str(std::int16_t address, const std::string& text) {
  GpFamily* backend = Current();
  return backend ? backend->GP_Send_Str(address, text) : CommStatus::Error;
}

CommStatus GpFrontEnd::GP_Receive_Str(std::int16_t address, std::string& reply) {
  GpFamily* backend = Current();
  return backend ? backend->GP_Receive_Str(address, reply) : CommStatus::Error;
}

CommStatus GpFrontEnd::GP_IFC() {
  GpFamily* backend = Current();
  return backend ? backend->GP_IFC() : CommStatus::Error;
}

CommStatus GpFrontEnd::GP_DCL() {
  GpFamily* backend = Current();
  return backend ? backend->GP_DCL() : CommStatus::Error;
}

CommStatus GpFrontEnd::GP_Spoll(std::int16_t address, std::int16_t& statusByte) {
  GpFamily* backend = Current();
  return backend ? backend->GP_Spoll(address, statusByte) : CommStatus::Error;
}

CommStatus GpFrontEnd::GP_Time_Out(std::int16_t code) {
  GpFamily* backend = Current();
  return backend ? backend->GP_Time_Out(code) : CommStatus::Error;
}

CommStatus GpFrontEnd::GP_MTerm(std::int16_t code) {
  GpFamily* backend = Current();
  return backend ? backend->GP_MTerm(code) : CommStatus::Error;
}

CommStatus GpFrontEnd::GP_Send_AsciiBinary_Data(const std::string& header, std::span<const std::uint8_t> data,
                                                std::int16_t address, std::int16_t elementFormat,
                                                bool swapBytes) {
  GpFamily* backend = Current();
  return backend ? backend->GP_Send_AsciiBinary_Data(header, data, address, elementFormat, swapBytes)
                 : CommStatus::Error;
}

CommStatus GpFrontEnd::Gp_Recv_ToFile(std::int16_t address, const std::string& fileName,
                                      std::uint32_t byteCount, std::uint32_t& bytesRead) {
  GpFamily* backend = Current();
  return backend ? backend->Gp_Recv_ToFile(address, fileName, byteCount, bytesRead) : CommStatus::Error;
}

int GpFrontEnd::GP_Find_Devices(const std::string& expression) {
  return search_ ? search_->GP_Find_Devices(expression) : 0;
}

const std::vector<FoundInstrument>& GpFrontEnd::Found() const {
  static const std::vector<FoundInstrument> kNone;
  return search_ ? search_->Found() : kNone;
}

std::string GpFrontEnd::OwnLibraryProblem() const {
  const GpFamily* backend = Current();
  return backend ? backend->LibraryProblem() : std::string();
}

std::string GpFrontEnd::LibraryProblem() const {
  std::string problem = OwnLibraryProblem();
  if (problem.empty() && search_) problem = search_->LibraryProblem();
  return problem;
}

std::vector<std::string> GpFrontEnd::LibraryLines(bool tryAll) const {
  std::vector<std::string> lines;
  for (const Library& library : libraries_) {
    if (tryAll) library.tryNow();
    const LibraryState& state = *library.state;
    if (!state.LoadedFrom.empty()) lines.push_back(state.Title + ": " + state.LoadedFrom);
    for (const std::string& failure : state.Failures) lines.push_back(state.Title + ": " + failure);
  }
  return lines;
}

bool GpFrontEnd::CarriesBlocks() const {
  const InterfaceKind kind = route_.value_or(state_.CurrentInterface);
  return kind == InterfaceKind::UsbTmc || kind == InterfaceKind::Simulated;
}

bool GpFrontEnd::ConnectionLost(std::int16_t address) const {
  const GpFamily* backend = Current();
  return backend && backend->ConnectionLost(address);
}

}  // namespace corlune
