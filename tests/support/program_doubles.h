// Doubles of what stands around a session: the person's file dialogs, the main window, the sequence compiler.
#pragma once

#include <array>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "session/session_ports.h"
#include "standins/cmplseq/compile_file.h"
#include "support/fake_ports.h"

namespace corlune::testing {

// Answers from queues; a dialog that nobody queued fails the test.
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
  std::vector<SequenceChange> changes;
  std::string caption;
  int waitCursor = 0;
};

// The compiler library's work, without loading a library; or what a test wants to come of it.
class LinkedCompiler : public CompilerLibrary {
 public:
  CompilerCall CompileSeqData(const std::string& workFile, const std::array<ArbInformation, 128>& arbs,
                              CompileErrorRecord& record, std::int32_t& result) override {
    if (!problem.empty()) return CompilerCall::Missing;
    result = static_cast<std::int32_t>(CompileSequenceFile(workFile, arbs, record));
    if (answer) std::tie(record, result) = *answer;
    return CompilerCall::Done;
  }
  std::string Problem() const override { return problem; }

  std::string problem;  // why there is no library
  std::optional<std::pair<CompileErrorRecord, std::int32_t>> answer;
};

}  // namespace corlune::testing
