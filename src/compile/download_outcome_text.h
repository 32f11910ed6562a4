// Why a download ended, in words, for the places that do not interrupt: the status bar and the console.
#pragma once

#include <string>

#include "compile/download.h"
#include "core/catalogue.h"

namespace corlune {

// Empty when it was done, was cancelled by the person, or when a message has said all there is to say.
std::string DownloadOutcomeText(const DownloadOutcome& outcome, const MessageCatalogue& catalogue);

}  // namespace corlune
