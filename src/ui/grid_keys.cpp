#include "ui/grid_keys.h"

#include <map>

#include <QKeyEvent>
#include <QKeySequence>

#include "view/command_menu.h"

namespace corlune {

namespace {

using Kind = GridKey::Kind;

constexpr GridKey Of(Kind kind) {
  GridKey key;
  key.kind = kind;
  return key;
}

constexpr GridKey Moving(CursorKey cursor, Kind kind = Kind::Move) {
  GridKey key = Of(kind);
  key.cursor = cursor;
  return key;
}

constexpr GridKey Extending(CursorKey cursor) {
  return Moving(cursor, Kind::Extend);
}

constexpr GridKey Jumping(GridJump jump, bool extend = false) {
  GridKey key = Of(Kind::Jump);
  key.jump = jump;
  key.extend = extend;
  return key;
}

constexpr GridKey Selecting(GridJump jump) {
  return Jumping(jump, true);
}

constexpr GridKey Going(Kind kind, bool forward) {
  GridKey key = Of(kind);
  key.forward = forward;
  return key;
}

constexpr CellKeyRow kCellKeys[] = {
    {"Enter", 7790, Moving(CursorKey::Enter)},
    {"Tab", 7791, Moving(CursorKey::Tab)},
    {"Shift+Tab", 7791, Moving(CursorKey::Backtab)},
    {"Up", 7792, Moving(CursorKey::Up)},
    {"Down", 7792, Moving(CursorKey::Down)},
    {"Left", 7792, Moving(CursorKey::Left)},
    {"Right", 7792, Moving(CursorKey::Right)},
    {"Home", 7793, Jumping(GridJump::FirstColumn)},
    {"Ctrl+Left", 7793, Jumping(GridJump::FirstColumn)},
    {"End", 7793, Jumping(GridJump::LastColumn)},
    {"Ctrl+Right", 7793, Jumping(GridJump::LastColumn)},
    {"Ctrl+Up", 7794, Jumping(GridJump::FirstRow)},
    {"Ctrl+Down", 7794, Jumping(GridJump::LastRow)},
    {"Ctrl+Home", 7795, Jumping(GridJump::FirstCell)},
    {"Ctrl+End", 7795, Jumping(GridJump::LastCell)},
    {"PgUp", 7796, Jumping(GridJump::PageUp)},
    {"PgDown", 7796, Jumping(GridJump::PageDown)},
    {"Shift+Up", 7797, Extending(CursorKey::Up)},
    {"Shift+Down", 7797, Extending(CursorKey::Down)},
    {"Shift+Left", 7797, Extending(CursorKey::Left)},
    {"Shift+Right", 7797, Extending(CursorKey::Right)},
    {"Shift+Home", 7797, Selecting(GridJump::FirstColumn)},
    {"Shift+End", 7797, Selecting(GridJump::LastColumn)},
    {"Shift+PgUp", 7797, Selecting(GridJump::PageUp)},
    {"Shift+PgDown", 7797, Selecting(GridJump::PageDown)},
    {"Ctrl+Shift+Up", 7797, Selecting(GridJump::FirstRow)},
    {"Ctrl+Shift+Down", 7797, Selecting(GridJump::LastRow)},
    {"Ctrl+Shift+Left", 7797, Selecting(GridJump::FirstColumn)},
    {"Ctrl+Shift+Right", 7797, Selecting(GridJump::LastColumn)},
    {"Ctrl+Shift+Home", 7797, Selecting(GridJump::FirstCell)},
    {"Ctrl+Shift+End", 7797, Selecting(GridJump::LastCell)},
    {"F2", 7798, Of(Kind::EditText)},
    {"Esc", 7799, Of(Kind::Restore)},
    {"F4", 7800, Of(Kind::List)},
    {"Space", 7801, Of(Kind::Option)},
    {"Ctrl+PgDown", 7802, Going(Kind::Grid, true)},
    {"Ctrl+PgUp", 7802, Going(Kind::Grid, false)},
    {"Ctrl+Tab", 7803, Going(Kind::Leave, true)},
    {"Ctrl+Shift+Tab", 7803, Going(Kind::Leave, false)},
};

// The spellings of one key: both Enter keys mean the same, and Shift turns Tab into a key of its own.
int Folded(QKeyCombination keys) {
  if (keys.key() == Qt::Key_Enter)
    return QKeyCombination(keys.keyboardModifiers(), Qt::Key_Return).toCombined();
  if (keys.key() != Qt::Key_Backtab) return keys.toCombined();
  return QKeyCombination(keys.keyboardModifiers() | Qt::ShiftModifier, Qt::Key_Tab).toCombined();
}

std::map<int, GridKey> AllKeys() {
  std::map<int, GridKey> keys;
  for (const CellKeyRow& row : kCellKeys) {
    keys.emplace(Folded(QKeySequence(QString::fromUtf8(row.keys))[0]), row.meaning);
  }
  for (const CommandRow& row : WindowCommands()) {
    if (row.menu != MenuPlace::Edit) continue;
    GridKey meaning = Of(Kind::Command);
    meaning.command = row.id;
    for (const QKeySequence& sequence : KeysOf(row)) keys.emplace(Folded(sequence[0]), meaning);
  }
  return keys;
}

}  // namespace

std::span<const CellKeyRow> CellKeyTable() {
  return kCellKeys;
}

std::vector<ShortcutLine> CellKeyLines(const MessageCatalogue& catalogue) {
  std::vector<ShortcutLine> lines;
  int before = 0;
  for (const CellKeyRow& row : kCellKeys) {
    if (row.caption == before) {
      lines.back().keys += std::string("; ") + row.keys;
    } else {
      lines.push_back({catalogue.GetResString(row.caption), row.keys});
    }
    before = row.caption;
  }
  return lines;
}

std::optional<GridKey> GridKeyOf(const QKeyEvent& event) {
  static const std::map<int, GridKey> kKeys = AllKeys();
  // Keys of the number pad mean the same.
  const QKeyCombination pressed(event.modifiers() & ~Qt::KeypadModifier, static_cast<Qt::Key>(event.key()));
  const auto found = kKeys.find(Folded(pressed));
  return found == kKeys.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace corlune
