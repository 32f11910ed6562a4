// Texts, colours, editors, cursor moves and control states of the main window.
#include <gtest/gtest.h>

#include "editing/control_states.h"
#include "editing/cursor_moves.h"
#include "editing_rig.h"

namespace corlune {
namespace {

using testing::Channel;
using testing::Common;
using testing::EditingRig;
using testing::kColFrequency;
using testing::kColWaveform;
using testing::ShippedDefinition;

TEST(GridViews, RowsAndNumbers) {
  EditingRig rig(3);
  const GridViews& views = rig.editor->Views();
  EXPECT_EQ(views.RowCount(), 5);
  EXPECT_EQ(views.CommonCell(GridRow{4}, 1).State, CellState::Spare);
  EXPECT_EQ(views.CommonCell(GridRow{4}, 0).Text, "");
  EXPECT_EQ(views.CommonCell(GridRow{3}, 0).Text, "3");
  rig.editor->EnterStartStep("7");
  EXPECT_EQ(views.ChannelCell(1, GridRow{3}, 0).Text, "9");
  EXPECT_EQ(views.TabCaption(1), "Ch2");
}

TEST(GridViews, JumpColours) {
  struct Row {
    int step, target, countOn, count;
    const char* colours;  // of 6 steps: . default, L loop, E endless
  };
  const Row rows[] = {
      {5, 2, 1, 3, ".LLLL."}, {5, 2, 1, 0, ".EEEE."}, {5, 2, 0, 3, ".EEEE."}, {5, 5, 1, 3, "......"},
      {2, 5, 1, 3, "......"}, {5, 0, 1, 3, "......"}, {6, 1, 1, 1, "LLLLLL"}, {5, 4, 1, 3, "...LL."},
  };
  const ModelDefinition& definition = ShippedDefinition();
  for (const Row& row : rows) {
    EditingRig rig(6);
    StepRow& step = rig.Step(row.step);
    step.JumpOn = 1;
    step.JumpTo = static_cast<std::int16_t>(row.target);
    step.JumpCountOn = static_cast<std::int16_t>(row.countOn);
    step.JumpCount = static_cast<std::int16_t>(row.count);
    const RowColors colors = JumpColorSet(*rig.sequence, definition);
    std::string shown;
    for (std::size_t i = 0; i < 6; ++i) {
      shown += colors[i] == definition.LoopSequence      ? 'L'
               : colors[i] == definition.EndlessSequence ? 'E'
                                                         : '.';
    }
    EXPECT_EQ(shown, row.colours) << row.step << " to " << row.target;
  }
}

TEST(GridViews, CellColours) {
  EditingRig rig(3);
  GridViews& views = rig.editor->Views();
  const ModelDefinition& definition = ShippedDefinition();
  const auto& jump = definition.Common.Params[kColumnJumpTo].ModeColors;
  EXPECT_EQ(views.CommonCell(GridRow{3}, kGridJumpTo).Background, jump[0]);
  rig.editor->ChooseOption(Common(3, kGridJumpTo), kSwitchOn);
  EXPECT_EQ(views.CommonCell(GridRow{3}, kGridJumpTo).Background, jump[1]);
  EXPECT_EQ(views.CommonCell(GridRow{2}, 0).Background, definition.EndlessSequence);
  EXPECT_EQ(views.ChannelCell(0, GridRow{2}, kColFrequency).Background, definition.EndlessSequence)
      << "a constant value has no colour of its own";
  rig.editor->ChooseOption(Channel(0, 2, kColFrequency), 2);
  EXPECT_EQ(views.ChannelCell(0, GridRow{2}, kColFrequency).Background,
            definition.Sequence.Params[0][kSlotFrequency].ModeColors[2]);

  const CellView before = views.ChannelCell(0, GridRow{2}, kColFrequency);
  EXPECT_EQ(views.Highlight(GridRow{2}), std::nullopt);
  EXPECT_EQ(views.ChannelCell(0, GridRow{2}, kColFrequency).Background, definition.Common.CurrentCell);
  EXPECT_TRUE(views.CommonCell(GridRow{2}, 0).Running);
  EXPECT_FALSE(views.CommonCell(GridRow{1}, 0).Running);
  EXPECT_EQ(views.Highlight(std::nullopt), GridRow{2});
  EXPECT_EQ(views.ChannelCell(0, GridRow{2}, kColFrequency), before);
}

// Brackets beside the numbers: inner loops next to them, deep ones together, and all of them in words.
TEST(GridViews, LoopBrackets) {
  EditingRig rig(8);
  const auto jump = [&](int row, int target, std::optional<int> count) {
    StepRow& step = rig.sequence->Steps[static_cast<std::size_t>(row - 1)];
    step.JumpOn = 1;
    step.JumpTo = static_cast<std::int16_t>(target);
    step.JumpCountOn = count ? 1 : 0;
    step.JumpCount = static_cast<std::int16_t>(count.value_or(0));
  };
  GridViews& views = rig.editor->Views();
  EXPECT_EQ(views.LoopLanes(), 0);
  jump(3, 2, 5);
  jump(5, 2, std::nullopt);
  jump(6, 1, 1);
  jump(8, 1, 2);
  rig.sequence->StartStep = 10;
  EXPECT_TRUE(views.RefreshRowColors());
  EXPECT_EQ(views.LoopLanes(), kLoopLanes);
  const std::vector<LoopPart> third{
      {2, false, false, 2}, {2, false, false, 1}, {1, false, false, 0}, {0, false, true, 5}};
  EXPECT_EQ(views.LoopParts({3}), third);
  EXPECT_EQ(views.LoopParts({8}), (std::vector<LoopPart>{{2, false, true, 2}}));
  EXPECT_TRUE(views.LoopParts({9}).empty()) << "the spare row";
  EXPECT_EQ(views.LoopText({3}),
            "Steps 11 to 12 are repeated 5 times (6 passes)\nSteps 11 to 14 are repeated without "
            "end\nSteps 10 to 15 are repeated once (2 passes)\nSteps 10 to 17 are repeated 2 "
            "times (3 passes)");
  jump(3, 2, 6);
  EXPECT_TRUE(views.RefreshRowColors()) << "the count stands beside the bracket, the colours are the same";
}

TEST(EditorFor, ByColumn) {
  struct Row {
    CellPlace place;
    const char* editors;  // t text (T when enabled), l list, and the number of options
  };
  const Row rows[] = {
      // clang-format off
      {Common(1, 0), "0"},                  {Common(1, kGridStepTime), "T0"},
      {Common(1, kGridAutoHold), "l0"},     {Common(1, kGridStopPhase), "t2"},
      {Common(1, kGridEventBranch), "t2"},  {Common(1, kGridStateBranch), "t2"},
      {Common(1, kGridJumpTo), "T2"},       {Common(1, kGridJumpCount), "t2"},
      {Common(1, kGridStepTerm), "l0"},     {Common(1, kGridStepCode), "l0"},
      {Common(1, 10), "0"},                 {Common(2, kGridStepTime), "0"},
      {Channel(0, 1, kColWaveform), "l0"},  {Channel(0, 1, testing::kColArb), "0"},
      {Channel(0, 1, kColFrequency), "T3"}, {Channel(1, 1, testing::kColRange), "l0"},
      {Channel(1, 1, 9), "l0"},             {Channel(1, 1, 10), "0"},
      {Channel(2, 1, kColWaveform), "0"},   {testing::Branch(1, 5), "T0"},
      {testing::Branch(1, 6), "0"},         {testing::Branch(2, 1), "0"},
      // clang-format on
  };
  EditingRig rig(1);
  rig.editor->ChooseOption(Common(1, kGridJumpTo), kSwitchOn);
  for (const Row& row : rows) {
    const EditorSpec spec = EditorFor(rig.editor->Views(), row.place);
    std::string editors;
    if (spec.Text) editors += spec.TextEnabled ? "T" : "t";
    if (spec.List) editors += "l";
    editors += std::to_string(spec.Options.size());
    EXPECT_EQ(editors, row.editors) << static_cast<int>(row.place.Area) << " column " << row.place.Column;
  }
  rig.state.OperationMode = OperationMode::Execution;
  EXPECT_TRUE(EditorFor(rig.editor->Views(), Common(1, kGridStepTime)).None());
}

TEST(CursorMoves, CommonArea) {
  using Key = CursorKey;
  struct Row {
    GridPosition from;
    Key key;
    GridPosition to;
  };
  const Row rows[] = {
      {{1, 1}, Key::Enter, {2, 1}},   {{5, 3}, Key::Enter, {5, 3}}, {{2, 4}, Key::Down, {3, 4}},
      {{1, 9}, Key::Tab, {2, 1}},     {{5, 9}, Key::Tab, {5, 9}},   {{5, 8}, Key::Tab, {5, 9}},
      {{2, 1}, Key::Up, {1, 1}},      {{1, 1}, Key::Up, {1, 1}},    {{2, 2}, Key::Up, {2, 2}},
      {{3, 2}, Key::Up, {2, 2}},      {{2, 3}, Key::Up, {1, 3}},    {{2, 4}, Key::Up, {2, 4}},
      {{2, 8}, Key::Up, {2, 8}},      {{2, 9}, Key::Up, {1, 9}},    {{1, 5}, Key::Left, {1, 5}},
      {{2, 5}, Key::Left, {2, 4}},    {{2, 1}, Key::Left, {2, 1}},  {{1, 5}, Key::Right, {1, 5}},
      {{2, 8}, Key::Right, {2, 9}},   {{2, 9}, Key::Right, {2, 9}}, {{2, 1}, Key::Backtab, {1, 9}},
      {{1, 1}, Key::Backtab, {1, 1}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(MoveCommonCursor(row.from, row.key, 5), row.to)
        << row.from.Row << "," << row.from.Column << " key " << static_cast<int>(row.key);
  }
}

TEST(CursorMoves, ChannelAndBranchArea) {
  using Key = CursorKey;
  struct Row {
    GridPosition from;
    Key key;
    GridPosition to;
  };
  const Row rows[] = {
      {{1, 2}, Key::Enter, {2, 2}}, {{5, 2}, Key::Enter, {5, 2}}, {{1, 9}, Key::Tab, {2, 1}},
      {{5, 9}, Key::Tab, {5, 9}},   {{2, 4}, Key::Up, {1, 4}},    {{1, 4}, Key::Up, {1, 4}},
      {{5, 4}, Key::Down, {5, 4}},  {{1, 2}, Key::Left, {1, 1}},  {{1, 1}, Key::Left, {1, 1}},
      {{1, 8}, Key::Right, {1, 9}}, {{1, 9}, Key::Right, {1, 9}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(MoveChannelCursor(row.from, row.key, 5, 9), row.to)
        << row.from.Row << "," << row.from.Column << " key " << static_cast<int>(row.key);
  }
  EXPECT_EQ(MoveBranchCursor({5, 1}, Key::Enter, 5), (GridPosition{5, 1}));
  EXPECT_EQ(MoveBranchCursor({4, 1}, Key::Down, 5), (GridPosition{5, 1}));
}

// Enabled items, one letter each: New Open Save saveAs Exit | edit items 0-8 | modes | run items | tools |
// buttons mode start stop hold branch output | read, cells, close, branch channel.
std::string EnabledOf(const AppState& state, const Activity& activity, const ControlConditions& conditions) {
  const ControlStates states = ControlStatesOf(state, activity, ShippedDefinition(), conditions);
  const auto letter = [](bool on) { return on ? 'x' : '.'; };
  std::string text;
  for (const Menu menu : {Menu::File, Menu::Edit, Menu::Mode, Menu::Run, Menu::Tool}) {
    const auto index = static_cast<std::size_t>(menu);
    for (std::size_t i = 0; i < static_cast<std::size_t>(kMenuItemCounts[index]); ++i) {
      text += letter(states.MenuItems[index][i].Enabled);
    }
    text += ' ';
  }
  for (const ControlState& button : states.Buttons) text += letter(button.Enabled);
  text += ' ';
  text += letter(states.Read.Enabled);
  text += letter(states.EditCells);
  text += letter(states.Close);
  text += letter(states.BranchChannel.Enabled);
  return text;
}

TEST(ControlStates, BySituation) {
  struct Row {
    const char* name;
    const char*
        state;  // e edit, x execution | s stopped, r running, h held | o on-line | + output on | ! warning
    int steps;
    const char* enabled;
    std::optional<Work> work = {};
  };
  // clang-format off
  const Row rows[] = {
      {"edit, no steps", "es", 0, "xxxxx ....xx... .x ...... xxxx. x..... .xxx"},
      {"edit, on-line", "eso", 3, "xxxxx x.xxxxxxx .x ...... xxxx. x..... xxxx"},
      {"edit, full", "es", 256, "xxxxx x.xx..xxx .x ...... xxxx. x..... .xxx"},
      {"edit, downloading", "eso", 3, "..... ......... .. ...... ..... ...... ....", Work::Download},
      {"edit, may still run", "eso!", 3, "xxxxx x.xxxxxxx .x .x...x xxxx. x.x..x xxxx"},
      {"edit, output unknown", "eso?", 3, "xxxxx x.xxxxxxx .x .....x xxxx. x....x xxxx"},
      {"edit, output on", "eso+", 3, "xxxxx x.xxxxxxx .x .....x xxxx. x....x xxxx"},
      {"the same, downloading", "eso!", 3, "..... ......... .. .x.... ..... ..x... ....", Work::Download},
      {"execution, stopped", "xso", 3, "..xxx ......... x. x...x. .xx.. xx...x ..xx"},
      {"execution, output on", "xso+", 3, "..xxx ......... x. x....x .xx.. xx...x ..xx"},
      {"execution, output unknown", "xso?", 3, "..xxx ......... x. x....x .xx.. xx...x ..xx"},
      {"execution, may still run", "xso!", 3, "..xxx ......... x. .x...x .xx.. x.x..x ..xx"},
      {"execution, output command", "xso", 3, "..x.. ......... .. ...... ..... ...... ...x", Work::Output},
      {"execution, starting", "xso", 3, "..x.. ......... .. .x.... ..... ..x... ...x", Work::Start},
      {"running", "xro+", 3, "..x.. ......... .. .xxx.x ..... ..xxxx ...x"},
      {"running, in a tick", "xro+", 3, "..x.. ......... .. .xxx.x ..... ..xxxx ...x", Work::Tick},
      {"running, output command", "xro+", 3, "..x.. ......... .. .xxx.. ..... ..xxx. ...x", Work::Output},
      {"held", "xho+", 3, "..xx. ......... .. xx...x ..... .xx..x ...x"},
      {"resuming", "xho+", 3, "..x.. ......... .. .x.... ..... ..x... ...x", Work::Start},
  };
  // clang-format on
  for (const Row& row : rows) {
    const std::string_view text = row.state;
    const auto has = [&](char c) { return text.find(c) != std::string_view::npos; };
    AppState state;
    state.OperationMode = has('x') ? OperationMode::Execution : OperationMode::Edit;
    state.RunState = has('r') ? RunState::Running : has('h') ? RunState::Held : RunState::Stopped;
    state.Online = has('o') ? 1 : 0;
    state.OutputOn = has('+');
    state.MayStillRun = has('!');
    state.OutputInDoubt = has('?');
    state.CurrentFilePath = "named.dat";
    Activity activity;
    std::optional<WorkGuard> work;
    if (row.work) work.emplace(activity, *row.work);
    EXPECT_EQ(EnabledOf(state, activity, {row.steps, false}), row.enabled) << row.name;
  }
  EXPECT_EQ(EnabledOf({}, {}, {3, true}).substr(6, 2), "xx") << "paste needs something copied";
}

}  // namespace
}  // namespace corlune
