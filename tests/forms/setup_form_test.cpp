#include "forms/setup_form.h"

#include <gmock/gmock.h>

#include "support/samples.h"

namespace corlune::testing {
namespace {

// Interfaces of the shipped definition: 0 USBTMC, 1 NI, 2 KI, 3 USB.
struct SetupFormTest : ::testing::Test {
  std::string Refusal(const EntryResult& result) const {
    return result ? MessageCatalogue(10000).GetResString(result->Id, result->Arguments) : std::string();
  }
  static SystemSettings OneInstrument() {
    SystemSettings setup{"QM2220", 0, 1, {}};
    setup.Instruments[0] = {0, "200", 0, 2, InterfaceKind::UsbTmc};
    return setup;
  }
  const ModelDefinition definition = ShippedDefinition();
  SetupForm form{OneInstrument(), definition};
};

TEST_F(SetupFormTest, FieldsTakeWholeNumbersInTheRangeOfTheModel) {
  const std::string error = "Input value Error!";
  const auto range = [&](const std::string& text, const std::string& bounds) {
    return error + "  Input value " + text + "  Range of Input " + bounds;
  };
  struct Row {
    const char* field;
    const char* text;
    std::string refusal;
  };
  form.ChooseInterface(0, 1);
  form.ChooseInterface(1, 3);
  for (const Row& row :
       {Row{"gpib", "3.0", error}, Row{"gpib", "x", error}, Row{"gpib", "", error},
        Row{"gpib", "0", range("0", "1-30")}, Row{"gpib", "31", range("31", "1-30")}, Row{"gpib", "１２", ""},
        Row{"usb", "127", ""}, Row{"usb", "128", range("128", "1-127")},
        Row{"channels", "3", range("3", "1-2")}, Row{"channels", "1", ""},
        Row{"count", "6", range("6", "1-5")}, Row{"count", "2.0", error}, Row{"count", " 3 ", ""}}) {
    SCOPED_TRACE(std::string(row.field) + " " + row.text);
    const std::string field = row.field;
    const EntryResult result = field == "gpib"       ? form.EnterAddress(0, row.text)
                               : field == "usb"      ? form.EnterAddress(1, row.text)
                               : field == "channels" ? form.EnterChannels(0, row.text)
                                                     : form.EnterCount(row.text);
    EXPECT_EQ(Refusal(result), row.refusal);
  }
  const SystemSettings& setup = form.Setup();
  EXPECT_EQ(setup.Instruments[0], (InstrumentEntry{1, "200", 12, 1, InterfaceKind::UsbTmc}));
  EXPECT_EQ(setup.Instruments[1].Address, 127);
  EXPECT_EQ(setup.Instruments[1].ChannelCount, 2) << "the usual number";
  EXPECT_EQ(setup.InstrumentCount, 3);
}

TEST_F(SetupFormTest, AnotherModelHasItsOwnInstruments) {
  const std::vector<FoundInstrument> found{{"USB0::0x3a1f::0x2210::100::INSTR", "100"},
                                           {"USB0::0x3A1F::0x2220::200::INSTR", "200"},
                                           {"USB0::0x3A1F::0x2220::201::INSTR", "201"}};
  form.EnterCount("2");
  form.ChooseInterface(1, 3);
  form.OfferFound(found);
  EXPECT_EQ(form.Row(0).SerialNo, "200");
  EXPECT_EQ(form.Row(1).SerialNo, "201");
  EXPECT_EQ(form.Row(1).Address, 2) << "the usual one, counted on";
  form.ChooseModel(0);
  EXPECT_EQ(form.Row(1).Interface, 3);
  form.OfferFound(found);
  EXPECT_EQ(form.Setup().ModelName, "QM2210");
  EXPECT_EQ(form.Row(0).SerialNo, "100");
  EXPECT_EQ(form.Row(1).SerialNo, "");
  EXPECT_EQ(form.Row(0).ChannelCount, 1);
  form.ChooseModel(1);
  EXPECT_EQ(form.Row(0), OneInstrument().Instruments[0]);
  EXPECT_FALSE(form.Check());
  form.EnterSerial(0, "200,LOG_FILE=x");
  EXPECT_EQ(form.Check().value().Refusal.Id, TextId::SignsNotInSerial);
}

}  // namespace
}  // namespace corlune::testing
