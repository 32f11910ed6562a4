#include "app/qt_ports.h"

#include <cstdlib>

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QEventLoop>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QLineEdit>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QStandardPaths>

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

QMessageBox::StandardButton BoxButton(PromptAnswer answer) {
  switch (answer) {
    case PromptAnswer::Ok:
      return QMessageBox::Ok;
    case PromptAnswer::Cancel:
      return QMessageBox::Cancel;
    case PromptAnswer::Yes:
      return QMessageBox::Yes;
    case PromptAnswer::No:
      return QMessageBox::No;
  }
  return QMessageBox::NoButton;
}

}  // namespace

QWidget* DialogOwner::Get() const {
  if (QWidget* modal = QApplication::activeModalWidget()) return modal;
  // The focus goes back to the owner: the sequence view keeps it when it asked. Progress windows close.
  if (auto* active = qobject_cast<QMainWindow*>(QApplication::activeWindow())) return active;
  return window_;
}

void QtPrompts::StopAsking() {
  asking_ = false;
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    auto* dialog = qobject_cast<QDialog*>(widget);
    if (dialog && dialog->isModal()) dialog->reject();
  }
}

PromptAnswer QtPrompts::Message(const MessageRequest& request) {
  if (!asking_) return request.Unanswered();
  // On the heap: its owner may be gone when it is answered.
  QPointer<QMessageBox> box = new QMessageBox(BoxIcon(request.icon), Caption(request.caption),
                                              Text(request.text), BoxButtons(request.buttons), owner_.Get());
  box->setTextFormat(Qt::PlainText);
  if (!english_) {
    const struct {
      QMessageBox::StandardButton button;
      const char* text;
    } words[] = {
        {QMessageBox::Cancel, "キャンセル"}, {QMessageBox::Yes, "はい(&Y)"}, {QMessageBox::No, "いいえ(&N)"}};
    for (const auto& word : words) {
      if (auto* button = box->button(word.button)) button->setText(QString::fromUtf8(word.text));
    }
  }
  box->setEscapeButton(BoxButton(request.Unanswered()));
  if (request.escape) box->setDefaultButton(BoxButton(*request.escape));
  const int pressed = box->exec();
  delete box;
  for (const PromptAnswer answer :
       {PromptAnswer::Ok, PromptAnswer::Cancel, PromptAnswer::Yes, PromptAnswer::No}) {
    if (pressed == BoxButton(answer)) return answer;
  }
  return request.Unanswered();
}

std::optional<std::string> QtPrompts::Input(const InputRequest& request) {
  if (!asking_) return std::nullopt;
  QPointer<QInputDialog> dialog = new QInputDialog(owner_.Get());
  dialog->setWindowTitle(Caption(request.caption));
  dialog->setLabelText(Text(request.prompt));
  dialog->setTextValue(Text(request.defaultText));
  if (!english_) dialog->setCancelButtonText(QString::fromUtf8("キャンセル"));
  std::optional<std::string> text;
  if (dialog->exec() == QDialog::Accepted && dialog) text = dialog->textValue().toStdString();
  delete dialog;
  return text;
}

void QtEventPump::HandlePending() {
  QCoreApplication::processEvents();
}

void QtEventPump::SleepUntil(std::uint32_t tick) {
  for (std::int32_t left = TicksSince(tick, clock_.Now()); left > 0; left = TicksSince(tick, clock_.Now())) {
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    timer.start(left);
    loop.exec();
  }
}

QtTickSource::QtTickSource() {
  timer_.setInterval(100);
  // The monitor counts its polls from the moment the timer was switched on.
  timer_.setTimerType(Qt::PreciseTimer);
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
  static const QRegularExpression kName(QStringLiteral("^\\s*(.*?)\\s*(?:\\([^)]*\\))?\\s*$"));
  const QStringList parts = Text(filter).split(QLatin1Char('|'));
  QStringList forms;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    QString patterns = parts[i + 1];
    patterns = patterns.replace(QLatin1Char(';'), QLatin1Char(' ')).simplified();
    forms << kName.match(parts[i]).captured(1) + QStringLiteral(" (") + patterns + QStringLiteral(")");
  }
  return forms.isEmpty() ? filter : forms.join(QStringLiteral(";;")).toStdString();
}

std::string FilterSuffix(const std::string& filter) {
  static const QRegularExpression kSuffix(QStringLiteral("\\|[^|]*?\\*\\.(\\w+)"));
  return kSuffix.match(Text(filter)).captured(1).toStdString();
}

QString QtFileDialogs::Folder() const {
  if (!folder_.isEmpty()) return folder_;
  const std::string present = presentFile_ ? presentFile_() : std::string();
  if (!present.empty()) return QFileInfo(Text(present)).absolutePath();
  const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  return QFileInfo(documents).isDir() ? documents : QDir::homePath();
}

bool QtFileDialogs::Choose(QFileDialog& dialog) {
  dialog.setDirectory(Folder());
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return false;
  folder_ = dialog.directory().absolutePath();
  return true;
}

std::optional<std::string> QtFileDialogs::ChooseOpen(const std::string& filter) {
  QFileDialog dialog(owner_.Get(), QString(), QString(), Text(QtFilter(filter)));
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  // A name that does not exist is told by the session, in the catalogue's words.
  dialog.setFileMode(QFileDialog::AnyFile);
  if (!Choose(dialog)) return std::nullopt;
  return dialog.selectedFiles().constFirst().toStdString();
}

std::vector<std::string> QtFileDialogs::ChooseOpenSeveral(const std::string& filter) {
  QFileDialog dialog(owner_.Get(), QString(), QString(), Text(QtFilter(filter)));
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  dialog.setFileMode(QFileDialog::ExistingFiles);
  std::vector<std::string> paths;
  if (!Choose(dialog)) return paths;
  for (const QString& path : dialog.selectedFiles()) paths.push_back(path.toStdString());
  return paths;
}

std::optional<std::string> QtFileDialogs::ChooseSave(const std::string& filter,
                                                     const std::string& suggested) {
  QFileDialog dialog(owner_.Get(), QString(), QString(), Text(QtFilter(filter)));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  // The suffix belongs to the name before it is checked against existing files.
  dialog.setDefaultSuffix(Text(FilterSuffix(filter)));
  if (!suggested.empty()) {
    folder_ = QFileInfo(Text(suggested)).absolutePath();
    dialog.selectFile(QFileInfo(Text(suggested)).fileName());
  }
  if (!Choose(dialog)) return std::nullopt;
  return dialog.selectedFiles().constFirst().toStdString();
}

void QtEndProgram::EndNow(int exitCode) {
  std::_Exit(exitCode);
}

}  // namespace corlune
