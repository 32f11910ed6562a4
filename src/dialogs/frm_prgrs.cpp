#include "dialogs/frm_prgrs.h"

#include <algorithm>

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/catalogue.h"
#include "dialogs/app_icon.h"

namespace corlune {

namespace {
constexpr int kLeastWidth = 340;  // pixels at 96 dpi: the longest catalogue text in one line
}  // namespace

class FrmPrgrs::Window : public QDialog {
 public:
  explicit Window(QWidget* owner)
      : QDialog(owner, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint) {
    setObjectName(QStringLiteral("frmPrgrs"));
    setWindowTitle(QString::fromUtf8(kApplicationTitle));
    // At the start it is the only window of the program.
    if (!owner) SetAppIcon(this, QString::fromUtf8(kApplicationIcon), false);
    setMinimumWidth(kLeastWidth * logicalDpiX() / 96);
    auto* layout = new QVBoxLayout(this);
    label_ = new QLabel(this);
    label_->setObjectName(QStringLiteral("lblPrgrs"));
    label_->setWordWrap(true);
    layout->addWidget(label_);
    bar_ = new QProgressBar(this);
    bar_->setObjectName(QStringLiteral("ProgressBar1"));
    layout->addWidget(bar_);
    cancel_ = new QPushButton(this);
    cancel_->setObjectName(QStringLiteral("cmdCancel"));
    cancel_->hide();
    layout->addWidget(cancel_, 0, Qt::AlignHCenter);
    connect(cancel_, &QPushButton::clicked, this, [this] { reject(); });
  }
  void ShowText(const QString& text) {
    label_->setText(text);
    label_->setVisible(!text.isEmpty());
    bar_->setAccessibleName(text);
  }
  void ShowSteps(int done, int steps) {
    bar_->setRange(0, std::max(steps, 1));
    bar_->setValue(done);
  }
  void OfferCancel(const QString& text, const QString& pressed = {}) {
    pressed_ = pressed;
    cancel_->setText(text);
    if (cancel_->isHidden()) QCoreApplication::instance()->installEventFilter(this);
    cancel_->show();
  }
  void Advance() { bar_->setValue(bar_->value() + 1); }
  // Another dialog than the one that it stands over is open.
  bool Blocked() const {
    const QWidget* modal = QApplication::activeModalWidget();
    return modal != nullptr && modal != parentWidget();
  }
  bool Cancelled() const { return cancelled_; }
  bool Painted() const { return painted_; }

 protected:
  // The keyboard stays with the window behind; its Escape cancels what the person waits for.
  bool eventFilter(QObject* watched, QEvent* event) override {
    const bool key = event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
    if (!key || !watched->isWindowType() || static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape ||
        cancelled_ || Blocked() || QApplication::activePopupWidget()) {
      return QDialog::eventFilter(watched, event);
    }
    if (event->type() == QEvent::KeyPress) reject();
    event->accept();
    return true;
  }
  void paintEvent(QPaintEvent* event) override {
    QDialog::paintEvent(event);
    painted_ = true;
  }
  void closeEvent(QCloseEvent* event) override {
    event->ignore();
    reject();
  }
  // The button, Escape, closing: the window stays until the call under way has returned.
  void reject() override {
    if (cancel_->isHidden() || cancelled_) return;
    cancelled_ = true;
    cancel_->setEnabled(false);
    if (!pressed_.isEmpty()) ShowText(label_->text() + QLatin1Char('\n') + pressed_);
  }

 private:
  QLabel* label_;
  QProgressBar* bar_;
  QPushButton* cancel_;
  QString pressed_;
  bool cancelled_ = false;
  bool painted_ = false;
};

FrmPrgrs::FrmPrgrs() = default;

FrmPrgrs::~FrmPrgrs() {
  delete window_;
}

void FrmPrgrs::SetOwner(QWidget* owner) {
  owner_ = owner;
}

void FrmPrgrs::Open(const std::string& text) {
  End();
  // A dialog that waits itself must not block it.
  QWidget* const modal = QApplication::activeModalWidget();
  QWidget* const owner = modal != nullptr ? modal : owner_.data();
  window_ = new Window(owner);
  window_->ShowText(QString::fromStdString(text));
  // The keyboard stays where it is.
  if (owner != nullptr) window_->setAttribute(Qt::WA_ShowWithoutActivating);
}

void FrmPrgrs::Begin(const std::string& text, int steps) {
  Open(text);
  window_->ShowSteps(0, steps);
  window_->show();
}

void FrmPrgrs::ShowWait(const std::string& text, const std::string& cancel, int done, int steps) {
  if (!window_) Open(text);
  window_->ShowText(QString::fromStdString(text));
  window_->ShowSteps(done, steps);
  window_->OfferCancel(QString::fromStdString(cancel));
  window_->show();
}

void FrmPrgrs::OfferCancel(const std::string& cancel, const std::string& pressed) {
  if (window_) window_->OfferCancel(QString::fromStdString(cancel), QString::fromStdString(pressed));
}

bool FrmPrgrs::Painted() const {
  return window_ && window_->Painted();
}

bool FrmPrgrs::Cancelled() const {
  return window_ && window_->Cancelled();
}

void FrmPrgrs::Advance() {
  if (window_) window_->Advance();
}

void FrmPrgrs::End() {
  if (!window_) return;
  window_->hide();
  // A message may be open over it whose parent it is.
  window_->deleteLater();
  window_.clear();
}

}  // namespace corlune
