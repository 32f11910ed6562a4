// Session: one running program without its windows. Owns the application state, the model definition, the
// sequence and everything built on them, and carries out what spans several rooms: start-up, closing, the
// file commands, connecting, reading back.
//
// Everything here runs on the user-interface thread and pumps events in its messages, dialogs and waits.
// While something is under way (Busy) or a run is going, file commands, reading back, set-up changes and
// closing are refused.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "commands/instrument_dialogues.h"
#include "compile/download.h"
#include "compile/waveform_transfer.h"
#include "core/text_id.h"
#include "execution/measure.h"
#include "execution/queries.h"
#include "execution/run_control.h"
#include "execution/run_monitor.h"
#include "sequence/sequence_file.h"
#include "sequence/system_settings.h"
#include "sequence/wave_facts.h"
#include "session/saving_end_program.h"
#include "session/session_ports.h"
#include "session/waveform_work.h"

namespace corlune {

enum class StartUpResult {
  Show,           // go on: show the main window
  EndProcess,     // a message was shown: end without close handling
  ActivateOther,  // another instance took over: end
};

// Which one of several USBTMC instruments.
struct InstrumentChoice {
  std::string ModelName;  // one of the model definition's list
  std::string SerialNo;   // or a whole resource name
};
// Lets the person choose one of the instruments found (SearchInstruments). nullopt, or an empty function:
// none.
using ChooseInstrument = std::function<std::optional<InstrumentChoice>()>;

// The window program's checks; an empty function means "nothing found".
struct StartUpChecks {
  // True when another instance uses the same application folder; it has been brought forward.
  std::function<bool()> otherInstance;
  // True when a window of the sibling waveform editor is open; gets the text its title contains.
  std::function<bool(const std::string& title)> siblingRunning;
  ChooseInstrument chooseInstrument;
};

// What came of asking one instrument who it is.
struct InstrumentTest {
  bool Good = false;  // it answered as an instrument of its model
  std::string Text;   // its answer, or why there is none, in the person's language; several lines
};

enum class ConnectResult { Connected, NoneFound, SeveralFound, NotFound, OpenFailed, Offline };

class Session {
 public:
  Session(const SessionPorts& ports, SessionOptions options, const MakeOutsideParts& makeParts);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // --- start-up and closing -------------------------------------------------------------------------
  StartUpResult StartUp(const StartUpChecks& checks);
  // Start-up from a sequence file of either form, without Corlune.ini and work file: the model and the
  // set-up come from the file. No connection yet; see Connect. False after its message (a bad value of the
  // model definition shows none, see LoadProblem).
  bool StartUpFromFile(const std::string& path);
  // Start-up with an empty sequence and one USBTMC instrument whose model Connect finds out. No connection
  // yet. False as above.
  bool StartUpWithoutFile();
  // Finds the USBTMC instrument (serial number `serial`, or the only one; after StartUpWithoutFile the first
  // one of any model), opens all kinds in use, checks the models and queries the waveform directory. Shows
  // CommunicationError when opening fails and the questions of CheckModels; the other results show nothing.
  ConnectResult Connect(const std::optional<std::string>& serial);

  // A close request. Asks about unsaved changes (SaveChangesQuestion), writes Corlune.ini and the work file,
  // closes the connections. False: refused, the program goes on.
  bool RequestClose();
  // The program is told to end from outside. Writes Corlune.ini and the work file without a question, then
  // stops a run on every instrument, closes the connections and ends the program. May come inside anything
  // that handles events and handles none itself; no message may wait for a person any more. False: blocks are
  // on their way, of which the present one must end first; to be called again soon.
  bool EndFromOutside();
  // Closes the connections of every kind in use.
  void Disconnect();

  // --- file commands: true when carried out ---------------------------------------------------------
  bool NewSequence();
  bool OpenWithDialog();
  bool OpenFile(const std::string& path);
  // Saving works in both modes and every run state, but not while a block is being sent or read. Without a
  // path Save asks for one as SaveAs does, which is refused in a running sequence.
  bool Save();
  bool SaveAs();
  // Writes a copy in the user-file (true) or work-file form, without touching Modified or the path. Shows
  // its message on failure.
  bool WriteFile(const std::string& path, bool userForm);

  // --- instrument -----------------------------------------------------------------------------------
  // Reads the sequence in memory SequenceNumber back (message ReadBackError on failure, sequence unchanged).
  bool ReadBack();
  // Of a set-up count the model name, not its index, and each interface, not its kind.
  // The message that refuses the set-up (TooManyChannels, SameAddress, SameSerialNumber); nullopt for none.
  std::optional<TextId> CheckSetup(const SystemSettings& setup) const;
  // The set-up dialog's OK, after CheckSetup: model change with its save question and an empty sequence, new
  // set-up, reconnect, model check. False when nothing was changed: the person cancelled the save question,
  // or the model's definition could not be loaded.
  bool ApplySetup(const SystemSettings& setup);
  // "Connect": opens the connection as it is set up. Of a set-up of one USBTMC instrument the one that is
  // there takes its place, as at a start; among several the person chooses. Messages as at a start, besides
  // NoInstrument when none is found. False: off-line, or nothing was done.
  bool GoOnline(const ChooseInstrument& choose);
  // Asks instrument `index` (0-based) of `setup` who it is. What is open of its kind is closed meanwhile and
  // opened again; when that fails the program goes off-line (CommunicationError). Blocks up to the time-out
  // of 3 s for each call. nullopt: something is under way, or the person does not agree to go on without a
  // stop; `agreed`: that was asked before.
  std::optional<InstrumentTest> TestInstrument(const SystemSettings& setup, int index, bool agreed = false);
  // Searches USBTMC instruments of `model`, see Gp().Found(); blocks. Nothing when something is under way.
  void SearchInstruments(const std::string& model);
  // The serial number used last with `model`; empty: none.
  std::string LastSerial(const std::string& model) const;
  // Closes and opens everything, checks the models, queries the waveform directory.
  bool Reconnect();
  // InstrumentNotFound/WrongInstrumentModel for the first instrument that does not answer, or not with
  // ModelName: Yes goes off-line, No ends the program. True when every instrument answered rightly.
  bool CheckModels();
  void QueryArbDirectory();
  // The dialog's transfer of the files of ARB `numbers` to instrument 0, one after the other, refused as a
  // whole when one of them cannot be used. `entries` may be a copy of the sequence's; their flags tell what
  // came of it. Shows its messages; `facts` is used to look into the files.
  WaveformOutcome SendWaveforms(ArbEntries& entries, std::span<const int> numbers, WaveFacts& facts,
                                const WaveformWatch& watch);
  // Deletes the waveforms in an instrument (0-based). Of instrument 0 the `entries` tell what came of it.
  WaveformOutcome ClearWaveforms(ArbEntries& entries, std::span<const int> numbers, int instrument,
                                 const WaveformWatch& watch);
  // Asks an instrument (0-based) what it holds under `numbers`.
  WaveformOutcome AskForWaveforms(ArbEntries& entries, std::span<const int> numbers, int instrument,
                                  const WaveformWatch& watch);
  // To be called after commands and ticks: carries out a stop that was pressed meanwhile, marks the
  // instruments that were unplugged, and goes off-line, back in edit mode, when none is left and nothing is
  // under way.
  void NoticeLostConnection();
  // While an instrument may still be running: asks whether to go on without a stop. Everything that takes it
  // out of reach or sends it something else asks first; true: go on.
  bool AgreeToGoOn() { return control_->AgreeToGoOn(); }

  // Nothing that a close request or command must not interrupt is under way, and no run is going or held.
  bool Idle() const { return !control_->BusyOrRunning(); }

  // --- parts ----------------------------------------------------------------------------------------
  AppState& State() { return state_; }
  const AppState& State() const { return state_; }
  ModelDefinition& Definition() { return definition_; }
  SequenceData& Sequence() { return sequence_; }
  const MessageCatalogue& Catalogue() const { return catalogue_; }
  const SessionOptions& Options() const { return options_; }
  GpFrontEnd& Gp() { return *outside_.gp; }
  CompilerLibrary& Compiler() { return *outside_.compiler; }
  CommandLayer& Commands() { return *commands_; }
  InstrumentDialogues& Dialogues() { return *dialogues_; }
  WaveformTransfer& Waveforms() { return *waveforms_; }
  Downloader& Download() { return *downloader_; }
  const corlune::Activity& Activity() const { return activity_; }
  RunControl& Control() { return *control_; }
  RunMonitor& Monitor() { return *monitor_; }
  // "Tavrin Corlune for QM2210/20  path".
  std::string Caption() const;
  // Where the last load of the model definition, or the file of StartUpFromFile, failed (file, section, key,
  // reason); empty when it worked. Not translated.
  const std::string& LoadProblem() const { return loadProblem_; }

 private:
  // A file command may start: nothing under way, edit mode.
  bool MayReplaceSequence() const { return Idle() && state_.OperationMode == OperationMode::Edit; }

  // A sequence on its way to or from the instrument is left alone.
  bool MaySave() const { return !activity_.Exchanging() && !activity_.Under(Work::File); }

  // start_up.cpp
  bool LoadDefinitionOf(AppState& state, ModelDefinition& definition, bool showBadValue);
  bool SettleModel();
  void SearchAtStartUp(const StartUpChecks& checks);
  void TakeChoice(const ChooseInstrument& choose);
  // False after its message: the file was set aside, or must not be replaced.
  bool ReadWorkFile(bool& mayReplace);
  bool LoadWorkData();
  InstrumentEntry UsbTmcInstrument(int modelIndex, const std::string& serialNo) const;
  void SetUpUsbTmc(const std::string& serialNo);
  int FindInstruments(int modelIndex);
  // The first model of which an instrument is found, with `serial` the first of which that instrument is.
  ConnectResult FindModelOfInstrument(const std::optional<std::string>& serial);
  std::string WorkFileOf(const std::string& model) const;
  void SetWorkFilePath();
  void ApplySimulated();
  StartUpResult EndOfStartUp(StartUpResult result);

  // system_setup.cpp
  // ApplySetup behind its checks.
  bool AgreeToFewerChannels(const SystemSettings& setup);
  bool TakeSetup(const SystemSettings& setup);
  // GoOnline as far as nobody has to choose. True: on-line.
  bool ConnectOwn(bool& several);
  InstrumentTest TestOf(const AnswerAlone& answer, const std::string& model) const;
  bool TakeChosen(const InstrumentChoice& choice);
  void ResetModeSettings();

  // connection.cpp
  bool OpenConnection();
  // `lost`: not by choice, so that an output may have been left on.
  void GoOffline(bool lost = false);
  // Says what the next blocking call is for, while start-up or a reconnection lets it, and pumps events.
  // False: the person gave up, and the program is off-line.
  bool WaitFor(TextId text, const std::vector<std::string>& arguments = {}, int done = 0, int steps = 0);
  // Before a message, and at the end. True as WaitFor's false.
  bool HideWait();
  // The set-up was on-line until its instruments did not match or were unplugged; USBTMC: the first is there.
  bool MayGoOnlineAgain();
  // After a loss: the connection as it was set up. False after message CommunicationError.
  bool Reopen();
  void ForgetInstrumentMemory();
  bool SetupChangedSince(const SystemSettings& before) const;

  // waveforms.cpp
  struct WaveformPlan {
    int Number;
    std::int64_t Bytes;  // of the file
    std::int32_t Time;   // ms until the instrument has stored it
  };
  bool PlanWaveforms(const ArbEntries& entries, std::span<const int> numbers, WaveFacts& facts,
                     std::vector<WaveformPlan>& plan, WaveformOutcome& outcome);
  void SendPlanned(ArbEntries& entries, const std::vector<WaveformPlan>& plan, const WaveformWatch& watch,
                   WaveformOutcome& outcome);
  WaveformOutcome WithEach(std::span<const int> numbers, int instrument, const WaveformWatch& watch,
                           const std::function<bool(int)>& exchange);
  void SayTransferFailure(ArbTransfer result, int number, const std::string& path);
  void WarnOfWaveform(int number, const std::string& path, const std::string& reason);

  // file_commands.cpp
  bool AskToSave();
  bool SaveToCurrentPath();
  bool SaveToChosenPath();
  bool WriteUserFile(std::string path);
  bool LoadUserFile(const std::string& path);
  // A text that is put together from several of the catalogue.
  void Warn(const std::string& text);
  // UnknownModel or MalformedSequenceFile with what is wrong in the file and `more` behind it.
  void ShowReadProblem(const std::string& path, const ReadResult& result, const std::string& more);
  void ShowWriteProblem(const std::string& path, const std::string& error);
  void ClearSequence();

  // closing.cpp
  bool OfferToSaveBeforeClosing();
  bool WriteWorkFile(std::string* error);
  void KeepForNextStart();

  SessionPorts ports_;
  SessionOptions options_;
  AppState state_;
  ModelDefinition definition_;
  SequenceData sequence_;
  MessageCatalogue catalogue_;
  SavingEndProgram end_;
  OutsideParts outside_;
  corlune::Activity activity_;
  std::unique_ptr<CommandLayer> commands_;
  std::unique_ptr<InstrumentDialogues> dialogues_;
  std::unique_ptr<WaveformTransfer> waveforms_;
  std::unique_ptr<Downloader> downloader_;
  std::unique_ptr<Measure> measure_;
  std::unique_ptr<RunQueries> queries_;
  std::unique_ptr<RunControl> control_;
  std::unique_ptr<RunMonitor> monitor_;
  std::string loadProblem_;
  bool workDataLoaded_ = false;  // the sequence in memory is the person's, so it may replace the work file
  std::optional<std::uint32_t> waitsFrom_;  // tick from which waits are shown; none: not at all
  bool waitShown_ = false;
  bool endWaveforms_ = false;  // the program is to end: no further waveform is sent
  bool wasOnline_ = false;     // off-line only because the instruments did not match or were unplugged
  bool chosen_ = false;        // the person chose the instrument at this start
  bool anyModel_ = false;      // the model is that of the instrument found
};

}  // namespace corlune
