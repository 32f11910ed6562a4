// A definition file that sets every key must fill every field.
#include <gtest/gtest.h>

#include "modeldef/read_model_definition.h"
#include "support/temp_folder.h"

namespace corlune {
namespace {

ModelDefinition Load(const std::string& name, const std::string& model, bool japanese = false) {
  ModelDefinition definition;
  DefinitionProblem problem;
  const auto result = ReadModelDefinition(std::string(CORLUNE_TEST_DATA "/definitions/") + name, model,
                                          japanese, definition, &problem);
  EXPECT_EQ(DefinitionLoad::Ok, result) << problem.section << " " << problem.key << ": " << problem.reason;
  return definition;
}

ParamDef UnitListParam() {
  ParamDef param;
  param.UnitKind = 2;
  param.UnitDefault = 1;
  return param;
}

void ExpectCommonArea(CommonAreaDef& common) {
  common.ButtonColors = {Color{0x34, 0x35, 0x36}, Color{0x37, 0x38, 0x39}};
  common.Background = {0x3A, 0x3B, 0x3C};
  common.CurrentCell = {0x3D, 0x3E, 0x3F};
  common.MaxSteps = 200;
  common.LineNumber = 201;
  ParamDef& range = common.Params[0] = UnitListParam();
  range.UnitName = "s";
  range.UnitTitle = "Time";
  range.UnitList = {"ms", "s"};
  range.UnitConv = {"0.001", "1"};
  range.ModeKind = 1;
  range.ModeName = "always";
  range.Minimum = 0.5;
  range.RangePlaceholder = {"", "$MAXSTEP", ""};
  range.Resolution = 0.25;
  range.Default = 7.5;
  ParamDef& list = common.Params[1];
  list.UnitKind = 1;
  list.UnitName = "deg";
  list.ModeKind = 2;
  list.ModeNames = {"off", "on"};
  list.ModeColors = {{0x40, 0x41, 0x42}, {0x43, 0x44, 0x45}};
  list.ValueKind = 2;
  list.Default = 1;
  list.Choices = {"c0", "c1"};
  common.Params[2].ValueKind = 1;
  common.Params[2].Default = -3.5;
}

void ExpectSequenceArea(SequenceAreaDef& sequence) {
  sequence.ParamCount = 10;
  sequence.Background = {0x46, 0x47, 0x48};
  sequence.GroupEnabled[4] = true;
  ParamDef& range = sequence.Params[4][2] = UnitListParam();
  range.InUse = true;
  range.Name = "Frequency";
  range.UnitName = "kHz";
  range.UnitTitle = "Units";
  range.UnitList = {"Hz", "kHz"};
  range.UnitConv = {"1", "1000"};
  range.ModeKind = 2;
  range.ModeNames = {"const", "keep"};
  range.ModeColors = {kWindowColor, {0x49, 0x4A, 0x4B}};
  range.Minimum = -1.5;
  range.Maximum = 2.5;
  range.Resolution = 1e-6;
  range.ResolutionText = "0.000001";
  range.Script = "any text, with commas";
  ParamDef& list = sequence.Params[0][7];
  list.UnitKind = 1;
  list.UnitName = "%";
  list.ModeKind = 1;
  list.ModeName = "fixed";
  list.ValueKind = 2;
  list.Default = 2;
  list.Choices = {"s0", "s1", "s2"};
}

void ExpectCommands(CommandTable& commands) {
  commands.LibraryInit = "LOG_FILE=a,b=c";
  commands.Device.Entries[1] = {":DEV1", 101};
  commands.Device.Size = 1;
  commands.Basic.Entries[2] = {":BSC2", 102};
  commands.Basic.Size = 2;
  commands.SendStep.Entries[3] = {":SNDS,3,x", 103};
  commands.SendStep.Size = 3;
  commands.SendAll.Entries[9] = {":SNDA,\"n\",#,9", -104};
  commands.SendAll.Size = 9;
  commands.ArbMemory.Entries[4] = {":ARBM", 104};
  commands.ArbMemory.Size = 4;
  commands.Model = {":MODL?", 105};
  commands.OutputOn = {":ON", 106};
  commands.OutputOff = {":OFF", 107};
  commands.OutputQuery = {":ON?", 108};
  commands.CurrentStep = {":CST?", 109};
  commands.Status = {":STS?", 110};
  commands.Start = {":START", 111};
  commands.Hold = {":HOLD", 112};
  commands.Stop = {":STOP", 113};
  commands.Branch = {":BRANCH $BNHSTP0", -114};
  commands.Busy = {":BUSY?", "115", 116};
  commands.ErrorQuery = ":ERR?";
  commands.ErrorQueryText = "none left";
}

void ExpectPanels(ModelDefinition& d) {
  d.Menus = {{{true, {true, false, true, true, false}},
              {true, {true, true, false, false, true, false, true, false, true}},
              {true, {false, false, true}},
              {true, {false, true}},
              {true, {true, false, false, false, false, true}},
              {true, {false, true, false, true, true}},
              {true, {true, true}}}};
  std::uint8_t shade = 1;
  for (ButtonSpec& button : d.Buttons) {
    const auto next = [&shade] { return shade++; };
    button.Visible = true;
    for (Color* color : {&button.Color1, &button.Color2}) {
      color->Red = next();
      color->Green = next();
      color->Blue = next();
    }
  }
  d.StartStep = {true, 2, 1, 20};
  d.Branch = {true, 4, 3, 5};
  d.DefaultSequence = {0x25, 0x26, 0x27};
  d.LoopSequence = {0x28, 0x29, 0x2A};
  d.EndlessSequence = {0x2B, 0x2C, 0x2D};
  d.Indicator = {0x2E, 0x2F, 0x30};
  d.CurrentStep = {0x33, 0x32, 0x31};
}

ModelDefinition Expected() {
  ModelDefinition d;
  d.ProgId = "TEST,ID";
  d.VerNo = "9.87";
  d.Models = {"A1", "B2"};
  d.InstrumentCount = {3, 2, 4};
  d.Interfaces.resize(2);
  d.Interfaces[1] = {{"USB", "KI", "USBTMC", "NI"},
                     "USB0::0x1111::0x2222::",
                     "1234567",
                     {8, 7, 9},
                     {5, 4, 6},
                     true,
                     {2, 1, 8}};
  ExpectPanels(d);
  d.ReferenceFlag = true;
  d.ReferenceText = "reference";
  d.DisplaySelections[0] = {1, {"d0"}};
  d.DisplaySelections[9] = {2, {"d1", "d2"}};
  d.ViewSelections[4] = {3, {"v0", "v1", "v2"}};
  d.ArbFormat = {11, 12};
  d.ArbPerChannel = true;
  d.ArbItems = {2, {"a0", "a1"}};
  d.ModeSetCount = 8;
  d.ModePerChannel = true;
  d.ModeSets[7] = {"mode set", {2, {"m0", "m1"}}, {-21, 22}};
  ExpectCommonArea(d.Common);
  ExpectSequenceArea(d.Sequence);
  d.Branches = {true, {0x4C, 0x4D, 0x4E}, 3, 4, 0, 1, 99, 2, 5, {}};
  d.UserUnitCapability[2][7] = 1;
  ExpectCommands(d.Commands);
  return d;
}

TEST(EveryKey, PutsEachValueInItsField) {
  const ModelDefinition loaded = Load("every_key.ini", "B2");
  const ModelDefinition expected = Expected();
  EXPECT_EQ(expected.Models, loaded.Models);
  EXPECT_EQ(expected.Interfaces, loaded.Interfaces);
  EXPECT_EQ(expected.Menus, loaded.Menus);
  EXPECT_EQ(expected.Buttons, loaded.Buttons);
  EXPECT_EQ(expected.ModeSets, loaded.ModeSets);
  EXPECT_EQ(expected.Common, loaded.Common);
  EXPECT_EQ(expected.Sequence, loaded.Sequence);
  EXPECT_EQ(expected.Branches, loaded.Branches);
  EXPECT_EQ(expected.Commands, loaded.Commands);
  EXPECT_TRUE(expected == loaded) << "a field that the lines above do not compare";
}

TEST(EveryKey, ColumnNamesFollowTheLanguage) {
  EXPECT_EQ("周波数", Load("every_key.ini", "B2", true).Sequence.Params[4][2].Name);
}

TEST(EveryKey, OnlyTheNamedModelIsRead) {
  const ModelDefinition other = Load("every_key.ini", "b2");  // letter case counts
  EXPECT_EQ(ModelDefinition{}.Common, other.Common);
  EXPECT_EQ(2U, other.Interfaces.size());
}

}  // namespace
}  // namespace corlune
