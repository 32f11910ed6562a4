// A sequence view over a sequence of the shipped QM2220, with a main window that records what is pressed.
#pragma once

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include <QApplication>
#include <QTest>

#include "editing/control_states.h"
#include "modeldef/read_model_definition.h"
#include "sequence/defaults.h"
#include "sequence/sequence_file.h"
#include "sequence/start_values.h"
#include "support/fake_ports.h"
#include "view/frm_preview.h"
#include "view/graph_canvas.h"

namespace corlune::testing {

inline ModelDefinition ShippedDefinition(bool english = true, const std::string& model = "QM2220") {
  ModelDefinition definition;
  EXPECT_EQ(ReadModelDefinition(CORLUNE_DATA "/Corlune_Std.ini", model, !english, definition),
            DefinitionLoad::Ok);
  return definition;
}

// Contents of the shipped definition (VS_SELCT2).
enum ShippedContent : std::int16_t { kFrequency, kAmplitude, kOffset, kPhase, kDuty, kEnvelope };

class ViewRig {
 public:
  explicit ViewRig(int steps = 4, bool english = true)
      : definition(ShippedDefinition(english)), catalogue(english ? 10000 : 0) {
    state.ModelName = "QM2220";
    state.ModelIndex = 1;
    state.Instruments[0].ChannelCount = 2;
    ResetSequence(sequence, definition);
    sequence.StepCount = static_cast<std::int16_t>(steps);
    for (StepRow& row : sequence.Steps) row.StepTime = 1;
    ComputeStartValues(sequence);
  }

  // One area: channel 0 or 1.
  void ShowArea(int area, ShippedContent content, int channel = 0, std::int16_t scale = 0) {
    sequence.ViewAreas[static_cast<std::size_t>(area)] = {1, scale, content,
                                                          static_cast<std::int16_t>(channel)};
  }
  void Set(int step, Slot slot, double value, ChangeModeCode mode = kModeConst, int channel = 0) {
    ParamCell& cell = sequence.Cell(channel, step, slot);
    cell.Value = value;
    cell.ChangeMode = mode;
    ComputeStartValues(sequence);
  }
  void SetWaveform(int step, WaveformCode waveform, int channel = 0) {
    Set(step, kSlotWaveform, waveform, kModeConst, channel);
  }
  void Load(const std::string& name) {
    ScriptedPrompts prompts;
    ASSERT_TRUE(ReadSeqFile(std::string(CORLUNE_DATA "/examples/") + name, SequenceFileForm::User,
                            OneDefinition(definition), state, sequence, prompts, catalogue));
  }

  FrmPreview& Open(QSize size = {900, 600}) {
    PreviewHandlers handlers;
    handlers.runButton = [this](int index) { pressed.push_back("button " + std::to_string(index)); };
    handlers.runMenuItem = [this](int item) { pressed.push_back("item " + std::to_string(item)); };
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
    view->ShowStates(ControlStatesOf(state, definition, conditions));
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

  AppState state;
  ModelDefinition definition;
  MessageCatalogue catalogue;
  SequenceData sequence;
  std::vector<std::string> pressed;
  bool accept = true;
  std::unique_ptr<FrmPreview> view;
};

}  // namespace corlune::testing
