// NoticeBar: what must be said without interrupting, with an icon and the last notices at hand. It lies over
// the panels of the status bar, as the messages of status bars do, so that nothing moves when it comes and
// goes.
#pragma once

#include <deque>
#include <string>

#include <QFrame>

#include "core/catalogue.h"
#include "dialogs/frm_notices.h"

class QLabel;
class QTimer;
class QToolButton;

namespace corlune {

class NoticeBar : public QFrame {
  Q_OBJECT

 public:
  static constexpr std::size_t kKept = 20;  // notices

  // `catalogue` must outlive the bar.
  explicit NoticeBar(const MessageCatalogue& catalogue, QWidget* parent = nullptr);
  // Replaces what is shown. Information goes by itself after a while, warnings and errors stay until they are
  // closed or another takes their place.
  void Say(NoticeLevel level, const std::string& text);
  void Clear() { hide(); }
  // What is shown; empty when nothing is.
  QString Text() const;
  // Pixels that the whole text takes.
  int WantedWidth() const;
  // The latest first.
  const std::deque<Notice>& Last() const { return last_; }

 signals:
  void ListWanted();
  // Another text: the place may have to be wider.
  void Said();

 private:
  void Leave();
  QToolButton* AddButton(const char* name, const QString& sign, TextId meaning);

  const MessageCatalogue& catalogue_;
  QLabel* icon_;
  QLabel* text_;
  QTimer* leave_;
  std::deque<Notice> last_;
};

}  // namespace corlune
