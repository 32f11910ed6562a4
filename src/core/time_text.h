// Run times as the status bars and the console show them.
#pragma once

#include <string>

#include "core/catalogue.h"

namespace corlune {

// "hh:mm:ss.t" of milliseconds, rounded to tenths first so that a tenth carries into the seconds; hours
// grow beyond two digits. A negative time (an endless sequence) is "--:--:--.-".
std::string TimeText(double milliseconds);

// Caption and time, for example "Elapsed time:00:01:05.3". `captionId`: TotalTime or ElapsedTime.
std::string TimePanelText(const MessageCatalogue& catalogue, TextId captionId, double milliseconds);

// Date of the program file in the about box: "Jan.5,2018", "May 5,2018", "June 5,2018", "Sept.5,2018".
// month 1..12.
std::string AboutDate(int year, int month, int day);

}  // namespace corlune
