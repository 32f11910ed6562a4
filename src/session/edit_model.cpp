#include "session/edit_model.h"

#include "core/numbers.h"
#include "core/profile_file.h"

namespace corlune {

namespace {
constexpr const char* kSection = "EDIT";
constexpr const char* kKey = "EDIT_MODEL";
}  // namespace

bool ReadEditModelQuietly(const std::string& sysIniPath, AppState& state) {
  const std::string value = GetIniString(sysIniPath, kSection, kKey);
  const auto items = SplitList(value);
  if (items.size() < 2 || TrimBlanks(items[1]).empty()) return false;
  state.ModelIndex = ParseInt16(items[0]).value_or(0);
  state.ModelName = std::string(TrimBlanks(items[1]));
  return true;
}

bool ReadEditModel(const std::string& sysIniPath, AppState& state, Prompts& prompts,
                   const MessageCatalogue& catalogue) {
  if (ReadEditModelQuietly(sysIniPath, state)) return true;
  ShowMessage(prompts, catalogue, TextId::NoInitializationFile, PromptIcon::Exclamation);
  return false;
}

void UseDefaultModel(AppState& state) {
  state.ModelName = MessageCatalogue::GetFixedString(FixedText::OneChannelModel);
  state.ModelIndex = 0;
}

bool WriteEditModel(const AppState& state) {
  return WriteIniString(state.SysIniPath, kSection, kKey,
                        std::to_string(state.ModelIndex) + "," + state.ModelName);
}

}  // namespace corlune
