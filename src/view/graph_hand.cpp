#include "view/graph_hand.h"

#include <algorithm>
#include <utility>

#include <QCursor>
#include <QKeyEvent>
#include <QMouseEvent>

namespace corlune {

namespace {

constexpr double kStartDistance = 3;  // pixels: a press that moves less only selects

}  // namespace

GraphHand::GraphHand(GraphCanvas& canvas, const AppState& state, const ModelDefinition& definition,
                     const SequenceData& sequence, const MessageCatalogue& catalogue, GraphHandlers handlers,
                     Draw draw)
    : canvas_(canvas),
      state_(state),
      definition_(definition),
      sequence_(sequence),
      catalogue_(catalogue),
      handlers_(std::move(handlers)),
      draw_(std::move(draw)) {
  canvas_.installEventFilter(this);
  canvas_.viewport()->installEventFilter(this);
  canvas_.viewport()->setMouseTracking(true);
  connect(&canvas_, &GraphCanvas::StepPressed, this,
          [this](int step) { Select(step, GraphCanvas::Scroll::IntoView); });
}

void GraphHand::AllowEntries(bool on) {
  allowed_ = on && handlers_.enterValue;
  if (allowed_) return;
  Cancel();
  canvas_.viewport()->unsetCursor();
}

std::optional<GraphHand::Grip> GraphHand::GripAt(const QPointF& place) const {
  const auto area = canvas_.AreaAt(place);
  if (!allowed_ || !area) return std::nullopt;
  const auto handle = HandleAt(sequence_, definition_, canvas_.Picture(), *area, canvas_.Scale(*area),
                               {place.x(), place.y()});
  if (!handle) return std::nullopt;
  return Grip{*handle, *area, place};
}

bool GraphHand::Select(int step, GraphCanvas::Scroll scroll) {
  const std::optional<int> before = canvas_.SelectedStep();
  canvas_.ShowSelectedStep(step, scroll);
  if (!handlers_.selectStep || handlers_.selectStep(step)) return true;
  canvas_.ShowSelectedStep(before, GraphCanvas::Scroll::Leave);
  return false;
}

void GraphHand::Press(const QPointF& place) {
  Cancel();
  const auto column = canvas_.ColumnAt(place);
  if (!column) return;
  const auto grip = GripAt(place);
  const int step = grip ? grip->Handle.Step : *column;
  if (!Select(step, GraphCanvas::Scroll::Leave)) return;
  // An entry that was taken first can have moved everything.
  grip_ = GripAt(place);
  if (grip_ && grip_->Handle.Step != step) grip_.reset();
  last_ = place;
}

void GraphHand::Hover(const QPointF& place) {
  const auto grip = GripAt(place);
  if (!grip) {
    canvas_.viewport()->unsetCursor();
  } else {
    const bool end = grip->Handle.Part == DragHandle::Kind::StepEnd;
    canvas_.viewport()->setCursor(end ? Qt::SizeHorCursor : Qt::SizeVerCursor);
  }
}

void GraphHand::Move(const QMouseEvent& event) {
  const QPointF place = event.position();
  if (!grip_) {
    Hover(place);
    return;
  }
  if (!(event.buttons() & Qt::LeftButton)) {
    Cancel();  // let go where no one saw it
    return;
  }
  if (!drag_) {
    if ((place - grip_->At).manhattanLength() < kStartDistance) return;
    drag_ = std::make_unique<ValueDrag>(state_, definition_, sequence_, catalogue_, grip_->Handle,
                                        canvas_.Scale(grip_->Area));
    canvas_.HoldScale(true);
  }
  const std::string before = drag_->Text();
  const QPointF moved = place - std::exchange(last_, place);
  drag_->Move(moved.x(), moved.y(), event.modifiers() & Qt::ShiftModifier);
  if (drag_->Text() != before) canvas_.ShowPicture(draw_(drag_->Sequence()));
  canvas_.ShowLabel(QString::fromStdString(drag_->Label()), place.toPoint());
}

void GraphHand::End() {
  grip_.reset();
  if (!std::exchange(drag_, nullptr)) return;
  canvas_.ShowLabel({}, {});
  canvas_.HoldScale(false);
  canvas_.ShowPicture(draw_(sequence_));
}

void GraphHand::Cancel() {
  End();
}

void GraphHand::Release() {
  if (!drag_ || !drag_->Changed()) {
    End();
    return;
  }
  const CellPlace place = drag_->Place();
  const std::string text = drag_->Text();
  // Before the entry: its message lets everything happen.
  End();
  handlers_.enterValue(place, text);
}

bool GraphHand::Key(int key) {
  const int count = static_cast<int>(canvas_.Picture().Spans.size());
  if (count == 0) return false;
  int step = canvas_.SelectedStep().value_or(canvas_.TopRow() - 1);
  switch (key) {
    case Qt::Key_Left:
      --step;
      break;
    case Qt::Key_Right:
      ++step;
      break;
    case Qt::Key_Home:
      step = 0;
      break;
    case Qt::Key_End:
      step = count - 1;
      break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (!handlers_.goToCell) return false;
      handlers_.goToCell();
      return true;
    default:
      return false;
  }
  step = std::clamp(step, 0, count - 1);
  if (Select(step, GraphCanvas::Scroll::IntoView)) canvas_.ScrollToStep(step);
  return true;
}

bool GraphHand::OnViewport(QEvent& event) {
  switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: {
      const auto& mouse = static_cast<QMouseEvent&>(event);
      if (mouse.button() == Qt::LeftButton) {
        Press(mouse.position());
      } else {
        Cancel();
      }
      return false;
    }
    case QEvent::MouseMove:
      Move(static_cast<QMouseEvent&>(event));
      return grip_.has_value();
    case QEvent::MouseButtonRelease:
      if (static_cast<QMouseEvent&>(event).button() == Qt::LeftButton) Release();
      return false;
    case QEvent::ToolTip:
    case QEvent::Wheel:
      return Dragging();
    default:
      return false;
  }
}

bool GraphHand::OnCanvas(QEvent& event) {
  switch (event.type()) {
    case QEvent::ShortcutOverride:
      // While something is dragged no command may come between.
      if (Dragging()) event.accept();
      return Dragging();
    case QEvent::KeyPress: {
      const auto& key = static_cast<QKeyEvent&>(event);
      if (Dragging()) {
        if (key.key() == Qt::Key_Escape) Cancel();
        return true;
      }
      return (key.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier && Key(key.key());
    }
    case QEvent::FocusOut:
    case QEvent::Hide:
      Cancel();
      return false;
    default:
      return false;
  }
}

bool GraphHand::eventFilter(QObject* watched, QEvent* event) {
  return watched == &canvas_ ? OnCanvas(*event) : OnViewport(*event);
}

}  // namespace corlune
