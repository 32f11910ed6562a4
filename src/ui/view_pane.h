// ViewPane: the frame of a sequence view that is docked in the main window: a caption with the buttons that
// float and close it, and the view below.
#pragma once

#include <functional>
#include <utility>
#include <vector>

#include <QStyle>
#include <QWidget>

#include "core/catalogue.h"
#include "editing/window_commands.h"

class QToolButton;

namespace corlune {

class ViewPane : public QWidget {
  Q_OBJECT

 public:
  // `run` gets ViewFloat or ViewClose.
  ViewPane(const MessageCatalogue& catalogue, const std::function<void(Command)>& run,
           QWidget* parent = nullptr);
  // Takes the view in as a child, until it gets another parent.
  void Take(QWidget& view);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void ShowIcons();

  std::vector<std::pair<QToolButton*, QStyle::StandardPixmap>> icons_;
};

}  // namespace corlune
