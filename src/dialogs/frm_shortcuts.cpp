#include "dialogs/frm_shortcuts.h"

#include <QHeaderView>
#include <QKeySequence>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "editing/window_commands.h"

namespace corlune {

namespace {

constexpr QSize kSize{680, 600};  // pixels at 96 dpi

// As the keys are called on this platform.
std::string Spelled(const std::string& keys) {
  QStringList texts;
  for (const QKeySequence& key : QKeySequence::listFromString(QString::fromStdString(keys))) {
    texts << key.toString(QKeySequence::NativeText);
  }
  return texts.join(QStringLiteral(", ")).toStdString();
}

void AddSection(QTreeWidget& list, const std::string& title, const std::vector<ShortcutLine>& lines) {
  auto* section = new QTreeWidgetItem(&list, {QString::fromStdString(title)});
  section->setFirstColumnSpanned(true);
  section->setExpanded(true);
  QFont bold = list.font();
  bold.setBold(true);
  section->setFont(0, bold);
  for (const ShortcutLine& line : lines) {
    new QTreeWidgetItem(section, {QString::fromStdString(line.caption), QString::fromStdString(line.keys)});
  }
}

std::vector<ShortcutLine> LinesOf(MenuPlace menu, const MessageCatalogue& catalogue,
                                  const ControlStates& states) {
  std::vector<ShortcutLine> lines;
  for (const CommandRow& row : WindowCommands()) {
    if (row.menu != menu || !StateOf(row, states).Visible) continue;
    std::string keys = Spelled(row.keys);
    if (row.inCellsOnly) keys = catalogue.GetResString(TextId::KeyInCells, {keys});
    lines.push_back({PlainCaption(catalogue.GetResString(row.caption)), keys});
  }
  return lines;
}

}  // namespace

FrmShortcuts::FrmShortcuts(const MessageCatalogue& catalogue, const std::vector<ShortcutSection>& sections,
                           const ControlStates& states, QWidget* parent)
    : QDialog(parent) {
  const auto text = [&](TextId id) { return QString::fromStdString(catalogue.GetResString(id)); };
  setObjectName(QStringLiteral("FrmShortcuts"));
  setWindowTitle(QString::fromStdString(PlainCaption(catalogue.GetResString(TextId::MenuShortcuts))));
  resize(kSize.width() * logicalDpiX() / 96, kSize.height() * logicalDpiY() / 96);

  auto* layout = new QVBoxLayout(this);
  auto* list = new QTreeWidget(this);
  list->setHeaderLabels({text(TextId::HeadCommand), text(TextId::HeadKeys)});
  list->setRootIsDecorated(false);
  list->setAccessibleName(windowTitle());
  for (const MenuRow& menu : WindowMenus()) {
    AddSection(*list, PlainCaption(catalogue.GetResString(menu.caption)),
               LinesOf(menu.place, catalogue, states));
  }
  for (const ShortcutSection& section : sections) {
    std::vector<ShortcutLine> spelled;
    spelled.reserve(section.lines.size());
    for (const ShortcutLine& line : section.lines) {
      spelled.push_back({line.caption, line.words.empty() ? Spelled(line.keys) : line.words});
    }
    AddSection(*list, catalogue.GetResString(section.title), spelled);
  }
  list->header()->resizeSection(0, width() * 11 / 20);
  list->setWordWrap(true);
  layout->addWidget(list);

  auto* close = new QPushButton(text(TextId::ButtonCloseDialog), this);
  close->setDefault(true);
  connect(close, &QPushButton::clicked, this, &QDialog::accept);
  layout->addWidget(close, 0, Qt::AlignRight);
}

}  // namespace corlune
