// The set-up of the instruments over the main window, by real keys.
#include <gmock/gmock.h>

#include <QComboBox>
#include <QToolButton>

#include "gui/main_window/dialog_rig.h"

namespace corlune::testing {
namespace {

using ::testing::HasSubstr;

constexpr const char* kSetup = "mnuToolsItem_3";

// Over what the list shows.
void TypeSerial(const OpenDialog& open, const char* name, const char* text) {
  auto& list = open.Find<QComboBox>(name);
  list.setFocus();
  list.lineEdit()->selectAll();
  open.rig.Type(QString::fromUtf8(text));
}

TEST(SystemSetupDialog, SearchesTestsAndConnectsTwoInstruments) {
  WindowRig rig(WindowRig::Bus::OneInstrument);
  rig.Start();
  rig.Plug("QM2220:1000002");
  const AppState& state = rig.session->State();
  const InstrumentEntry before = state.Instruments[0];
  InDialog(rig, kSetup, [&](const OpenDialog& open) {
    EXPECT_TRUE(open.Find<QComboBox>("cmbModel").hasFocus());
    open.Type("Text1", "2", Qt::Key_Tab);
    auto& serial = open.Find<QComboBox>("cmbSerial1");
    EXPECT_TRUE(serial.isVisible());
    EXPECT_FALSE(open.Find<QComboBox>("cmbSerial2").isVisible());
    open.Find<QPushButton>("CmdSearch").setFocus();
    open.Key(Qt::Key_Space);
    EXPECT_EQ(open.Line("LabFound"), "QM2220 found: 1000001, 1000002");
    EXPECT_EQ(serial.currentText(), "1000002");
    open.Find<QPushButton>("CmdTest1").setFocus();
    open.Key(Qt::Key_Return);
    EXPECT_EQ(open.Line("LabTest1"), "Answers: TAVRIN,QM2220,1000002,1.00");
    // Refused: the dialog stays, with the focus in the row at fault.
    TypeSerial(open, "cmbSerial1", "1000001");
    rig.prompts.Answer(PromptAnswer::Ok);
    open.Key(Qt::Key_Return);
    EXPECT_EQ(rig.Messages(), std::vector<std::string>{"The Serial No. overlaps."});
    EXPECT_TRUE(serial.hasFocus());
    TypeSerial(open, "cmbSerial1", "1000002");
    EXPECT_EQ(state.InstrumentCount, 1);
    // What comes while the set-up is applied: neither Cancel nor a second OK.
    rig.prompts.WhileOpen([&] {
      open.dialog.reject();
      open.dialog.accept();
      EXPECT_TRUE(open.dialog.isVisible());
    });
    rig.Faults("drop@*IDN?", 1);
    rig.prompts.Answer(PromptAnswer::Yes);
    open.Key(Qt::Key_Return);
  });
  EXPECT_EQ(state.InstrumentCount, 2) << "kept, though the second one did not answer";
  EXPECT_EQ(state.Online, 0);
  EXPECT_THAT(rig.window->Status().PanelText(StatBar::Device).toStdString(), HasSubstr("(+1)"));
  EXPECT_FALSE(state.Modified);

  rig.Faults("", 1);
  auto* connect = rig.window->findChild<QToolButton*>("CmdConnect");
  EXPECT_TRUE(connect->isVisible());
  rig.Click(connect);
  EXPECT_EQ(state.Online, 1);
  EXPECT_FALSE(connect->isVisible());
  InDialog(rig, kSetup, [&](const OpenDialog& open) {
    open.Type("Text1", "1", Qt::Key_Tab);
    TypeSerial(open, "cmbSerial0", "9");
    open.Key(Qt::Key_Escape);
  });
  EXPECT_EQ(state.InstrumentCount, 2);
  EXPECT_EQ(state.Instruments[0], before);
}

TEST(SystemSetupDialog, NamesTheLibraryThatIsMissing) {
  WindowRig rig;
  rig.Start();
  InDialog(rig, kSetup, [&](const OpenDialog& open) {
    auto& interfaces = open.Find<QComboBox>("cmbIF0");
    interfaces.setFocus();
    open.Key(Qt::Key_Down);
    EXPECT_EQ(interfaces.currentText(), "NI");
    EXPECT_FALSE(open.Find<QComboBox>("cmbSerial0").isVisible());
    rig.prompts.Answer(PromptAnswer::Ok).Answer(PromptAnswer::Ok);
    open.Type("TxtAdrs0", "7.0", Qt::Key_Return);
    EXPECT_EQ(rig.Messages(), std::vector<std::string>{"Input value Error!"});
    open.Type("TxtAdrs0", "7", Qt::Key_Tab);
    rig.Click(&open.Find<QPushButton>("CmdTest0"));
    EXPECT_THAT(open.Line("LabTest0"), HasSubstr("library is missing.\nNI-488.2: switched off"));
    open.Key(Qt::Key_Return);
  });
  EXPECT_THAT(rig.Messages().at(0), HasSubstr("instrument 1 occurred.\nNI-488.2: switched off"));
  EXPECT_EQ(rig.session->State().Online, 0);
  EXPECT_THAT(rig.window->Status().PanelText(StatBar::Device).toStdString(), HasSubstr("NI 7")) << "kept";
}

TEST(SystemSetupDialog, NamesTheAnswersOfSimulatedInstruments) {
  WindowRig rig;
  rig.options.simulated = true;
  rig.responses->clear();
  rig.Start();
  const std::string path = rig.folder.Write(
      "answers.ini", "[ADRS0]\r\n*IDN?=TAVRIN,QM2220,SIM\r\n[ADRS1]\r\n*IDN?=QM2220 of 1\r\n");
  InDialog(rig, kSetup, [&](const OpenDialog& open) {
    rig.prompts.Answer(PromptAnswer::Ok);
    open.Type("TxtResponses", "none.ini", Qt::Key_Return);
    EXPECT_THAT(rig.Messages().at(0), HasSubstr("no such file"));
    open.Type("TxtResponses", path.c_str(), Qt::Key_Return);
  });
  EXPECT_EQ(rig.settings->Responses(), path);
  EXPECT_EQ(rig.session->State().Online, 1);
  InDialog(rig, kSetup, [&](const OpenDialog& open) {
    rig.Click(&open.Find<QPushButton>("CmdTest0"));
    EXPECT_THAT(open.Line("LabTest0"), HasSubstr("Answers: "));
    open.Key(Qt::Key_Escape);
  });
}

TEST(SelectionDialog, AsksTheSelectedInstrumentAlone) {
  WindowRig rig;
  rig.Start();
  rig.Plug("QM2220:1000001,QM2220:1000002,QM2220:1000003");
  rig.session->State().Instruments[0].SerialNo = "of another day";
  rig.prompts.Answer(PromptAnswer::Ok);
  InDialog(rig, "mnuConnect", [&](const OpenDialog& open) {
    auto& serials = open.Find<QComboBox>("cmbSerial");
    EXPECT_TRUE(serials.hasFocus());
    open.dialog.findChild<QTimer*>("Asks")->setInterval(0);
    open.Key(Qt::Key_Down);
    EXPECT_EQ(open.Line("LabIdentification"), "Answers: TAVRIN,QM2220,1000002,1.00");
    EXPECT_EQ(rig.recorder.connections, (EventList{"2 open", "2 close"}));
    rig.Forget();
    open.Key(Qt::Key_Return);
  });
  EXPECT_EQ(rig.session->State().Instruments[0].SerialNo, "1000002");
  EXPECT_EQ(rig.session->State().Online, 1);
  EXPECT_EQ(rig.recorder.connections, (EventList{"2 open"}));
}

}  // namespace
}  // namespace corlune::testing
