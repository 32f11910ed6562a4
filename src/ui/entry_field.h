// EntryField: a number field beside the grids (TxtSeq, TxtStrStep, TxtBranch).
#pragma once

#include <functional>
#include <string>

#include <QLineEdit>

namespace corlune {

enum class EntryEnd {
  Key,   // Enter or Tab: a refusal is shown in a message
  Left,  // the focus went elsewhere, a click perhaps: a message would swallow that click
};

// Enter, Tab and leaving the field hand the text to the check. A refused text is replaced by the text from
// before (OldFieldText), and after a key it is selected again and the field keeps the focus. Escape brings
// the old text back.
class EntryField : public QLineEdit {
  Q_OBJECT

 public:
  // `check` stores an accepted text; false: refused, and the reason has been shown.
  using Check = std::function<bool(const std::string& text, EntryEnd end)>;
  explicit EntryField(QWidget* parent = nullptr);
  void SetCheck(Check check) { check_ = std::move(check); }

  // Shows an accepted text.
  void ShowText(const QString& text);
  const QString& OldFieldText() const { return oldFieldText_; }

  // Hands the text over as that ending does. False: it was refused.
  bool Enter(EntryEnd end);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  bool focusNextPrevChild(bool next) override;

 private:
  Check check_;
  QString oldFieldText_;
  bool checking_ = false;  // the check may show a message, which takes the focus
};

}  // namespace corlune
