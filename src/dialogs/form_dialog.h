// FormDialog: what the tool dialogs have in common. Rows of captions with fields and lists, each reachable by
// Tab and by a letter of its own; a field that checks its text whenever it changes and is left; a line for
// what must not interrupt; OK and Cancel.
//
// A dialog edits a copy (forms/): every accepted text and every choice goes there at once, so that the dialog
// can show what follows from it. The caller of exec() applies the copy when it was accepted; Cancel, Escape
// and the close button leave nothing behind.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <QDialog>
#include <QList>

#include "core/catalogue.h"
#include "core/ports.h"
#include "editing/value_entry.h"
#include "view/entry_field.h"

class QComboBox;
class QFormLayout;
class QLabel;
class QPushButton;
class QVBoxLayout;

namespace corlune {

class FormDialog : public QDialog {
  Q_OBJECT

 public:
  struct Texts {
    const char* name;  // object name, under which the size is remembered, too
    TextId title;
    TextId ok;
    TextId cancel;
  };

  // A refused field of the whole form has the focus and its message when this returns without closing.
  void accept() override;

 protected:
  // All must outlive the dialog. `prompts` shows the messages of refused entries.
  FormDialog(const MessageCatalogue& catalogue, Prompts& prompts, const Texts& texts, QWidget* parent);
  ~FormDialog() override;

  // Stores a text in the copy, or says why not; then nothing has changed. Called after every change of the
  // text, so it shows nothing; a text that the copy holds already is always accepted.
  using Take = std::function<EntryResult(const std::string& text)>;
  enum class FieldKind { Number, Text };

  // Where the rows go, above the line for notes and the buttons.
  QVBoxLayout& Body() { return *body_; }
  // A framed part of the form with its caption, or one without frame.
  QFormLayout* AddRows();
  QFormLayout* AddFrame(TextId caption);
  // Controls in the order of Tab. `hint`: the tool tip, what is accepted.
  EntryField* MakeField(const char* name, FieldKind kind, Take take, TextId hint);
  QComboBox* MakeList(const char* name, const QStringList& choices, std::function<void(int)> chosen);
  // With a letter of its own; a click leaves the focus where it is.
  QPushButton* MakeButton(const char* name, TextId caption, std::function<void()> pressed);
  // One row; the letter of the caption leads to the first control. Returns the caption.
  QLabel* AddRow(QFormLayout& rows, const std::string& caption, const QList<QWidget*>& controls);
  QLabel* AddRow(QFormLayout& rows, TextId caption, const QList<QWidget*>& controls) {
    return AddRow(rows, Text(caption), controls);
  }
  // A text over the whole width, such as an example; it can be read aloud and copied.
  QLabel* AddLine(const char* name);

  // Nothing can be changed: all fields and lists but `open` are disabled for good, and so is OK; the note
  // says why. After all controls are made.
  void Lock(TextId why, const QList<QWidget*>& open = {});
  bool Locked() const { return locked_; }
  // Empty: no note.
  void ShowNote(NoticeLevel level, const std::string& text);
  // The message of a refusal, then the focus in the control at fault.
  void Refuse(const EntryRefusal& refusal, QWidget& at);
  // The whole form, once all its fields are accepted, before the dialog closes. False: refused, after the
  // message. May pump events.
  virtual bool CheckWhole() { return true; }

  QPushButton& OkButton() { return *ok_; }
  QPushButton& CancelButton() { return *cancel_; }
  const MessageCatalogue& Catalogue() const { return catalogue_; }
  Prompts& Messages() { return prompts_; }
  std::string Text(TextId id) const { return catalogue_.GetResString(id); }
  QString Caption(TextId id) const { return QString::fromStdString(Text(id)); }
  QStringList Captions(const std::vector<TextId>& ids) const;

  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Field {
    EntryField* edit;
    Take take;
  };
  bool Check(const EntryField& field, const Take& take, const std::string& text, EntryEnd end);
  bool TakeFields();
  void ShareLetters();
  void AlignCaptions();
  void PutButtonsLast();

  const MessageCatalogue& catalogue_;
  Prompts& prompts_;
  QVBoxLayout* body_;
  QLabel* noteIcon_;
  QLabel* note_;
  QWidget* lastRow_;  // OK and Cancel
  QPushButton* ok_;
  QPushButton* cancel_;
  std::vector<Field> fields_;
  QList<QComboBox*> lists_;
  QList<QLabel*> captions_;
  QList<QPushButton*> buttons_;
  bool locked_ = false;
};

}  // namespace corlune
