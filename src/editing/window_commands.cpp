#include "editing/window_commands.h"

#include <algorithm>
#include <array>

namespace corlune {

namespace {

using enum Command;
using States = ControlStates;
using Editor = SequenceEditor;

constexpr std::array<MenuRow, 8> kMenus{{{MenuPlace::File, "mnuFile", TextId::MenuFile},
                                         {MenuPlace::Edit, "mnuEdit", TextId::MenuEdit},
                                         {MenuPlace::View, "mnuView", TextId::MenuView},
                                         {MenuPlace::Mode, "mnuMode", TextId::MenuMode},
                                         {MenuPlace::Run, "mnuRun", TextId::MenuRun},
                                         {MenuPlace::Tool, "mnuTools", TextId::MenuTool},
                                         {MenuPlace::Help, "mnuHelp", TextId::MenuHelp},
                                         {MenuPlace::Display, "mnuDisplay", TextId::MenuDisplay}}};

constexpr auto kFile = MenuPlace::File;
constexpr auto kEdit = MenuPlace::Edit;
constexpr auto kView = MenuPlace::View;
constexpr auto kMode = MenuPlace::Mode;
constexpr auto kRun = MenuPlace::Run;
constexpr auto kTool = MenuPlace::Tool;
constexpr auto kHelp = MenuPlace::Help;
constexpr auto kDisplay = MenuPlace::Display;

// Edit and execution mode, Output ON and OFF share a key: only the one that would change something is
// enabled.
// clang-format off
constexpr CommandRow kCommands[] = {
    {New, TextId::MenuNew, kFile, 0, 0, "Ctrl+N", nullptr},
    {Open, TextId::MenuOpen, kFile, 0, 1, "Ctrl+O", nullptr},
    {Save, TextId::MenuSave, kFile, 0, 2, "Ctrl+S", nullptr},
    {SaveAs, TextId::MenuSaveAs, kFile, 0, 3, "Ctrl+Shift+S", nullptr},
    {ImportCsv, TextId::MenuImportCsv, kFile, 0, -1, "Ctrl+Shift+I", "mnuImportCsv", false, &States::ImportCsv},
    {ExportCsv, TextId::MenuExportCsv, kFile, 0, -1, "Ctrl+Shift+E", "mnuExportCsv", false, &States::ExportCsv},
    {ReadBack, TextId::EditReadBack, kFile, 1, -1, "Ctrl+R", "mnuReadBack", false, &States::Read},
    {Exit, TextId::MenuExit, kFile, 2, 4, "Ctrl+Q", nullptr},
    {Undo, TextId::UndoWord, kEdit, 0, -1, "Ctrl+Z", "mnuUndo", false, &States::Undo, &Editor::Undo},
    {Redo, TextId::RedoWord, kEdit, 0, -1, "Ctrl+Y; Ctrl+Shift+Z", "mnuRedo", false, &States::Redo, &Editor::Redo},
    {Copy, TextId::MenuCopy, kEdit, 1, 0, "Ctrl+C", nullptr},
    {Paste, TextId::MenuPaste, kEdit, 1, 1, "Ctrl+V", nullptr, false, nullptr, &Editor::Paste},
    {SelectAll, TextId::MenuSelectAll, kEdit, 1, 2, "Ctrl+A", nullptr},
    {Initialize, TextId::MenuInitialize, kEdit, 1, 3, "Del", nullptr, true, nullptr, &Editor::Initialize},
    {CopyText, TextId::CopyAsText, kEdit, 2, -1, "Ctrl+Shift+C", "mnuCopyText", true, &States::CopyText},
    {PasteText, TextId::EditPasteText, kEdit, 2, -1, "Ctrl+Shift+V", "mnuPasteText", true, &States::PasteText},
    {AddRow, TextId::MenuAddRow, kEdit, 3, 4, "Ctrl+Enter", nullptr, false, nullptr, &Editor::AddRow},
    {InsertRow, TextId::MenuInsertRow, kEdit, 3, 5, "Alt+Ins", nullptr, false, nullptr, &Editor::InsertRow},
    {DeleteRow, TextId::MenuDeleteRow, kEdit, 3, 6, "Alt+Del", nullptr, false, nullptr, &Editor::DeleteRow},
    {RowUp, TextId::MenuRowUp, kEdit, 3, 7, "Alt+Up", nullptr, false, nullptr, &Editor::RowUp},
    {RowDown, TextId::MenuRowDown, kEdit, 3, 8, "Alt+Down", nullptr, false, nullptr, &Editor::RowDown},
    {DuplicateRows, TextId::EditDuplicateRows, kEdit, 4, -1, "Ctrl+Shift+D", "mnuDuplicate", true, &States::Duplicate,
     &Editor::DuplicateRows},
    {FillDown, TextId::EditFillDown, kEdit, 4, -1, "Ctrl+D", "mnuFillDown", true, &States::FillDown, &Editor::FillDown},
    {EditWindow, TextId::MenuEditWindow, kView, 0, 0, "Ctrl+1", nullptr},
    {SequenceView, TextId::MenuViewWindow, kView, 0, 1, "Ctrl+2", nullptr},
    {TileVertically, TextId::MenuTile, kView, 0, 2, "Ctrl+3", nullptr},
    {ViewBelow, TextId::MenuViewBelow, kView, 1, -1, "Ctrl+4", "mnuViewBelow"},
    {ViewBeside, TextId::MenuViewBeside, kView, 1, -1, "Ctrl+5", "mnuViewBeside"},
    {ViewFloat, TextId::MenuViewFloat, kView, 1, -1, "Ctrl+6", "mnuViewFloat"},
    {ViewClose, TextId::MenuViewClose, kView, 1, -1, "Ctrl+W", "mnuViewClose"},
    {ViewSwitch, TextId::MenuViewSwitch, kView, 1, -1, "F3", "mnuViewSwitch"},
    {SignalStrip, TextId::MenuSignalStrip, kView, 2, -1, "Ctrl+G", "mnuSignalStrip"},
    {ColorsDesktop, TextId::MenuColorsDesktop, kView, 3, -1, "Ctrl+7", "mnuColorsDesktop"},
    {ColorsLight, TextId::MenuColorsLight, kView, 3, -1, "Ctrl+8", "mnuColorsLight"},
    {ColorsDark, TextId::MenuColorsDark, kView, 3, -1, "Ctrl+9", "mnuColorsDark"},
    {EditMode, TextId::MenuEditMode, kMode, 0, 0, "F9", nullptr},
    {ExecutionMode, TextId::MenuExecutionMode, kMode, 0, 1, "F9", nullptr},
    {Start, TextId::MenuStart, kRun, 0, 0, "F5", nullptr},
    {Stop, TextId::MenuStop, kRun, 0, 1, "Shift+F5", nullptr},
    {Hold, TextId::MenuHold, kRun, 0, 2, "F6", nullptr},
    {Branch, TextId::MenuBranch, kRun, 0, 3, "F7", nullptr},
    {OutputOn, TextId::MenuOutputOn, kRun, 0, 4, "F8", nullptr},
    {OutputOff, TextId::MenuOutputOff, kRun, 0, 5, "F8", nullptr},
    {ArbitraryWaveform, TextId::MenuArbWaveform, kTool, 0, 0, "Ctrl+Shift+A", nullptr},
    {ChannelSetting, TextId::MenuChannelSetting, kTool, 0, 1, "Ctrl+Shift+H", nullptr},
    {CommonSettings, TextId::MenuCommonParameters, kTool, 0, 2, "Ctrl+Shift+P", nullptr},
    {SystemSetup, TextId::MenuSystemSetup, kTool, 0, 3, "Ctrl+Shift+T", nullptr},
    {MeasurementData, TextId::MenuMeasurement, kTool, 0, 4, "", nullptr},
    {ModeSetting, TextId::MenuModeSetting, kTool, 0, -1, "Ctrl+Shift+M", "mnuModeSetting", false, &States::ModeSetting},
    {Connect, TextId::MenuConnect, kTool, 1, -1, "Ctrl+K", "mnuConnect", false, &States::Connect},
    {ZoomIn, TextId::MenuZoomIn, kDisplay, 0, -1, "Ctrl++; Ctrl+=", "mnuZoomIn"},  // "+" is often a shifted "="
    {ZoomOut, TextId::MenuZoomOut, kDisplay, 0, -1, "Ctrl+-", "mnuZoomOut"},
    {WholeSequence, TextId::MenuWholeSequence, kDisplay, 0, -1, "Ctrl+0", "mnuShowAll"},
    {AreaSettings, TextId::MenuAreaSettings, kDisplay, 1, -1, "Ctrl+T", "mnuAreaSettings"},
    {About, TextId::MenuAbout, kHelp, 0, 0, "F1", nullptr},
    {Shortcuts, TextId::MenuShortcuts, kHelp, 0, -1, "Ctrl+F1", "mnuShortcuts"},
    {Notices, TextId::MenuNotices, kHelp, 0, -1, "Ctrl+Shift+N", "mnuNotices"},
    {CommLog, TextId::MenuCommLog, kHelp, 0, -1, "Ctrl+Shift+L", "mnuCommLog"},
};
// clang-format on

constexpr bool InEnumOrder() {
  int id = 0;
  for (const CommandRow& row : kCommands) {
    if (static_cast<int>(row.id) != id++) return false;
  }
  return id == static_cast<int>(CommLog) + 1;
}
static_assert(InEnumOrder());

}  // namespace

std::span<const MenuRow> WindowMenus() {
  return kMenus;
}

std::span<const CommandRow> WindowCommands() {
  return kCommands;
}

const CommandRow& RowOf(Command command) {
  return kCommands[static_cast<std::size_t>(command)];
}

ControlState StateOf(const CommandRow& row, const ControlStates& states) {
  if (row.item >= 0) {
    return states.MenuItems[static_cast<std::size_t>(row.menu)][static_cast<std::size_t>(row.item)];
  }
  return row.state != nullptr ? states.*row.state : ControlState{true, true};
}

std::string PlainCaption(std::string caption) {
  const std::size_t key = caption.find("(&");
  if (key == std::string::npos) return caption;
  caption.erase(key, caption.find(')', key) - key + 1);
  // One of the captions opens its bracket twice.
  caption.erase(caption.find_last_not_of('(') + 1);
  return caption;
}

}  // namespace corlune
