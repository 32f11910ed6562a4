#include "core/time_text.h"

#include <gtest/gtest.h>

namespace corlune {
namespace {

TEST(TimeText, RoundsToTenthsAndCarries) {
  const struct {
    double milliseconds;
    const char* text;
  } rows[] = {
      {0, "00:00:00.0"},
      {49.9, "00:00:00.0"},
      {50, "00:00:00.1"},
      {949, "00:00:00.9"},
      {950, "00:00:01.0"},
      {59950, "00:01:00.0"},
      {3599999, "01:00:00.0"},
      {3723400, "01:02:03.4"},
      {65300, "00:01:05.3"},
      {359999949, "99:59:59.9"},
      {359999950, "100:00:00.0"},
      {-1, "--:--:--.-"},
      {1e300, "277777777:46:40.0"},
  };
  for (const auto& row : rows) EXPECT_EQ(TimeText(row.milliseconds), row.text) << row.milliseconds;
}

TEST(TimeText, PanelJoinsCaptionAndTime) {
  EXPECT_EQ(TimePanelText(MessageCatalogue(10000), 1406, 65300), "Elapsed time:00:01:05.3");
  EXPECT_EQ(TimePanelText(MessageCatalogue(0), 1405, 0), "合計時間:00:00:00.0");
}

TEST(AboutDate, MonthPartFollowsTheMonth) {
  EXPECT_EQ(AboutDate(2018, 1, 5), "Jan.5,2018");
  EXPECT_EQ(AboutDate(2018, 5, 5), "May 5,2018");
  EXPECT_EQ(AboutDate(2018, 6, 15), "June 15,2018");
  EXPECT_EQ(AboutDate(2018, 7, 5), "July 5,2018");
  EXPECT_EQ(AboutDate(2018, 9, 5), "Sept.5,2018");
  EXPECT_EQ(AboutDate(2018, 13, 5), "");
}

}  // namespace
}  // namespace corlune
