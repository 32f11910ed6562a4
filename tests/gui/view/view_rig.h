// A sequence view over the sequence of the graph rig, with a main window that records what is pressed.
#pragma once

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include <QApplication>
#include <QTest>

#include "editing/control_states.h"
#include "graph/graph_rig.h"
#include "support/fake_ports.h"
#include "view/frm_preview.h"
#include "view/graph_canvas.h"

namespace corlune::testing {

class ViewRig : public GraphRig {
 public:
  explicit ViewRig(int steps = 4, bool english = true)
      : GraphRig(steps, english), catalogue(english ? 10000 : 0) {}

  FrmPreview& Open(QSize size = {900, 600}) {
    PreviewHandlers handlers;
    handlers.runButton = [this](int index) { pressed.push_back("button " + std::to_string(index)); };
    handlers.command = [this](Command command) {
      pressed.push_back("item " + std::to_string(RowOf(command).item));
    };
    const auto field = [this](const char* name) {
      return [this, name](const std::string& text, EntryEnd) {
        pressed.push_back(std::string(name) + " " + text);
        return accept;
      };
    };
    handlers.enterSequenceNumber = field("sequence");
    handlers.enterStartStep = field("start");
    handlers.enterBranchChannel = field("branch");
    handlers.closed = [this] { pressed.push_back("closed"); };
    handlers.enterViewAreas = [this](const auto& areas) {
      if (accept) sequence.ViewAreas = areas;
      return accept;
    };
    handlers.graphs.selectStep = [this](int step) {
      pressed.push_back("step " + std::to_string(step));
      if (accept) view->ShowSelectedStep(step);
      return accept;
    };
    handlers.graphs.goToCell = [this] { pressed.push_back("cell"); };
    handlers.graphs.enterValue = [this](const CellPlace& place, const std::string& text) {
      pressed.push_back(std::to_string(place.Row.value) + "/" + std::to_string(place.Column) + " = " + text);
    };
    view = std::make_unique<FrmPreview>(state, definition, sequence, catalogue, std::move(handlers));
    view->ShowFields("3", "1", "2");
    view->resize(size);
    view->show();
    ShowStates();
    QApplication::processEvents();
    return *view;
  }
  void ShowStates() {
    ControlConditions conditions;
    conditions.StepCount = sequence.StepCount;
    view->ShowStates(ControlStatesOf(state, {}, definition, conditions));
  }
  void Run(int step, std::uint32_t tick) {
    state.OperationMode = OperationMode::Execution;
    state.RunState = RunState::Running;
    state.CurrentStep = static_cast<std::int16_t>(step);
    state.StepChangedAt = tick;
    for (StepRow& row : sequence.Steps) row.StepRunTime = row.StepTime * 1000;
    ShowStates();
    view->MeasureStart();
  }
  template <typename Widget>
  Widget* Find(const char* name) {
    auto* found = view->findChild<Widget*>(QString::fromUtf8(name));
    EXPECT_NE(found, nullptr) << name;
    return found;
  }
  GraphCanvas& Canvas() { return *view->findChild<GraphCanvas*>(); }
  std::vector<std::string> TakePressed() { return std::exchange(pressed, {}); }

  AppState state = TwoChannelState();
  MessageCatalogue catalogue;
  std::vector<std::string> pressed;
  bool accept = true;
  std::unique_ptr<FrmPreview> view;
};

}  // namespace corlune::testing
