#include "dialogs/frm_about.h"

#include <QApplication>
#include <QFont>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/time_text.h"

namespace corlune {

namespace {

constexpr int kIconSize = 64;        // pixels at 96 dpi
constexpr int kLeastWidth = 380;     // pixels at 96 dpi
constexpr double kTitleScale = 1.6;  // of the window font

QLabel* AddLabel(QVBoxLayout* layout, const char* name, const std::string& text) {
  auto* label = new QLabel(QString::fromStdString(text));
  label->setObjectName(QString::fromUtf8(name));
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  label->setFocusPolicy(Qt::NoFocus);
  layout->addWidget(label);
  return label;
}

std::string LibraryLine(const MessageCatalogue& catalogue, TextId wellId, const std::string& problem) {
  // The id behind the one for "no problem" is the heading of a problem.
  return problem.empty() ? catalogue.GetResString(wellId)
                         : catalogue.GetResString(Next(wellId, 1)) + "\n" + problem;
}

}  // namespace

std::string VersionLine(const MessageCatalogue& catalogue, const AboutFacts& facts) {
  std::string line = catalogue.GetResString(TextId::AboutVersion) + " " + facts.version + ".0";
  if (facts.programDate.isValid()) {
    line += " " + AboutDate(facts.programDate.year(), facts.programDate.month(), facts.programDate.day());
  }
  return line;
}

std::string LibraryLines(const MessageCatalogue& catalogue, const AboutFacts& facts) {
  std::string lines = LibraryLine(catalogue, TextId::InstrumentLibraryGood, facts.instrumentProblem);
  for (const std::string& line : facts.libraries) lines += "\n" + line;
  return lines + "\n" + LibraryLine(catalogue, TextId::CompilerGood, facts.compilerProblem);
}

FrmAbout::FrmAbout(const MessageCatalogue& catalogue, const AboutFacts& facts, QWidget* parent)
    : QDialog(parent) {
  setObjectName(QStringLiteral("frmAbout"));
  setWindowTitle(QString::fromStdString(catalogue.GetResString(TextId::AboutTitle)));
  setMinimumWidth(kLeastWidth * logicalDpiX() / 96);

  auto* layout = new QVBoxLayout(this);
  auto* head = new QHBoxLayout;
  auto* titles = new QVBoxLayout;
  const QIcon icon = parent ? parent->windowIcon() : QApplication::windowIcon();
  if (!icon.isNull()) {
    auto* picture = new QLabel(this);
    picture->setPixmap(icon.pixmap(kIconSize * logicalDpiX() / 96));
    head->addWidget(picture, 0, Qt::AlignTop);
  }
  AddLabel(titles, "lblTitle1", catalogue.GetResString(TextId::AboutKind));
  QLabel* title = AddLabel(titles, "lblTitle2", catalogue.GetResString(TextId::AboutName));
  QFont large = title->font();
  large.setPointSizeF(large.pointSizeF() * kTitleScale);
  large.setBold(true);
  title->setFont(large);
  AddLabel(titles, "lblVersion", VersionLine(catalogue, facts));
  head->addLayout(titles, 1);
  layout->addLayout(head);
  AddLabel(layout, "lblNotice", catalogue.GetResString(TextId::AboutNotice));

  auto* libraries =
      new QGroupBox(QString::fromStdString(catalogue.GetResString(TextId::LibrariesFrame)), this);
  auto* lines = new QVBoxLayout(libraries);
  AddLabel(lines, "lblLibraries", LibraryLines(catalogue, facts));
  layout->addWidget(libraries);

  auto* ok = new QPushButton(QString::fromStdString(catalogue.GetResString(TextId::AboutOk)), this);
  ok->setObjectName(QStringLiteral("cmdOk"));
  ok->setDefault(true);
  ok->setFocus();
  connect(ok, &QPushButton::clicked, this, &QDialog::accept);
  layout->addWidget(ok, 0, Qt::AlignRight);
}

}  // namespace corlune
