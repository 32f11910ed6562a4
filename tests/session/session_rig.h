// A session over scripted instruments, dialogs and a folder of its own, with the shipped model definition.
#pragma once

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "session/session.h"
#include "support/fake_ports.h"
#include "support/scripted_gp.h"
#include "support/temp_folder.h"

namespace corlune::testing {

// Finds what the test put on the bus, by resource prefix.
class FakeSearch : public InstrumentSearch {
 public:
  bool CanSearch() override { return library; }
  int GP_Find_Devices(const std::string& expression) override {
    expressions.push_back(expression);
    found_.clear();
    const std::string prefix = expression.substr(0, expression.find('?'));
    for (const FoundInstrument& instrument : bus) {
      if (instrument.Resource.starts_with(prefix)) found_.push_back(instrument);
    }
    return static_cast<int>(found_.size());
  }
  const std::vector<FoundInstrument>& Found() const override { return found_; }
  std::string LibraryProblem() const override { return {}; }

  void Attach(const std::string& prefix, const std::string& serial) {
    bus.push_back({prefix + serial + "::INSTR", serial});
  }
  std::vector<FoundInstrument> bus;
  bool library = true;
  std::vector<std::string> expressions;

 private:
  std::vector<FoundInstrument> found_;
};

class ScriptedFiles : public FileDialogs {
 public:
  std::optional<std::string> ChooseOpen(const std::string& filter) override {
    return Next(open, "open " + filter);
  }
  std::optional<std::string> ChooseSave(const std::string& filter, const std::string& suggested) override {
    return Next(save, "save " + filter + " [" + suggested + "]");
  }
  std::deque<std::optional<std::string>> open;
  std::deque<std::optional<std::string>> save;
  std::vector<std::string> asked;

 private:
  std::optional<std::string> Next(std::deque<std::optional<std::string>>& answers, std::string what) {
    asked.push_back(std::move(what));
    if (answers.empty()) {
      ADD_FAILURE() << "a file dialog that nobody queued: " << asked.back();
      return std::nullopt;
    }
    auto answer = answers.front();
    answers.pop_front();
    return answer;
  }
};

class RecordedSessionDisplay : public SessionDisplay {
 public:
  void SequenceReplaced(SequenceChange change) override { changes.push_back(change); }
  void ShowCaption(const std::string& text) override { caption = text; }
  void ShowWaitCursor(bool on) override { waitCursor += on ? 1 : -1; }
  void ConnectionChanged() override { ++connectionChanges; }
  std::vector<SequenceChange> changes;
  std::string caption;
  int waitCursor = 0;
  int connectionChanges = 0;
};

// Leaves the text as it is: the scripted instrument takes everything.
class AgreeableCompiler : public CompilerLibrary {
 public:
  CompilerCall CompileSeqData(const std::string&, const std::array<ArbInformation, 128>&, CompileErrorRecord&,
                              std::int32_t&) override {
    return CompilerCall::Done;
  }
  std::string Problem() const override { return {}; }
};

inline constexpr const char* kPrefix2210 = "USB0::0x3A1F::0x2210::";
inline constexpr const char* kPrefix2220 = "USB0::0x3A1F::0x2220::";

struct SessionRig {
  SessionRig() {
    folder.Write("Corlune_Std.ini", TempFolder::Read(std::string(CORLUNE_DATA) + "/Corlune_Std.ini"));
    EditModel("0,QM2210");
    options.english = true;
    script.Reply("*IDN?", {"TAVRIN,QM2210,1000001,1.00"});
    script.Reply(":TRAC:INF? 1", {"\"Arb1\",1,4096"});
    Restart();
  }

  // A new process over the same folder.
  void Restart() {
    script.ClearLog();
    OpenSession(runDisplay, view, display);
  }
  void OpenSession(RunDisplay& run, ViewDisplay& sequenceView, SessionDisplay& shown) {
    session.reset();
    options.appFolder = folder.Path();
    const SessionPorts ports{prompts, clock, pump, timer, progress, run, sequenceView, end, files, shown};
    session = std::make_unique<Session>(ports, options, [this](AppState& state, EndProgram& endProgram) {
      sessionEnd = &endProgram;
      return OutsideParts{std::make_unique<GpFrontEnd>(state, ScriptedBackends(script), &search),
                          std::make_unique<AgreeableCompiler>()};
    });
  }
  void EditModel(const std::string& value) const {
    folder.Write("Corlune.ini", "[EDIT]\r\nEDIT_MODEL=" + value + "\r\n");
  }
  StartUpResult Start() {
    return session->StartUp({{}, {}, [this] { return select && select(); }});
  }
  std::string WorkFile(const std::string& model = "QM2210") const {
    return folder.File("Corlune_" + model + ".ini");
  }
  void Answer(PromptAnswer answer) { prompts.Answer(answer); }
  // The texts of all messages so far, and forgets them.
  std::vector<std::string> Messages() {
    std::vector<std::string> texts;
    for (const MessageRequest& message : prompts.messages) texts.push_back(message.text);
    prompts.messages.clear();
    return texts;
  }

  TempFolder folder;
  ScriptedPrompts prompts;
  FakeClock clock;
  FakePump pump{clock};
  RecordedTickSource timer;
  RecordedProgress progress;
  RecordedDisplay runDisplay;
  RecordedView view;
  RecordedEnd end;
  ScriptedFiles files;
  RecordedSessionDisplay display;
  GpScript script;
  FakeSearch search;
  SessionOptions options;
  EndProgram* sessionEnd = nullptr;
  std::function<bool()> select;
  std::unique_ptr<Session> session;
};

}  // namespace corlune::testing
