#include "view/signal_strip.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>
#include <QTextDocument>
#include <QToolTip>
#include <QWheelEvent>

#include "core/numbers.h"
#include "view/graph_painter.h"

namespace corlune {

namespace {

constexpr int kQuiet = 60;           // ms without another step
constexpr double kZoomStep = 1.25;   // of a key or a notch of the wheel
constexpr double kLeastPart = 1e-8;  // of the step's length, at the greatest zoom
constexpr double kLeastTime = 1e-9;  // s
constexpr double kKeyMove = 0.25;    // of the part that is shown
constexpr int kPlotLines = 4;        // lines of text in the height of a plot
constexpr int kLeastPlotLines = 3;

}  // namespace

SignalStrip::SignalStrip(const MessageCatalogue& catalogue, QWidget* parent)
    : QWidget(parent), catalogue_(catalogue), quiet_(new QTimer(this)) {
  setObjectName(QStringLiteral("SignalStrip"));
  setAccessibleName(QString::fromStdString(catalogue.GetResString(TextId::SignalName)));
  // A click leaves the cell its focus.
  setFocusPolicy(Qt::TabFocus);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  quiet_->setSingleShot(true);
  connect(quiet_, &QTimer::timeout, this, [this] { ReadNextFile(); });
}

void SignalStrip::Show(SignalSubject subject) {
  if (subject == subject_) return;
  if (subject.StepText != subject_.StepText) {
    zoom_.reset();
    drag_.reset();
  }
  const bool sameHeight = subject.Channels.size() == subject_.Channels.size();
  subject_ = std::move(subject);
  FindFiles();
  if (!sameHeight) updateGeometry();
}

void SignalStrip::FindFiles() {
  files_.clear();
  bool missing = false;
  for (const ChannelSignal& signal : subject_.Channels) {
    files_.push_back(signal.WavePath.empty() ? nullptr : cache_.Find(signal.WavePath));
    missing = missing || (!signal.WavePath.empty() && !files_.back());
  }
  if (missing) {
    quiet_->start(kQuiet);
  } else {
    quiet_->stop();
  }
  Redraw();
}

// One file a turn: between two of them the window answers.
void SignalStrip::ReadNextFile() {
  if (!isVisible()) return;
  for (const std::string& path : WavePathsOf(subject_)) {
    if (cache_.Find(path)) continue;
    cache_.Read(path);
    break;
  }
  FindFiles();
  if (quiet_->isActive()) quiet_->start(0);
}

void SignalStrip::Redraw() {
  valid_ = false;
  Describe();
  update();
}

void SignalStrip::Describe() {
  std::string text = subject_.Description;
  if (!subject_.Note.empty()) text += (text.empty() ? "" : "\n") + subject_.Note;
  for (std::size_t i = 0; i < subject_.Channels.size(); ++i) {
    const std::string note = SignalNote(subject_.Channels[i], files_[i].get(), catalogue_);
    if (!note.empty()) text += "\n" + note;
  }
  setAccessibleDescription(QString::fromStdString(text));
}

AxisWindow SignalStrip::Window() const {
  return zoom_.value_or(FirstPeriods(subject_));
}

bool SignalStrip::ShowsPart() const {
  const AxisWindow window = Window();
  return window.Start > 0 || window.End < subject_.Length;
}

const SignalPicture& SignalStrip::Picture() {
  if (valid_) return picture_;
  valid_ = true;
  picture_ = {};
  if (!subject_.Note.empty()) return picture_;
  const int channels = static_cast<int>(subject_.Channels.size());
  const auto columns = [this](const SignalLayout::Column& pane) {
    return std::max(1, static_cast<int>(std::lround((pane.Right - pane.Left) * devicePixelRatioF())));
  };
  layout_ = ComputeSignalLayout(size(), font(), channels, ShowsPart() ? 2 : 1);
  const PaneColumns wanted{columns(layout_.Panes.front()), columns(layout_.Panes.front()),
                           columns(layout_.Panes.back())};
  picture_ = BuildSignalPicture(subject_, files_, catalogue_, Window(), wanted);
  return picture_;
}

QSize SignalStrip::sizeHint() const {
  const int channels = std::max(1, static_cast<int>(subject_.Channels.size()));
  return {400, SignalHeight(font(), channels, kPlotLines)};
}

QSize SignalStrip::minimumSizeHint() const {
  const int channels = std::max(1, static_cast<int>(subject_.Channels.size()));
  return {200, SignalHeight(font(), channels, kLeastPlotLines)};
}

void SignalStrip::paintEvent(QPaintEvent*) {
  const SignalPicture& picture = Picture();
  QPainter painter(this);
  const GraphColors colors(palette());
  painter.fillRect(rect(), colors.Panel);
  if (!subject_.Note.empty()) {
    const std::string text =
        subject_.StepText.empty() ? subject_.Note : subject_.StepText + "\n" + subject_.Note;
    painter.setPen(colors.Text);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, QString::fromStdString(text));
  } else if (!subject_.Channels.empty()) {
    PaintSignal(painter, subject_, picture, layout_, colors, font());
  }
  if (hasFocus()) {
    QStyleOptionFocusRect option;
    option.initFrom(this);
    option.backgroundColor = colors.Panel;
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
  }
}

void SignalStrip::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  valid_ = false;
}

void SignalStrip::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange) updateGeometry();
  valid_ = false;
}

std::size_t SignalStrip::PaneAt(double x) const {
  return layout_.Panes.size() > 1 && x >= layout_.Panes[1].Left ? 1 : 0;
}

double SignalStrip::TimeAt(double x, std::size_t pane) const {
  const SignalLayout::Column& column = layout_.Panes[pane];
  const AxisWindow& window = picture_.Panes[pane].Window;
  const double part = std::clamp((x - column.Left) / (column.Right - column.Left), 0.0, 1.0);
  return window.Start + (window.End - window.Start) * part;
}

void SignalStrip::ZoomBy(double factor, double anchor) {
  const AxisWindow window = Window();
  const double length = window.End - window.Start;
  const double least = std::max(subject_.Length * kLeastPart, kLeastTime);
  const double wanted = std::clamp(length / factor, std::min(least, subject_.Length), subject_.Length);
  if (wanted == length) return;
  const double inside = std::clamp((anchor - window.Start) / length, 0.0, 1.0);
  zoom_ = AxisWindow{0, wanted};
  MoveTo(anchor - wanted * inside);
}

void SignalStrip::MoveTo(double start) {
  const AxisWindow window = Window();
  const double length = window.End - window.Start;
  const double from = std::clamp(start, 0.0, std::max(subject_.Length - length, 0.0));
  zoom_ = AxisWindow{from, length < subject_.Length ? from + length : subject_.Length};
  Redraw();
}

void SignalStrip::wheelEvent(QWheelEvent* event) {
  constexpr double kNotch = 120;
  if (Picture().Panes.empty() || event->angleDelta().y() == 0) {
    event->ignore();
    return;
  }
  const double x = event->position().x();
  ZoomBy(std::pow(kZoomStep, event->angleDelta().y() / kNotch), TimeAt(x, PaneAt(x)));
  event->accept();
}

void SignalStrip::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || Picture().Panes.size() < 2) return;
  const double x = event->position().x();
  drag_ = Drag{x, PaneAt(x), Window()};
  mouseMoveEvent(event);
}

// The part goes with the pointer; in the whole step it comes to the pointer.
void SignalStrip::mouseMoveEvent(QMouseEvent* event) {
  if (!drag_ || Picture().Panes.size() < 2) return;
  const double x = event->position().x();
  const double length = drag_->Window.End - drag_->Window.Start;
  if (drag_->Pane == 1) {
    MoveTo(TimeAt(x, 1) - length / 2);
    return;
  }
  if (x == drag_->X) return;
  const SignalLayout::Column& column = layout_.Panes[0];
  MoveTo(drag_->Window.Start - (x - drag_->X) / (column.Right - column.Left) * length);
}

void SignalStrip::mouseReleaseEvent(QMouseEvent*) {
  drag_.reset();
}

void SignalStrip::mouseDoubleClickEvent(QMouseEvent*) {
  drag_.reset();
  zoom_.reset();
  Redraw();
}

void SignalStrip::keyPressEvent(QKeyEvent* event) {
  if (Picture().Panes.empty()) return QWidget::keyPressEvent(event);
  const AxisWindow window = Window();
  const double length = window.End - window.Start;
  switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
      return ZoomBy(kZoomStep, window.Start);
    case Qt::Key_Minus:
      return ZoomBy(1 / kZoomStep, window.Start);
    case Qt::Key_0:
      zoom_.reset();
      return Redraw();
    case Qt::Key_Left:
      return MoveTo(window.Start - length * kKeyMove);
    case Qt::Key_Right:
      return MoveTo(window.Start + length * kKeyMove);
    case Qt::Key_Home:
      return MoveTo(0);
    case Qt::Key_End:
      return MoveTo(subject_.Length);
    default:
      QWidget::keyPressEvent(event);
  }
}

QString SignalStrip::TipAt(double x) const {
  const std::size_t pane = PaneAt(x);
  const double time = TimeAt(x, pane);
  std::string text = ShortTimeText(time);
  for (std::size_t i = 0; i < subject_.Channels.size(); ++i) {
    const ChannelSignal& signal = subject_.Channels[i];
    const SignalTrace& trace = picture_.Panes[pane].Traces[i];
    if (trace.Columns.empty()) continue;
    // Where periods run together there is no one value at the pointer.
    const auto column = static_cast<std::size_t>(
        std::clamp((x - layout_.Panes[pane].Left) / (layout_.Panes[pane].Right - layout_.Panes[pane].Left),
                   0.0, 1.0) *
        static_cast<double>(trace.Columns.size() - 1));
    const SignalColumn& there = trace.Columns[column];
    const SignalWave* wave = files_[i] && files_[i]->Wave ? &*files_[i]->Wave : nullptr;
    const auto number = [](double value) { return FormatNumber(value, "0.####"); };
    text += "\n" + signal.Caption + ": ";
    text += there.Kind == ColumnKind::Line ? number(SignalAt(signal, wave, time, subject_.Length))
                                           : number(there.Low) + " ... " + number(there.High);
  }
  text += "\n" + catalogue_.GetResString(TextId::SignalHint);
  // Names come from files: never taken as markup.
  return Qt::convertFromPlainText(QString::fromStdString(text));
}

bool SignalStrip::event(QEvent* event) {
  if (event->type() == QEvent::ToolTip && !Picture().Panes.empty()) {
    const auto* help = static_cast<QHelpEvent*>(event);
    QToolTip::showText(help->globalPos(), TipAt(help->pos().x()), this);
    return true;
  }
  // Another program may have written the files meanwhile.
  if (event->type() == QEvent::WindowActivate && !WavePathsOf(subject_).empty()) FindFiles();
  return QWidget::event(event);
}

}  // namespace corlune
