// EntryField: a number field of the main window or the sequence view (TxtSeq, TxtStrStep, TxtBranch).
#pragma once

#include <functional>
#include <string>

#include <QLineEdit>

namespace corlune {

enum class EntryEnd {
  Key,   // Enter, Tab or a command: a refusal is shown in a message
  Left,  // the focus went elsewhere, a click perhaps: a message would swallow that click
};

// Alt with a character: meant for a menu, never a text.
bool IsMenuLetter(const QKeyEvent& key);

// Enter, Tab, leaving the field and every command hand the text to the check. A refused text is replaced by
// the one stored last, and after a key it is selected and has the focus. Escape brings the stored text back.
// A menu, a message or another window does not end the entry: it stands until one of these comes.
class EntryField : public QLineEdit {
  Q_OBJECT

 public:
  // `check` stores an accepted text; false: refused, and the reason has been shown. May pump events.
  using Check = std::function<bool(const std::string& text, EntryEnd end)>;
  explicit EntryField(Check check, QWidget* parent = nullptr);

  // Shows the stored value. An entry that stands in the field is given up only for another value.
  void ShowText(const QString& text);
  // The text stored last, whatever is being typed.
  const QString& OldFieldText() const { return oldFieldText_; }

  // Hands the text over as that ending does. False: it was refused, or its message is still open.
  bool Enter(EntryEnd end);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  bool focusNextPrevChild(bool next) override;
  bool event(QEvent* event) override;

 private:
  Check check_;
  QString oldFieldText_;
  bool checking_ = false;  // the check may show a message, which takes the focus
};

}  // namespace corlune
