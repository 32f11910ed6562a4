#include "comm/comm_log.h"

#include <array>
#include <filesystem>
#include <fstream>

namespace corlune {

namespace {

struct StatusText {
  CommStatus bit;
  std::string_view text;
};

// A word with several bits shows the first one here ...
constexpr std::array<StatusText, 4> kPromptTexts{{{CommStatus::Error, "Error"},
                                                  {CommStatus::TimeOut, "Time Out"},
                                                  {CommStatus::NoBoard, "Board is Northing"},
                                                  {CommStatus::BufferOverflow, "Buffer Over"}}};
// ... and logs the first one here; the two orders differ.
constexpr std::array<StatusText, 4> kLogSuffixes{{{CommStatus::TimeOut, " Time Out"},
                                                  {CommStatus::Error, " Error"},
                                                  {CommStatus::NoBoard, " Board does not exit"},
                                                  {CommStatus::BufferOverflow, " Buffer over"}}};

std::string_view TextOf(const std::array<StatusText, 4>& texts, CommStatus status) {
  for (const StatusText& row : texts) {
    if (Has(status, row.bit)) return row.text;
  }
  return {};
}

std::filesystem::path PathOf(const std::string& utf8) {
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

}  // namespace

bool CheckStatus(std::string_view operation, CommStatus status, bool showDialog, Prompts& prompts,
                 EndProgram& endProgram) {
  const std::string_view text = TextOf(kPromptTexts, status);
  if (text.empty()) return true;
  if (showDialog) {
    MessageRequest request;
    request.text = std::string(operation) + "\n" + std::string(text) + "\nアプリケーションを終了しますか?";
    request.icon = PromptIcon::Question;
    request.buttons = PromptButtons::YesNo;
    request.caption = "NI_GPIB";
    request.escape = PromptAnswer::No;
    if (prompts.Message(request) == PromptAnswer::Yes) endProgram.EndNow(1);
  }
  return false;
}

void WriteCommLog(const std::string& path, std::string_view line, CommStatus status) {
  if (path.empty()) return;
  std::ofstream file(PathOf(path), std::ios::binary | std::ios::app);
  std::string text(line);
  text += TextOf(kLogSuffixes, status);
  text += "\r\n";
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
}

void EmptyCommLog(const std::string& path) {
  if (path.empty()) return;
  const std::ofstream file(PathOf(path), std::ios::binary | std::ios::trunc);
}

}  // namespace corlune
