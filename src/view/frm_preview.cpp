#include "view/frm_preview.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include <QAction>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>
#include <QVBoxLayout>

#include "graph/graph_picture.h"
#include "sequence/channel_tabs.h"
#include "view/area_settings.h"
#include "view/command_menu.h"
#include "view/graph_canvas.h"
#include "view/run_buttons.h"
#include "view/run_fields.h"
#include "view/time_panel.h"
#include "view/warning_line.h"
#include "view/window_focus.h"

namespace corlune {

namespace {

constexpr int kMargin = 8;  // pixels
constexpr QSize kNormalSize{960, 660};

}  // namespace

class FrmPreview::Impl {
 public:
  Impl(FrmPreview& window, AppState& appState, const ModelDefinition& modelDefinition,
       const SequenceData& sequenceData, const MessageCatalogue& messages, PreviewHandlers previewHandlers)
      : form(window),
        state(appState),
        definition(modelDefinition),
        sequence(sequenceData),
        catalogue(messages),
        handlers(std::move(previewHandlers)) {}

  QString Text(TextId id) const { return QString::fromStdString(catalogue.GetResString(id)); }

  void BuildMenus();
  void Do(Command command);
  QWidget* BuildContent();
  void BuildStatusBar();
  GraphPicture PictureOf(const SequenceData& shown) const;
  void Draw();
  void FollowRun();
  bool StepUnderWay() const {
    return !RunsHeldSequence(state) && state.CurrentStep >= 0 &&
           state.CurrentStep < static_cast<int>(canvas->Picture().Spans.size());
  }

  FrmPreview& form;
  AppState& state;
  const ModelDefinition& definition;
  const SequenceData& sequence;
  const MessageCatalogue& catalogue;
  PreviewHandlers handlers;

  CommandMenu* runMenu = nullptr;
  CommandMenu* display = nullptr;
  std::vector<QAction*> windowKeys;  // of the main window's view menu
  RunButtons* buttons = nullptr;
  RunFields* fields = nullptr;
  AreaSettings* settings = nullptr;
  GraphCanvas* canvas = nullptr;
  std::unique_ptr<GraphHand> hand;
  std::optional<int> selected;
  TimePanel* total = nullptr;
  TimePanel* elapsed = nullptr;
  WarningLine* warning = nullptr;
  std::unique_ptr<WindowFocus> focus;
  TimeAxis axis = TimeAxis::Time;
  bool measuring = false;
};

void FrmPreview::Impl::BuildMenus() {
  runMenu = new CommandMenu(
      catalogue, MenuPlace::Run,
      [this](Command command) {
        if (handlers.command) handlers.command(command);
      },
      form.menuBar());
  form.menuBar()->addMenu(runMenu);
  display = new CommandMenu(
      catalogue, MenuPlace::Display, [this](Command command) { Do(command); }, form.menuBar());
  form.menuBar()->addMenu(display);
  QAction* areas = display->Item(Command::AreaSettings);
  areas->setCheckable(true);
  areas->setChecked(true);
  for (const CommandRow& row : WindowCommands()) {
    if (row.menu != MenuPlace::View) continue;
    auto* action = new QAction(&form);
    form.addAction(action);
    action->setShortcuts(KeysOf(row));
    QObject::connect(action, &QAction::triggered, &form, [this, command = row.id] {
      if (handlers.command) handlers.command(command);
    });
    windowKeys.push_back(action);
  }
}

void FrmPreview::Impl::Do(Command command) {
  if (command == Command::ZoomIn) canvas->ZoomIn();
  if (command == Command::ZoomOut) canvas->ZoomOut();
  if (command == Command::WholeSequence) canvas->ShowAll();
  if (command == Command::AreaSettings) settings->setVisible(display->Item(command)->isChecked());
}

QWidget* FrmPreview::Impl::BuildContent() {
  auto* content = new QWidget(&form);
  auto* rows = new QVBoxLayout(content);
  rows->setContentsMargins(kMargin, kMargin / 2, kMargin, 0);
  rows->setSpacing(kMargin / 2);
  buttons = new RunButtons(
      catalogue,
      [this](int index) {
        if (handlers.runButton) handlers.runButton(index);
      },
      content);
  fields = new RunFields(catalogue,
                         {handlers.enterSequenceNumber, handlers.enterStartStep, handlers.enterBranchChannel},
                         content);
  settings = new AreaSettings(catalogue,
                              {[this](const ViewAreaTable& areas) {
                                 const bool stored =
                                     handlers.enterViewAreas && handlers.enterViewAreas(areas);
                                 if (stored) form.PicDisp();
                                 return stored;
                               },
                               [this](TimeAxis chosen) {
                                 axis = chosen;
                                 form.PicDisp();
                               },
                               static_cast<bool>(handlers.enterViewAreas)},
                              content);
  settings->setObjectName(QStringLiteral("AreaSettings"));
  canvas = new GraphCanvas(
      GraphTexts{
          [this](std::size_t area, int step) {
            return GraphTip(sequence, definition, catalogue, canvas->Picture(), area, step);
          },
          [this](const LoopBracket& bracket) { return LoopTipText(catalogue, canvas->Picture(), bracket); },
          [this](const std::string& label) { return catalogue.GetResString(TextId::ViewStepName, {label}); },
          catalogue.GetResString(TextId::CellRunning)},
      content);
  hand = std::make_unique<GraphHand>(*canvas, state, definition, sequence, catalogue, handlers.graphs,
                                     [this](const SequenceData& shown) { return PictureOf(shown); });
  canvas->setObjectName(QStringLiteral("PicView"));
  canvas->setAccessibleName(Text(TextId::GraphsName));
  rows->addWidget(buttons);
  rows->addWidget(fields);
  rows->addWidget(settings);
  rows->addWidget(canvas, 1);
  return content;
}

void FrmPreview::Impl::BuildStatusBar() {
  QStatusBar* bar = form.statusBar();
  bar->setObjectName(QStringLiteral("StatBar1"));
  const auto add = [&](const char* name, TextId captionId) {
    auto* panel = new TimePanel(catalogue, captionId, bar);
    panel->setObjectName(QString::fromUtf8(name));
    bar->addWidget(panel);
    return panel;
  };
  total = add("PanelTotal", TextId::TotalTime);
  elapsed = add("PanelElapsed", TextId::ElapsedTime);
  warning = new WarningLine(catalogue, bar);
  bar->addWidget(warning, 1);
}

GraphPicture FrmPreview::Impl::PictureOf(const SequenceData& shown) const {
  // Run times are those of the last download; while the sequence is edited only the entered ones are true.
  // There are run times of what was sent.
  const bool sent = state.OperationMode == OperationMode::Execution && !state.HeldSequence;
  const StepLength length = sent ? StepLength::RunTime : StepLength::Entered;
  GraphPicture picture =
      BuildGraphPicture(shown, definition, catalogue, {EditedChannels(state), axis, length});
  if (picture.Note.empty() && picture.Areas.empty()) {
    picture.Note = catalogue.GetResString(TextId::GraphAllAreasOff);
  }
  return picture;
}

void FrmPreview::Impl::Draw() {
  const int channels = EditedChannels(state);
  // Whatever is drawn anew may have changed what a drag began with.
  hand->Cancel();
  canvas->ShowPicture(PictureOf(sequence));
  canvas->ShowSelectedStep(selected);
  settings->ShowAreas(definition, AreasInEffect(sequence, definition, channels), axis);
}

void FrmPreview::Impl::FollowRun() {
  const bool shown = measuring && StepUnderWay();
  canvas->ShowCurrentStep(shown ? std::optional<int>(state.CurrentStep) : std::nullopt,
                          definition.CurrentStep);
  if (!shown) canvas->ShowMarker(std::nullopt, definition.Indicator);
}

FrmPreview::FrmPreview(AppState& state, const ModelDefinition& definition, const SequenceData& sequence,
                       const MessageCatalogue& catalogue, PreviewHandlers handlers, QWidget* parent)
    : QMainWindow(parent),
      impl_(std::make_unique<Impl>(*this, state, definition, sequence, catalogue, std::move(handlers))) {
  setObjectName(QStringLiteral("FrmPreview"));
  setWindowTitle(impl_->Text(TextId::ViewTitle));
  setContextMenuPolicy(Qt::NoContextMenu);
  impl_->BuildMenus();
  setCentralWidget(impl_->BuildContent());
  impl_->BuildStatusBar();
  impl_->focus = std::make_unique<WindowFocus>(*this, *impl_->canvas, [this] { impl_->canvas->setFocus(); });
  ShowElapsedTime(state.ElapsedTime);
  resize(kNormalSize);
  PicDisp();
}

FrmPreview::~FrmPreview() {
  if (isVisible()) impl_->state.SequenceViewShown = false;
}

void FrmPreview::PicDisp() {
  impl_->Draw();
  impl_->FollowRun();
}

void FrmPreview::MoveShape(std::uint32_t tick) {
  if (!impl_->measuring) return;
  impl_->FollowRun();
  if (!impl_->StepUnderWay()) return;
  const auto position = MarkerPosition(impl_->canvas->Picture().Spans, impl_->state.CurrentStep,
                                       impl_->state.StepChangedAt, tick);
  impl_->canvas->ShowMarker(position, impl_->definition.Indicator);
}

void FrmPreview::MeasureStart() {
  impl_->measuring = true;
  PicDisp();
  MoveShape(impl_->state.StepChangedAt);
}

void FrmPreview::MeasureEnd() {
  impl_->measuring = false;
  impl_->FollowRun();
}

void FrmPreview::Dock(QWidget* pane) {
  setParent(pane, pane != nullptr ? Qt::Widget : Qt::Window);
  const bool alone = pane == nullptr;
  menuBar()->setVisible(alone);
  statusBar()->setVisible(alone);
  impl_->buttons->setVisible(alone);
  impl_->fields->setVisible(alone);
  for (QAction* action : impl_->windowKeys) action->setEnabled(alone);
}

CommandMenu& FrmPreview::DisplayMenu() const {
  return *impl_->display;
}

void FrmPreview::FocusPicture() {
  impl_->canvas->setFocus(Qt::OtherFocusReason);
}

void FrmPreview::FormStyleNomal(const QRect& screen, const QSize& frame) {
  if (isMinimized() || isMaximized()) showNormal();
  const QSize edges = (frameGeometry().size() - size()).expandedTo(frame);
  const QSize wanted = kNormalSize.boundedTo(screen.size() - edges).expandedTo(minimumSizeHint());
  resize(wanted);
  const QSize free = screen.size() - wanted - edges;
  move(screen.x() + free.width() / 2, screen.y() + free.height() / 2);
}

void FrmPreview::FormStyleAlign(const QRect& leftWindow, const QSize& frame) {
  if (isMinimized() || isMaximized()) showNormal();
  const QScreen* on = QGuiApplication::screenAt(leftWindow.center());
  const QRect area = (on ? on : screen())->availableGeometry();
  const QSize edges = (frameGeometry().size() - size()).expandedTo(frame);
  const int left = leftWindow.right() + 1;
  const QSize free(area.right() + 1 - left, leftWindow.height());
  const QSize wanted = (free - edges).expandedTo(minimumSizeHint());
  resize(wanted);
  // On a narrow screen the view rather covers a part of the main window than reaching off the screen.
  const int rightmost = area.right() + 1 - wanted.width() - edges.width();
  move(std::max(std::min(left, rightmost), area.left()), leftWindow.top());
}

void FrmPreview::ShowStates(const ControlStates& states) {
  impl_->focus->Keep([&] {
    impl_->buttons->ShowStates(states, impl_->state, impl_->definition);
    impl_->fields->ShowStates(states);
    impl_->runMenu->ShowStates(states);
  });
  impl_->hand->AllowEntries(states.EditCells);
  impl_->warning->ShowState(impl_->state);
  PicDisp();
}

void FrmPreview::ShowSelectedStep(std::optional<int> step) {
  impl_->selected = step;
  impl_->canvas->ShowSelectedStep(step);
}

void FrmPreview::ShowFields(const std::string& sequenceNumber, const std::string& startStep,
                            const std::string& branchChannel) {
  impl_->fields->ShowTexts(sequenceNumber, startStep, branchChannel);
}

bool FrmPreview::EnterFields(EntryEnd end) {
  return impl_->fields->Enter(end);
}

void FrmPreview::ReturnFocus() {
  if (!Docked()) impl_->focus->Return();
}

void FrmPreview::ShowTotalTime(double milliseconds) {
  impl_->total->ShowTime(milliseconds);
}

void FrmPreview::ShowElapsedTime(std::int32_t milliseconds) {
  impl_->elapsed->ShowTime(milliseconds);
}

void FrmPreview::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  if (event->spontaneous()) return;
  impl_->state.SequenceViewShown = true;
  if (!Docked()) impl_->canvas->setFocus();
}

void FrmPreview::closeEvent(QCloseEvent* event) {
  QMainWindow::closeEvent(event);
  if (!event->isAccepted()) return;
  EnterFields(EntryEnd::Left);
  hide();  // now: whoever is told of it asks whether the view is open
  impl_->state.SequenceViewShown = false;
  // The run goes on without the view.
  MeasureEnd();
  if (impl_->handlers.closed) impl_->handlers.closed();
}

}  // namespace corlune
