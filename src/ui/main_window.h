// MainWindow: frmMain, the application's only main window. Menus and buttons as the model definition wants
// them, the fields beside the grids, the grids (GridPanel), the status bar and the sequence view.
//
// It decides nothing: what a control may do comes from ControlStatesOf, what a press does from the session
// and the editor. Presses can arrive inside the waits of other presses; the session refuses or defers them.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QDate>
#include <QMainWindow>
#include <QStringList>
#include <QTimer>

#include "editing/sequence_editor.h"
#include "editing/window_commands.h"
#include "session/session.h"
#include "ui/window_settings.h"
#include "view/entry_field.h"

class QLabel;
class QMenu;
class QPushButton;
class QSplitter;

namespace corlune {

class CommandMenu;
class FrmPreview;
struct GraphHandlers;
class GridPanel;
class RunButtons;
class RunFields;
class ShareSplit;
class SignalStrip;
class StatBar;
class ViewPane;
class WindowFocus;
struct FormStyle;

// Where the sequence view stands. The codes are stored in a file.
enum class ViewPlace { Floating = 0, Below = 1, Beside = 2 };

// Everything the window works on. All must outlive it; `settings` is written when it closes.
struct MainWindowParts {
  Session& session;
  SequenceEditor& editor;
  Prompts& prompts;
  FileDialogs& files;
  const WindowSettings& settings;
  std::string version;  // of the program, "major.minor.revision"
  QDate programDate;    // of the program file
  // The response file of simulated instruments, which the set-up can change; null: they are real.
  std::shared_ptr<std::string> responses;
};

class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  explicit MainWindow(const MainWindowParts& parts, QWidget* parent = nullptr);
  ~MainWindow() override;

  // Shows the window where it was last time, or at the top left in its first size, as large as is of use.
  void ShowAtPlace();
  // A second start: comes to the front and, when it may, opens the file (through the save question). A file
  // that cannot be opened now is named in the status bar.
  void ActivatedByOtherStart(const std::string& path);
  // Opens a sequence file given by name, by drop or as a recent file.
  void OpenPath(const std::string& path);
  // The desktop session ends, and questions are allowed. True: saved and closed; false: something is under
  // way, a run is going or held, or the person cancelled.
  bool EndOfDesktopSession();
  // Session::EndFromOutside with everything that is typed, as far as it is taken.
  bool EndFromOutside();

  // Called through WindowDisplay.
  void RefreshControls();
  void RefreshCaption();
  void ShowModeLayout(int operationMode);
  void ShowTotalTime(double milliseconds);
  void ShowElapsedTime(std::int32_t milliseconds);
  void ShowNotice(NoticeLevel level, const std::string& text);
  void SequenceReplaced(SequenceChange change);
  void ShowWaitCursor(bool on);
  // The signal of the running step, else of the current one.
  void ShowSignal();

  GridPanel& Grids() { return *grids_; }
  StatBar& Status() { return *statBar_; }
  FrmPreview* Preview() { return preview_.get(); }
  const ControlStates& States() const { return states_; }

  // Layout for the window alone, and tiled beside the sequence view.
  void FormStyleNomal();
  void FormStyleAlign();

 signals:
  // The window has closed for good: the program can end.
  void Closed();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  // main_window_menus.cpp
  void BuildMenus();
  void AddRecentMenu();
  CommandMenu& MenuOf(MenuPlace place) const { return *menus_[static_cast<std::size_t>(place)]; }
  void ShowMenuStates();
  void ShowRecentFiles();
  void AddColorChoice();
  void ChooseColors(WindowColors colors);
  void RememberRecent();

  // main_window_fields.cpp
  void BuildFields(QWidget* parent);
  void ShowFields();
  bool EnterSequenceNumber(const std::string& text, EntryEnd end);
  bool EnterStartStep(const std::string& text, EntryEnd end);
  bool EnterBranchChannel(const std::string& text, EntryEnd end);
  bool Settle(const EditOutcome& outcome, EntryEnd end);

  // main_window_commands.cpp
  // What a command does with entries that are still being typed in either window.
  enum class Entries {
    Taken,     // part of what it saves, runs or leaves; a refused one stops it, after its message
    Untouched  // Stop and Output OFF wait for nothing
  };
  void Perform(const std::function<void()>& command, Entries entries = Entries::Taken);
  bool CommitEntries();
  void Do(Command command);
  void FileCommand(Command command);
  void SwitchSignal();
  void ChangeMode(OperationMode mode);
  void RunItem(Run item);
  void RunButton(int index);
  void ReadBack();
  void ImportCsv();
  void ExportCsv();
  void ShowAbout();
  void ShowShortcuts();
  void ShowNotices();
  void ShowCommLog();
  std::string CommLogPath() const;
  std::string ConnectionTip() const;
  // An instrument as the status bar names it: interface and serial number or address.
  std::string InterfaceOf(const InstrumentEntry& entry) const;
  std::string DeviceText() const;
  std::string DeviceTip() const;
  bool CanOpenNow() const;
  FrmPreview& NeedPreview();
  GraphHandlers HandlersOfGraphs();

  // main_window_tools.cpp
  void ToolCommand(Command command);
  void EditWaveforms();
  void EditChannelSettings();
  void EditCommonParameters();
  void EditSetup();
  void Connect();
  void EditModes();
  // Applies what a tool dialog has edited as one undo entry and shows what follows from it everywhere.
  void ApplyForm(TextId action, const std::function<void()>& change);

  // main_window_layout.cpp
  QWidget* BuildMiddle(QWidget* parent);
  QMargins Frame() const;
  void LimitSize();
  QSize FirstSize() const;
  void FitFrame(int looks);
  void TakeStyle(const FormStyle& style);
  WindowPlace PresentPlace() const;
  void KeepPlace() const;
  void KeepShare() const;
  void KeepViewPlace() const;
  void ViewCommand(Command command);
  // Moves the view there; it is still to be shown.
  void PlacePreview(ViewPlace place);
  FrmPreview& ShowPreview(ViewPlace place);
  bool PreviewOpen() const;
  void DockPreview(ViewPlace place);
  void FloatPreview();
  void ClosePreview();
  void PreviewClosed();
  void ShowDisplayMenu();
  void SwitchPane();

  // main_window.cpp
  void ShowViewStates();
  void FinishClosing();
  std::string Text(TextId id) const { return session_.Catalogue().GetResString(id); }
  QString Caption(TextId id) const { return QString::fromStdString(Text(id)); }

  Session& session_;
  SequenceEditor& editor_;
  Prompts& prompts_;
  FileDialogs& files_;
  const WindowSettings& settings_;
  WaveFacts waveFacts_;  // of the files that the dialog of the waveforms has shown
  std::string version_;
  QDate programDate_;
  std::shared_ptr<std::string> responses_;

  std::array<CommandMenu*, kMenuCount> menus_{};
  QMenu* recentMenu_ = nullptr;
  QStringList recentFiles_;

  RunButtons* runButtons_ = nullptr;
  RunFields* fields_ = nullptr;
  std::int16_t sequenceNumber_ = 0;  // of the fields
  QPushButton* read_ = nullptr;
  ShareSplit* outer_ = nullptr;  // the middle and a docked view
  QSplitter* middle_ = nullptr;  // the grids and what stands under them
  ViewPane* pane_ = nullptr;
  GridPanel* grids_ = nullptr;
  SignalStrip* signal_ = nullptr;
  StatBar* statBar_ = nullptr;
  std::unique_ptr<FrmPreview> preview_;
  std::unique_ptr<WindowFocus> focus_;

  QTimer timer2_;
  ControlStates states_;
  bool waiting_ = false;  // the hourglass is shown
  bool closed_ = false;
  int editedChannels_ = 0;  // that the grids show
  ViewPlace viewPlace_ = ViewPlace::Floating;
  bool viewTiled_ = false;
  struct Tiled {
    WindowPlace before;
    QSize size;
  };
  std::optional<Tiled> tiled_;
};

}  // namespace corlune
