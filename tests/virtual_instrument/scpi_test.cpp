// What the instrument makes of the messages it gets: forms of a command, arguments, errors, replies.

#include <gtest/gtest.h>

#include "tests/virtual_instrument/instrument_rig.h"

namespace corlune::testing {
namespace {

TEST(Scpi, TakesEveryFormOfACommand) {
  const std::pair<const char*, const char*> rows[] = {
      {":OUTP1 ON;:OUTP1?", "1"},
      {"OUTPUT1:STATE 1;STATE?", "1"},
      {":OUTP2 ON;:OUTP1?;:OUTP2?", "0;1"},
      {":OUTP1 ON;OUTP2 1;OUTP1 0;OUTP1?;OUTP2?", "0;1"},  // the path of ":OUTP1" is the root
      {":SOUR1:SEQ:STAT 1;STAT?;CST?", "1;-1"},            // the path is ":SOUR1:SEQ"
      {":SOUR:SEQ:STAT 1;*ESE 3;STAT?;*ESE?", "1;3"},      // a common command leaves the path alone
      {"  :sour1:sequence:state  ON ;\t:SOUR1:SEQ:STAT? \r\n", "1"},
      {":STAT:OPER:CH1:COND?;:STATus:OPERation:CONDition?", "0;0"},
      {"*ESE #H1F;*ESE?", "31"},
      {";;*ESE +7;;*ESE?;", "7"},
      {":SYST:ERR:NEXT?;COUNT?", "0,\"No error\";0"},
  };
  for (const auto& [message, reply] : rows) {
    InstrumentRig rig;
    EXPECT_EQ(rig.Ask(message), reply) << message;
    EXPECT_EQ(rig.Error(), kNoError) << message;
  }
}

TEST(Scpi, NamesEveryMistake) {
  const std::pair<const char*, const char*> rows[] = {
      {":NONSENSE 1", "-113,\"Undefined header\""},
      {":SEQ:STAT 1", "-113,\"Undefined header\""},
      {"*IDN", "-113,\"Undefined header\""},
      {":SYST2:REM", "-113,\"Undefined header\""},
      {":OUTP3 ON", "-114,\"Header suffix out of range\""},
      {":OUTP1", "-109,\"Missing parameter\""},
      {":OUTP1 ON,OFF", "-108,\"Parameter not allowed\""},
      {"*ESE ON", "-104,\"Data type error\""},
      {":OUTP1 MAYBE", "-224,\"Illegal parameter value\""},
      {"*ESE 256", "-222,\"Data out of range\""},
      {":TRIG1:SEL:EXEC STAR", "-221,\"Settings conflict\""},
      {"*ESE 1 2", "-121,\"Invalid character in number\""},
      {"*ESE 1 V", "-131,\"Invalid suffix\""},
      {":OUTP1 !", "-101,\"Invalid character\""},
      {"*ESE 1,", "-102,\"Syntax error\""},
      {"*ESE,1", "-103,\"Invalid separator\""},
      {":TRAC:SEQ 0,\"A", "-151,\"Invalid string data\""},
      {":TRAC:SEQ 0,\"A\",#3", "-161,\"Invalid block data\""},
      {":TRAC:SEQ 0,\"A\",#12abcde\nmore\nlines", "-161,\"Invalid block data\""},
      {":TRAC:SEQ 0,\"A\",#13abc", "-230,\"Data corrupt or stale\""},
      {":TRAC:SEQ 0,\"A name of 21 letters.\",#0abc", "-224,\"Illegal parameter value\""},
  };
  for (const auto& [message, error] : rows) {
    InstrumentRig rig;
    EXPECT_EQ(rig.Ask(message), "(none)") << message;
    EXPECT_EQ(rig.Error(), error) << message;
    EXPECT_EQ(rig.Error(), kNoError) << message;
  }
}

TEST(Scpi, CommandErrorSpoilsTheRestOfTheMessageOnly) {
  InstrumentRig rig;
  EXPECT_EQ(rig.Ask("*ESE 5;*ESE?;:NONSENSE;*ESE 9"), "5");
  EXPECT_EQ(rig.Ask("*ESE?"), "5");
  // What merely cannot be carried out leaves the rest alone.
  EXPECT_EQ(rig.Ask("*ESE 300;*ESE 6;*ESE?"), "6");
  EXPECT_EQ(rig.Ask(":SYST:ERR:COUN?"), "2");
}

TEST(Scpi, MessageEndsWithLineFeedOrEnd) {
  InstrumentRig rig;
  rig.instrument.Write("*ESE 1\n*ES", false);
  EXPECT_EQ(rig.instrument.ReplyDelay(), std::nullopt);
  rig.instrument.Write("E?", false);
  EXPECT_EQ(rig.instrument.ReplyDelay(), std::nullopt);
  rig.instrument.Write("\n", false);
  EXPECT_EQ(rig.Reply(), "1");
  // Line feeds inside a text or block end nothing, and the block comes in as many parts as it likes.
  const std::string block = WaveformBlock(1, 2);
  rig.instrument.Write(":TRAC:DATA 1,\"a\nb\",#3020", false);
  rig.instrument.Write(block.substr(0, 8) + "12345\n", false);
  rig.instrument.Write("7890\n2", false);
  rig.instrument.Write("\n*ESR?", true);
  EXPECT_EQ(rig.Reply(), "128");
  EXPECT_EQ(rig.Ask(":TRAC:INF? 1"), "\"a\nb\",0,2");
  EXPECT_EQ(rig.Error(), kNoError);
}

TEST(Scpi, OverlongMessageIsDroppedToItsEnd) {
  InstrumentRig rig;
  const std::string megabyte(std::size_t{1} << 20, 'A');
  for (int i = 0; i < 6; ++i) rig.instrument.Write(megabyte, false);
  rig.instrument.Write(";*IDN?\n", true);
  EXPECT_EQ(rig.instrument.ReplyDelay(), std::nullopt);
  EXPECT_EQ(rig.Error(), "-363,\"Input buffer overrun\"");
  EXPECT_LT(rig.instrument.InputBytes(), std::size_t{1} << 17);
}

TEST(Status, QueueOverflowReplacesTheNewestError) {
  InstrumentRig rig;
  for (std::size_t i = 0; i < StatusModel::kQueueDepth; ++i) rig.Tell("*ESE 999");
  rig.Tell(":NONSENSE");
  rig.Tell(":NONSENSE");
  for (std::size_t i = 1; i < StatusModel::kQueueDepth; ++i) {
    EXPECT_EQ(rig.Error(), "-222,\"Data out of range\"");
  }
  EXPECT_EQ(rig.Error(), "-350,\"Queue overflow\"");
  EXPECT_EQ(rig.Error(), kNoError);
}

TEST(Status, UnreadReplyIsClearedByANewMessage) {
  InstrumentRig rig;
  rig.Tell("*CLS;*ESE 4");
  rig.Tell("*IDN?");
  EXPECT_EQ(rig.instrument.SerialPoll(), 0x10);
  char first[4];
  EXPECT_EQ(rig.instrument.Read(first, std::nullopt).count, 4U);
  EXPECT_EQ(rig.Ask("*ESE?"), "4");
  EXPECT_EQ(rig.instrument.SerialPoll(), 0x24);
  EXPECT_EQ(rig.Error(), "-410,\"Query INTERRUPTED\"");
  rig.instrument.ReadFailed();
  EXPECT_EQ(rig.Error(), "-420,\"Query UNTERMINATED\"");
  EXPECT_EQ(rig.Ask("*ESR?"), "4");
  EXPECT_EQ(rig.instrument.SerialPoll(), 0);
}

TEST(Status, OperationCompleteAndWaitFollowTheCompilation) {
  InstrumentRig rig;
  rig.Tell(":SOUR1:SEQ:STAT 1;*CLS;:TRIG:COMP;*OPC");
  EXPECT_EQ(rig.Ask("*ESR?"), "0");
  EXPECT_EQ(rig.Ask(":SYST:BUSY?"), "1");
  EXPECT_EQ(rig.Ask("*OPC?"), "(late)");
  rig.Pass(kCompileMs - 1);
  EXPECT_EQ(rig.Reply(), "(late)");
  rig.Pass(1);
  EXPECT_EQ(rig.Reply(), "1");
  EXPECT_EQ(rig.Ask("*ESR?"), "17");  // complete, and refused: there was nothing to compile
  rig.Tell(":TRIG:COMP;*WAI;*ESE 1;*ESE?");
  EXPECT_EQ(rig.Reply(), "(late)");
  rig.Pass(kCompileMs);
  EXPECT_EQ(rig.Reply(), "1");
}

}  // namespace
}  // namespace corlune::testing
