// What every back-end does with the status of an operation: show it when the user asked for that, and
// write it to the communication log.
#pragma once

#include <string>
#include <string_view>

#include "comm/comm_status.h"
#include "core/ports.h"

namespace corlune {

// True when the status is Success. Otherwise false, after the fatal prompt when `showDialog` is set: its
// answer Yes ends the program. The prompt pumps events.
bool CheckStatus(std::string_view operation, CommStatus status, bool showDialog, Prompts& prompts,
                 EndProgram& endProgram);

// Appends `line`, the status suffix and CR LF to the log file; the file is opened and closed here. An empty
// path writes nothing; a file that cannot be written is ignored.
void WriteCommLog(const std::string& path, std::string_view line, CommStatus status);
// Leaves an empty log file. The same rules.
void EmptyCommLog(const std::string& path);

}  // namespace corlune
