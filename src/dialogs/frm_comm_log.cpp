#include "dialogs/frm_comm_log.h"

#include <utility>

#include <QFile>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

#include "core/files.h"
#include "editing/window_commands.h"

namespace corlune {

namespace {

// A log grows for weeks; its end is what tells why the connection was lost just now.
constexpr qint64 kShownBytes = 1024 * 1024;

// The last `kShownBytes` of the file, from the beginning of a line.
QByteArray TailOf(const std::string& path) {
  QFile file(QString::fromStdString(path));
  if (!file.open(QIODevice::ReadOnly)) return {};
  const bool cut = file.size() > kShownBytes && file.seek(file.size() - kShownBytes);
  if (cut) file.readLine();
  return file.read(kShownBytes);
}

}  // namespace

FrmCommLog::FrmCommLog(const MessageCatalogue& catalogue, std::string path, QWidget* parent)
    : QDialog(parent), catalogue_(catalogue), path_(std::move(path)), text_(new QPlainTextEdit(this)) {
  setObjectName(QStringLiteral("FrmCommLog"));
  setWindowTitle(QString::fromStdString(PlainCaption(catalogue.GetResString(TextId::MenuCommLog))));
  resize(640 * logicalDpiX() / 96, 420 * logicalDpiY() / 96);

  auto* layout = new QVBoxLayout(this);
  auto* name = new QLabel(QString::fromStdString(path_), this);
  name->setTextFormat(Qt::PlainText);
  name->setWordWrap(true);
  layout->addWidget(name);
  text_->setReadOnly(true);
  text_->setLineWrapMode(QPlainTextEdit::NoWrap);
  text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  text_->setPlaceholderText(QString::fromStdString(catalogue.GetResString(TextId::CommLogEmpty)));
  text_->setAccessibleName(windowTitle());
  layout->addWidget(text_);

  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  const auto add = [&](TextId captionId) {
    auto* button = new QPushButton(QString::fromStdString(catalogue.GetResString(captionId)), this);
    buttons->addWidget(button);
    return button;
  };
  QPushButton* update = add(TextId::ButtonUpdate);
  QPushButton* close = add(TextId::ButtonClose);
  layout->addLayout(buttons);
  close->setDefault(true);
  connect(update, &QPushButton::clicked, this, &FrmCommLog::Load);
  connect(close, &QPushButton::clicked, this, &QDialog::accept);
  Load();
}

void FrmCommLog::Load() {
  const QByteArray bytes = TailOf(path_);
  text_->setPlainText(
      QString::fromStdString(DecodeText({bytes.constData(), static_cast<std::size_t>(bytes.size())})));
  text_->verticalScrollBar()->setValue(text_->verticalScrollBar()->maximum());
}

}  // namespace corlune
