// MainWindow: where its parts, the window itself and the sequence view stand.
#include <algorithm>

#include <QApplication>
#include <QMenuBar>
#include <QScreen>
#include <QWindow>

#include "ui/form_style.h"
#include "ui/grid_panel.h"
#include "ui/main_window.h"
#include "ui/share_split.h"
#include "ui/stat_bar.h"
#include "ui/twips.h"
#include "ui/view_pane.h"
#include "view/command_menu.h"
#include "view/frm_preview.h"
#include "view/run_fields.h"
#include "view/signal_strip.h"
#include "view/window_focus.h"

namespace corlune {

namespace {

constexpr QMargins kUsualFrame{4, 28, 4, 4};  // pixels; the real one is known when the window is shown
constexpr int kFrameLooks = 10;               // times that the frame is looked for, 50 ms apart
constexpr int kFrameInterval = 50;            // ms
constexpr int kBeside = 20;                   // pixels around grids and controls, at most
constexpr int kMostRows = 30;                 // in each grid at the first start
constexpr int kGridsShare = 600;              // beside a view docked the first time, permille
constexpr int kMostShare = 999;
constexpr const char* kGridShare = "Layout/Grids";
constexpr const char* kDock = "View/Dock";
constexpr const char* kShown = "View/Shown";

// Of the grids beside a view that is docked in this place.
constexpr const char* ShareKey(ViewPlace place) {
  return place == ViewPlace::Beside ? "Layout/ViewBeside" : "Layout/ViewBelow";
}

QList<QRect> Screens() {
  QList<QRect> screens;
  for (const QScreen* screen : QApplication::screens()) screens.append(screen->availableGeometry());
  return screens;
}

QSize Edges(const QMargins& frame) {
  return {frame.left() + frame.right(), frame.top() + frame.bottom()};
}

}  // namespace

QWidget* MainWindow::BuildMiddle(QWidget* parent) {
  outer_ = new ShareSplit(Qt::Vertical, parent);
  outer_->setObjectName(QStringLiteral("SplitView"));
  middle_ = new QSplitter(Qt::Vertical);
  middle_->setObjectName(QStringLiteral("SplitMiddle"));
  middle_->setChildrenCollapsible(false);
  middle_->addWidget(grids_);
  middle_->setStretchFactor(0, 1);
  signal_ = new SignalStrip(session_.Catalogue());
  signal_->setVisible(settings_.Number(WindowSettings::kSignalShown, 1, 1).has_value());
  middle_->addWidget(signal_);
  pane_ = new ViewPane(session_.Catalogue(), [this](Command command) { Do(command); });
  pane_->hide();
  outer_->addWidget(middle_);
  outer_->addWidget(pane_);
  grids_->SetShare(settings_.Number(kGridShare, 1, kMostShare));
  viewPlace_ = static_cast<ViewPlace>(settings_.Number(kDock, 0, 2).value_or(0));
  return outer_;
}

// --- the window itself ---

QMargins MainWindow::Frame() const {
  const QMargins known = windowHandle() != nullptr ? windowHandle()->frameMargins() : QMargins();
  return known.isNull() ? kUsualFrame : known;
}

// On a small or much enlarged screen less than the usual least size has to do.
void MainWindow::LimitSize() {
  const QSize room = screen()->availableGeometry().size() - Edges(Frame());
  setMinimumSize(QSize(TwipsToPixels(kLeastWidth, this), TwipsToPixels(kLeastHeight, this)).boundedTo(room));
}

QSize MainWindow::FirstSize() const {
  const QSize room = screen()->availableGeometry().size() - Edges(Frame());
  const bool sideBySide = room.width() >= TwipsToPixels(kSideBySideWindow, this);
  const QSize grids = grids_->SizeFor(kMostRows, sideBySide);
  const int rows =
      menuBar()->sizeHint().height() + fields_->sizeHint().height() + statBar_->sizeHint().height();
  return (grids + QSize(kBeside, rows + kBeside)).boundedTo(room).expandedTo(minimumSize());
}

void MainWindow::ShowAtPlace() {
  LimitSize();
  const std::optional<WindowPlace> place = settings_.Place();
  const QRect wanted = place ? place->geometry : QRect(screen()->availableGeometry().topLeft(), FirstSize());
  const QRect placed = ClampToScreens(wanted, Screens(), minimumSize(), Frame());
  resize(placed.size());
  move(placed.topLeft());
  if (settings_.Number(kShown, 1, 1) && viewPlace_ != ViewPlace::Floating) {
    ShowPreview(viewPlace_);
    RefreshControls();
  }
  if (place && place->maximized) {
    showMaximized();
  } else {
    show();
  }
  FitFrame(kFrameLooks);
}

// The frame belongs to the window manager, which tells its size some time after the window is shown. Then
// the window is brought onto the screen as a whole.
void MainWindow::FitFrame(int looks) {
  if (closed_ || isMaximized() || isFullScreen() || isMinimized()) return;
  if (windowHandle() == nullptr || windowHandle()->frameMargins().isNull()) {
    if (looks > 0) QTimer::singleShot(kFrameInterval, this, [this, looks] { FitFrame(looks - 1); });
    return;
  }
  LimitSize();
  const QRect placed = ClampToScreens(QRect(pos(), size()), Screens(), minimumSize(), Frame());
  if (placed.size() != size()) resize(placed.size());
  if (placed.topLeft() != pos()) move(placed.topLeft());
}

// At the top left of the screen with this width; the height stays as far as the screen reaches.
void MainWindow::TakeStyle(const FormStyle& style) {
  showNormal();
  const QRect area = screen()->availableGeometry();
  const QRect wanted(area.topLeft(), QSize(TwipsToPixels(style.Window, this), height()));
  const QRect placed = ClampToScreens(wanted, {area}, minimumSize(), Frame());
  move(placed.topLeft());
  resize(placed.size());
}

void MainWindow::FormStyleNomal() {
  tiled_.reset();
  TakeStyle(kNormalStyle);
}

void MainWindow::FormStyleAlign() {
  const WindowPlace before = PresentPlace();
  TakeStyle(kAlignedStyle);
  if (!tiled_) tiled_ = Tiled{before, {}};
  tiled_->size = size();
}

// The frame belongs to the window manager; the place is that of move().
WindowPlace MainWindow::PresentPlace() const {
  const bool normal = !isMaximized() && !isFullScreen() && !isMinimized();
  return {normal ? QRect(pos(), size()) : normalGeometry(), isMaximized()};
}

void MainWindow::KeepPlace() const {
  // Tiling is for the moment: the next start finds the window as it was before.
  const bool stillTiled = tiled_ && tiled_->size == size() && !isMaximized();
  settings_.Write(stillTiled ? tiled_->before : PresentPlace(), recentFiles_);
  settings_.WriteNumber(kGridShare, grids_->Share());
  KeepShare();
  settings_.WriteNumber(kDock, static_cast<int>(viewPlace_));
  settings_.WriteNumber(kShown, session_.State().SequenceViewShown ? 1 : 0);
  KeepViewPlace();
}

// --- the sequence view ---

void MainWindow::KeepViewPlace() const {
  if (!preview_ || !preview_->isVisible() || preview_->Docked() || viewTiled_) return;
  if (preview_->isMaximized() || preview_->isMinimized()) return;
  settings_.WritePlace(WindowSettings::kViewSection, {QRect(preview_->pos(), preview_->size()), false});
}

void MainWindow::KeepShare() const {
  if (viewPlace_ != ViewPlace::Floating && outer_->Share()) {
    settings_.WriteNumber(ShareKey(viewPlace_), outer_->Share());
  }
}

bool MainWindow::PreviewOpen() const {
  return preview_ && !preview_->isHidden();
}

void MainWindow::ClosePreview() {
  if (preview_) preview_->close();
}

void MainWindow::PreviewClosed() {
  pane_->hide();
  ShowDisplayMenu();
  if (closed_) return;
  RefreshControls();
  if (preview_->Docked()) focus_->Return();
}

// A docked view has no menu bar of its own.
void MainWindow::ShowDisplayMenu() {
  QAction* menu = preview_->DisplayMenu().menuAction();
  if (preview_->Docked() && PreviewOpen()) {
    menuBar()->insertAction(MenuOf(MenuPlace::Help).menuAction(), menu);
  } else {
    menuBar()->removeAction(menu);
  }
}

void MainWindow::PlacePreview(ViewPlace place) {
  FrmPreview& preview = *preview_;
  KeepShare();
  viewPlace_ = place;
  viewTiled_ = false;
  const bool docked = place != ViewPlace::Floating;
  if (preview.Docked() != docked) {
    KeepViewPlace();
    preview.Dock(docked ? pane_ : nullptr);
    if (docked) pane_->Take(preview);
  }
  pane_->setVisible(docked);
  if (!docked) return;
  outer_->setOrientation(place == ViewPlace::Beside ? Qt::Horizontal : Qt::Vertical);
  outer_->SetShare(settings_.Number(ShareKey(place), 1, kMostShare).value_or(kGridsShare));
}

FrmPreview& MainWindow::ShowPreview(ViewPlace place) {
  const bool shown = session_.State().SequenceViewShown;
  FrmPreview& preview = NeedPreview();
  PlacePreview(place);
  if (preview.Docked()) {
    preview.show();
  } else {
    preview.showNormal();
  }
  ShowDisplayMenu();
  ShowFields();
  ShowViewStates();
  preview.ShowElapsedTime(session_.State().ElapsedTime);
  preview.PicDisp();
  // A run that began without the view is followed from now on, a held one when it goes on.
  if (!shown && session_.State().RunState != RunState::Stopped) preview.MeasureStart();
  if (!preview.Docked()) {
    preview.raise();
    preview.activateWindow();
  } else if (isVisible() && !isActiveWindow()) {
    activateWindow();  // the window that had the keyboard is gone
  }
  return preview;
}

void MainWindow::FloatPreview() {
  NeedPreview();
  // Placed before it is shown, so that the window manager counts its frame in.
  const bool hidden = !preview_->isVisible() || preview_->Docked();
  PlacePreview(ViewPlace::Floating);
  const std::optional<WindowPlace> place = settings_.Place(WindowSettings::kViewSection);
  if (hidden && place) {
    const QRect placed = ClampToScreens(place->geometry, Screens(), preview_->minimumSizeHint(), Frame());
    preview_->resize(placed.size());
    preview_->move(placed.topLeft());
  } else if (hidden) {
    preview_->FormStyleNomal(screen()->availableGeometry(), Edges(Frame()));
  }
  ShowPreview(ViewPlace::Floating);
}

// The window becomes larger for it, as far as the screen reaches, so that the grids keep their first size.
void MainWindow::DockPreview(ViewPlace place) {
  const bool there = PreviewOpen() && viewPlace_ == place;
  ShowPreview(place);
  if (there || isMaximized() || isFullScreen()) return;
  // Not to the last pixel: the next start does not know the frame yet.
  const QSize frame = Edges(Frame()).expandedTo(Edges(kUsualFrame));
  const QSize room = screen()->availableGeometry().size() - frame;
  const QSize view = pane_->sizeHint();
  const QSize more = place == ViewPlace::Below ? QSize(0, view.height()) : QSize(view.width(), 0);
  const QSize wanted = size().expandedTo(FirstSize() + more).boundedTo(room);
  const QRect placed = ClampToScreens(QRect(pos(), wanted), Screens(), minimumSize(), Frame());
  resize(placed.size());
  move(placed.topLeft());
}

void MainWindow::SwitchPane() {
  if (!PreviewOpen()) return;
  if (!preview_->Docked()) {
    QWidget& other = preview_->isActiveWindow() ? static_cast<QWidget&>(*this) : *preview_;
    other.raise();
    other.activateWindow();
  } else if (preview_->isAncestorOf(focusWidget())) {
    grids_->FocusCell();
  } else {
    preview_->FocusPicture();
  }
}

void MainWindow::ViewCommand(Command command) {
  Perform([&] {
    switch (command) {
      case Command::EditWindow:
        FormStyleNomal();
        activateWindow();
        break;
      case Command::SequenceView:
        NeedPreview();
        PlacePreview(ViewPlace::Floating);
        preview_->FormStyleNomal(screen()->availableGeometry(), Edges(Frame()));
        ShowPreview(ViewPlace::Floating);
        break;
      case Command::TileVertically:
        NeedPreview();
        PlacePreview(ViewPlace::Floating);
        FormStyleAlign();
        preview_->FormStyleAlign(QRect(pos(), size() + Edges(Frame())), Edges(Frame()));
        ShowPreview(ViewPlace::Floating);
        viewTiled_ = true;
        break;
      case Command::ViewBelow:
        DockPreview(ViewPlace::Below);
        break;
      case Command::ViewBeside:
        DockPreview(ViewPlace::Beside);
        break;
      case Command::ViewFloat:
        FloatPreview();
        break;
      case Command::ViewClose:
        ClosePreview();
        break;
      case Command::SignalStrip:
        SwitchSignal();
        break;
      default:
        SwitchPane();
        break;
    }
  });
}

}  // namespace corlune
