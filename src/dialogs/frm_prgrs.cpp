#include "dialogs/frm_prgrs.h"

#include <QCloseEvent>
#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

#include "core/catalogue.h"

namespace corlune {

namespace {
constexpr int kLeastWidth = 340;  // pixels at 96 dpi: the longest catalogue text in one line
}  // namespace

class FrmPrgrs::Window : public QDialog {
 public:
  Window(const QString& text, int steps, QWidget* owner)
      : QDialog(owner, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint) {
    setObjectName(QStringLiteral("frmPrgrs"));
    setWindowTitle(QString::fromUtf8(kApplicationTitle));
    setMinimumWidth(kLeastWidth * logicalDpiX() / 96);
    auto* layout = new QVBoxLayout(this);
    auto* label = new QLabel(text, this);
    label->setObjectName(QStringLiteral("lblPrgrs"));
    label->setWordWrap(true);
    label->setVisible(!text.isEmpty());
    layout->addWidget(label);
    bar_ = new QProgressBar(this);
    bar_->setObjectName(QStringLiteral("ProgressBar1"));
    bar_->setAccessibleName(text);
    bar_->setRange(0, steps > 0 ? steps : 1);
    layout->addWidget(bar_);
  }
  void Advance() { bar_->setValue(bar_->value() + 1); }

 protected:
  void closeEvent(QCloseEvent* event) override { event->ignore(); }
  void reject() override {}  // Escape

 private:
  QProgressBar* bar_;
};

FrmPrgrs::FrmPrgrs() = default;

FrmPrgrs::~FrmPrgrs() {
  delete window_;
}

void FrmPrgrs::SetOwner(QWidget* owner) {
  owner_ = owner;
}

void FrmPrgrs::Begin(const std::string& text, int steps) {
  End();
  window_ = new Window(QString::fromStdString(text), steps, owner_);
  // The keyboard stays where it is.
  window_->setAttribute(Qt::WA_ShowWithoutActivating);
  window_->show();
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
