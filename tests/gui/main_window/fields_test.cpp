// The fields beside the grids, with real keys.
#include <gmock/gmock.h>

#include <QInputMethodEvent>
#include <QTimer>
#include <QTreeWidget>

#include "gui/main_window/window_rig.h"

namespace corlune::testing {
namespace {

// Which texts a field takes is the editor's matter: here every way out of a field.
TEST(WindowFields, EntriesAreCheckedAndTheOldTextComesBack) {
  struct Row {
    const char* field;
    const char* typed;
    Qt::Key end;
    const char* range;  // part of the message; none when taken
    const char* shown;
  };
  const std::vector<Row> rows{
      {"TxtSeq", "10", Qt::Key_Return, nullptr, "10"},
      {"TxtSeq", "11", Qt::Key_Tab, "11  Range of Input 0-10", "10"},
      {"TxtSeq", "12", Qt::Key_Escape, nullptr, "10"},
      {"TxtStrStep", "0", Qt::Key_Return, "0  Range of Input 1-255", "1"},
      {"TxtStrStep", "5", Qt::Key_Tab, nullptr, "5"},
      {"TxtBranch", "6", Qt::Key_Return, "6  Range of Input 1-5", "1"},
      {"TxtBranch", "3", Qt::Key_Enter, nullptr, "3"},
  };
  WindowRig rig;
  rig.Start();
  const auto type = [&](const char* name, const char* text) {
    EntryField* field = rig.Field(name);
    field->setFocus();
    field->selectAll();
    rig.Type(QString::fromUtf8(text));
    return field;
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.field) + " " + row.typed);
    const EntryField* field = type(row.field, row.typed);
    if (row.range) rig.prompts.Answer(PromptAnswer::Ok);
    rig.Key(row.end);
    EXPECT_EQ(field->text().toStdString(), row.shown);
    const std::vector<std::string> messages = rig.Messages();
    ASSERT_EQ(messages.size(), row.range ? 1U : 0U);
    if (!row.range) continue;
    EXPECT_THAT(messages[0], ::testing::HasSubstr(row.range));
    // A refused entry stays in hand, selected.
    EXPECT_TRUE(field->hasFocus());
    EXPECT_EQ(field->selectedText(), field->text());
  }
  EXPECT_FALSE(rig.session->State().Modified) << "the fields are no change of the sequence";
  const QRect grids = rig.window->Grids().geometry();
  // A press elsewhere stores as well, or names the reason without a message.
  type("TxtStrStep", "7");
  rig.Click(rig.Field("TxtBranch"));
  EXPECT_EQ(rig.session->Sequence().StartStep, 7);
  type("TxtBranch", "99");
  rig.Click(rig.Field("TxtStrStep"));
  EXPECT_EQ(rig.session->Sequence().BranchChannel, 3);
  EXPECT_EQ(rig.Field("TxtBranch")->text(), "3");
  EXPECT_TRUE(rig.window->Status().Notice().contains("99"));
  EXPECT_EQ(rig.window->Grids().geometry(), grids) << "a notice moves nothing";
  // Escape belongs to an entry first, then to the notice.
  rig.Type("4");
  rig.Key(Qt::Key_Escape);
  EXPECT_EQ(rig.Field("TxtStrStep")->text(), "7");
  EXPECT_TRUE(rig.window->Status().Notice().contains("99"));
  rig.Key(Qt::Key_Escape);
  EXPECT_TRUE(rig.window->Status().Notice().isEmpty());
  ASSERT_EQ(rig.window->Status().LastNotices().size(), 1U);
  QTimer::singleShot(0, rig.window.get(), [] {
    QWidget* page = QApplication::activeModalWidget();
    const QTreeWidgetItem* line = page->findChild<QTreeWidget*>()->topLevelItem(0);
    EXPECT_TRUE(line->text(1).contains("99") && line->toolTip(0) == "Warning");
    QTest::keyClick(page, Qt::Key_Escape);
  });
  rig.Item("mnuNotices")->trigger();
}

TEST(WindowFields, TheSequenceNumberGoesIntoTheDownload) {
  WindowRig rig(WindowRig::Bus::OneInstrument);
  rig.Start();
  rig.AddSteps(1);
  EntryField* number = rig.Field("TxtSeq");
  number->setFocus();
  number->selectAll();
  // A full-width digit of Japanese input.
  QInputMethodEvent input;
  input.setCommitString(QString::fromUtf8("４"));
  QApplication::sendEvent(number, &input);
  rig.Key(Qt::Key_Return);
  EXPECT_EQ(number->text(), "4");
  rig.EnterExecution();
  EXPECT_EQ(rig.CountSent("1 < :TRAC:SEQ:REC 4"), 1);
}

}  // namespace
}  // namespace corlune::testing
