#include "view/run_buttons.h"

#include <QEvent>
#include <QPushButton>

#include "view/flow_layout.h"
#include "view/theme.h"

namespace corlune {

namespace {

constexpr int kSpacing = 4;
constexpr int kCaptionMargin = 8;  // pixels on each side of a caption

// The second colour of a run button shows that the state it brings about applies.
bool RunButtonApplies(PanelButton button, const AppState& state) {
  const bool execution = state.OperationMode == OperationMode::Execution;
  switch (button) {
    case PanelButton::Mode:
      return execution;
    case PanelButton::Start:
      return state.RunState == RunState::Running;
    case PanelButton::Stop:
      return execution && state.RunState == RunState::Stopped && !state.MayStillRun;
    case PanelButton::Hold:
      return state.RunState == RunState::Held;
    case PanelButton::Branch:
      return state.BranchRequested;
    case PanelButton::Output:
      // Also in edit mode: the device under test goes on getting its voltage.
      return state.OutputOn;
  }
  return false;
}

// A bold caption while the state applies.
void ShowRunButtonState(QPushButton* button, bool applies) {
  QFont font = button->font();
  if (font.bold() != applies) {
    font.setBold(applies);
    button->setFont(font);
  }
}

// The bold caption fits without moving the other buttons.
void ReserveBoldWidth(QPushButton* button) {
  QFont font = button->font();
  font.setBold(true);
  button->setMinimumWidth(QFontMetrics(font).horizontalAdvance(button->text()) + 2 * kCaptionMargin);
}

}  // namespace

RunButtons::RunButtons(const MessageCatalogue& catalogue, const std::function<void(int)>& pressed,
                       QWidget* parent)
    : QWidget(parent) {
  auto* layout = new FlowLayout(this, kSpacing, FlowLayout::Items::Shrink);
  for (int i = 0; i < kPanelButtonCount; ++i) {
    const QString caption = QString::fromStdString(catalogue.GetResString(Next(TextId::ButtonChangeMode, i)));
    auto* button = new QPushButton(caption, this);
    button->setObjectName(QStringLiteral("CmdBtn1_%1").arg(i));
    // A click leaves an entry as it stands.
    button->setFocusPolicy(Qt::TabFocus);
    button->setAutoDefault(false);
    ReserveBoldWidth(button);
    connect(button, &QPushButton::clicked, this, [pressed, i] { pressed(i); });
    layout->addWidget(button);
    buttons_[static_cast<std::size_t>(i)] = button;
  }
}

void RunButtons::ShowStates(const ControlStates& states, const AppState& state,
                            const ModelDefinition& definition) {
  for (std::size_t i = 0; i < buttons_.size(); ++i) {
    QPushButton* button = buttons_[i];
    const bool applies = RunButtonApplies(static_cast<PanelButton>(i), state);
    faces_[i] = applies ? definition.Buttons[i].Color2 : definition.Buttons[i].Color1;
    ColorButton(*button, palette(), faces_[i]);
    ShowRunButtonState(button, applies);
    button->setVisible(states.Buttons[i].Visible);
    button->setEnabled(states.Buttons[i].Enabled);
  }
}

void RunButtons::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() != QEvent::PaletteChange) return;
  for (std::size_t i = 0; i < buttons_.size(); ++i) {
    if (buttons_[i] != nullptr) ColorButton(*buttons_[i], palette(), faces_[i]);
  }
}

}  // namespace corlune
