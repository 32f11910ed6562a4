// The command layer over scripted instruments, on the test's clock, with a small command table.
#pragma once

#include "comm/command_layer.h"
#include "comm/gp_front_end.h"
#include "core/app_state.h"
#include "core/catalogue.h"
#include "modeldef/model_definition.h"
#include "support/fake_ports.h"
#include "support/scripted_gp.h"

namespace corlune::testing {

inline AppState OnlineState() {
  AppState state;
  state.Online = 1;
  state.Connected = true;
  state.ModelName = "QM2220";
  state.InstrumentCount = 1;
  state.Instruments[0].InterfaceKind = InterfaceKind::UsbTmc;
  state.Instruments[0].SerialNo = "1000001";
  state.Instruments[0].ChannelCount = 2;
  return state;
}

inline ModelDefinition SmallDefinition() {
  ModelDefinition definition;
  CommandTable& commands = definition.Commands;
  commands.Device.Entries[0] = {":DEV:PREP", 200};
  commands.OutputOn = {":OUTP ON", 0};
  commands.OutputOff = {":OUTP OFF", 0};
  commands.OutputQuery = {":OUTP?", 0};
  commands.CurrentStep = {":STEP?", 0};
  commands.Status = {":STAT?", 0};
  commands.Start = {":START", 100};
  commands.Hold = {":HOLD", 100};
  commands.Stop = {":STOP", 100};
  commands.Branch = {":BRAN $BNHSTP0", 0};
  commands.ErrorQuery = ":SYST:ERR?";
  return definition;
}

struct InstrumentRig {
  AppState state = OnlineState();
  ModelDefinition definition = SmallDefinition();
  EventList events;
  ScriptedPrompts prompts{&events};
  FakeClock clock;
  FakePump pump{clock};
  MessageCatalogue catalogue{10000};
  GpScript script;
  GpFrontEnd gp{state, ScriptedBackends(script), nullptr};
  CommandLayer commands{state, definition, gp, clock, pump};
};

}  // namespace corlune::testing
