#include "ui/cell_entry.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenuBar>

namespace corlune {

namespace {

// A character that begins an entry.
bool Types(const QKeyEvent& event) {
  const Qt::KeyboardModifiers modifiers = event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
  const QString text = event.text();
  return modifiers == Qt::NoModifier && !text.isEmpty() && text.at(0).isPrint() && !text.at(0).isSpace();
}

bool BeginsNumber(const QKeyEvent& event) {
  const QString text = event.text();
  return Types(event) && (text.at(0).isDigit() || QStringLiteral("+-.").contains(text.at(0)));
}

}  // namespace

CellEntry::CellEntry(SequenceEditor& editor, Prompts& prompts, const GridTables& tables, QWidget& panel)
    : editor_(editor),
      prompts_(prompts),
      tables_(tables),
      panel_(panel),
      editors_({tables.Common->viewport(), tables.Channels[0]->viewport(), tables.Branch->viewport()}) {
  connect(&editors_, &CellEditors::Chosen, this,
          [this](int index) { emit Operated(editor_.Choose(editors_.Where(), index)); });
  connect(&editors_, &CellEditors::OptionChosen, this, [this](int index) {
    const CellPlace place = editors_.Where();
    if (Commit()) emit Operated(editor_.ChooseOption(place, index));
  });
  connect(&editors_, &CellEditors::UnitChosen, this, [this](int index) {
    const CellPlace place = editors_.Where();
    if (Commit()) emit Operated(editor_.ChooseUnit(place, index));
  });
  connect(&editors_, &CellEditors::DraggedTo, this, &CellEntry::DraggedTo);
  connect(&editors_, &CellEditors::DragEnded, this, &CellEntry::DragEnded);
  connect(this, &CellEntry::FocusWent, this, &CellEntry::FinishLeaving, Qt::QueuedConnection);
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { FocusChanged(now); });
}

void CellEntry::Open(const CellPlace& place) {
  const auto own = OwnFocus();
  const EditorSpec spec = allowed_ ? EditorFor(editor_.Views(), place) : EditorSpec{};
  if (spec.None()) {
    tables_.Of(place.Area, place.Channel).setFocus(Qt::OtherFocusReason);
    editors_.Close();
    return;
  }
  Put(place, spec);
  editors_.Focus();
}

void CellEntry::Put(const CellPlace& place, const EditorSpec& spec) {
  GridTable& table = tables_.Of(place.Area, place.Channel);
  const GridPosition cell = place.Position();
  editors_.Open(table, table.visualRect(table.At(cell.Row, cell.Column)), place, spec,
                table.Model().CellName(table.At(cell.Row, cell.Column)));
}

void CellEntry::FollowCell() {
  if (!editors_.IsOpen()) return;
  const CellPlace& place = editors_.Where();
  const GridTable& table = tables_.Of(place.Area, place.Channel);
  const GridPosition cell = place.Position();
  editors_.Place(table.visualRect(table.At(cell.Row, cell.Column)));
}

void CellEntry::Close() {
  if (!editors_.IsOpen()) return;
  const auto own = OwnFocus();
  const CellPlace& place = editors_.Where();
  if (editors_.HasFocus()) tables_.Of(place.Area, place.Channel).setFocus(Qt::OtherFocusReason);
  editors_.Close();
}

void CellEntry::Say(const EditMessage& message) {
  const QScopedValueRollback<bool> open(committing_, true);
  MessageRequest request;
  request.text = message.Text;
  request.icon = message.Icon;
  prompts_.Message(request);
}

bool CellEntry::Commit(EntryEnd end) {
  if (committing_) return false;
  if (!editors_.IsOpen()) return true;
  // What an input method still composes belongs to the text.
  if (editors_.HasFocus()) QGuiApplication::inputMethod()->commit();
  if (!editors_.Changed()) return true;
  const QScopedValueRollback<bool> busy(committing_, true);
  const CellPlace place = editors_.Where();
  const EditOutcome outcome = editors_.Spec().List ? editor_.Choose(place, editors_.Choice())
                                                   : editor_.EnterText(place, editors_.Text().toStdString());
  if (!outcome.Accepted) {
    // The text goes back first: the message box takes the focus, which must not enter it once more.
    editors_.Restore();
    if (outcome.Message && end == EntryEnd::Key) Say(*outcome.Message);
    if (outcome.Message && end == EntryEnd::Left) emit NoticeGiven(outcome.Message->Text);
    const auto own = OwnFocus();
    editors_.Focus();
    return false;
  }
  tables_.Refresh(outcome, RowHeight());
  // The open editor now stands for what the cell shows.
  const EditorSpec spec = EditorFor(editor_.Views(), place);
  if (spec.None()) {
    Close();
  } else {
    const auto own = OwnFocus();
    Put(place, spec);
  }
  emit Stored();
  return true;
}

bool CellEntry::Leaves(const GridKey& key) const {
  const EditorSpec& spec = editors_.Spec();
  const bool textOpen = editors_.IsOpen() && spec.Text && spec.TextEnabled;
  const bool changed = textOpen && editors_.Changed();
  const bool inText = textOpen && (editors_.InText() || changed);
  switch (key.kind) {
    case GridKey::Kind::Move:
      return !(editors_.InText() && (key.cursor == CursorKey::Left || key.cursor == CursorKey::Right));
    case GridKey::Kind::Extend:
      return !inText && editor_.Cursor().Selects();
    case GridKey::Kind::Jump: {
      const bool page = key.jump == GridJump::PageUp || key.jump == GridJump::PageDown;
      if (key.extend) return !inText && editor_.Cursor().Selects();
      return !inText || page || key.jump == GridJump::FirstRow || key.jump == GridJump::LastRow;
    }
    case GridKey::Kind::Command:
      switch (key.command) {
        case Command::Initialize:
          return !inText;
        case Command::Copy:
        case Command::Paste:
        case Command::SelectAll:
        case Command::Undo:
        case Command::Redo:
          // Ctrl+Shift+Z and Ctrl+Y alike.
          return !changed;
        default:
          return true;
      }
    case GridKey::Kind::EditText:
      return allowed_;
    case GridKey::Kind::Restore:
      return editors_.IsOpen() && (editors_.Changed() || editors_.InText());
    case GridKey::Kind::List:
      return editors_.IsOpen() && (spec.List || !spec.Units.empty());
    case GridKey::Kind::Option:
      return editors_.IsOpen() && !spec.Options.empty() && !inText;
    case GridKey::Kind::Leave:
    case GridKey::Kind::Grid:
      return true;
  }
  return false;
}

bool CellEntry::Type(QKeyEvent& event, const CellPlace& current) {
  if (!Types(event) || !allowed_) return false;
  if (!editors_.IsOpen()) {
    Open(current);
    if (!editors_.IsOpen()) {
      TellNotInUse(current);
      return false;
    }
  } else if (!editors_.Spec().Text || editors_.Spec().TextEnabled || !BeginsNumber(event)) {
    return false;
  }
  if (editors_.Spec().Text && !editors_.Spec().TextEnabled) {
    const bool canSwitchOn = static_cast<int>(editors_.Spec().Options.size()) > kSwitchOn;
    if (!canSwitchOn) TellNotInUse(current);
    if (!BeginsNumber(event) || !canSwitchOn) return true;
    emit Operated(editor_.ChooseOption(editors_.Where(), kSwitchOn));
  }
  if (!editors_.IsOpen() || !editors_.HasFocus()) return true;
  QCoreApplication::sendEvent(panel_.window()->focusWidget(), &event);
  return true;
}

// A cell without a value takes none; nothing happening at all would look like a dead keyboard.
void CellEntry::TellNotInUse(const CellPlace& place) {
  const GridViews& views = editor_.Views();
  if (views.Cell(place).Text == kNotInUseText) {
    emit NoticeGiven(views.Catalogue().GetResString(TextId::NothingToEnter));
  }
}

void CellEntry::EditText() {
  if (editors_.InText() && !editors_.Changed()) {
    editors_.Restore();
  } else {
    editors_.EditText();
  }
}

void CellEntry::NextOption() {
  const EditorSpec& spec = editors_.Spec();
  const int count = static_cast<int>(spec.Options.size());
  emit Operated(editor_.ChooseOption(editors_.Where(), (spec.ChosenOption + 1) % count));
}

// The focus has gone to another control of this window: what was typed is entered. A message box, a menu or
// another window that takes it does not end the entry; from there it comes back to the editor.
bool CellEntry::EndsEntry(const QWidget* now) const {
  if (now == nullptr || !editors_.IsOpen() || editors_.Owns(now)) return false;
  if (now->window() != panel_.window() || qobject_cast<const QMenuBar*>(now) != nullptr) return false;
  const CellPlace& place = editors_.Where();
  return now != &tables_.Of(place.Area, place.Channel);
}

void CellEntry::FocusChanged(const QWidget* now) {
  // Not inside the focus change, which the refusal's message box would disturb.
  if (!own_ && EndsEntry(now)) emit FocusWent(QPrivateSignal());
}

void CellEntry::FinishLeaving() {
  if (committing_ || !EndsEntry(panel_.window()->focusWidget()) || !Commit()) return;
  Close();
}

}  // namespace corlune
