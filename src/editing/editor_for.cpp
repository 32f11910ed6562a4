#include "editing/editor_for.h"

#include <algorithm>

#include "core/numbers.h"
#include "editing/param_rules.h"
#include "sequence/units.h"

namespace corlune {

namespace {

// The catalogue's word for a mode that the definition names in English.
std::string ModeCaption(const std::string& name, const MessageCatalogue& catalogue) {
  const MessageCatalogue english(10000);
  for (const TextId id : {TextId::ModeConst, TextId::ModeSweep, TextId::ModeKeep}) {
    if (name == english.GetResString(id)) return catalogue.GetResString(id);
  }
  return name;
}

std::vector<EditorOption> OptionsOf(const ParamDef& definition, std::size_t count,
                                    const MessageCatalogue& catalogue) {
  std::vector<EditorOption> options;
  for (std::size_t i = 0; i < std::min(count, definition.ModeNames.size()); ++i) {
    const Color color = i < definition.ModeColors.size() ? definition.ModeColors[i] : kWindowColor;
    options.push_back({ModeCaption(definition.ModeNames[i], catalogue), color});
  }
  return options;
}

void OfferUnits(EditorSpec& spec, const ParamDef& definition, int chosen) {
  // The unit of a value can change between the first two entries, which differ by a factor of 1000.
  if (definition.UnitKind != 2) return;
  const std::size_t count = std::min<std::size_t>(definition.UnitList.size(), kUnits);
  spec.Units.assign(definition.UnitList.begin(),
                    definition.UnitList.begin() + static_cast<std::ptrdiff_t>(count));
  spec.UnitTitle = definition.UnitTitle;
  spec.ChosenUnit = chosen;
}

void OfferList(EditorSpec& spec, const ChoiceList& list, double value) {
  spec.List = true;
  spec.Choices = list.Texts;
  spec.Chosen = list.IndexOf(ToInt16(value).value_or(-1));
}

EditorSpec CommonEditor(const GridViews& views, const CellPlace& place) {
  EditorSpec spec;
  const ParamDef& definition = CommonDefinition(views.Definition(), place.Column);
  const StepRow& row = views.Sequence().Step(IndexOf(place.Row));
  const ChoiceList list = CommonChoices(views.Definition(), place.Column);
  if (!list.Texts.empty()) {
    OfferList(spec, list, CommonValue(row, place.Column));
    return spec;
  }
  spec.Text = true;
  spec.TextEnabled = CommonInUse(views.Definition(), row, place.Column);
  spec.TextValue = views.Cell(place).Text;
  if (HasSwitch(place.Column) && SwitchedByStep(definition)) {
    spec.Options = OptionsOf(definition, 2, views.Catalogue());
    spec.ChosenOption = CommonSwitch(row, place.Column) ? kSwitchOn : kSwitchOff;
  }
  if (place.Column == kGridStepTime) {
    OfferUnits(spec, definition, ShownTimeUnit(views.Definition(), views.Sequence()));
  }
  return spec;
}

EditorSpec ChannelEditor(const GridViews& views, const CellPlace& place) {
  EditorSpec spec;
  const int param = place.Column - 1;
  const int step = IndexOf(place.Row).value;
  if (!ChannelInUse(views.Definition(), views.Sequence(), place.Channel, step, param)) return spec;
  const ParamDef& definition = ChannelColumn(views.Definition(), param);
  const ParamCell& cell = views.Sequence().Cell(place.Channel, step, param);
  const ChoiceList list = ChannelChoices(views.Definition(), param);
  if (!list.Texts.empty()) {
    OfferList(spec, list, cell.Value);
    return spec;
  }
  spec.Text = true;
  spec.TextEnabled = true;
  spec.TextValue = views.Cell(place).Text;
  const std::vector<std::int16_t> modes = ChangeModesOf(definition);
  if (!modes.empty()) {
    spec.Options = OptionsOf(definition, modes.size(), views.Catalogue());
    const auto mode = std::find(modes.begin(), modes.end(), cell.ChangeMode);
    spec.ChosenOption = mode == modes.end() ? -1 : static_cast<int>(mode - modes.begin());
  }
  OfferUnits(spec, definition, ShownUnit(views.Definition(), views.Sequence(), place.Channel, param));
  return spec;
}

EditorSpec BranchEditor(const GridViews& views, const CellPlace& place) {
  EditorSpec spec;
  if (place.BranchRow < 1 || place.BranchRow >= views.BranchRows() || !views.BranchVisible()) return spec;
  const StepRow& row = views.Sequence().Step(IndexOf(place.Row));
  const ChoiceList list = BranchChoices(views.Definition());
  if (!list.Texts.empty()) {
    OfferList(spec, list, row.BranchStep[static_cast<std::size_t>(place.BranchRow - 1)]);
    return spec;
  }
  spec.Text = true;
  spec.TextEnabled = true;
  spec.TextValue = views.Cell(place).Text;
  return spec;
}

}  // namespace

EditorSpec EditorFor(const GridViews& views, const CellPlace& place) {
  const AppState& state = views.State();
  const bool editable = state.OperationMode == OperationMode::Edit && state.RunState == RunState::Stopped;
  const bool stepRow = place.Row.value >= 1 && place.Row.value <= views.StepCount();
  if (!editable || !stepRow || place.Column < 1) return {};
  switch (place.Area) {
    case GridArea::Common:
      return place.Column < kCommonColumns ? CommonEditor(views, place) : EditorSpec{};
    case GridArea::Sequence:
      if (place.Channel < 0 || place.Channel >= views.ChannelGrids()) return {};
      return place.Column < views.ChannelColumns() ? ChannelEditor(views, place) : EditorSpec{};
    case GridArea::Branch:
      break;
  }
  return BranchEditor(views, place);
}

}  // namespace corlune
