// FrmNotices: the notices that the status bar has shown last.
#pragma once

#include <deque>
#include <string>

#include <QDialog>
#include <QTime>

#include "core/catalogue.h"
#include "core/ports.h"

namespace corlune {

// Something that was said without interrupting.
struct Notice {
  NoticeLevel level = NoticeLevel::Information;
  std::string text;
  QTime time;  // of day, when it was shown
};

// The word for a level, and its icon in the style of the program.
TextId NoticeWord(NoticeLevel level);
QIcon NoticeIcon(NoticeLevel level, const QWidget& widget);

class FrmNotices : public QDialog {
  Q_OBJECT

 public:
  // The latest of `notices` stands first here, and first in the list.
  FrmNotices(const MessageCatalogue& catalogue, const std::deque<Notice>& notices, QWidget* parent = nullptr);
};

}  // namespace corlune
