#include "core/ports.h"

#include <gtest/gtest.h>

namespace corlune {
namespace {

TEST(Ticks, CompareAcrossTheWrap) {
  const struct {
    std::uint32_t now, other;
    std::int32_t since;
    bool reached;
  } kRows[] = {
      {1000, 1000, 0, true},
      {999, 1000, -1, false},
      {5, 0xFFFFFFFBu, 10, true},
      {0xFFFFFFFBu, 5, -10, false},
      {0x7FFFFFFFu, 0, 0x7FFFFFFF, true},
      {0x80000001u, 0x80000000u, 1, true},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(TicksSince(row.now, row.other), row.since) << row.now;
    EXPECT_EQ(TickReached(row.now, row.other), row.reached) << row.now;
  }
}

TEST(StepNumbering, ShownAndStoredTargetsBelongTogether) {
  for (const int startStep : {0, 1, 7}) {
    for (int slot = 0; slot < 256; ++slot) {
      const StepNumber stored = NumberOf(StepIndex{slot});
      EXPECT_EQ(ShownNumber(stored, startStep), slot + startStep);
      EXPECT_EQ(StoredNumber(ShownNumber(stored, startStep), startStep), stored) << startStep;
      EXPECT_EQ(IndexOf(stored), IndexOf(RowOf(StepIndex{slot})));
    }
  }
  EXPECT_EQ(ShownNumber(StepNumber{0}, 7), 0);
  EXPECT_EQ(StoredNumber(0, 7), StepNumber{0});
  EXPECT_EQ(IndexOf(StepNumber{0}).value, -1);
}

}  // namespace
}  // namespace corlune
