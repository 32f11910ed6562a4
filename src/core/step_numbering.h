// The three ways in which a step is named, as types of their own, and the conversions between them.
//
//   StepIndex   slot in the step table, 0..255
//   StepNumber  stored form of a jump or branch target: slot + 1; 0 means "none"
//   GridRow     row of a step grid: row 0 is the header, row n shows slot n - 1
//
// A fourth form exists only on the screen: column 0 and target cells show StepNumber + start step - 1.
#pragma once

#include <compare>

namespace corlune {

struct StepIndex {
  int value = 0;
  auto operator<=>(const StepIndex&) const = default;
};

struct StepNumber {
  int value = 0;
  auto operator<=>(const StepNumber&) const = default;
};

struct GridRow {
  int value = 0;
  auto operator<=>(const GridRow&) const = default;
};

constexpr StepNumber NumberOf(StepIndex index) {
  return {index.value + 1};
}
// The slot of a target; -1 for "none".
constexpr StepIndex IndexOf(StepNumber number) {
  return {number.value - 1};
}
constexpr StepIndex IndexOf(GridRow row) {
  return {row.value - 1};
}
constexpr GridRow RowOf(StepIndex index) {
  return {index.value + 1};
}

// What the screen shows for a stored target; 0 stays 0.
constexpr int ShownNumber(StepNumber number, int startStep) {
  return number.value == 0 ? 0 : number.value + startStep - 1;
}
// The stored form of a number typed on the screen; 0 stays 0 ("none") unless the start step is 0, where
// the screen shows "none" as text and 0 is the first step.
constexpr StepNumber StoredNumber(int shown, int startStep) {
  if (shown == 0 && startStep != 0) return {0};
  return {shown - startStep + 1};
}

}  // namespace corlune
