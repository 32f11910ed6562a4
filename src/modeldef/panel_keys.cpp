// Menus, execution panel and sequence colours: keys MN_, SC_ and CL_.
#include <algorithm>
#include <array>

#include "modeldef/definition_entry.h"

namespace corlune::modeldef {

namespace {

template <Menu M>
void ReadMenu(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.Menus[static_cast<std::size_t>(M)].Visible = entry.Flag(0);
}

// A shorter list leaves the entries behind it as they are; a longer one names entries that no menu has.
template <Menu M>
void ReadMenuItems(const DefinitionEntry& entry, ModelDefinition& definition) {
  constexpr auto kMenu = static_cast<std::size_t>(M);
  const std::size_t count = std::min(entry.ItemCount(), static_cast<std::size_t>(kMenuItemCounts[kMenu]));
  for (std::size_t i = 0; i < count; ++i) definition.Menus[kMenu].Items[i] = entry.Flag(i);
}

template <PanelButton B>
void ReadButton(const DefinitionEntry& entry, ModelDefinition& definition) {
  ButtonSpec& button = definition.Buttons[static_cast<std::size_t>(B)];
  button.Visible = entry.Flag(0);
  if (entry.Has(1) && !entry.Text(1).empty()) button.Color1 = entry.RedGreenBlue(1);
  if (entry.Has(2)) button.Color2 = entry.RedGreenBlue(2);
}

void ReadSelectorRange(const DefinitionEntry& entry, SelectorSpec& selector) {
  selector.Default = entry.Int16(1);
  selector.Minimum = entry.Int16(2);
  selector.Maximum = entry.Int16(3);
  if (selector.Minimum > selector.Maximum) Refuse("the minimum is above the maximum");
}

void ReadStartStep(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.StartStep.Visible = entry.Flag(0);
  ReadSelectorRange(entry, definition.StartStep);
}

void ReadBranch(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.Branch.Visible = entry.Flag(0);
  if (definition.Branch.Visible) ReadSelectorRange(entry, definition.Branch);
}

template <Color ModelDefinition::*Member>
void ReadColor(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.*Member = entry.RedGreenBlue(0);
}

// The running step's colour comes from the instrument side of the definition, which counts from blue.
void ReadCurrentStepColor(const DefinitionEntry& entry, ModelDefinition& definition) {
  definition.CurrentStep = entry.BlueGreenRed(0);
}

constexpr std::array<KeyRow<ModelDefinition>, 27> kKeys{{
    {"MN_FILE", KeyMatch::Whole, ReadMenu<Menu::File>},
    {"MN_FILEITEM", KeyMatch::Whole, ReadMenuItems<Menu::File>},
    {"MN_EDIT", KeyMatch::Whole, ReadMenu<Menu::Edit>},
    {"MN_EDITITEM", KeyMatch::Whole, ReadMenuItems<Menu::Edit>},
    {"MN_VIEW", KeyMatch::Whole, ReadMenu<Menu::View>},
    {"MN_VIEWITEM", KeyMatch::Whole, ReadMenuItems<Menu::View>},
    {"MN_MODE", KeyMatch::Whole, ReadMenu<Menu::Mode>},
    {"MN_MODEITEM", KeyMatch::Whole, ReadMenuItems<Menu::Mode>},
    {"MN_RUN", KeyMatch::Whole, ReadMenu<Menu::Run>},
    {"MN_RUNITEM", KeyMatch::Whole, ReadMenuItems<Menu::Run>},
    {"MN_TOOL", KeyMatch::Whole, ReadMenu<Menu::Tool>},
    {"MN_TOOLITEM", KeyMatch::Whole, ReadMenuItems<Menu::Tool>},
    {"MN_HELP", KeyMatch::Whole, ReadMenu<Menu::Help>},
    {"MN_HELPITEM", KeyMatch::Whole, ReadMenuItems<Menu::Help>},
    {"SC_BTNMODE", KeyMatch::Whole, ReadButton<PanelButton::Mode>},
    {"SC_BTNSTART", KeyMatch::Whole, ReadButton<PanelButton::Start>},
    {"SC_BTNSTOP", KeyMatch::Whole, ReadButton<PanelButton::Stop>},
    {"SC_BTNHOLD", KeyMatch::Whole, ReadButton<PanelButton::Hold>},
    {"SC_BTNBRTCH", KeyMatch::Whole, ReadButton<PanelButton::Branch>},
    {"SC_BTNOUTPUT", KeyMatch::Whole, ReadButton<PanelButton::Output>},
    {"SC_STARTSTP", KeyMatch::Whole, ReadStartStep},
    {"SC_BRANCH", KeyMatch::Whole, ReadBranch},
    {"CL_DEFSEQ", KeyMatch::Whole, ReadColor<&ModelDefinition::DefaultSequence>},
    {"CL_LOPSEQ", KeyMatch::Whole, ReadColor<&ModelDefinition::LoopSequence>},
    {"CL_INFSEQ", KeyMatch::Whole, ReadColor<&ModelDefinition::EndlessSequence>},
    {"CL_INDICATOR", KeyMatch::Whole, ReadColor<&ModelDefinition::Indicator>},
    {"CL_CURSTEP", KeyMatch::Whole, ReadCurrentStepColor},
}};

}  // namespace

std::span<const KeyRow<ModelDefinition>> PanelKeys() {
  return kKeys;
}

}  // namespace corlune::modeldef
