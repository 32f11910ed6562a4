// The dialog of the arbitrary waveforms over the main window: files by keys and by drop, work on the
// instrument with presses inside its waits, and what Close and Cancel leave.
#include <gmock/gmock.h>

#include <QComboBox>
#include <QMimeData>
#include <QTableView>
#include <QUrl>

#include "dialogs/wave_preview.h"
#include "gui/main_window/dialog_rig.h"

namespace corlune::testing {
namespace {

using ::testing::HasSubstr;

struct WaveformDialogRig : WindowRig {
  explicit WaveformDialogRig(Bus bus = Bus::OneInstrument) : WindowRig(bus) {
    Start();
    AddSteps(1);
    session->State().Modified = false;
    std::string values = "32767\n-16384\n";
    for (int i = 2; i < 4096; ++i) values += "0\n";
    for (const char* name : {"w1.txt", "w2.txt", "w10.txt"}) folder.Write(name, values);
  }
  const ArbFileEntry& Entry(int number) const {
    return session->Sequence().Channels.ArbFiles[static_cast<std::size_t>(number - 1)];
  }
};

std::string Cell(const OpenDialog& open, int number, int column) {
  const QAbstractItemModel* table = open.Find<QTableView>("grdArb").model();
  return table->index(number - 1, column).data().toString().toStdString();
}

TEST(WaveformDialog, AssignsSendsAndKeepsTheInstrumentsTruth) {
  WaveformDialogRig rig;
  InDialog(rig, "mnuToolsItem_0", [&](const OpenDialog& open) {
    auto& grid = open.Find<QTableView>("grdArb");
    ASSERT_TRUE(grid.hasFocus());
    open.Key(Qt::Key_Down);
    rig.files.open.emplace_back(rig.folder.File("w1.txt"));
    open.Key(Qt::Key_Return);
    EXPECT_THAT(rig.files.asked.back(), HasSubstr("*.wdb;*.txt|Plindor"));
    EXPECT_EQ(Cell(open, 2, 4), "4,096");
    open.Find<QTimer>("tmrPreview").start(0);
    rig.Settle();
    const auto& preview = open.Find<WavePreview>("WavePreview");
    EXPECT_TRUE(preview.Draws());
    EXPECT_EQ(preview.ShownText(), "ARB 2: Peak 32767 and -16384, mean 4");
    EXPECT_EQ(grid.currentIndex().row(), 1) << "what is typed goes on in the grid";

    // Presses inside the wait: Escape ends the transfer behind the file under way, Close waits.
    rig.pump.At(rig.clock.Now() + 500, [&] {
      EXPECT_FALSE(open.Find<QPushButton>("cmdOk").isEnabled());
      EXPECT_THAT(open.Line("labProgress"),
                  HasSubstr("ARB 2 (1 of 1): 0 of 8,201 bytes sent, about 00:01 left"));
      EXPECT_FALSE(rig.window->close());
      open.Key(Qt::Key_Escape);
      EXPECT_TRUE(open.dialog.isVisible());
    });
    rig.Click(&open.Find<QPushButton>("cmdRmt_0"));
    EXPECT_EQ(open.Line("LabNote"), "Waveforms sent: 1 of 1.");
    EXPECT_EQ(Cell(open, 2, 5), "File and instrument");
    open.Key(Qt::Key_Escape);
  });
  EXPECT_EQ(rig.Entry(2).FilePath, "");
  EXPECT_EQ(rig.Entry(2).InInstrument, 1) << "what was sent stays so";
  EXPECT_FALSE(rig.session->State().Modified);

  InDialog(rig, "mnuToolsItem_0", [&](const OpenDialog& open) {
    auto& grid = open.Find<QTableView>("grdArb");
    EXPECT_EQ(Cell(open, 2, 5), "Instrument");
    // Dropped onto a row in any order; they come in that of their names.
    QMimeData files;
    QList<QUrl> urls;
    for (const char* name : {"w10.txt", "w2.txt"}) {
      urls << QUrl::fromLocalFile(QString::fromStdString(rig.folder.File(name)));
    }
    files.setUrls(urls);
    grid.model()->dropMimeData(&files, Qt::CopyAction, -1, -1, grid.model()->index(3, 0));
    rig.Settle();
    EXPECT_THAT(Cell(open, 4, 2), HasSubstr("w2.txt"));
    EXPECT_THAT(Cell(open, 5, 2), HasSubstr("w10.txt"));
    EXPECT_EQ(grid.selectionModel()->selectedRows().size(), 2);
    // The memory panel asks which number, and the dialog whether to delete it.
    for (const PromptAnswer answer : {PromptAnswer::Cancel, PromptAnswer::Ok}) {
      rig.prompts.Answer(answer);
      QTimer::singleShot(0, &open.dialog, [&] {
        auto* panel = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_EQ(panel->objectName(), "FrmArbMemory");
        QApplication::setActiveWindow(panel);
        panel->findChild<QComboBox*>("cmbNumber")->setFocus();
        for (int i = 0; i < 2; ++i) rig.Key(Qt::Key_Down);
        rig.Key(Qt::Key_Return);
      });
      rig.Click(&open.Find<QPushButton>("cmdMemory"));
      EXPECT_EQ(rig.prompts.messages.back().text,
                "Delete the arbitrary waveforms 2 in the instrument 1 (USBTMC 1000001)?");
      EXPECT_EQ(rig.CountSent("1 < :TRACe:DELete 2"), answer == PromptAnswer::Ok ? 1 : 0);
    }
    EXPECT_EQ(Cell(open, 2, 5), "- - - -");
    rig.Click(&open.Find<QPushButton>("cmdOk"));
  });
  EXPECT_EQ(rig.Entry(5).FilePath, rig.folder.File("w10.txt"));
  EXPECT_TRUE(rig.session->State().Modified);
  EXPECT_EQ(rig.editor->UndoText(), "Undo: Arbitrary Waveforms");
  rig.Key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(rig.Entry(4).FilePath, "");
}

TEST(WaveformDialog, GoesOnOffLineWhenTheInstrumentIsGone) {
  WaveformDialogRig rig;
  InDialog(rig, "mnuToolsItem_0", [&](const OpenDialog& open) {
    rig.files.open.emplace_back(rig.folder.File("w1.txt"));
    rig.Click(&open.Find<QPushButton>("cmdFile"));
    rig.pump.At(rig.clock.Now() + 500, [&] { rig.Faults("gone"); });
    rig.prompts.Answer(PromptAnswer::Ok);
    rig.Click(&open.Find<QPushButton>("cmdRmt_0"));
    ASSERT_FALSE(rig.prompts.messages.empty());
    EXPECT_EQ(rig.prompts.messages.back().text, "The communication error to the instrument 1 occurred.");
    EXPECT_EQ(rig.session->State().Online, 0);
    EXPECT_EQ(Cell(open, 1, 5), "File");
    for (const char* name : {"cmdRmt_0", "cmdRmt_1", "cmdAllClear", "cmdUpdate", "cmdMemory"}) {
      EXPECT_FALSE(open.Find<QPushButton>(name).isEnabled()) << name;
    }
    open.Key(Qt::Key_Delete);
    rig.Click(&open.Find<QPushButton>("cmdOk"));
  });
  EXPECT_FALSE(rig.session->State().Modified);
}

}  // namespace
}  // namespace corlune::testing
