// Commands of the window that come while something is still being typed.
#include "gui/main_window/window_rig.h"
#include "view/frm_preview.h"

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

TEST(OpenEntries, OfEitherWindowAreWhatARunUses) {
  WindowRig rig;
  rig.Start();
  rig.AddSteps(2);
  rig.Item("mnuViewItem_1")->trigger();
  QWidget& view = *rig.window->Preview();
  const auto type = [&](QWidget& window, const char* name, const char* text) {
    auto* field = window.findChild<EntryField*>(QString::fromUtf8(name));
    window.activateWindow();
    rig.Settle();
    field->setFocus();
    field->selectAll();
    QTest::keyClicks(field, QString::fromUtf8(text));
    return field;
  };
  // Another window and a menu come in between.
  const EntryField* number = type(view, "TxtSeq", "7");
  rig.window->activateWindow();
  rig.Settle();
  view.activateWindow();
  rig.Settle();
  rig.Click(rig.Button(0));
  EXPECT_EQ(rig.session->Sequence().SequenceNumber, 7);
  EXPECT_EQ(rig.Field("TxtSeq")->text() + number->text(), "77");
  for (const int channel : {3, 4}) {
    rig.StartRun();
    QWidget* window = channel == 3 ? rig.window.get() : &view;
    const QString shown = QString::number(channel);
    EntryField* branch = type(*window, "TxtBranch", qUtf8Printable(shown));
    rig.Item("mnuRunItem_3")->trigger();
    EXPECT_EQ(rig.session->Sequence().BranchChannel, channel);
    EXPECT_EQ(std::exchange(rig.session->State().PendingRequest, PendingRequest::None),
              PendingRequest::Branch);
    type(*window, "TxtBranch", "99");
    rig.prompts.Answer(PromptAnswer::Ok);
    rig.Key(Qt::Key_F7);
    EXPECT_EQ(rig.session->State().PendingRequest, PendingRequest::None) << "refused";
    EXPECT_EQ(rig.Messages().size(), 1U);
    EXPECT_TRUE(branch->hasFocus() && branch->text() == shown);
    // What ends the run waits for no entry and leaves it.
    type(*window, "TxtBranch", "99");
    rig.Click(window->findChild<QPushButton*>("CmdBtn1_5"));
    EXPECT_FALSE(std::exchange(rig.session->State().OutputOn, true));
    rig.Key(Qt::Key_F5, Qt::ShiftModifier);
    EXPECT_EQ(rig.session->State().PendingRequest, PendingRequest::Stop);
    EXPECT_TRUE(branch->hasFocus() && branch->text() == "99");
    rig.Key(Qt::Key_Escape);
    rig.Tick();
  }
}

}  // namespace
}  // namespace corlune::testing
