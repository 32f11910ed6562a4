#include "forms/common_form.h"

#include <algorithm>

#include "core/numbers.h"

namespace corlune {

namespace {

constexpr double kFirstStartStep = 1;
constexpr double kLastStartStep = 255;
constexpr std::size_t kLongestInMessage = 40;  // characters of an entry

}  // namespace

const std::array<CommonList, 4>& CommonForm::Lists() {
  using enum TextId;
  static const std::array<CommonList, 4> lists{
      {{"cmbCmn_0", CommonTrig, {SettingRise, SettingFall, SettingOff}, &CommonParams::Trigger},
       {"cmbCmn_1", CommonExtCtrl, {SettingDisable, SettingEnable}, &CommonParams::ExtCtrl},
       {"cmbCmn_2", CommonMultiIoPin14, {SettingStart, SettingStateBranch}, &CommonParams::MultiIo},
       {"cmbCmn_3", CommonSyncOut, {CommonSync, CommonStepCodeLsb}, &CommonParams::SyncOut}}};
  return lists;
}

CommonForm::CommonForm(const CommonParams& stored) : edited_(stored) {
  for (const CommonList& list : Lists()) {
    const std::int32_t choice = edited_.*list.field;
    if (choice < 0 || choice >= static_cast<std::int32_t>(list.choices.size())) edited_.*list.field = 0;
  }
}

EntryResult CommonForm::EnterStartStep(std::string_view text) {
  const std::string plain = PlainEntry(text);
  const bool digits =
      !plain.empty() && std::all_of(plain.begin(), plain.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (!digits) return EntryRefusal{TextId::InputError, {}};
  const std::optional<double> number = ParseNumber(plain);
  if (!number || *number < kFirstStartStep || *number > kLastStartStep) {
    return EntryRefusal{
        TextId::ValueOutOfRange,
        {plain.substr(0, kLongestInMessage), NumberText(kFirstStartStep), NumberText(kLastStartStep)}};
  }
  edited_.StartStepNo = static_cast<std::int16_t>(*number);
  return std::nullopt;
}

}  // namespace corlune
