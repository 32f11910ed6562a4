// The table of commands: one row for everything that a menu, a key or a button of the windows asks for.
// Menus, context menu, keys and the page of shortcuts are made from it; a new command is a new row here and a
// line where its window carries it out.
#pragma once

#include <span>
#include <string>

#include "editing/control_states.h"
#include "editing/sequence_editor.h"

namespace corlune {

enum class Command {
  New,
  Open,
  Save,
  SaveAs,
  ImportCsv,
  ExportCsv,
  ReadBack,
  Exit,
  Undo,
  Redo,
  Copy,
  Paste,
  SelectAll,
  Initialize,
  CopyText,
  PasteText,
  AddRow,
  InsertRow,
  DeleteRow,
  RowUp,
  RowDown,
  DuplicateRows,
  FillDown,
  EditWindow,
  SequenceView,
  TileVertically,
  ViewBelow,
  ViewBeside,
  ViewFloat,
  ViewClose,
  ViewSwitch,
  SignalStrip,
  ColorsDesktop,
  ColorsLight,
  ColorsDark,
  EditMode,
  ExecutionMode,
  Start,
  Stop,
  Hold,
  Branch,
  OutputOn,
  OutputOff,
  ArbitraryWaveform,
  ChannelSetting,
  CommonSettings,
  SystemSetup,
  MeasurementData,
  ModeSetting,
  Connect,
  ZoomIn,
  ZoomOut,
  WholeSequence,
  AreaSettings,
  About,
  Shortcuts,
  Notices,
  CommLog,
};

// The menus of the main window, in Menu order, and the one that only the sequence view has. The sequence view
// shows the run menu as well.
enum class MenuPlace { File, Edit, View, Mode, Run, Tool, Help, Display };

struct MenuRow {
  MenuPlace place;
  const char* name;  // object name
  TextId caption;
};

struct CommandRow {
  Command id;
  TextId caption;
  MenuPlace menu;  // in the order of the table
  int group;       // a separator stands between two groups of a menu
  int item;  // entry of ControlStates::MenuItems; below 0: one that the model definition does not switch
  const char* keys;  // in portable spelling, "; " between several; the first is shown in menus. Enter: either
  const char* name;  // object name of the item; nullptr: the menu's with the number of the entry
  bool inCellsOnly = false;                      // elsewhere the keys mean something else
  ControlState ControlStates::*state = nullptr;  // without `item`; nullptr: always possible
  EditOutcome (SequenceEditor::*edit)() =
      nullptr;  // what a command on the grids does; nullptr: the window does it
};

std::span<const MenuRow> WindowMenus();
std::span<const CommandRow> WindowCommands();
const CommandRow& RowOf(Command command);

// Shown at all, and possible now.
ControlState StateOf(const CommandRow& row, const ControlStates& states);

// A caption without its mnemonic: "Copy(&C)" -> "Copy".
std::string PlainCaption(std::string caption);

}  // namespace corlune
