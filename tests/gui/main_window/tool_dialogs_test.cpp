// The tool dialogs over the main window, by real keys.
#include <gmock/gmock.h>

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>

#include "gui/main_window/dialog_rig.h"

namespace corlune::testing {
namespace {

using ::testing::HasSubstr;

TEST(CommonParameterDialog, StoresOnEnterAsOneEntryAndNothingOnEscape) {
  WindowRig rig(WindowRig::Bus::OneInstrument);
  rig.Start();
  rig.AddSteps(2);
  rig.Type("2.5");
  const CommonParams& common = rig.session->Sequence().Common;
  InDialog(rig, "mnuToolsItem_2", [&](const OpenDialog& open) {
    EXPECT_EQ(rig.session->Sequence().Steps[1].StepTime, 2.5) << "what was being typed is taken first";
    EXPECT_TRUE(open.Find<QLineEdit>("txtVal").hasFocus()) << "the first field is ready";
    rig.prompts.Answer(PromptAnswer::Ok);
    open.Type("txtVal", "256", Qt::Key_Return);
    EXPECT_THAT(rig.prompts.messages.back().text, HasSubstr("256  Range of Input 1-255"));
    EXPECT_TRUE(open.Find<QLineEdit>("txtVal").hasFocus());
    // A press on OK leaves nothing behind either.
    open.Type("txtVal", "1a", Qt::Key_Left);
    rig.prompts.Answer(PromptAnswer::Ok);
    rig.Click(&open.Find<QPushButton>("cmdOk"));
    EXPECT_EQ(open.Find<QLineEdit>("txtVal").text(), "1");
    open.Type("txtVal", "12", Qt::Key_Tab);
    EXPECT_TRUE(open.Find<QComboBox>("cmbCmn_0").hasFocus());
    open.Key(Qt::Key_Down);
    open.Key(Qt::Key_E, Qt::AltModifier);
    EXPECT_TRUE(open.Find<QComboBox>("cmbCmn_1").hasFocus());
    open.dialog.resize(500, 400);
    open.Key(Qt::Key_Return);
  });
  EXPECT_EQ(common, (CommonParams{12, 1, 0, 0, 0}));
  EXPECT_EQ(rig.editor->UndoText(), "Undo: Common Sequence Parameters");
  rig.session->State().Modified = false;
  InDialog(rig, "mnuToolsItem_2", [&](const OpenDialog& open) {
    EXPECT_EQ(open.dialog.size(), QSize(500, 400));
    open.Type("txtVal", "", Qt::Key_Escape);
    EXPECT_EQ(open.Find<QLineEdit>("txtVal").text(), "12") << "the first Escape takes the entry back";
    open.Type("txtVal", "7", Qt::Key_Tab);
    open.Key(Qt::Key_Escape);
  });
  InDialog(rig, "mnuToolsItem_2", [&](const OpenDialog& open) { open.Key(Qt::Key_Return); });
  EXPECT_EQ(common.StartStepNo, 12);
  EXPECT_FALSE(rig.session->State().Modified) << "nothing was changed";
  rig.Key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(common, CommonParams{});

  rig.EnterExecution();
  InDialog(rig, "mnuToolsItem_2", [&](const OpenDialog& open) {
    EXPECT_FALSE(open.Find<QLineEdit>("txtVal").isEnabled());
    EXPECT_FALSE(open.Find<QPushButton>("cmdOk").isEnabled());
    EXPECT_THAT(open.Line("LabNote"), HasSubstr("not changed"));
    open.Key(Qt::Key_Return);
  });
}

TEST(ChannelSettingDialog, ShowsHowAValueReadsAndTheGridsFollow) {
  WindowRig rig;
  rig.Start();
  rig.AddSteps(1);
  rig.session->Sequence().Cell(1, 0, kSlotAmplitude).Value = 10;
  const auto cell = [&] {
    return rig.editor->Views().Cell({GridArea::Sequence, 1, GridRow{1}, kSlotAmplitude + 1, 0}).Text;
  };
  InDialog(rig, "mnuToolsItem_1", [&](const OpenDialog& open) {
    EXPECT_FALSE(open.Find<QLineEdit>("txtVal_1").isEnabled()) << "open circuit";
    open.Find<QComboBox>("cmbCH_0").setFocus();
    open.Key(Qt::Key_Down);
    open.Key(Qt::Key_Tab);
    open.Key(Qt::Key_Down);
    open.Find<QComboBox>("cmbUnit_0").setFocus();
    open.Key(Qt::Key_Down);
    open.Type("txtVal_1", "50", Qt::Key_Tab);
    EXPECT_EQ(open.Line("LabExample"), "Example: 10 Vp-p into High-Z reads 5 Vp-p into 50 ohm");
    // Left by a press: the reason without a message, and the old text.
    open.Type("txtVal_1", "0", Qt::Key_Left);
    EXPECT_THAT(open.Line("LabExample"), HasSubstr("5 Vp-p into 50 ohm"));
    open.Find<QComboBox>("cmbUnit_1").setFocus();
    rig.Settle();
    EXPECT_EQ(open.Line("LabNote"), "Output Load: Input value Error!  Input value 0  Range of Input 1-10000");
    EXPECT_EQ(open.Find<QLineEdit>("txtVal_1").text(), "50");
    open.Key(Qt::Key_Down);
    open.Type("txtVal_2", "mV", Qt::Key_Tab);
    open.Type("txtVal_3", "1000", Qt::Key_Return);
  });
  EXPECT_EQ(cell(), "5000");
  EXPECT_THAT(rig.editor->Views().ChannelHeader(1, kSlotAmplitude + 1), HasSubstr("mV"));
  EXPECT_TRUE(rig.session->State().Modified);
  rig.Key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(cell(), "10");
}

TEST(ModeSettingDialog, WritesTheChosenChannels) {
  WindowRig rig;
  rig.Start();
  InDialog(rig, "mnuModeSetting", [&](const OpenDialog& open) {
    open.Find<QComboBox>("cmbChannel").setFocus();
    open.Key(Qt::Key_End);
    open.Key(Qt::Key_Tab);
    open.Key(Qt::Key_End);
    EXPECT_EQ(open.Find<QComboBox>("cmbMode_0").currentText(), "ACDC-INT");
    open.Find<QComboBox>("cmbChannel").setFocus();
    open.Key(Qt::Key_Home);
    EXPECT_EQ(open.Find<QComboBox>("cmbMode_0").currentIndex(), -1) << "the channels differ";
    open.Key(Qt::Key_Return);
  });
  EXPECT_EQ(rig.session->Sequence().ModeSettings[0][0], 0);
  EXPECT_EQ(rig.session->Sequence().ModeSettings[0][1], 1);
  EXPECT_EQ(rig.editor->UndoText(), "Undo: Mode Settings");
}

}  // namespace
}  // namespace corlune::testing
