#include "view/graph_access.h"

#include <map>

#include <QAccessible>
#include <QAccessibleWidget>

#include "view/graph_canvas.h"

namespace corlune {

namespace {

class StepAccess : public QAccessibleInterface, public QAccessibleActionInterface {
 public:
  StepAccess(GraphCanvas& canvas, int step) : canvas_(canvas), step_(step) {}

  bool isValid() const override { return step_ < canvas_.StepCount(); }
  QObject* object() const override { return nullptr; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(&canvas_); }
  QAccessibleInterface* child(int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  QAccessible::Role role() const override { return QAccessible::ListItem; }
  void setText(QAccessible::Text, const QString&) override {}

  QString text(QAccessible::Text kind) const override {
    if (!isValid()) return {};
    switch (kind) {
      case QAccessible::Name:
        return canvas_.StepName(step_);
      case QAccessible::Value:
        return canvas_.StepText(step_);
      case QAccessible::Description:
        return canvas_.CurrentStep() == step_ ? canvas_.RunningText() : QString();
      default:
        return {};
    }
  }

  QRect rect() const override {
    const QRect column = isValid() ? canvas_.StepRect(step_) : QRect();
    if (column.isEmpty()) return {};
    return {canvas_.viewport()->mapToGlobal(column.topLeft()), column.size()};
  }

  QAccessible::State state() const override {
    QAccessible::State state;
    state.invalid = !isValid();
    state.selectable = true;
    state.focusable = true;
    state.readOnly = true;
    state.selected = canvas_.SelectedStep() == step_;
    state.focused = state.selected && canvas_.hasFocus();
    state.active = canvas_.CurrentStep() == step_;
    state.offscreen = rect().isEmpty();
    return state;
  }

  void* interface_cast(QAccessible::InterfaceType type) override {
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
  }
  QStringList actionNames() const override { return {pressAction()}; }
  void doAction(const QString& action) override {
    if (action == pressAction() && isValid()) emit canvas_.StepPressed(step_);
  }
  QStringList keyBindingsForAction(const QString&) const override { return {}; }

 private:
  GraphCanvas& canvas_;
  int step_;
};

class CanvasAccess : public QAccessibleWidget {
 public:
  explicit CanvasAccess(GraphCanvas& canvas)
      : QAccessibleWidget(&canvas, QAccessible::List), canvas_(canvas) {}
  ~CanvasAccess() override {
    for (const auto& [step, id] : steps_) QAccessible::deleteAccessibleInterface(id);
  }

  int childCount() const override { return canvas_.StepCount(); }
  QAccessibleInterface* child(int index) const override {
    if (index < 0 || index >= childCount()) return nullptr;
    const auto known = steps_.find(index);
    if (known != steps_.end()) return QAccessible::accessibleInterface(known->second);
    auto* made = new StepAccess(canvas_, index);  // the toolkit's register owns it
    steps_.emplace(index, QAccessible::registerAccessibleInterface(made));
    return made;
  }
  int indexOfChild(const QAccessibleInterface* wanted) const override {
    for (const auto& [step, id] : steps_) {
      if (QAccessible::accessibleInterface(id) == wanted) return step;
    }
    return -1;
  }
  QAccessibleInterface* childAt(int x, int y) const override {
    const auto step = canvas_.ColumnAt(canvas_.viewport()->mapFromGlobal(QPoint(x, y)));
    return step ? child(*step) : nullptr;
  }
  QAccessibleInterface* focusChild() const override {
    return canvas_.hasFocus() && canvas_.SelectedStep() ? child(*canvas_.SelectedStep()) : nullptr;
  }

 private:
  GraphCanvas& canvas_;
  mutable std::map<int, QAccessible::Id> steps_;
};

QAccessibleInterface* MakeAccess(const QString& className, QObject* object) {
  if (className != QLatin1String("corlune::GraphCanvas")) return nullptr;
  return new CanvasAccess(*static_cast<GraphCanvas*>(object));  // the toolkit's register owns it
}

}  // namespace

void InstallGraphAccess() {
  QAccessible::installFactory(MakeAccess);
}

void ReportSelectedStep(GraphCanvas& canvas, int step) {
  if (!QAccessible::isActive()) return;
  QAccessibleEvent selected(&canvas, QAccessible::Selection);
  selected.setChild(step);
  QAccessible::updateAccessibility(&selected);
  if (!canvas.hasFocus()) return;
  QAccessibleEvent focused(&canvas, QAccessible::Focus);
  focused.setChild(step);
  QAccessible::updateAccessibility(&focused);
}

}  // namespace corlune
