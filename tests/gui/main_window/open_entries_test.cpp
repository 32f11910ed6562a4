// Commands of the window that come while something is still being typed.
#include "gui/main_window/window_rig.h"

namespace corlune::testing {
namespace {

TEST(OpenEntries, BelongToWhatACommandSaves) {
  WindowRig rig;
  rig.Start();
  rig.AddSteps(2);
  const std::string path = rig.folder.File("typed.dat");
  rig.session->State().CurrentFilePath = path;
  rig.window->Grids().SelectFirstCell();
  rig.Type("2.5");
  rig.Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(rig.session->Sequence().Steps[0].StepTime, 2.5);
  EXPECT_FALSE(rig.session->State().Modified);
  EXPECT_TRUE(rig.Messages().empty());
  rig.window->OpenPath(path);
  EXPECT_EQ(rig.session->Sequence().Steps[0].StepTime, 2.5);

  rig.Settle();
  rig.Field("TxtStrStep")->setFocus();
  rig.Settle();
  rig.Field("TxtStrStep")->selectAll();
  rig.Type("7");
  rig.Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(rig.session->Sequence().StartStep, 7);
}

TEST(OpenEntries, ARefusedOneStopsTheCommand) {
  WindowRig rig;
  rig.Start();
  rig.AddSteps(2);
  const auto refuse = [&](const std::function<void()>& command) {
    rig.window->Grids().SelectFirstCell();
    rig.Type("x");
    rig.prompts.Answer(PromptAnswer::Ok);
    command();
    rig.Settle();
    EXPECT_EQ(rig.Messages(), std::vector<std::string>{rig.Text(9108)});
    EXPECT_EQ(rig.session->Sequence().StepCount, 2);
    EXPECT_EQ(rig.session->State().OperationMode, OperationMode::Edit);
    EXPECT_EQ(rig.closed, 0);
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    EXPECT_EQ(QApplication::focusWidget()->objectName().toStdString(), "Text1");
  };
  refuse([&] { rig.Key(Qt::Key_S, Qt::ControlModifier); });  // would open a file dialog nobody queued
  refuse([&] { rig.Key(Qt::Key_N, Qt::ControlModifier); });
  refuse([&] { rig.Item("mnuModeItem_1")->trigger(); });
  refuse([&] { rig.Item("mnuImportCsv")->trigger(); });
  refuse([&] { rig.window->close(); });
}

}  // namespace
}  // namespace corlune::testing
