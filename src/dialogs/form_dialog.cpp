#include "dialogs/form_dialog.h"

#include <algorithm>
#include <utility>

#include <QApplication>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QTimer>
#include <QVBoxLayout>

#include "dialogs/frm_notices.h"

namespace corlune {

namespace {

constexpr int kTitleSides = 150;  // pixels at 96 dpi beside the title: icon and buttons of the window
constexpr int kLineRows = 2;      // of text, in a line of the form
constexpr int kNoteIcon = 16;     // pixels at 96 dpi
constexpr int kLeastRows = 6;     // lines of text that stay in sight on a low screen
constexpr int kFieldDigits = 12;  // least width of a field, in digits

// Enter is the dialog's, which takes the entry with all others; so is Escape where there is nothing to bring
// back.
class FormField : public EntryField {
 public:
  using EntryField::EntryField;

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool nothingTyped = event->key() == Qt::Key_Escape && text() == OldFieldText();
    if (enter || nothingTyped) {
      event->ignore();
      return;
    }
    EntryField::keyPressEvent(event);
  }
};

// The caption with a letter that no other has: one of its own, at the beginning of a word if possible, else
// one in brackets.
QString WithLetter(const QString& caption, QString& taken) {
  const auto isFree = [&](QChar c) {
    return c.unicode() < 128 && c.isLetter() && !taken.contains(c.toUpper());
  };
  for (const bool wordsOnly : {true, false}) {
    for (qsizetype i = 0; i < caption.size(); ++i) {
      if (!isFree(caption[i]) || (wordsOnly && i > 0 && caption[i - 1].isLetter())) continue;
      taken += caption[i].toUpper();
      return QString(caption).insert(i, QLatin1Char('&'));
    }
  }
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    if (!isFree(QLatin1Char(letter))) continue;
    taken += QLatin1Char(letter);
    return caption + QStringLiteral("(&%1)").arg(QLatin1Char(letter));
  }
  return caption;
}

// The rows scroll on a screen that is too low for them, as an enlarged one can be; what has the focus is in
// sight.
class BodyArea : public QScrollArea {
 public:
  explicit BodyArea(QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    setWidget(new QWidget);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
      if (now != nullptr && widget()->isAncestorOf(now)) ensureWidgetVisible(now);
    });
  }
  QSize sizeHint() const override { return widget()->sizeHint(); }
  QSize minimumSizeHint() const override {
    const int least = kLeastRows * fontMetrics().height();
    return {widget()->minimumSizeHint().width(), std::min(widget()->minimumSizeHint().height(), least)};
  }
};

}  // namespace

FormDialog::FormDialog(const MessageCatalogue& catalogue, Prompts& prompts, const Texts& texts,
                       QWidget* parent)
    : QDialog(parent),
      catalogue_(catalogue),
      prompts_(prompts),
      body_(nullptr),
      noteIcon_(new QLabel(this)),
      note_(new QLabel(this)),
      lastRow_(new QWidget(this)),
      ok_(new QPushButton(Caption(texts.ok), lastRow_)),
      cancel_(new QPushButton(Caption(texts.cancel), lastRow_)) {
  setObjectName(QString::fromUtf8(texts.name));
  setWindowTitle(Caption(texts.title));
  auto* whole = new QVBoxLayout(this);
  auto* area = new BodyArea(this);
  body_ = new QVBoxLayout(area->widget());
  body_->setContentsMargins(0, 0, 0, 0);
  whole->addWidget(area, 1);

  auto* note = new QHBoxLayout;
  note_->setObjectName(QStringLiteral("LabNote"));
  note_->setTextFormat(Qt::PlainText);
  note_->setWordWrap(true);
  note->addWidget(noteIcon_, 0, Qt::AlignTop);
  note->addWidget(note_, 1);
  whole->addLayout(note);
  ShowNote(NoticeLevel::Information, {});

  auto* buttons = new QHBoxLayout(lastRow_);
  buttons->setContentsMargins(0, 0, 0, 0);
  buttons->addStretch();
  ok_->setObjectName(QStringLiteral("cmdOk"));
  ok_->setDefault(true);
  cancel_->setObjectName(QStringLiteral("cmdCancel"));
  for (QPushButton* button : {ok_, cancel_}) {
    // A click leaves the focus in the field: Cancel judges no entry, and OK shows its message.
    button->setFocusPolicy(Qt::TabFocus);
    buttons->addWidget(button);
  }
  connect(ok_, &QPushButton::clicked, this, &FormDialog::accept);
  connect(cancel_, &QPushButton::clicked, this, &FormDialog::reject);
}

FormDialog::~FormDialog() = default;

QStringList FormDialog::Captions(const std::vector<TextId>& ids) const {
  QStringList texts;
  for (const TextId id : ids) texts << Caption(id);
  return texts;
}

QFormLayout* FormDialog::AddRows() {
  auto* rows = new QFormLayout;
  body_->addLayout(rows);
  return rows;
}

QFormLayout* FormDialog::AddFrame(TextId caption) {
  auto* frame = new QGroupBox(Caption(caption), this);
  body_->addWidget(frame);
  return new QFormLayout(frame);
}

EntryField* FormDialog::MakeField(const char* name, FieldKind kind, Take take, TextId hint) {
  EntryField* field = nullptr;
  const auto check = [this, index = fields_.size()](const std::string& text, EntryEnd end) {
    return Check(*fields_[index].edit, fields_[index].take, text, end);
  };
  field = new FormField(check, this);
  field->setObjectName(QString::fromUtf8(name));
  field->setToolTip(Caption(hint));
  field->setAccessibleDescription(Caption(hint));
  field->setMinimumWidth(field->fontMetrics().horizontalAdvance(QLatin1Char('0')) * kFieldDigits);
  if (kind == FieldKind::Text) {
    field->setAlignment(Qt::AlignLeft);
    field->setInputMethodHints(Qt::ImhNone);
  }
  fields_.push_back({field, std::move(take)});
  connect(field, &QLineEdit::textChanged, this, [this, index = fields_.size() - 1](const QString& text) {
    if (!fields_[index].take(text.toStdString())) ShowNote(NoticeLevel::Information, {});
  });
  return field;
}

QComboBox* FormDialog::MakeList(const char* name, const QStringList& choices,
                                std::function<void(int)> chosen) {
  auto* list = new QComboBox(this);
  list->setObjectName(QString::fromUtf8(name));
  list->addItems(choices);
  list->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  list->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  connect(list, &QComboBox::activated, this, std::move(chosen));
  list->setFocusPolicy(Qt::StrongFocus);
  list->installEventFilter(this);
  lists_ << list;
  return list;
}

QPushButton* FormDialog::MakeButton(const char* name, TextId caption, std::function<void()> pressed) {
  auto* button = new QPushButton(Caption(caption), this);
  button->setObjectName(QString::fromUtf8(name));
  button->setFocusPolicy(Qt::TabFocus);
  connect(button, &QPushButton::clicked, this, std::move(pressed));
  buttons_ << button;
  return button;
}

QLabel* FormDialog::AddRow(QFormLayout& rows, const std::string& caption, const QList<QWidget*>& controls) {
  auto* label = new QLabel(QString::fromStdString(caption), this);
  label->setBuddy(controls.front());
  for (QWidget* control : controls) {
    if (control->focusPolicy() != Qt::NoFocus) control->setAccessibleName(label->text());
  }
  captions_ << label;
  if (controls.size() == 1) {
    rows.addRow(label, controls.front());
  } else {
    auto* side = new QHBoxLayout;
    for (QWidget* control : controls) side->addWidget(control);
    rows.addRow(label, side);
  }
  return label;
}

QLabel* FormDialog::AddLine(const char* name) {
  auto* line = new QLabel(this);
  line->setObjectName(QString::fromUtf8(name));
  line->setTextFormat(Qt::PlainText);
  line->setWordWrap(true);
  // A text that changes moves nothing.
  line->setAlignment(Qt::AlignTop);
  line->setMinimumHeight(kLineRows * line->fontMetrics().lineSpacing());
  line->setTextInteractionFlags(Qt::TextSelectableByMouse);
  body_->addWidget(line);
  return line;
}

void FormDialog::Lock(TextId why, const QList<QWidget*>& open) {
  locked_ = true;
  for (const Field& field : fields_) field.edit->setEnabled(open.contains(field.edit));
  for (QComboBox* list : lists_) list->setEnabled(open.contains(list));
  ok_->setEnabled(false);
  cancel_->setDefault(true);
  ShowNote(NoticeLevel::Information, Text(why));
}

void FormDialog::ShowNote(NoticeLevel level, const std::string& text) {
  if (text.empty() && locked_) return;
  const int size = kNoteIcon * logicalDpiX() / 96;
  noteIcon_->setPixmap(NoticeIcon(level, *this).pixmap(size));
  note_->setText(QString::fromStdString(text));
  noteIcon_->setVisible(!text.empty());
  note_->setVisible(!text.empty());
}

void FormDialog::Refuse(const EntryRefusal& refusal, QWidget& at) {
  ShowMessage(prompts_, catalogue_, refusal.Id, PromptIcon::Exclamation, PromptButtons::Ok,
              refusal.Arguments);
  at.setFocus(Qt::OtherFocusReason);
}

bool FormDialog::Check(const EntryField& field, const Take& take, const std::string& text, EntryEnd end) {
  const EntryResult refusal = take(text);
  if (!refusal) return true;
  if (end == EntryEnd::Key) {
    ShowMessage(prompts_, catalogue_, refusal->Id, PromptIcon::Exclamation, PromptButtons::Ok,
                refusal->Arguments);
  } else {
    // A message would take the press away that has left the field.
    const std::string reason = catalogue_.GetResString(refusal->Id, refusal->Arguments);
    const std::string named =
        catalogue_.GetResString(TextId::CellWithText, {field.accessibleName().toStdString(), reason});
    // Behind the old text, which comes back now and ends every note.
    QTimer::singleShot(0, this, [this, named] { ShowNote(NoticeLevel::Warning, named); });
  }
  return false;
}

bool FormDialog::TakeFields() {
  std::vector<Field> order = fields_;
  // What is being typed now comes first.
  std::stable_partition(order.begin(), order.end(),
                        [](const Field& field) { return field.edit->hasFocus(); });
  for (const Field& field : order) {
    if (!field.edit->isEnabled()) continue;
    if (!field.edit->Enter(EntryEnd::Key)) return false;
    // Also a text that nobody has touched, as it came from a file.
    if (const EntryResult refusal = field.take(field.edit->text().toStdString())) {
      Refuse(*refusal, *field.edit);
      field.edit->selectAll();
      return false;
    }
  }
  return true;
}

void FormDialog::accept() {
  if (locked_ || !TakeFields() || !CheckWhole()) return;
  QDialog::accept();
}

bool FormDialog::event(QEvent* event) {
  // All controls are made, and their font is known.
  if (event->type() == QEvent::Polish) {
    ShareLetters();
    AlignCaptions();
    PutButtonsLast();
    setMinimumWidth(fontMetrics().horizontalAdvance(windowTitle()) + kTitleSides * logicalDpiX() / 96);
  }
  return QDialog::event(event);
}

// In the order of Tab, though they were made first. The first control that can be used begins.
void FormDialog::PutButtonsLast() {
  // A new child comes last.
  lastRow_->setParent(nullptr);
  layout()->addWidget(lastRow_);
  QWidget* first = nextInFocusChain();
  while (first != cancel_ && (first->focusPolicy() == Qt::NoFocus || !first->isEnabled())) {
    first = first->nextInFocusChain();
  }
  if (focusWidget() == nullptr) first->setFocus();
}

void FormDialog::ShareLetters() {
  // The shortest have the least to choose from.
  QList<QLabel*> order = captions_;
  std::stable_sort(order.begin(), order.end(),
                   [](const QLabel* a, const QLabel* b) { return a->text().size() < b->text().size(); });
  QString taken;
  for (QLabel* caption : order) caption->setText(WithLetter(caption->text(), taken));
  for (QPushButton* button : buttons_) button->setText(WithLetter(button->text(), taken));
}

// In one column, also where several frames hold them.
void FormDialog::AlignCaptions() {
  int widest = 0;
  for (const QLabel* caption : captions_) widest = std::max(widest, caption->sizeHint().width());
  for (QLabel* caption : captions_) caption->setMinimumWidth(widest);
}

bool FormDialog::eventFilter(QObject* watched, QEvent* event) {
  // The wheel over a list on the way to something else must change nothing.
  if (event->type() == QEvent::Wheel && !static_cast<QWidget*>(watched)->hasFocus()) {
    event->ignore();
    return true;
  }
  return QDialog::eventFilter(watched, event);
}

}  // namespace corlune
