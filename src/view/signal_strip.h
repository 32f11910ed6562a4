// SignalStrip: the output of the current step as it will appear, under the grids. The wheel, dragging and
// keys choose the part of the step; by itself it shows a few periods and, beside them, the whole step.
//
// Waveform files are read when the strip has stood still for a moment, so that going through the steps waits
// for none of them; until then a note stands in the signal's place.
#pragma once

#include <optional>

#include <QTimer>
#include <QWidget>

#include "core/catalogue.h"
#include "graph/signal_picture.h"
#include "view/signal_painter.h"

namespace corlune {

class SignalStrip : public QWidget {
  Q_OBJECT

 public:
  explicit SignalStrip(const MessageCatalogue& catalogue, QWidget* parent = nullptr);

  // Repaints only when something is different. Another step is shown from its start again.
  void Show(SignalSubject subject);
  const SignalSubject& Subject() const { return subject_; }
  // What is drawn now.
  const SignalPicture& Picture();
  // The part of the step in the first pane, s.
  AxisWindow Window() const;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool event(QEvent* event) override;

 private:
  void FindFiles();
  void ReadNextFile();
  void Redraw();
  void Describe();
  QString TipAt(double x) const;
  bool ShowsPart() const;
  // The pane under `x`, and the time there.
  std::size_t PaneAt(double x) const;
  double TimeAt(double x, std::size_t pane) const;
  void ZoomBy(double factor, double anchor);
  void MoveTo(double start);

  const MessageCatalogue& catalogue_;
  SignalSubject subject_;
  SignalFiles files_;
  WaveCache cache_;
  QTimer* quiet_;                   // runs out when no further step was chosen
  std::optional<AxisWindow> zoom_;  // none: chosen by the signal itself
  SignalPicture picture_;
  SignalLayout layout_;
  bool valid_ = false;  // picture and layout are those of now
  struct Drag {
    double X;
    std::size_t Pane;
    AxisWindow Window;
  };
  std::optional<Drag> drag_;
};

}  // namespace corlune
