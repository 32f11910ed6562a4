// GraphCanvas: the scrolling, zooming surface that shows a GraphPicture, the selected step, the step under
// way and the run marker. It shows only; mouse and keys are GraphHand's, but for those that scroll and zoom.
//
// The drawing is kept as a picture; moving the marker repaints two narrow strips of it.
#pragma once

#include <functional>
#include <optional>

#include <QAbstractScrollArea>
#include <QPixmap>

#include "graph/graph_picture.h"
#include "view/graph_painter.h"

namespace corlune {

// What is read out under the pointer and by assistive tools.
struct GraphTexts {
  std::function<std::string(std::size_t area, int step)> tip;  // of a place: area of the picture and step
  std::function<std::string(const LoopBracket& bracket)> loopTip;
  std::function<std::string(const std::string& label)> stepName;
  std::string running;
};

class GraphCanvas : public QAbstractScrollArea {
  Q_OBJECT

 public:
  explicit GraphCanvas(GraphTexts texts, QWidget* parent = nullptr);

  // Repaints when the picture differs from the one shown.
  void ShowPicture(GraphPicture picture);
  const GraphPicture& Picture() const { return picture_; }

  // While held, neither the length of the axis nor the ranges of the areas follow the pictures shown: what is
  // dragged must not move the scale that it is measured by.
  void HoldScale(bool on);

  // The step selected in the grids; none: no step. Another one is scrolled into view, unless it was pressed
  // where it stands.
  enum class Scroll { IntoView, Leave };
  void ShowSelectedStep(std::optional<int> step, Scroll scroll = Scroll::IntoView);
  std::optional<int> SelectedStep() const { return selected_; }
  // Scrolls a step into view that is not wholly there.
  void ScrollToStep(int step);
  // The step under way, in `color` of the definition; none: no step. A step that has come up is scrolled into
  // view.
  void ShowCurrentStep(std::optional<int> step, Color color);
  std::optional<int> CurrentStep() const { return step_; }
  // The run marker at an axis position; none hides it. A marker that was in view stays in view.
  void ShowMarker(std::optional<double> position, Color color);
  std::optional<double> Marker() const { return marker_; }
  // Columns of the viewport that the marker at `position` covers.
  QRect MarkerStrip(double position) const;
  // A text beside a place of the viewport, in sight; empty: none.
  void ShowLabel(const QString& text, const QPoint& place);
  const QString& Label() const { return label_; }

  // Row 1..count of the first step in view; 0 without steps.
  int TopRow() const;
  AxisWindow Window() const;
  PlotScale Scale(std::size_t area) const;

  void ZoomIn() { ZoomBy(kZoomStep, PlotCenter()); }
  void ZoomOut() { ZoomBy(1 / kZoomStep, PlotCenter()); }
  void ShowAll();
  double Zoom() const { return zoom_; }

  // The area whose plot, and the step whose column, is at a place of the viewport. A step's column reaches
  // from its number down.
  std::optional<std::size_t> AreaAt(const QPointF& place) const;
  std::optional<int> ColumnAt(const QPointF& place) const;
  // The visible part of a step's column; empty when it is out of sight.
  QRect StepRect(int step) const;
  // Text at a place of the viewport; empty where there is no graph.
  QString TipAt(const QPoint& place) const;

  // For assistive tools; the step must be there.
  int StepCount() const { return static_cast<int>(picture_.Spans.size()); }
  QString StepName(int step) const;
  QString StepText(int step) const;  // its time, and what its tips read in all areas
  QString RunningText() const { return QString::fromStdString(texts_.running); }

  QSize sizeHint() const override;

 signals:
  // An assistive tool presses a step.
  void StepPressed(int step);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  bool viewportEvent(QEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  static constexpr double kZoomStep = 1.25;

  double AxisLength() const;
  double PlotCenter() const { return layout_.PlotLeft + layout_.PlotWidth / 2; }
  double DefaultZoom() const;
  void ZoomBy(double factor, double anchor);
  // Places everything anew; keeps the axis position at the left edge of the plot at `start`.
  void Arrange(double start);
  void Redraw();
  void PaintMoving(QPainter& painter);
  void PaintSelection(QPainter& painter);
  void PaintNumber(QPainter& painter, int step, const QColor& fill, const QColor& text) const;
  void PaintLabel(QPainter& painter);
  QRect NumberRect(int step) const;
  void UpdateColumn(std::optional<int> step);
  bool IsStep(std::optional<int> step) const {
    return step && *step >= 0 && static_cast<std::size_t>(*step) < picture_.Spans.size();
  }
  void ScrollTo(double start);

  GraphTexts texts_;
  GraphPicture picture_;
  GraphLayout layout_;
  QPixmap layer_;
  bool layerValid_ = false;
  double zoom_ = 1;
  bool zoomed_ = false;  // by the user; else the zoom follows window and sequence
  bool arranging_ = false;
  bool held_ = false;
  double heldLength_ = 1;  // of the axis
  std::optional<int> selected_;
  QString label_;
  QRect labelBox_;
  std::optional<int> step_;
  Color stepColor_;
  std::optional<double> marker_;
  Color markerColor_;
};

}  // namespace corlune
