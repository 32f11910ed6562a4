// Arithmetic of places and widths, the settings file, and the file dialog's filters.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QMainWindow>
#include <QTest>
#include <QTimer>

#include "app/qt_ports.h"
#include "support/temp_folder.h"
#include "ui/form_style.h"
#include "ui/window_settings.h"

namespace corlune::testing {
namespace {

TEST(Placement, AWindowComesBackOntoAVisibleScreen) {
  const QRect left(0, 0, 1000, 800);
  const QRect right(1000, 0, 1000, 600);
  const QSize smallest(512, 480);
  struct Row {
    const char* what;
    QRect wanted;
    QList<QRect> screens;
    QRect placed;
  };
  const std::vector<Row> rows{
      {"as it was", {1100, 50, 700, 500}, {left, right}, {1100, 50, 700, 500}},
      {"the second screen is gone", {1100, 50, 700, 500}, {left}, {300, 50, 700, 500}},
      {"above and left of everything", {-5000, -40, 700, 500}, {left}, {0, 0, 700, 500}},
      {"a smaller screen", {100, 100, 1800, 1200}, {left}, {0, 0, 1000, 800}},
      {"across two screens, mostly on the right", {900, 10, 600, 500}, {left, right}, {1000, 10, 600, 500}},
      {"a screen smaller than the window can be",
       {0, 0, 700, 700},
       {QRect(0, 0, 400, 300)},
       {0, 0, 512, 480}},
      {"no screen at all", {7, 8, 700, 500}, {}, {7, 8, 700, 500}},
  };
  for (const Row& row : rows)
    EXPECT_EQ(ClampToScreens(row.wanted, row.screens, smallest), row.placed) << row.what;
  const QMargins frame(4, 28, 4, 4);
  EXPECT_EQ(ClampToScreens({0, 0, 2000, 2000}, {left}, smallest, frame), QRect(0, 0, 992, 768));
  EXPECT_EQ(ClampToScreens({500, 400, 700, 500}, {left}, smallest, frame), QRect(292, 268, 700, 500));
}

TEST(Placement, WidthsAreThoseOfTheTwoStylesAndBetweenThem) {
  EXPECT_EQ(StyleForWidth(10995), (FormStyle{10995, 8415, 10215, 10575}));
  EXPECT_EQ(StyleForWidth(7680), (FormStyle{7680, 5580, 7175, 7435}));
  EXPECT_EQ(StyleForWidth(12000), (FormStyle{12000, 8415, 11220, 11580}));
  for (int width = 7680; width < 13000; width += 15) {
    const FormStyle style = StyleForWidth(width);
    EXPECT_LT(style.ChannelGrid, style.Tabs) << width;
    EXPECT_LT(style.Tabs, style.Window) << width;
    EXPECT_LE(style.CommonGrid, StyleForWidth(width + 15).CommonGrid) << width;
  }
}

TEST(Placement, DamagedSettingsCountAsNone) {
  const TempFolder folder;
  for (const char* text : {"", "[Window]\nLeft=1\nTop=2\nWidth=0\nHeight=500\n",
                           "[Window]\nLeft=a\nTop=2\nWidth=700\nHeight=500\n",
                           "[Window]\nLeft=1\nTop=2\nWidth=99999999999\nHeight=500\n", "\x01\xff[[["}) {
    folder.Write("CorluneWindow.ini", text);
    EXPECT_FALSE(WindowSettings(folder.Path()).Place()) << text;
    EXPECT_TRUE(WindowSettings(folder.Path()).RecentFiles().isEmpty()) << text;
  }
  QStringList files;
  for (int i = 0; i < 12; ++i) files = WithRecentFile(files, QStringLiteral("/日本,%1.dat").arg(i));
  files = WithRecentFile(files, QStringLiteral("/日本,6.dat"));
  EXPECT_EQ(files.size(), 8);
  EXPECT_EQ(files[0], QStringLiteral("/日本,6.dat"));
  const WindowSettings settings(folder.Path());
  settings.Write(WindowPlace{{-20, 5, 600, 500}, true}, files);
  EXPECT_EQ(settings.RecentFiles(), files);
  ASSERT_TRUE(settings.Place());
  EXPECT_EQ(settings.Place()->geometry, QRect(-20, 5, 600, 500));
  EXPECT_TRUE(settings.Place()->maximized);
  EXPECT_FALSE(settings.Place(WindowSettings::kViewSection));
  for (const int number : {1, 999}) {
    settings.WriteNumber("Layout/Grids", number);
    EXPECT_EQ(settings.Number("Layout/Grids", 1, 999), number);
    EXPECT_FALSE(settings.Number("Layout/Grids", 2, 998));
  }
}

TEST(FileFilters, AreGivenToTheDialogInItsOwnForm) {
  struct Row {
    const char* filter;
    const char* dialog;
    const char* suffix;
  };
  for (const Row& row :
       {Row{"Sequence data(*.dat) | *.dat", "Sequence data (*.dat)", "dat"},
        Row{"Sequence data(*.daf;*.dat) | *.daf;*.dat", "Sequence data (*.daf *.dat)", "daf"},
        Row{"シーケンスデータ (*.dat) | *.dat", "シーケンスデータ (*.dat)", "dat"},
        Row{"a(*.wdb;*.txt)|*.wdb;*.txt|b(*.txt)|*.txt", "a (*.wdb *.txt);;b (*.txt)", "wdb"},
        Row{"all", "all", ""}}) {
    EXPECT_EQ(QtFilter(row.filter), row.dialog);
    EXPECT_EQ(FilterSuffix(row.filter), row.suffix);
  }
}

TEST(FileDialogsFolder, IsThatOfTheFileBeingEdited) {
  const DialogOwner owner;
  QtFileDialogs dialogs(owner);
  EXPECT_TRUE(QDir(dialogs.Folder()).exists()) << "not the list of drives";
  dialogs.SetPresentFile([] { return std::string("/measurements/ramp.dat"); });
  EXPECT_EQ(dialogs.Folder(), QStringLiteral("/measurements"));
}

TEST(Prompts, AKeyByMistakeDoesNoHarm) {
  struct Row {
    PromptButtons buttons;
    std::optional<PromptAnswer> escape;
    Qt::Key key;
    PromptAnswer answer;
  };
  const DialogOwner owner;
  QtPrompts prompts(owner, true);
  QMainWindow view;
  view.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
  EXPECT_EQ(owner.Get(), &view) << "it gets the focus back";
  for (const Row& row :
       {Row{PromptButtons::OkCancel, {}, Qt::Key_Escape, PromptAnswer::Cancel},
        Row{PromptButtons::OkCancel, {}, Qt::Key_Return, PromptAnswer::Ok},
        Row{PromptButtons::OkCancel, PromptAnswer::Cancel, Qt::Key_Return, PromptAnswer::Cancel},
        Row{PromptButtons::YesNoCancel, {}, Qt::Key_Escape, PromptAnswer::Cancel},
        Row{PromptButtons::YesNo, PromptAnswer::Yes, Qt::Key_Escape, PromptAnswer::Yes},
        Row{PromptButtons::YesNo, PromptAnswer::No, Qt::Key_Return, PromptAnswer::No}}) {
    QTimer::singleShot(0, [&] { QTest::keyClick(QApplication::activeModalWidget(), row.key); });
    EXPECT_EQ(prompts.Message({{}, {}, row.buttons, {}, row.escape}), row.answer);
  }
  QTimer::singleShot(0, [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape); });
  EXPECT_EQ(prompts.Input({}), std::nullopt);
  // The program ends: what is open is given up, and nothing is asked any more.
  QTimer::singleShot(0, [&] {
    EXPECT_EQ(owner.Get(), QApplication::activeModalWidget()) << "never behind a dialog";
    prompts.StopAsking();
  });
  EXPECT_EQ(prompts.Message({{}, {}, PromptButtons::OkCancel, {}}), PromptAnswer::Cancel);
  EXPECT_EQ(prompts.Input({}), std::nullopt);
  EXPECT_EQ(prompts.Message({{}, {}, PromptButtons::YesNo, {}, PromptAnswer::Yes}), PromptAnswer::Yes);
}

TEST(FileDialogsSave, AppendsTheSuffix) {
  const TempFolder folder;
  const DialogOwner owner;
  QtFileDialogs dialogs(owner);
  QTimer::singleShot(0, [] {
    auto* name = QApplication::activeModalWidget()->findChild<QLineEdit*>("fileNameEdit");
    QTest::keyClicks(name, "typed");
    QTest::keyClick(name, Qt::Key_Return);
  });
  EXPECT_EQ(dialogs.ChooseSave("Sequence data(*.dat) | *.dat", folder.File("old.dat")),
            folder.File("typed.dat"));
}

// Jumps past the end of the wait between two looks.
class JumpingClock : public TickClock {
 public:
  std::uint32_t Now() const override { return now_ += 7; }

 private:
  mutable std::uint32_t now_ = 0xFFFFFFF0U;
};

TEST(EventPump, AWaitEndsEvenWhenItsEndIsPassedBetweenTwoLooks) {
  JumpingClock clock;
  QtEventPump pump(clock);
  const std::uint32_t tick = clock.Now() + 10;
  pump.SleepUntil(tick);
  EXPECT_TRUE(TickReached(clock.Now(), tick));
}

}  // namespace
}  // namespace corlune::testing
