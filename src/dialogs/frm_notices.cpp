#include "dialogs/frm_notices.h"

#include <QHeaderView>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "editing/window_commands.h"

namespace corlune {

namespace {

constexpr QSize kSize{640, 320};  // pixels at 96 dpi
constexpr const char* kTimeForm = "HH:mm:ss";

}  // namespace

TextId NoticeWord(NoticeLevel level) {
  switch (level) {
    case NoticeLevel::Information:
      return TextId::SeverityInformation;
    case NoticeLevel::Warning:
      return TextId::SeverityWarning;
    case NoticeLevel::Error:
      return TextId::SeverityError;
  }
  return TextId::SeverityInformation;
}

QIcon NoticeIcon(NoticeLevel level, const QWidget& widget) {
  const auto icon = level == NoticeLevel::Error     ? QStyle::SP_MessageBoxCritical
                    : level == NoticeLevel::Warning ? QStyle::SP_MessageBoxWarning
                                                    : QStyle::SP_MessageBoxInformation;
  return widget.style()->standardIcon(icon, nullptr, &widget);
}

FrmNotices::FrmNotices(const MessageCatalogue& catalogue, const std::deque<Notice>& notices, QWidget* parent)
    : QDialog(parent) {
  const auto text = [&](TextId id) { return QString::fromStdString(catalogue.GetResString(id)); };
  setObjectName(QStringLiteral("FrmNotices"));
  setWindowTitle(QString::fromStdString(PlainCaption(catalogue.GetResString(TextId::MenuNotices))));
  resize(kSize.width() * logicalDpiX() / 96, kSize.height() * logicalDpiY() / 96);

  auto* layout = new QVBoxLayout(this);
  auto* list = new QTreeWidget(this);
  list->setHeaderLabels({text(TextId::HeadTime), text(TextId::HeadNotice)});
  list->setRootIsDecorated(false);
  list->setWordWrap(true);
  list->setAccessibleName(windowTitle());
  for (const Notice& notice : notices) {
    auto* line = new QTreeWidgetItem(
        list, {notice.time.toString(QLatin1String(kTimeForm)), QString::fromStdString(notice.text)});
    line->setIcon(0, NoticeIcon(notice.level, *this));
    line->setToolTip(0, text(NoticeWord(notice.level)));
    line->setData(0, Qt::AccessibleTextRole,
                  text(NoticeWord(notice.level)) + QLatin1Char(' ') + line->text(0));
  }
  list->resizeColumnToContents(0);
  layout->addWidget(list);
  if (notices.empty()) {
    list->hide();
    layout->addWidget(new QLabel(text(TextId::NoNotices), this), 1, Qt::AlignCenter);
  }

  auto* close = new QPushButton(text(TextId::ButtonCloseDialog), this);
  close->setDefault(true);
  connect(close, &QPushButton::clicked, this, &QDialog::accept);
  layout->addWidget(close, 0, Qt::AlignRight);
}

}  // namespace corlune
