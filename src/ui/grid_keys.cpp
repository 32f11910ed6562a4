#include "ui/grid_keys.h"

#include <QKeyEvent>

namespace corlune {

namespace {

constexpr Qt::KeyboardModifiers kControlShift = Qt::ControlModifier | Qt::ShiftModifier;

GridKey Of(GridKey::Kind kind) {
  GridKey key;
  key.kind = kind;
  return key;
}

GridKey Moving(GridKey::Kind kind, CursorKey cursor) {
  GridKey key = Of(kind);
  key.cursor = cursor;
  return key;
}

GridKey Jumping(GridJump jump, bool extend = false) {
  GridKey key = Of(GridKey::Kind::Jump);
  key.jump = jump;
  key.extend = extend;
  return key;
}

GridKey Doing(GridCommand command) {
  GridKey key = Of(GridKey::Kind::Command);
  key.command = command;
  return key;
}

GridKey Going(GridKey::Kind kind, bool forward) {
  GridKey key = Of(kind);
  key.forward = forward;
  return key;
}

std::optional<CursorKey> ArrowOf(int key) {
  switch (key) {
    case Qt::Key_Up:
      return CursorKey::Up;
    case Qt::Key_Down:
      return CursorKey::Down;
    case Qt::Key_Left:
      return CursorKey::Left;
    case Qt::Key_Right:
      return CursorKey::Right;
    default:
      return std::nullopt;
  }
}

// Keys that go as far as the row, column or page does.
std::optional<GridJump> FarKey(int key) {
  switch (key) {
    case Qt::Key_Home:
      return GridJump::FirstColumn;
    case Qt::Key_End:
      return GridJump::LastColumn;
    case Qt::Key_PageUp:
      return GridJump::PageUp;
    case Qt::Key_PageDown:
      return GridJump::PageDown;
    default:
      return std::nullopt;
  }
}

// The same keys and the arrows with Ctrl.
std::optional<GridJump> FarthestKey(int key) {
  switch (key) {
    case Qt::Key_Home:
      return GridJump::FirstCell;
    case Qt::Key_End:
      return GridJump::LastCell;
    case Qt::Key_Up:
      return GridJump::FirstRow;
    case Qt::Key_Down:
      return GridJump::LastRow;
    case Qt::Key_Left:
      return GridJump::FirstColumn;
    case Qt::Key_Right:
      return GridJump::LastColumn;
    default:
      return std::nullopt;
  }
}

std::optional<GridKey> PlainKey(int key) {
  if (const auto arrow = ArrowOf(key)) return Moving(GridKey::Kind::Move, *arrow);
  if (const auto jump = FarKey(key)) return Jumping(*jump);
  switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return Moving(GridKey::Kind::Move, CursorKey::Enter);
    case Qt::Key_Tab:
      return Moving(GridKey::Kind::Move, CursorKey::Tab);
    case Qt::Key_Delete:
      return Doing(GridCommand::Initialize);
    case Qt::Key_F2:
      return Of(GridKey::Kind::EditText);
    case Qt::Key_F4:
      return Of(GridKey::Kind::List);
    case Qt::Key_Escape:
      return Of(GridKey::Kind::Restore);
    case Qt::Key_Space:
      return Of(GridKey::Kind::Option);
    default:
      return std::nullopt;
  }
}

std::optional<GridKey> ControlKey(int key) {
  if (const auto jump = FarthestKey(key)) return Jumping(*jump);
  switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return Doing(GridCommand::AddRow);
    case Qt::Key_C:
      return Doing(GridCommand::Copy);
    case Qt::Key_V:
      return Doing(GridCommand::Paste);
    case Qt::Key_A:
      return Doing(GridCommand::SelectAll);
    case Qt::Key_Z:
      return Doing(GridCommand::Undo);
    case Qt::Key_Y:
      return Doing(GridCommand::Redo);
    case Qt::Key_D:
      return Doing(GridCommand::FillDown);
    case Qt::Key_Tab:
      return Going(GridKey::Kind::Leave, true);
    case Qt::Key_PageDown:
      return Going(GridKey::Kind::Grid, true);
    case Qt::Key_PageUp:
      return Going(GridKey::Kind::Grid, false);
    default:
      return std::nullopt;
  }
}

std::optional<GridKey> ControlShiftKey(int key) {
  if (const auto jump = FarthestKey(key)) return Jumping(*jump, true);
  switch (key) {
    case Qt::Key_C:
      return Doing(GridCommand::CopyText);
    case Qt::Key_V:
      return Doing(GridCommand::PasteText);
    case Qt::Key_Z:
      return Doing(GridCommand::Redo);
    case Qt::Key_D:
      return Doing(GridCommand::DuplicateRows);
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
      return Going(GridKey::Kind::Leave, false);
    default:
      return std::nullopt;
  }
}

std::optional<GridKey> AltKey(int key) {
  switch (key) {
    case Qt::Key_Insert:
      return Doing(GridCommand::InsertRow);
    case Qt::Key_Delete:
      return Doing(GridCommand::DeleteRow);
    case Qt::Key_Up:
      return Doing(GridCommand::RowUp);
    case Qt::Key_Down:
      return Doing(GridCommand::RowDown);
    default:
      return std::nullopt;
  }
}

std::optional<GridKey> ShiftKey(int key) {
  if (const auto arrow = ArrowOf(key)) return Moving(GridKey::Kind::Extend, *arrow);
  if (const auto jump = FarKey(key)) return Jumping(*jump, true);
  if (key == Qt::Key_Backtab || key == Qt::Key_Tab) return Moving(GridKey::Kind::Move, CursorKey::Backtab);
  return std::nullopt;
}

}  // namespace

std::optional<GridKey> GridKeyOf(const QKeyEvent& event) {
  const int key = event.key();
  // Keys of the number pad mean the same.
  const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
  if (modifiers == Qt::NoModifier) {
    return key == Qt::Key_Backtab ? ShiftKey(key) : PlainKey(key);
  }
  if (modifiers == Qt::ControlModifier) return ControlKey(key);
  if (modifiers == kControlShift) return ControlShiftKey(key);
  if (modifiers == Qt::AltModifier) return AltKey(key);
  if (modifiers == Qt::ShiftModifier) return ShiftKey(key);
  return std::nullopt;
}

}  // namespace corlune
