// The VISA operations as a client in the same process calls them, on a clock that only its waits move.

#include "standins/virtual_instrument/visa_face.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "standins/virtual_instrument/chosen_face.h"
#include "tests/support/temp_folder.h"
#include "tests/virtual_instrument/instrument_rig.h"

namespace corlune::testing {
namespace {

constexpr const char* kFirst = "USB0::0x3A1F::0x2220::QM000001::INSTR";

class VisaFaceTest : public ::testing::Test {
 protected:
  VisaFaceTest() {
    std::string error;
    EXPECT_TRUE(bench_.AddFromText("QM2220:QM000001,QM2210:SN-2", "", &error)) << error;
    SetFace(&face_);
    EXPECT_EQ(viOpenDefaultRM(&manager_), VI_SUCCESS);
    EXPECT_EQ(viOpen(manager_, kFirst, VI_NO_LOCK, 0, &first_), VI_SUCCESS);
  }
  ~VisaFaceTest() override {
    EXPECT_EQ(viClose(manager_), VI_SUCCESS);
    EXPECT_EQ(face_.OpenObjects(), 0U);
    SetFace<VisaFace>(nullptr);
  }

  ViStatus Write(const std::string& text) {
    ViUInt32 count = 0;
    const ViStatus status = viWrite(first_, reinterpret_cast<const ViByte*>(text.data()),
                                    static_cast<ViUInt32>(text.size()), &count);
    EXPECT_EQ(count, status == VI_SUCCESS ? text.size() : 0);
    return status;
  }
  ViStatus Read(ViUInt32 size, std::string& text) {
    std::vector<ViByte> buffer(size);
    ViUInt32 count = 0;
    const ViStatus status = viRead(first_, buffer.data(), size, &count);
    text.assign(buffer.begin(), buffer.begin() + count);
    return status;
  }
  void Faults(const std::string& text) {
    const auto faults = ParseFaults(text, "QM000001");
    ASSERT_TRUE(faults.has_value()) << text;
    bench_.At(0).SetFaults(FaultPlan(*faults));
  }
  void Set(ViAttr attribute, ViAttrState value) {
    ASSERT_EQ(viSetAttribute(first_, attribute, value), VI_SUCCESS);
  }

  std::uint32_t now_ = 5000;
  std::uint32_t slept_ = 0;
  VirtualBench bench_{[this] { return now_; }};
  VisaFace face_{bench_, [this](std::uint32_t milliseconds) {
                   now_ += milliseconds;
                   slept_ += milliseconds;
                 }};
  ViSession manager_ = 0;
  ViSession first_ = 0;
};

// Beside what the independent client looks for.
TEST_F(VisaFaceTest, FindsByExpression) {
  const struct {
    const char* expression;
    ViUInt32 count;
    ViStatus status;
  } rows[] = {
      {"USB[0-9]*::?*::0x22[12]0::(QM000001|SN-2)::INSTR", 2, VI_SUCCESS},
      {"USB[^0]?*", 0, VI_ERROR_RSRC_NFOUND},
      {"USB0+::?*\\:SN\\-2::\\INSTR", 1, VI_SUCCESS},
      {"USB0..0x3A1F?*", 0, VI_ERROR_RSRC_NFOUND},  // "." is a point
      {"USB?*(INSTR", 0, VI_ERROR_INV_EXPR},
      {"*INSTR", 0, VI_ERROR_INV_EXPR},
  };
  for (const auto& row : rows) {
    ViUInt32 count = 0;
    char name[VI_FIND_BUFLEN] = "";
    EXPECT_EQ(viFindRsrc(manager_, row.expression, nullptr, &count, name), row.status) << row.expression;
    EXPECT_EQ(count, row.count) << row.expression;
  }
}

TEST_F(VisaFaceTest, OpensByNameInAnySpelling) {
  const std::pair<const char*, ViStatus> rows[] = {
      {"USB::14879::8736::QM000001", VI_SUCCESS},
      {"USB0::0x3A1F::0x2220::QM000001::0::INSTR", VI_SUCCESS},
      {"USB0::0x3A1F::0x2220::QM000001::1::INSTR", VI_ERROR_RSRC_NFOUND},
      {"USB0::0x3A1F::product::QM000001::INSTR", VI_ERROR_INV_RSRC_NAME},
      {"", VI_ERROR_INV_RSRC_NAME},
  };
  for (const auto& [name, status] : rows) {
    ViSession session = 77;
    EXPECT_EQ(viOpen(manager_, name, VI_NO_LOCK, 0, &session), status) << name;
    EXPECT_EQ(session == VI_NULL, status != VI_SUCCESS) << name;
  }
}

TEST_F(VisaFaceTest, EndsAReadAsTheStandardSays) {
  const struct {
    bool terminator;
    ViUInt32 size;
    std::vector<std::pair<std::string, ViStatus>> reads;
    // clang-format off
  } rows[] = {
      {false, 100, {{"128;\"\n\",0,2\n", VI_SUCCESS}}},
      {false, 11, {{"128;\"\n\",0,2", VI_SUCCESS_MAX_CNT}, {"\n", VI_SUCCESS}}},
      {false, 5, {{"128;\"", VI_SUCCESS_MAX_CNT}, {"\n\",0,", VI_SUCCESS_MAX_CNT}, {"2\n", VI_SUCCESS}}},
      {true, 100, {{"128;\"\n", VI_SUCCESS_TERM_CHAR}, {"\",0,2\n", VI_SUCCESS}}},
      {true, 3, {{"128", VI_SUCCESS_MAX_CNT}, {";\"\n", VI_SUCCESS_TERM_CHAR}, {"\",0", VI_SUCCESS_MAX_CNT},
       {",2\n", VI_SUCCESS}}},
  };
  // clang-format on
  ASSERT_EQ(Write("*ESE 128;:TRAC:DATA 1,\"\n\"," + BlockOf(WaveformBlock(1, 2))), VI_SUCCESS);
  for (const auto& row : rows) {
    Set(VI_ATTR_TERMCHAR_EN, row.terminator ? VI_TRUE : VI_FALSE);
    ASSERT_EQ(Write("*ESE?;:TRAC:INF? 1\n"), VI_SUCCESS);
    for (const auto& [text, status] : row.reads) {
      std::string read;
      EXPECT_EQ(Read(row.size, read), status) << row.size;
      EXPECT_EQ(read, text) << row.size;
    }
    std::string nothing;
    EXPECT_EQ(Read(10, nothing), VI_ERROR_TMO) << row.size;
  }
}

TEST_F(VisaFaceTest, TimesOutAfterTheTimeSet) {
  const struct {
    ViAttrState value;
    std::uint32_t slept;
  } rows[] = {{3000, 3000}, {VI_TMO_IMMEDIATE, 0}, {0xABCD0000'00000064U, 100}, {VI_TMO_INFINITE, 60'000}};
  for (const auto& row : rows) {
    Set(VI_ATTR_TMO_VALUE, row.value);
    ViUInt32 back = 0;
    ASSERT_EQ(viGetAttribute(first_, VI_ATTR_TMO_VALUE, &back), VI_SUCCESS);
    EXPECT_EQ(back, static_cast<ViUInt32>(row.value));
    slept_ = 0;
    std::string reply;
    EXPECT_EQ(Read(16, reply), VI_ERROR_TMO);
    EXPECT_EQ(slept_, row.slept);
    ASSERT_EQ(Write(":SYST:ERR?"), VI_SUCCESS);
    EXPECT_EQ(Read(100, reply), VI_SUCCESS);
    EXPECT_EQ(reply, "-420,\"Query UNTERMINATED\"\n");
  }
}

TEST_F(VisaFaceTest, FilesAreAppendedToWhenToldSo) {
  const TempFolder folder;
  const std::string path = folder.Write("reply.bin", "*ESE 3;*ESE?;*ESE?\n");
  ViUInt32 count = 0;
  EXPECT_EQ(viWriteFromFile(first_, path.c_str(), 1000, &count), VI_SUCCESS);
  EXPECT_EQ(viReadToFile(first_, path.c_str(), 2, &count), VI_SUCCESS_MAX_CNT);
  Set(VI_ATTR_FILE_APPEND_EN, VI_TRUE);
  EXPECT_EQ(viReadToFile(first_, path.c_str(), 100, &count), VI_SUCCESS);
  EXPECT_EQ(count, 2U);
  EXPECT_EQ(TempFolder::Read(path), "3;3\n");
  EXPECT_EQ(viReadToFile(first_, folder.File("no/such").c_str(), 100, &count), VI_ERROR_FILE_ACCESS);
}

TEST_F(VisaFaceTest, AttributesHaveTheirOwnSizes) {
  const struct {
    ViAttr attribute;
    ViUInt64 value;  // all ones behind its bytes
  } sizes[] = {{VI_ATTR_TERMCHAR, 0xFFFFFFFFFFFFFF0AU},
               {VI_ATTR_SEND_END_EN, 0xFFFFFFFFFFFF0001U},
               {VI_ATTR_RM_SESSION, 0xFFFFFFFF00000000U | manager_}};
  for (const auto& row : sizes) {
    ViUInt64 value = ~ViUInt64{0};
    ASSERT_EQ(viGetAttribute(first_, row.attribute, &value), VI_SUCCESS);
    EXPECT_EQ(value, row.value);
  }
  const struct {
    ViAttr attribute;
    ViAttrState value;
    ViStatus status;
  } rows[] = {{VI_ATTR_TERMCHAR, 0x100, VI_ERROR_NSUP_ATTR_STATE},
              {VI_ATTR_TERMCHAR_EN, 0xFFFFFFFF00000001U, VI_SUCCESS},
              {VI_ATTR_MANF_ID, 1, VI_ERROR_ATTR_READONLY},
              {VI_ATTR_RSRC_NAME, 1, VI_ERROR_ATTR_READONLY},
              {VI_ATTR_GPIB_PRIMARY_ADDR, 1, VI_ERROR_NSUP_ATTR}};
  for (const auto& row : rows) EXPECT_EQ(viSetAttribute(first_, row.attribute, row.value), row.status);
}

TEST_F(VisaFaceTest, SessionsEndWithTheirManagerAndLockEachOtherOut) {
  ViSession manager = 0;
  ViSession other = 0;
  ASSERT_EQ(viOpenDefaultRM(&manager), VI_SUCCESS);
  ASSERT_EQ(viOpen(manager, kFirst, VI_NO_LOCK, 0, &other), VI_SUCCESS);
  EXPECT_EQ(viLock(other, VI_EXCLUSIVE_LOCK, 10, nullptr, nullptr), VI_SUCCESS);
  EXPECT_EQ(Write("*CLS"), VI_ERROR_RSRC_LOCKED);
  EXPECT_EQ(viLock(first_, VI_EXCLUSIVE_LOCK, 10, nullptr, nullptr), VI_ERROR_TMO);
  EXPECT_EQ(viUnlock(other), VI_SUCCESS);
  EXPECT_EQ(viUnlock(other), VI_ERROR_SESN_NLOCKED);
  EXPECT_EQ(viGpibControlREN(first_, VI_GPIB_REN_DEASSERT_GTL), VI_SUCCESS);
  EXPECT_FALSE(bench_.At(0).Remote());
  EXPECT_EQ(viClose(manager), VI_SUCCESS);
  EXPECT_EQ(viClear(other), VI_ERROR_INV_OBJECT);
  EXPECT_EQ(Write("*CLS"), VI_SUCCESS) << "another manager's session";
}

// ---- Faults ----

TEST_F(VisaFaceTest, FaultsHitTheirExchange) {
  const struct {
    const char* faults;
    // What happens to write, read, write, read ... of "*ESE?"; empty: the reply "0".
    std::vector<std::pair<ViStatus, std::string>> exchanges;
    // clang-format off
  } rows[] = {
      {"timeout=1", {{VI_ERROR_TMO, ""}, {VI_ERROR_TMO, ""}, {VI_SUCCESS, ""}, {VI_SUCCESS, "0\n"}}},
      {"timeout=2", {{VI_SUCCESS, ""}, {VI_ERROR_TMO, ""}, {VI_SUCCESS, ""}, {VI_SUCCESS, "0\n"}}},
      {"error=2:0xBFFF003E", {{VI_SUCCESS, ""}, {VI_ERROR_IO, ""}}},
      {"error:0xBFFF003E@*OPC", {{VI_SUCCESS, ""}, {VI_SUCCESS, "0\n"}}},
      {"ERROR=3:0xBFFF003E@*ese", {{VI_SUCCESS, ""}, {VI_SUCCESS, "0\n"}, {VI_ERROR_IO, ""}}},
      {"drop=2", {{VI_SUCCESS, ""}, {VI_SUCCESS, "0\n"}, {VI_SUCCESS, ""}, {VI_ERROR_TMO, ""}, {VI_SUCCESS,
       ""}, {VI_SUCCESS, "0\n"}}},
      {"late=1:2001", {{VI_SUCCESS, ""}, {VI_ERROR_TMO, ""}}},
      {"text=1:-5,x", {{VI_SUCCESS, ""}, {VI_SUCCESS, "-5,x\n"}, {VI_SUCCESS, ""}, {VI_SUCCESS, "0\n"}}},
      {"gone=1", {{VI_SUCCESS, ""}, {VI_ERROR_CONN_LOST, ""}, {VI_ERROR_CONN_LOST, ""}}},
      {"other/gone; QM000001/text=1:1 ;", {{VI_SUCCESS, ""}, {VI_SUCCESS, "1\n"}}},
  };
  // clang-format on
  for (const auto& row : rows) {
    Faults(row.faults);
    bench_.At(0).DeviceClear();
    bool write = true;
    for (const auto& [status, text] : row.exchanges) {
      std::string reply;
      slept_ = 0;
      EXPECT_EQ(write ? Write("*ESE?\n") : Read(1000, reply), status) << row.faults;
      EXPECT_EQ(reply, text) << row.faults;
      if (status == VI_ERROR_TMO) {
        EXPECT_EQ(slept_, 2000U) << row.faults;
      }
      write = !write;
    }
  }
  Faults("binary");
  ASSERT_EQ(Write("*IDN?"), VI_SUCCESS);
  std::string reply;
  EXPECT_EQ(Read(1000, reply), VI_SUCCESS);
  EXPECT_EQ(reply.size(), 255U);
  EXPECT_EQ(reply.find('\0'), 0U);
}

TEST(Faults, MalformedTextsAreNamed) {
  for (const char* text : {"tiemout=1", "timeout=x", "timeout=1:5", "error=3", "late=1", "trip", "busy",
                           "full=1", "gone=99999999999", "other/nonsense", "error=1:0xGG"}) {
    std::string error;
    EXPECT_FALSE(ParseFaults(std::string("drop=1;") + text, "SN", &error).has_value()) << text;
    EXPECT_EQ(error, std::string("not a fault: ") + text);
  }
  VirtualBench bench([] { return 0U; });
  for (const char* text :
       {"QM2230:A", "QM2220", "QM2220:", "QM2220:A,QM2210:A", "QM2220:A::B", "QM2220:A,,",
        "QM2220:A:", "QM2220:A:usb", "QM2220:A:gpib=31", "QM2220:A:gpib=0", "QM2220:A:usbtmc+usb488",
        "QM2220:A:usb488=128", "QM2220:A,QM2220:B:gpib=2", "QM2220:A,QM2220:B:usb488=1"}) {
    std::string error;
    EXPECT_FALSE(bench.AddFromText(text, "", &error)) << text;
    EXPECT_TRUE(error.starts_with("not an instrument: ")) << error;
    EXPECT_EQ(bench.Count(), 0U);
  }
}

}  // namespace
}  // namespace corlune::testing
