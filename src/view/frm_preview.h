// FrmPreview: the sequence view. Draws each channel's steps as graphs of value over time, follows the
// running step with a marker and carries its own copies of the run fields, buttons and menu.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <QMainWindow>

#include "core/app_state.h"
#include "core/catalogue.h"
#include "editing/window_commands.h"
#include "modeldef/model_definition.h"
#include "sequence/sequence_data.h"
#include "view/entry_field.h"
#include "view/graph_hand.h"

namespace corlune {

class CommandMenu;

// What the view asks of the main window; every press forwards to the same handlers as the main window's.
struct PreviewHandlers {
  std::function<void(int)> runButton;    // CmdBtn1 index 0..5
  std::function<void(Command)> command;  // of the run menu
  EntryField::Check enterSequenceNumber;
  EntryField::Check enterStartStep;
  EntryField::Check enterBranchChannel;
  std::function<void()> closed;
  // View areas as chosen in the view, to be stored in the sequence; false: refused. Without it the areas are
  // shown as they are and cannot be chosen.
  std::function<bool(const decltype(SequenceData::ViewAreas)&)> enterViewAreas = {};
  GraphHandlers graphs = {};
};

class FrmPreview : public QMainWindow {
  Q_OBJECT

 public:
  // The references must outlive the window. Writes SequenceViewShown of `state` when shown and closed.
  FrmPreview(AppState& state, const ModelDefinition& definition, const SequenceData& sequence,
             const MessageCatalogue& catalogue, PreviewHandlers handlers, QWidget* parent = nullptr);
  ~FrmPreview() override;

  // Redraws for the present sequence and current step. Cheap when nothing has changed.
  void PicDisp();
  // Places the marker inside the current step by the time since StepChangedAt.
  void MoveShape(std::uint32_t tick);
  // A run that has started or goes on is followed from now on. May be called again at any time.
  void MeasureStart();
  void MeasureEnd();

  // Layout of the window alone, on a screen's available area, and tiled to the right of the main window,
  // whose frame is `leftWindow`. Both restore a minimised window; neither shows a hidden one.
  // `frame`: width and height that the frame adds, as far as this window does not know them before it is
  // shown.
  void FormStyleNomal(const QRect& screen, const QSize& frame = {});
  void FormStyleAlign(const QRect& leftWindow, const QSize& frame = {});

  // Inside another window, as a child of `pane`: only the picture with its choices, without menu, buttons,
  // fields and status bar. Or, without a pane, a window again. Hidden either way until it is shown.
  void Dock(QWidget* pane);
  bool Docked() const { return !isWindow(); }
  // The commands of the picture, for the window that it is docked in.
  CommandMenu& DisplayMenu() const;
  void FocusPicture();

  // Also redraws: what the controls follow may have changed the sequence.
  void ShowStates(const ControlStates& states);
  // The current step (slot) of the grids; none without steps.
  void ShowSelectedStep(std::optional<int> step);
  // Copies of the main window's fields and status texts.
  void ShowFields(const std::string& sequenceNumber, const std::string& startStep,
                  const std::string& branchChannel);
  // Enters what stands in the fields. False: one was refused.
  bool EnterFields(EntryEnd end);
  // The focus goes back to the last field, else to the picture.
  void ReturnFocus();
  void ShowTotalTime(double milliseconds);
  void ShowElapsedTime(std::int32_t milliseconds);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace corlune
