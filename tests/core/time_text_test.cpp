#include "core/time_text.h"

#include <gtest/gtest.h>

namespace corlune {
namespace {

TEST(TimeText, RoundsToTenthsAndCarries) {
  const struct {
    double milliseconds;
    const char* text;
  } rows[] = {
      {49.9, "00:00:00.0"},       {50, "00:00:00.1"},      {950, "00:00:01.0"},
      {59950, "00:01:00.0"},      {3723400, "01:02:03.4"}, {359999949, "99:59:59.9"},
      {359999950, "100:00:00.0"}, {-1, "--:--:--.-"},      {1e300, "277777777:46:40.0"},
  };
  for (const auto& row : rows) EXPECT_EQ(TimeText(row.milliseconds), row.text) << row.milliseconds;
}

TEST(AboutDate, MonthPartFollowsTheMonth) {
  EXPECT_EQ(AboutDate(2018, 1, 5), "Jan.5,2018");
  EXPECT_EQ(AboutDate(2018, 6, 15), "June 15,2018");
  EXPECT_EQ(AboutDate(2018, 13, 5), "");
}

}  // namespace
}  // namespace corlune
