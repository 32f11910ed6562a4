// The files that carry a sequence to and from the instrument.
#pragma once

#include <string>
#include <string_view>

#include "core/app_state.h"
#include "core/files.h"

namespace corlune {

inline constexpr const char* kSendFileName = "sendata.bin";      // sequence text, then its compiled form
inline constexpr const char* kReceiveFileName = "recvdata.bin";  // sequence text read back

inline std::string TransferFile(const AppState& state, std::string_view name) {
  return JoinPath(state.TransferFolder.empty() ? state.AppFolder : state.TransferFolder, name);
}

}  // namespace corlune
