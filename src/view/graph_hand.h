// GraphHand: mouse and keys on the graphs. A press or key selects a step, what is under the pointer can be
// dragged, and the view shows the sequence with the dragged value until it is let go.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <QObject>
#include <QPointF>

#include "graph/graph_drag.h"
#include "view/graph_canvas.h"

class QMouseEvent;

namespace corlune {

struct GraphHandlers {
  // Makes a step (slot) the current one of the grids. False: an entry that is being typed was refused, and
  // has the focus. May show a prompt.
  std::function<bool(int step)> selectStep;
  std::function<void()> goToCell;  // the focus goes to the current cell
  // Enters a text as if it had been typed into the cell; a refusal shows its message.
  std::function<void(const CellPlace& place, const std::string& text)> enterValue;
};

class GraphHand : public QObject {
  Q_OBJECT

 public:
  // Draws a sequence as the view draws its own.
  using Draw = std::function<GraphPicture(const SequenceData& sequence)>;

  // All must outlive this object.
  GraphHand(GraphCanvas& canvas, const AppState& state, const ModelDefinition& definition,
            const SequenceData& sequence, const MessageCatalogue& catalogue, GraphHandlers handlers,
            Draw draw);

  // Whether values can be entered at present; a drag under way ends without an entry when not.
  void AllowEntries(bool on);
  bool Dragging() const { return drag_ != nullptr; }
  // What is dragged goes back.
  void Cancel();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Grip {
    DragHandle Handle;
    std::size_t Area = 0;
    QPointF At;
  };

  std::optional<Grip> GripAt(const QPointF& place) const;
  bool OnViewport(QEvent& event);
  bool OnCanvas(QEvent& event);
  void Press(const QPointF& place);
  void Move(const QMouseEvent& event);
  void Hover(const QPointF& place);
  void Release();
  void End();
  bool Key(int key);
  bool Select(int step, GraphCanvas::Scroll scroll);

  GraphCanvas& canvas_;
  const AppState& state_;
  const ModelDefinition& definition_;
  const SequenceData& sequence_;
  const MessageCatalogue& catalogue_;
  GraphHandlers handlers_;
  Draw draw_;
  bool allowed_ = false;
  std::optional<Grip> grip_;         // the button went down on it
  std::unique_ptr<ValueDrag> drag_;  // the pointer has moved since
  QPointF last_;
};

}  // namespace corlune
