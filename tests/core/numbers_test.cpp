#include "core/numbers.h"

#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <random>

#include "core/vector_table.h"

namespace corlune {
namespace {

using testing::IsSettled;
using testing::ReadVectors;
using testing::Unescape;

double FromHex(const std::string& hex) {
  return std::strtod(hex.c_str(), nullptr);
}

template <typename Integer>
std::string IntegerText(std::optional<Integer> value) {
  return value ? std::to_string(*value) : "overflow";
}

TEST(NumberText, AgreesWithMeasuredTexts) {
  for (const auto& row : ReadVectors("double_text")) {
    if (!IsSettled(row)) continue;
    EXPECT_EQ(NumberText(FromHex(row.at("hex"))), row.at("text")) << row.at("id");
  }
}

TEST(NumberText, EveryFifteenDigitNumberComesBack) {
  std::mt19937_64 random(4711);
  std::uniform_int_distribution<std::int64_t> digits(-999999999999999, 999999999999999);
  std::uniform_int_distribution<int> exponent(-300, 290);
  for (int i = 0; i < 20000; ++i) {
    const std::string text = std::to_string(digits(random)) + "E" + std::to_string(exponent(random));
    const double value = std::strtod(text.c_str(), nullptr);
    const auto back = ParseNumber(NumberText(value));
    ASSERT_TRUE(back) << text;
    ASSERT_EQ(*back, value) << text;
  }
}

TEST(FormatPattern, AgreesWithMeasuredTexts) {
  for (const auto& row : ReadVectors("pattern_format")) {
    if (!IsSettled(row)) continue;
    EXPECT_EQ(FormatPatternRaw(FromHex(row.at("hex")), row.at("pattern")), row.at("expected"))
        << row.at("id") << " " << row.at("pattern") << " " << row.at("dec17");
  }
}

TEST(FormatNumber, NeverEndsInAPointAndHasNoNegativeZero) {
  const struct {
    double value;
    const char* pattern;
    const char* text;
  } kRows[] = {
      {60, "0.#", "60"},        {60, "#0.#", "60"},
      {0, "#.##", "0"},         {-0.001, "#.##", "0"},
      {0.5, "#.##", ".5"},      {60, "0.###E+#", "6E+1"},
      {0, "0.###E+#", "0E+0"},  {-0.00001, "0.00", "0.00"},
      {-0.00001, "0.##", "0"},  {-0.4, "0", "0"},
      {-0.0, "0.0", "0.0"},     {-0.5, "0", "-1"},
      {-180.04, "0.#", "-180"}, {12345.678, "0.000E+0", "1.235E+4"},
  };
  for (const auto& row : kRows) EXPECT_EQ(FormatNumber(row.value, row.pattern), row.text) << row.pattern;
  // The repairs change nothing else.
  for (const auto& row : ReadVectors("pattern_format")) {
    const double value = FromHex(row.at("hex"));
    const std::string raw = FormatPatternRaw(value, row.at("pattern"));
    const std::string shown = FormatNumber(value, row.at("pattern"));
    EXPECT_EQ(std::strtod(shown.c_str(), nullptr),
              std::strtod(raw == "." || raw == "-." ? "0" : raw.c_str(), nullptr));
    EXPECT_TRUE(shown.find(".E") == std::string::npos && shown.back() != '.') << shown;
    EXPECT_FALSE(shown[0] == '-' && std::strtod(shown.c_str(), nullptr) == 0) << shown;
  }
}

TEST(Integers, RoundHalfToEvenInsideTheType) {
  for (const auto& row : ReadVectors("double_to_int")) {
    if (!IsSettled(row)) continue;
    const double value = FromHex(row.at("hex"));
    EXPECT_EQ(IntegerText(ToInt16(value)), row.at("int16")) << row.at("id");
    EXPECT_EQ(IntegerText(ToInt32(value)), row.at("int32")) << row.at("id");
  }
  for (const double value : {std::nan(""), std::numeric_limits<double>::infinity()}) {
    EXPECT_FALSE(ToInt16(value));
    EXPECT_FALSE(ToInt32(value));
  }
}

// What the platform takes as a number and this program does not: a group separator, a currency sign,
// parentheses, another base, a sign behind the number or two of them.
bool IsBeyondPlainForm(const std::string& text) {
  const std::size_t last = text.find_last_not_of(" \t");
  return text.find_first_of(",$(&") != std::string::npos || text[last] == '-' || text[last] == '+' ||
         text.find("+-") != std::string::npos;
}

TEST(ParseNumber, AgreesWithMeasuredAnswersInThePlainForm) {
  int plain = 0;
  for (const auto& row : ReadVectors("text_to_number")) {
    const std::string text = Unescape(row.at("text"), true);
    const auto number = ParseNumber(text);
    if (!text.empty() && text != "-" && IsBeyondPlainForm(text)) {
      EXPECT_FALSE(number) << row.at("id") << " " << text;
      EXPECT_FALSE(ParseInt16(text)) << text;
      continue;
    }
    if (!IsSettled(row)) continue;
    ++plain;
    EXPECT_EQ(number.has_value(), row.at("numeric") == "yes") << row.at("id") << " '" << text << "'";
    if (!number) continue;
    EXPECT_EQ(*number, FromHex(row.at("double_hex"))) << row.at("id");
    EXPECT_EQ(IntegerText(ParseInt16(text)), row.at("int16")) << row.at("id");
    EXPECT_EQ(IntegerText(ParseInt32(text)), row.at("int32")) << row.at("id");
  }
  EXPECT_GT(plain, 30);
}

TEST(ParseNumber, Limits) {
  const struct {
    const char* text;
    std::optional<double> value;
  } kRows[] = {
      // clang-format off
      {"1.7976931348623157e308", 1.7976931348623157e308}, {"1e309", std::nullopt},
      {"14e9223372036854775807", std::nullopt}, {"14e-9223372036854775808", 0},  // the exponent fills 64 bits
      {"4.9406564584124654e-324", 4.9406564584124654e-324}, {"1e-400", 0.0},
      {"-0.00001e-99999999999999999999", 0.0}, {"12345678901234567890e-330", 1.2345678901234567e-311},
      {"+", std::nullopt}, {"infinity", std::nullopt}, {"1e+", std::nullopt}, {"0x1p3", std::nullopt},
      // clang-format on
  };
  for (const auto& row : kRows) EXPECT_EQ(ParseNumber(row.text), row.value) << row.text;
  const std::string huge(400, '9');
  EXPECT_FALSE(ParseNumber(huge));
  EXPECT_EQ(ParseNumber("0." + std::string(400, '0') + "1"), 0.0);
  EXPECT_EQ(ParseNumber(huge + "e-400"), 1.0);
}

TEST(LeadingNumber, StopsAtTheFirstCharacterThatCannotContinue) {
  const struct {
    const char* text;
    double value;
  } kRows[] = {
      // clang-format off
      {"-222,\"Data out of range\"", -222}, {"  +5\n", 5}, {"1.5E3 Hz", 1500}, {"2e+", 2},   {"- 5", 0},
      {"", 0},                              {"inf", 0},    {"0x10", 0},        {"\r\n7", 7},
      // clang-format on
  };
  for (const auto& row : kRows) EXPECT_EQ(LeadingNumber(row.text), row.value) << row.text;
}

TEST(LeadingInteger, RoundsHalfToEvenAndStaysInTheType) {
  EXPECT_EQ(LeadingInteger("2.5"), 2);
  EXPECT_EQ(LeadingInteger("-3.5"), -4);
  EXPECT_EQ(LeadingInteger("2147483648"), std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(LeadingInteger("-1e400"), std::numeric_limits<std::int32_t>::min());
}

}  // namespace
}  // namespace corlune
