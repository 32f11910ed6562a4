#include "app/qt_ports.h"

#include <cstdlib>

#include <QApplication>
#include <QEventLoop>
#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>

#include "core/catalogue.h"

namespace corlune {
namespace {

QString Text(const std::string& utf8) {
  return QString::fromStdString(utf8);
}

QString Caption(const std::string& caption) {
  return Text(caption.empty() ? std::string(kApplicationTitle) : caption);
}

QMessageBox::Icon BoxIcon(PromptIcon icon) {
  switch (icon) {
    case PromptIcon::None:
      return QMessageBox::NoIcon;
    case PromptIcon::Information:
      return QMessageBox::Information;
    case PromptIcon::Question:
      return QMessageBox::Question;
    case PromptIcon::Exclamation:
      return QMessageBox::Warning;
    case PromptIcon::Critical:
      return QMessageBox::Critical;
  }
  return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons BoxButtons(PromptButtons buttons) {
  switch (buttons) {
    case PromptButtons::Ok:
      return QMessageBox::Ok;
    case PromptButtons::OkCancel:
      return QMessageBox::Ok | QMessageBox::Cancel;
    case PromptButtons::YesNo:
      return QMessageBox::Yes | QMessageBox::No;
    case PromptButtons::YesNoCancel:
      return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
  }
  return QMessageBox::Ok;
}

}  // namespace

PromptAnswer QtPrompts::Message(const MessageRequest& request) {
  QMessageBox box(BoxIcon(request.icon), Caption(request.caption), Text(request.text),
                  BoxButtons(request.buttons), QApplication::activeWindow());
  box.setTextFormat(Qt::PlainText);
  if (!english_) {
    const struct {
      QMessageBox::StandardButton button;
      const char* text;
    } words[] = {
        {QMessageBox::Cancel, "キャンセル"}, {QMessageBox::Yes, "はい(&Y)"}, {QMessageBox::No, "いいえ(&N)"}};
    for (const auto& word : words) {
      if (auto* button = box.button(word.button)) button->setText(QString::fromUtf8(word.text));
    }
  }
  switch (box.exec()) {
    case QMessageBox::Ok:
      return PromptAnswer::Ok;
    case QMessageBox::Yes:
      return PromptAnswer::Yes;
    case QMessageBox::No:
      return PromptAnswer::No;
    default:
      break;
  }
  switch (request.buttons) {
    case PromptButtons::Ok:
      return PromptAnswer::Ok;
    case PromptButtons::YesNo:
      return PromptAnswer::No;
    default:
      return PromptAnswer::Cancel;
  }
}

std::optional<std::string> QtPrompts::Input(const InputRequest& request) {
  QInputDialog dialog(QApplication::activeWindow());
  dialog.setWindowTitle(Caption(request.caption));
  dialog.setLabelText(Text(request.prompt));
  dialog.setTextValue(Text(request.defaultText));
  if (!english_) dialog.setCancelButtonText(QString::fromUtf8("キャンセル"));
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return dialog.textValue().toStdString();
}

void QtEventPump::HandlePending() {
  QCoreApplication::processEvents();
}

void QtEventPump::SleepUntil(std::uint32_t tick) {
  while (!TickReached(clock_.Now(), tick)) {
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    timer.start(TicksSince(tick, clock_.Now()));
    loop.exec();
  }
}

QtTickSource::QtTickSource() {
  timer_.setInterval(100);
}

void QtTickSource::OnTick(std::function<void()> handler) {
  QObject::connect(&timer_, &QTimer::timeout, &timer_, std::move(handler));
}

void QtTickSource::Enable(bool on) {
  if (on) {
    timer_.start();
  } else {
    timer_.stop();
  }
}

std::string QtFilter(const std::string& filter) {
  static const QRegularExpression kForm(
      QStringLiteral("^\\s*(.*?)\\s*(?:\\(([^)]*)\\))?\\s*\\|\\s*(.*?)\\s*$"));
  const auto match = kForm.match(Text(filter));
  if (!match.hasMatch()) return filter;
  QString patterns = match.captured(3).replace(QLatin1Char(';'), QLatin1Char(' ')).simplified();
  return (match.captured(1) + QStringLiteral(" (") + patterns + QStringLiteral(")")).toStdString();
}

std::optional<std::string> QtFileDialogs::ChooseOpen(const std::string& filter) {
  const QString path = QFileDialog::getOpenFileName(QApplication::activeWindow(), QString(), QString(),
                                                    Text(QtFilter(filter)));
  if (path.isNull()) return std::nullopt;
  return path.toStdString();
}

std::optional<std::string> QtFileDialogs::ChooseSave(const std::string& filter,
                                                     const std::string& suggested) {
  QFileDialog dialog(QApplication::activeWindow(), QString(), QString(), Text(QtFilter(filter)));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  // The suffix belongs to the name before it is checked against existing files.
  dialog.setDefaultSuffix(QStringLiteral("dat"));
  if (!suggested.empty()) dialog.selectFile(Text(suggested));
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  return dialog.selectedFiles().constFirst().toStdString();
}

void QtEndProgram::EndNow(int exitCode) {
  std::_Exit(exitCode);
}

}  // namespace corlune
