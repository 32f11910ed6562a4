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
    {"Enter", TextId::KeyEnterDown, Moving(CursorKey::Enter)},
    {"Tab", TextId::KeyEnterNext, Moving(CursorKey::Tab)},
    {"Shift+Tab", TextId::KeyEnterNext, Moving(CursorKey::Backtab)},
    {"Up", TextId::KeyEnterArrow, Moving(CursorKey::Up)},
    {"Down", TextId::KeyEnterArrow, Moving(CursorKey::Down)},
    {"Left", TextId::KeyEnterArrow, Moving(CursorKey::Left)},
    {"Right", TextId::KeyEnterArrow, Moving(CursorKey::Right)},
    {"Home", TextId::KeyRowEnds, Jumping(GridJump::FirstColumn)},
    {"Ctrl+Left", TextId::KeyRowEnds, Jumping(GridJump::FirstColumn)},
    {"End", TextId::KeyRowEnds, Jumping(GridJump::LastColumn)},
    {"Ctrl+Right", TextId::KeyRowEnds, Jumping(GridJump::LastColumn)},
    {"Ctrl+Up", TextId::KeyFirstLastRow, Jumping(GridJump::FirstRow)},
    {"Ctrl+Down", TextId::KeyFirstLastRow, Jumping(GridJump::LastRow)},
    {"Ctrl+Home", TextId::KeyGridEnds, Jumping(GridJump::FirstCell)},
    {"Ctrl+End", TextId::KeyGridEnds, Jumping(GridJump::LastCell)},
    {"PgUp", TextId::KeyPage, Jumping(GridJump::PageUp)},
    {"PgDown", TextId::KeyPage, Jumping(GridJump::PageDown)},
    {"Shift+Up", TextId::KeyExtendSelection, Extending(CursorKey::Up)},
    {"Shift+Down", TextId::KeyExtendSelection, Extending(CursorKey::Down)},
    {"Shift+Left", TextId::KeyExtendSelection, Extending(CursorKey::Left)},
    {"Shift+Right", TextId::KeyExtendSelection, Extending(CursorKey::Right)},
    {"Shift+Home", TextId::KeyExtendSelection, Selecting(GridJump::FirstColumn)},
    {"Shift+End", TextId::KeyExtendSelection, Selecting(GridJump::LastColumn)},
    {"Shift+PgUp", TextId::KeyExtendSelection, Selecting(GridJump::PageUp)},
    {"Shift+PgDown", TextId::KeyExtendSelection, Selecting(GridJump::PageDown)},
    {"Ctrl+Shift+Up", TextId::KeyExtendSelection, Selecting(GridJump::FirstRow)},
    {"Ctrl+Shift+Down", TextId::KeyExtendSelection, Selecting(GridJump::LastRow)},
    {"Ctrl+Shift+Left", TextId::KeyExtendSelection, Selecting(GridJump::FirstColumn)},
    {"Ctrl+Shift+Right", TextId::KeyExtendSelection, Selecting(GridJump::LastColumn)},
    {"Ctrl+Shift+Home", TextId::KeyExtendSelection, Selecting(GridJump::FirstCell)},
    {"Ctrl+Shift+End", TextId::KeyExtendSelection, Selecting(GridJump::LastCell)},
    {"F2", TextId::KeyEditText, Of(Kind::EditText)},
    {"Esc", TextId::KeyBringBack, Of(Kind::Restore)},
    {"F4", TextId::KeyOpenList, Of(Kind::List)},
    {"Space", TextId::KeyNextOption, Of(Kind::Option)},
    {"Ctrl+PgDown", TextId::KeyNextGrid, Going(Kind::Grid, true)},
    {"Ctrl+PgUp", TextId::KeyNextGrid, Going(Kind::Grid, false)},
    {"Ctrl+Tab", TextId::KeyLeaveGrids, Going(Kind::Leave, true)},
    {"Ctrl+Shift+Tab", TextId::KeyLeaveGrids, Going(Kind::Leave, false)},
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
  std::optional<TextId> before;
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

std::vector<ShortcutLine> GraphKeyLines(const MessageCatalogue& catalogue) {
  const auto text = [&catalogue](TextId id) { return catalogue.GetResString(id); };
  return {{text(TextId::KeyViewStep), "Left; Right"},
          {text(TextId::KeyViewEnds), "Home; End"},
          {text(TextId::KeyViewScroll), "PgUp; PgDown"},
          {text(TextId::KeyViewToCell), "Enter"},
          {text(TextId::KeyViewDrag), {}, text(TextId::KeyViewDragKeys)}};
}

std::optional<GridKey> GridKeyOf(const QKeyEvent& event) {
  static const std::map<int, GridKey> kKeys = AllKeys();
  // Keys of the number pad mean the same.
  const QKeyCombination pressed(event.modifiers() & ~Qt::KeypadModifier, static_cast<Qt::Key>(event.key()));
  const auto found = kKeys.find(Folded(pressed));
  return found == kKeys.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace corlune
