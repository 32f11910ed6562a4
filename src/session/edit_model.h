// Corlune.ini, the system settings file: which model the person edits. One section, one key:
// [EDIT] EDIT_MODEL=<model index>,<model name>
#pragma once

#include <string>

#include "core/app_state.h"
#include "core/catalogue.h"
#include "core/ports.h"

namespace corlune {

// Sets ModelIndex and ModelName. False, and no change, after message NoInitializationFile when file, section
// or key is missing or the value names no model.
bool ReadEditModel(const std::string& sysIniPath, AppState& state, Prompts& prompts,
                   const MessageCatalogue& catalogue);
// The same without a message.
bool ReadEditModelQuietly(const std::string& sysIniPath, AppState& state);
// The model that is edited when the settings name none.
void UseDefaultModel(AppState& state);

// False when the file cannot be written.
bool WriteEditModel(const AppState& state);

}  // namespace corlune
