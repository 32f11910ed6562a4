#include "forms/setup_form.h"

#include <algorithm>

#include "core/ascii_case.h"
#include "core/numbers.h"

namespace corlune {

namespace {

// They part the options and the names in what a communication library is opened with, and the values of
// files.
constexpr std::string_view kNotInSerial = ",/=;\"";

bool Within(std::int32_t value, const RangeSpec& range) {
  return value >= range.Minimum && value <= range.Maximum;
}

// A whole number within `range`; `value` is set only then.
EntryResult EnterWhole(std::string_view typed, const RangeSpec& range, std::int32_t& value) {
  const std::string text = PlainEntry(typed);
  const auto number = ParseNumber(text);
  if (!number || text.find('.') != std::string::npos) return EntryRefusal{TextId::InputError, {}};
  const auto whole = ToInt32(*number);
  if (!whole || *whole != *number || !Within(*whole, range)) {
    return EntryRefusal{TextId::ValueOutOfRange,
                        {text, std::to_string(range.Minimum), std::to_string(range.Maximum)}};
  }
  value = *whole;
  return std::nullopt;
}

EntryResult EnterWhole(std::string_view typed, const RangeSpec& range, std::int16_t& value) {
  std::int32_t whole = value;
  EntryResult refusal = EnterWhole(typed, range, whole);
  if (!refusal) value = static_cast<std::int16_t>(whole);
  return refusal;
}

}  // namespace

SetupForm::SetupForm(const SystemSettings& now, const ModelDefinition& definition)
    : definition_(definition), before_(now), setup_(now) {
  setup_.ModelIndex = static_cast<std::int16_t>(std::max(0, definition.IndexOfModel(now.ModelName)));
  const RangeSpec& range = CountRange();
  setup_.InstrumentCount =
      static_cast<std::int16_t>(std::clamp<std::int32_t>(now.InstrumentCount, range.Minimum, range.Maximum));
  for (int row = now.InstrumentCount; row < kMaxInstruments; ++row) FillRow(row);
  for (int row = 0; row < kMaxInstruments; ++row) FitAddress(row);
  before_ = setup_;
}

// An instrument that was not there before: on the interface of the first one.
void SetupForm::FillRow(int row) {
  InstrumentEntry& entry = setup_.Instruments[At(row)];
  entry = {};
  entry.Interface = setup_.Instruments[0].Interface;
  entry.ChannelCount = static_cast<std::int16_t>(ChannelsShown() ? ChannelRange().Default : 1);
}

void SetupForm::FitAddress(int row) {
  InstrumentEntry& entry = setup_.Instruments[At(row)];
  if (ReachedBy(row) == Reached::BySerial) return;
  const RangeSpec& range = AddressRange(row);
  if (!Within(entry.Address, range)) entry.Address = std::min(range.Default + row, range.Maximum);
}

void SetupForm::ChooseModel(int model) {
  if (model == setup_.ModelIndex) return;
  if (definition_.Models[At(model)] == before_.ModelName) {
    const std::int16_t count = setup_.InstrumentCount;
    setup_ = before_;
    setup_.InstrumentCount = count;
    return;
  }
  const std::vector<std::string> names = Interfaces();
  setup_.ModelIndex = static_cast<std::int16_t>(model);
  setup_.ModelName = definition_.Models[At(model)];
  for (int row = 0; row < kMaxInstruments; ++row) {
    InstrumentEntry& entry = setup_.Instruments[At(row)];
    const std::string name = At(entry.Interface) < names.size() ? names[At(entry.Interface)] : std::string();
    const auto same = std::find(Interfaces().begin(), Interfaces().end(), name);
    entry.Interface = static_cast<std::int16_t>(same == Interfaces().end() ? 0 : same - Interfaces().begin());
    entry.SerialNo.clear();
    entry.ChannelCount = static_cast<std::int16_t>(ChannelsShown() ? ChannelRange().Default : 1);
    FitAddress(row);
  }
}

EntryResult SetupForm::EnterCount(std::string_view text) {
  return EnterWhole(text, CountRange(), setup_.InstrumentCount);
}

SetupForm::Reached SetupForm::ReachedBy(int row) const {
  const auto interface = At(Row(row).Interface);
  const bool usbTmc = interface >= Interfaces().size() || Interfaces()[interface] == "USBTMC";
  return usbTmc ? Reached::BySerial : Reached::ByAddress;
}

void SetupForm::ChooseInterface(int row, int interface) {
  setup_.Instruments[At(row)].Interface = static_cast<std::int16_t>(interface);
  FitAddress(row);
}

const RangeSpec& SetupForm::AddressRange(int row) const {
  const bool usb = Interfaces()[At(Row(row).Interface)].find("USB") != std::string::npos;
  return usb ? Limits().UsbId : Limits().GpibAddress;
}

EntryResult SetupForm::EnterAddress(int row, std::string_view text) {
  return EnterWhole(text, AddressRange(row), setup_.Instruments[At(row)].Address);
}

void SetupForm::EnterSerial(int row, std::string_view text) {
  setup_.Instruments[At(row)].SerialNo = PlainEntry(text);
}

EntryResult SetupForm::EnterChannels(int row, std::string_view text) {
  return EnterWhole(text, ChannelRange(), setup_.Instruments[At(row)].ChannelCount);
}

std::vector<FoundInstrument> SetupForm::OfModel(const std::vector<FoundInstrument>& found,
                                                const ModelInterfaceSpec& model) {
  std::vector<FoundInstrument> own;
  std::copy_if(found.begin(), found.end(), std::back_inserter(own), [&](const FoundInstrument& one) {
    const std::string_view beginning = std::string_view(one.Resource).substr(0, model.UsbTmcId.size());
    return EqualIgnoringCase(beginning, model.UsbTmcId);
  });
  return own;
}

void SetupForm::OfferFound(const std::vector<FoundInstrument>& found) {
  std::vector<FoundInstrument> left = OfModel(found, Limits());
  for (const InstrumentEntry& entry : setup_.Instruments) {
    std::erase_if(left, [&](const FoundInstrument& one) {
      return one.SerialNo == entry.SerialNo || one.Resource == entry.SerialNo;
    });
  }
  auto next = left.begin();
  for (InstrumentEntry& entry : setup_.Instruments) {
    if (entry.SerialNo.empty() && next != left.end()) entry.SerialNo = (next++)->SerialNo;
  }
}

std::optional<SetupForm::Fault> SetupForm::Check() const {
  if (Interfaces().empty()) return Fault{{TextId::ModelWithoutInterface, {setup_.ModelName}}, 0};
  for (int row = 0; row < Count(); ++row) {
    if (ReachedBy(row) == Reached::BySerial &&
        Row(row).SerialNo.find_first_of(kNotInSerial) != std::string::npos) {
      return Fault{{TextId::SignsNotInSerial, {std::string(kNotInSerial)}}, row};
    }
  }
  return std::nullopt;
}

}  // namespace corlune
