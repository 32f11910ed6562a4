// The program as its window starts it, with Corlune.ini and work file, and a person who answers only what the
// test has queued. The buses are empty until something is plugged in.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/program_rig.h"

namespace corlune::testing {

struct SessionRig : ProgramRig {
  SessionRig() : ProgramRig("", {.writeSettings = true, .agrees = false}) { EditModel("0,QM2210"); }

  void EditModel(const std::string& value) const {
    folder.Write("Corlune.ini", "[EDIT]\r\nEDIT_MODEL=" + value + "\r\n");
  }
  StartUpResult Start() { return session->StartUp({{}, {}, choose}); }
  std::string WorkFile(const std::string& model = "QM2210") const {
    return folder.File("Corlune_" + model + ".ini");
  }
  void Answer(PromptAnswer answer) { prompts.Answer(answer); }
  // The texts of all messages so far, and forgets them.
  std::vector<std::string> Messages() {
    std::vector<std::string> texts;
    for (const MessageRequest& message : std::exchange(prompts.messages, {})) texts.push_back(message.text);
    return texts;
  }

  ChooseInstrument choose;
};

}  // namespace corlune::testing
