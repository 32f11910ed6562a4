// A grid panel over a sequence of the shipped QM2220, in a window with a field before and behind it, and a
// person who types.
#pragma once

#include <array>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QTableView>
#include <QTest>
#include <QVBoxLayout>

#include "modeldef/read_model_definition.h"
#include "sequence/defaults.h"
#include "sequence/start_values.h"
#include "support/fake_ports.h"
#include "support/samples.h"
#include "ui/channel_tabs.h"
#include "ui/grid_panel.h"

namespace corlune::testing {

class GridsRig {
 public:
  explicit GridsRig(int steps = 5, const std::string& definitionFile = CORLUNE_DATA "/Corlune_Std.ini",
                    bool english = true)
      : catalogue(english ? 10000 : 0) {
    EXPECT_EQ(ReadModelDefinition(definitionFile, state.ModelName, !english, definition), DefinitionLoad::Ok);
    ResetSequence(sequence, definition);
    sequence.StepCount = static_cast<std::int16_t>(steps);
    ComputeStartValues(sequence);
    editor = std::make_unique<SequenceEditor>(state, definition, sequence, catalogue, prompts);

    auto* layout = new QVBoxLayout(&window);
    before = new QLineEdit;
    behind = new QLineEdit;
    panel = new GridPanel(*editor, prompts);
    layout->addWidget(before);
    layout->addWidget(panel);
    layout->addWidget(behind);
    // As the main window does.
    QObject::connect(panel, &GridPanel::Changed, panel, [this] {
      ++changes;
      ShowStates();
    });
    ShowStates();
    window.resize(733, 600);
    window.show();
    window.activateWindow();
    QApplication::processEvents();
    panel->SelectFirstCell();
    QApplication::processEvents();
  }

  void ShowStates() {
    ControlConditions conditions;
    conditions.StepCount = sequence.StepCount;
    conditions.CopyBufferFilled = editor->CopyBufferFilled();
    conditions.CanUndo = editor->CanUndo();
    conditions.CanRedo = editor->CanRedo();
    panel->ShowStates(ControlStatesOf(state, {}, definition, conditions));
  }

  QTableView& Grid(const char* name) const { return *window.findChild<QTableView*>(QLatin1String(name)); }
  QTableView& Common() const { return Grid("MSFlexGrid1"); }
  QTableView& Channel(int channel) const { return Grid(channel == 0 ? "MSFlexGrid2_0" : "MSFlexGrid2_1"); }
  QTableView& Branch() const { return Grid("MSFlexGrid3"); }
  template <class Widget>
  Widget& Named(const char* name) const {
    auto* widget = window.findChild<Widget*>(QLatin1String(name));
    if (widget == nullptr) throw std::runtime_error(std::string("no control ") + name);
    return *widget;
  }
  QLineEdit& Text(int area) const {
    constexpr std::array<const char*, 4> kNames{"", "Text1", "Text2", "Text3"};
    return Named<QLineEdit>(kNames[static_cast<std::size_t>(area)]);
  }
  QComboBox& Combo(int area) const {
    constexpr std::array<const char*, 4> kNames{"", "Combo1", "Combo2", "Combo3"};
    return Named<QComboBox>(kNames[static_cast<std::size_t>(area)]);
  }
  static std::string CellText(const QTableView& grid, int row, int column) {
    return grid.model()->index(row - 1, column).data().toString().toStdString();
  }

  // Keys go to the widget that has the focus, as they would from a keyboard.
  QWidget* Focus() const { return window.focusWidget(); }
  std::string FocusName() const { return Focus() ? Focus()->objectName().toStdString() : "none"; }
  void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(Focus(), key, modifiers);
    QApplication::processEvents();
  }
  void Type(const char* text) {
    for (const char* at = text; *at != '\0'; ++at) QTest::keyClick(Focus(), *at);
    QApplication::processEvents();
  }
  void TypeThen(const char* text, Qt::Key key) {
    Type(text);
    Press(key);
  }
  // What a Japanese input method hands over.
  void Compose(const QString& text) {
    QInputMethodEvent event;
    event.setCommitString(text);
    QApplication::sendEvent(Focus(), &event);
  }
  void Click(QTableView& grid, int row, int column, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    const QModelIndex index = grid.model()->index(row - 1, column);
    grid.scrollTo(index);
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, modifiers, grid.visualRect(index).center());
    QApplication::processEvents();
  }
  // Makes a cell current by the keyboard's way, without an entry.
  void GoTo(GridArea area, int row, int column, int channel = 0) {
    QTableView& grid = area == GridArea::Common     ? Common()
                       : area == GridArea::Sequence ? Channel(channel)
                                                    : Branch();
    if (area == GridArea::Sequence) Named<ChannelTabs>("SSTab1").setCurrentIndex(channel);
    QApplication::processEvents();
    Click(grid, row, column);
  }
  std::string At() const {
    const GridCursor& cursor = editor->Cursor();
    return std::to_string(cursor.CurrentRow) + "," + std::to_string(cursor.CurrentCol());
  }
  StepRow& Step(int row) { return sequence.Steps[static_cast<std::size_t>(row - 1)]; }
  ParamCell& Cell(int channel, int row, int param) { return sequence.Cell(channel, row - 1, param); }
  // The queued message was shown, once, and begins as the catalogue's.
  void CheckMessage(const std::string& beginning) {
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text.substr(0, beginning.size()), beginning);
    EXPECT_EQ(prompts.messages[0].icon, PromptIcon::Exclamation);
    prompts.messages.clear();
  }

  AppState state = TwoChannelState();
  ModelDefinition definition;
  SequenceData sequence;
  MessageCatalogue catalogue;
  ScriptedPrompts prompts;
  std::unique_ptr<SequenceEditor> editor;
  QWidget window;
  QLineEdit* before = nullptr;
  QLineEdit* behind = nullptr;
  GridPanel* panel = nullptr;
  int changes = 0;
};

// Counts the repaints of a widget and remembers what was painted.
class PaintCounter : public QObject {
 public:
  explicit PaintCounter(QWidget& widget) : widget_(widget) {
    QApplication::processEvents();
    widget.installEventFilter(this);
  }
  ~PaintCounter() override { widget_.removeEventFilter(this); }
  int count = 0;
  QRegion region;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Paint) {
      ++count;
      region += static_cast<QPaintEvent*>(event)->region();
    }
    return QObject::eventFilter(watched, event);
  }

 private:
  QWidget& widget_;
};

}  // namespace corlune::testing
