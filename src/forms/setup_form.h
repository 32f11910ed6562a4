// SetupForm: the set-up of the instruments while its dialog is open: model, number of instruments and, for
// each of them, interface, address or serial number, and channels. A copy is edited; Session::ApplySetup
// takes the result.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "comm/gp_front_end.h"
#include "editing/value_entry.h"
#include "modeldef/model_definition.h"
#include "sequence/system_settings.h"

namespace corlune {

class SetupForm {
 public:
  // What a row is reached by.
  enum class Reached { BySerial, ByAddress };
  // What is wrong with the whole, and in which row (0-based).
  struct Fault {
    EntryRefusal Refusal;
    int Row;
  };

  // `definition` must outlive the form; of it counts what it says about all models.
  SetupForm(const SystemSettings& now, const ModelDefinition& definition);

  // Index of the model. Another one has its own interfaces, channels and instruments: rows keep their
  // interface by name, take the model's usual number of channels and lose their serial numbers. The model
  // that was edited before brings everything back.
  int Model() const { return setup_.ModelIndex; }
  void ChooseModel(int model);
  const std::vector<std::string>& Models() const { return definition_.Models; }
  const std::vector<std::string>& Interfaces() const { return Limits().InterfaceNames; }

  int Count() const { return setup_.InstrumentCount; }
  const RangeSpec& CountRange() const { return definition_.InstrumentCount; }
  EntryResult EnterCount(std::string_view text);

  // Rows are 0-based, 0..4.
  const InstrumentEntry& Row(int row) const { return setup_.Instruments[At(row)]; }
  Reached ReachedBy(int row) const;
  // An address outside the range of the new interface becomes the usual one of the row.
  void ChooseInterface(int row, int interface);
  // Of a row that is reached by its address.
  const RangeSpec& AddressRange(int row) const;
  EntryResult EnterAddress(int row, std::string_view text);
  void EnterSerial(int row, std::string_view text);
  // The model lets the number of channels be chosen; else it is 1.
  bool ChannelsShown() const { return Limits().ChannelSelectable; }
  const RangeSpec& ChannelRange() const { return Limits().Channels; }
  EntryResult EnterChannels(int row, std::string_view text);

  // What a search found: those of the chosen model, in its order.
  static std::vector<FoundInstrument> OfModel(const std::vector<FoundInstrument>& found,
                                              const ModelInterfaceSpec& model);
  // Rows that have no serial number yet take those that no row has, in order.
  void OfferFound(const std::vector<FoundInstrument>& found);

  // Nothing is wrong with any row in use: nullopt.
  std::optional<Fault> Check() const;
  const SystemSettings& Setup() const { return setup_; }

 private:
  static std::size_t At(int index) { return static_cast<std::size_t>(index); }
  const ModelInterfaceSpec& Limits() const { return definition_.InterfaceOf(setup_.ModelIndex); }
  void FillRow(int row);
  void FitAddress(int row);

  const ModelDefinition& definition_;
  SystemSettings before_;
  SystemSettings setup_;
};

}  // namespace corlune
