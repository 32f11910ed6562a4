#include "editing/window_commands.h"

#include <algorithm>
#include <array>

namespace corlune {

namespace {

using enum Command;
using States = ControlStates;
using Editor = SequenceEditor;

constexpr std::array<MenuRow, 8> kMenus{{{MenuPlace::File, "mnuFile", 7000},
                                         {MenuPlace::Edit, "mnuEdit", 7100},
                                         {MenuPlace::View, "mnuView", 7200},
                                         {MenuPlace::Mode, "mnuMode", 7300},
                                         {MenuPlace::Run, "mnuRun", 7400},
                                         {MenuPlace::Tool, "mnuTools", 7500},
                                         {MenuPlace::Help, "mnuHelp", 7600},
                                         {MenuPlace::Display, "mnuDisplay", 8250}}};

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
    {New, 7001, kFile, 0, 0, "Ctrl+N", nullptr},
    {Open, 7002, kFile, 0, 1, "Ctrl+O", nullptr},
    {Save, 7003, kFile, 0, 2, "Ctrl+S", nullptr},
    {SaveAs, 7004, kFile, 0, 3, "Ctrl+Shift+S", nullptr},
    {ImportCsv, 8201, kFile, 0, -1, "", "mnuImportCsv", false, &States::ImportCsv},
    {ExportCsv, 8202, kFile, 0, -1, "", "mnuExportCsv", false, &States::ExportCsv},
    {Exit, 7005, kFile, 1, 4, "Ctrl+Q", nullptr},
    {Undo, 7700, kEdit, 0, -1, "Ctrl+Z", "mnuUndo", false, &States::Undo, &Editor::Undo},
    {Redo, 7701, kEdit, 0, -1, "Ctrl+Y; Ctrl+Shift+Z", "mnuRedo", false, &States::Redo, &Editor::Redo},
    {Copy, 7101, kEdit, 1, 0, "Ctrl+C", nullptr},
    {Paste, 7102, kEdit, 1, 1, "Ctrl+V", nullptr, false, nullptr, &Editor::Paste},
    {SelectAll, 7103, kEdit, 1, 2, "Ctrl+A", nullptr},
    {Initialize, 7104, kEdit, 1, 3, "Del", nullptr, true, nullptr, &Editor::Initialize},
    {CopyText, 7702, kEdit, 2, -1, "Ctrl+Shift+C", "mnuCopyText", true, &States::CopyText},
    {PasteText, 7703, kEdit, 2, -1, "Ctrl+Shift+V", "mnuPasteText", true, &States::PasteText},
    {AddRow, 7105, kEdit, 3, 4, "Ctrl+Enter", nullptr, false, nullptr, &Editor::AddRow},
    {InsertRow, 7106, kEdit, 3, 5, "Alt+Ins", nullptr, false, nullptr, &Editor::InsertRow},
    {DeleteRow, 7107, kEdit, 3, 6, "Alt+Del", nullptr, false, nullptr, &Editor::DeleteRow},
    {RowUp, 7108, kEdit, 3, 7, "Alt+Up", nullptr, false, nullptr, &Editor::RowUp},
    {RowDown, 7109, kEdit, 3, 8, "Alt+Down", nullptr, false, nullptr, &Editor::RowDown},
    {DuplicateRows, 7704, kEdit, 4, -1, "Ctrl+Shift+D", "mnuDuplicate", true, &States::Duplicate,
     &Editor::DuplicateRows},
    {FillDown, 7705, kEdit, 4, -1, "Ctrl+D", "mnuFillDown", true, &States::FillDown, &Editor::FillDown},
    {EditWindow, 7201, kView, 0, 0, "", nullptr},
    {SequenceView, 7202, kView, 0, 1, "", nullptr},
    {TileVertically, 7203, kView, 0, 2, "", nullptr},
    {EditMode, 7301, kMode, 0, 0, "F9", nullptr},
    {ExecutionMode, 7302, kMode, 0, 1, "F9", nullptr},
    {Start, 7401, kRun, 0, 0, "F5", nullptr},
    {Stop, 7402, kRun, 0, 1, "Shift+F5", nullptr},
    {Hold, 7403, kRun, 0, 2, "F6", nullptr},
    {Branch, 7404, kRun, 0, 3, "F7", nullptr},
    {OutputOn, 7405, kRun, 0, 4, "F8", nullptr},
    {OutputOff, 7406, kRun, 0, 5, "F8", nullptr},
    {ArbitraryWaveform, 7501, kTool, 0, 0, "", nullptr},
    {ChannelSetting, 7502, kTool, 0, 1, "", nullptr},
    {CommonSettings, 7503, kTool, 0, 2, "", nullptr},
    {SystemSetup, 7504, kTool, 0, 3, "", nullptr},
    {MeasurementData, 7505, kTool, 0, 4, "", nullptr},
    {ZoomIn, 8251, kDisplay, 0, -1, "Ctrl++; Ctrl+=", "mnuZoomIn"},  // "+" is often a shifted "="
    {ZoomOut, 8252, kDisplay, 0, -1, "Ctrl+-", "mnuZoomOut"},
    {WholeSequence, 8253, kDisplay, 0, -1, "Ctrl+0", "mnuShowAll"},
    {AreaSettings, 8254, kDisplay, 1, -1, "", "mnuAreaSettings"},
    {About, 7601, kHelp, 0, 0, "F1", nullptr},
    {Shortcuts, 7780, kHelp, 0, -1, "Ctrl+F1", "mnuShortcuts"},
    {CommLog, 8204, kHelp, 0, -1, "", "mnuCommLog"},
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
