// Definition files that are damaged, mistyped or not definition files at all.
#include <gtest/gtest.h>

#include "modeldef/read_model_definition.h"
#include "support/temp_folder.h"

namespace corlune {
namespace {

using testing::TempFolder;

const std::string kHead =
    "[FILE]\r\nPROGID=P\r\nVERNO=1\r\n[SYSTEM]\r\nSS_MODEL=M1\r\nSS_CNT=1,1,5\r\n[SPEC M1]\r\nMN_FILE=1\r\n";

class DefinitionFaults : public ::testing::Test {
 protected:
  DefinitionLoad Load(const std::string& bytes) {
    return ReadModelDefinition(folder_.Write("d.ini", bytes), "M1", false, definition_, &problem_);
  }
  DefinitionLoad LoadSpec(const std::string& line) { return Load(kHead + line + "\r\n"); }

  TempFolder folder_;
  ModelDefinition definition_;
  DefinitionProblem problem_;
};

TEST_F(DefinitionFaults, ABadEntryIsRefusedAndNamed) {
  for (const std::string line : {
           // clang-format off
           // numbers that are none, do not fit, or miss
           "AW_FORMAT=1,x", "AW_FORMAT=1", "AW_FORMAT=1,32768", "AW_FORMAT=", "SC_BRANCH=1,1,1,",
           "CM_STAR=:START,2147483648", "CM_SNDS0=100", "CM_BUSY=:BUSY?,1", "CM_ERRO=:ERR?", "CM_LIBI=\"x\";",
           "CM_STAR",
           // colours
           "CL_DEFSEQ=12345", "CL_DEFSEQ=12345/", "CL_CURSTEP=GG0000", "CA_PRMMOD0=2,off,404142,on",
           // object numbers
           "CA_PRMVAL=1,2", "CA_PRMVAL;=0,1,2,1", "SA_PRMUSC73=1", "SA_PRMREFx=", "DP_SELCT:=1,a", "MD_SETNAM8=n",
           // parameters
           "CA_PRMVAL0=0,1,MAXSTEP,1", "SA_PRMVAL00=0,1,$MAXSTEP,1", "SA_PRMVAL00=3,1,2,3", "SA_PRMVAL00=2,2,a,b",
           "CA_PRMUNI0=2,title,2,a,b", "SA_PRMNAM00=one name", "SA_PRMCOU=12", "CA_MAXSTE=257",
           "BA_STPVAL=0,1,2.x,1",
           // lists longer than their place, or shorter than their count
           "DP_SELCT0=3,a,b", "AW_ARBITEM=-1", "CA_UNITCV0=1,2,3,4,5,6,7,8,9,10,11,12",
           "MD_SETVAL0=1,2,3,4,5,6,7,8,9,10,11,12", "MD_SETCOU=9",
           // clang-format on
       }) {
    SCOPED_TRACE(line);
    definition_ = {};
    problem_ = {};
    EXPECT_EQ(DefinitionLoad::BadValue, LoadSpec(line));
    EXPECT_EQ("SPEC M1", problem_.section);
    EXPECT_EQ(line.substr(0, line.find('=')), problem_.key);
    EXPECT_FALSE(problem_.reason.empty());
    EXPECT_TRUE(definition_ == ModelDefinition{}) << "a refused file changed something";
  }
}

TEST_F(DefinitionFaults, SectionsThatMustBeThere) {
  struct Case {
    std::string text;
    DefinitionProblem problem;
  };
  const std::string missing = "the section is missing or empty";
  std::vector<Case> cases{
      {"", {"FILE", "", missing}},
      {"[FILE]\n; nothing\n[SYSTEM]\nSS_MODEL=M1\n", {"FILE", "", missing}},
      {"[FILE]\nPROGID=P\n", {"SYSTEM", "", missing}},
      {"[FILE]\nPROGID=P\n[SYSTEM]\nSS_CNT=1,1,5\n", {"SYSTEM", "SS_MODEL", "no model is listed"}},
      {"[FILE]\nPROGID=P\n[SYSTEM]\nSS_MODEL=M1,\n", {"SYSTEM", "SS_MODEL", "a model has no name"}},
      {"[FILE]\nPROGID=P\n[SYSTEM]\nSS_CNT=1,1,6\n",
       {"SYSTEM", "SS_CNT", "the number of instruments lies outside 1 to 5"}},
      {"[FILE]\nPROGID=P\n[SYSTEM]\nSS_MODEL=M1\n", {"SPEC M1", "", missing}},
      {"[FILE]\nPROGID=P\n[SYSTEM]\nSS_MODEL=M0,M1\n[INTERFACE M0]\nIF_GPAD=1,a,2\n",
       {"INTERFACE M0", "IF_GPAD", "\"a\" is no 32-bit integer"}},
  };
  const std::string second = kHead + "CM_STAR=:S,1\r\nCM_STOP=:S,b\r\nCM_HOLD=:S,c";
  cases.push_back({second, {"SPEC M1", "CM_STOP", "\"b\" is no 32-bit integer"}});
  for (const Case& c : cases) {
    EXPECT_EQ(DefinitionLoad::BadValue, Load(c.text)) << c.text;
    EXPECT_EQ(c.problem.section, problem_.section) << c.text;
    EXPECT_EQ(c.problem.key, problem_.key) << c.text;
    EXPECT_EQ(c.problem.reason, problem_.reason) << c.text;
  }
}

TEST_F(DefinitionFaults, ALoadKeepsWhatItDoesNotName) {
  ASSERT_EQ(DefinitionLoad::Ok,
            LoadSpec("MN_RUNITEM=1,1,1,1,1,1\r\nCA_PRMVAL3=0,1,50,1\r\nSA_PRMREF2=1\r\nSC_BRANCH=1,2,1,5\r\n"
                     "CM_SNDA2=:A,1\r\nCM_SNDS2=:S,1\r\nCM_DEVI2=:D,1\r\nCM_BUSY=:B?,1,70\r\nDP_REFFL=1,"
                     "text\r\nCL_DEFSEQ=010203"));
  ASSERT_EQ(DefinitionLoad::Ok, LoadSpec("MN_RUNITEM=0,1,0\r\nCA_PRMVAL3=0,2,$MAXSTEP,1\r\nSA_PRMREF2=\r\n"
                                         "SC_BRANCH=0,x,y,z\r\nCM_BUSY=:B?\r\nDP_REFFL=0\r\nNEW_KEY=?\r\n"
                                         "MN_NEW=?\r\n  ; CM_STAR=x"));
  EXPECT_EQ((std::array<bool, 9>{false, true, false, true, true, true}),
            definition_.Menus[static_cast<std::size_t>(Menu::Run)].Items);
  EXPECT_EQ(50, definition_.Common.Params[3].Maximum);
  EXPECT_EQ("$MAXSTEP", definition_.Common.Params[3].RangePlaceholder[1]);
  EXPECT_TRUE(definition_.Sequence.GroupEnabled[2]);
  EXPECT_EQ((SelectorSpec{false, 2, 1, 5}), definition_.Branch);
  EXPECT_EQ((BusyQuery{"", "", 70}), definition_.Commands.Busy);
  EXPECT_EQ("text", definition_.ReferenceText);
  EXPECT_EQ((Color{1, 2, 3}), definition_.DefaultSequence);
  EXPECT_EQ(":D", definition_.Commands.Device.Entries[2].Template);
  EXPECT_EQ(CommandList{}, definition_.Commands.SendAll) << "the two lists start empty in every load";
  EXPECT_EQ(CommandList{}, definition_.Commands.SendStep);
  ASSERT_EQ(DefinitionLoad::Ok, LoadSpec("CA_PRMVAL3=0,2,20,1"));
  EXPECT_EQ("", definition_.Common.Params[3].RangePlaceholder[1]);
}

TEST_F(DefinitionFaults, FilesOfAnotherMakeLoadAlike) {
  const std::string lines = kHead + "CM_STAR=:S,7\r\n";
  std::string lf = lines;
  std::erase(lf, '\r');
  for (const std::string& text : {lines, lf, "\xEF\xBB\xBF" + lines, lines.substr(0, lines.size() - 2)}) {
    definition_ = {};
    ASSERT_EQ(DefinitionLoad::Ok, Load(text)) << problem_.section << problem_.key << problem_.reason;
    EXPECT_EQ((CommandEntry{":S", 7}), definition_.Commands.Start);
  }
}

TEST_F(DefinitionFaults, HugeValuesAndForeignBytesAreNamed) {
  ASSERT_EQ(DefinitionLoad::Ok, LoadSpec("CM_STAR=:" + std::string(10'000'000, 'x') + ",7"));
  EXPECT_EQ(10'000'001U, definition_.Commands.Start.Template.size());
  EXPECT_EQ(DefinitionLoad::BadValue, LoadSpec("AW_FORMAT=" + std::string(10'000'000, '9') + ",1"));
  EXPECT_LT(problem_.reason.size(), 100U) << "the reason quotes the beginning of the item only";
  EXPECT_EQ(DefinitionLoad::BadValue, LoadSpec(std::string("AW_FORMAT=1,\0002", 14)));
  EXPECT_EQ("AW_FORMAT", problem_.key);
  EXPECT_EQ(DefinitionLoad::BadValue, Load(std::string(1000, '\0')));
}

}  // namespace
}  // namespace corlune
