// The fields beside the grids, with real keys.
#include <gmock/gmock.h>

#include <QInputMethodEvent>

#include "gui/main_window/window_rig.h"

namespace corlune::testing {
namespace {

TEST(WindowFields, EntriesAreCheckedAndTheOldTextComesBack) {
  struct Row {
    const char* field;
    const char* typed;
    Qt::Key end;
    int message;        // 0: none
    const char* range;  // part of the message
    const char* shown;
  };
  const std::vector<Row> rows{
      {"TxtSeq", "10", Qt::Key_Return, 0, "", "10"},
      {"TxtSeq", "11", Qt::Key_Tab, 9105, "11  Range of Input 0-10", "10"},
      {"TxtSeq", "", Qt::Key_Return, 9108, "", "10"},
      {"TxtSeq", "12", Qt::Key_Escape, 0, "", "10"},
      {"TxtStrStep", "0", Qt::Key_Return, 9105, "0  Range of Input 1-255", "1"},
      {"TxtStrStep", "5", Qt::Key_Tab, 0, "", "5"},
      {"TxtBranch", "6", Qt::Key_Return, 9105, "6  Range of Input 1-5", "1"},
      {"TxtBranch", "3", Qt::Key_Enter, 0, "", "3"},
  };
  WindowRig rig;
  rig.Start();
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.field) + " " + row.typed);
    EntryField* field = rig.Field(row.field);
    field->setFocus();
    ASSERT_TRUE(field->hasFocus());
    field->selectAll();
    if (*row.typed) {
      rig.Type(QString::fromUtf8(row.typed));
    } else {
      rig.Key(Qt::Key_Delete);
    }
    if (row.message != 0) rig.prompts.Answer(PromptAnswer::Ok);
    rig.Key(row.end);
    const std::vector<std::string> messages = rig.Messages();
    ASSERT_EQ(messages.size(), row.message != 0 ? 1U : 0U);
    if (row.message == 9108) {
      EXPECT_EQ(messages[0], rig.Text(9108));
    }
    if (row.message == 9105) {
      EXPECT_THAT(messages[0], ::testing::HasSubstr(row.range));
    }
    EXPECT_EQ(field->text().toStdString(), row.shown);
    // A refused entry stays in hand, selected.
    if (row.message != 0) {
      EXPECT_TRUE(field->hasFocus());
      EXPECT_EQ(field->selectedText(), field->text());
    }
  }
  EXPECT_EQ(rig.session->Sequence().StartStep, 5);
  EXPECT_EQ(rig.session->Sequence().BranchChannel, 3);
  EXPECT_FALSE(rig.session->State().Modified) << "the fields are no change of the sequence";
}

TEST(WindowFields, LeavingAFieldStoresOrNamesTheReasonWithoutAMessage) {
  WindowRig rig;
  rig.Start();
  EntryField* start = rig.Field("TxtStrStep");
  EntryField* branch = rig.Field("TxtBranch");
  const QRect grids = rig.window->Grids().geometry();
  start->setFocus();
  start->selectAll();
  rig.Type("7");
  rig.Click(branch);
  EXPECT_EQ(rig.session->Sequence().StartStep, 7);
  branch->selectAll();
  rig.Type("99");
  rig.Click(start);
  EXPECT_EQ(rig.session->Sequence().BranchChannel, 1);
  EXPECT_EQ(branch->text(), "1");
  EXPECT_TRUE(rig.window->Status().Notice().contains("99"));
  EXPECT_EQ(rig.window->Grids().geometry(), grids) << "a notice moves nothing";
  // Escape belongs to an entry first, then to the notice.
  rig.Type("4");
  rig.Key(Qt::Key_Escape);
  EXPECT_EQ(start->text(), "7");
  EXPECT_TRUE(rig.window->Status().Notice().contains("99"));
  rig.Key(Qt::Key_Escape);
  EXPECT_TRUE(rig.window->Status().Notice().isEmpty());
  ASSERT_EQ(rig.window->Status().LastNotices().size(), 1U);
  EXPECT_THAT(rig.window->Status().LastNotices()[0].text, ::testing::HasSubstr("99"));
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
  EXPECT_EQ(rig.script.CountOf("0 < :TRAC:SEQ:REC 4"), 1);
}

}  // namespace
}  // namespace corlune::testing
