#include "comm/simulated_backend.h"

#include <algorithm>
#include <utility>

#include "core/numbers.h"
#include "core/profile_file.h"

namespace corlune {

namespace {

constexpr std::size_t kReplyBuffer = 100;  // one less fits
constexpr std::string_view kBufferOver = "Buffer Over";

}  // namespace

std::string QueryKeys(std::string_view text) {
  std::string keys;
  for (const std::string_view command : SplitList(TrimBlanks(text), ';')) {
    if (command.find('?') == std::string_view::npos) continue;
    if (!keys.empty()) keys += ',';
    keys += TrimBlanks(command);
  }
  return keys;
}

SimulatedMdl::SimulatedMdl(const BackendServices& services, std::shared_ptr<const std::string> responseFile)
    : GpBackendBase(services), usualFile_(std::move(responseFile)) {}

CommStatus SimulatedMdl::Open(const InitOptions& options) {
  responseFile_ = PathBelow(Services().state.AppFolder, options.ValueAsWritten("INI_FILE"));
  if (responseFile_.empty()) responseFile_ = *usualFile_;
  replyPrompt_ = options.Has("RESPONSE_DIALOG");
  queryKeys_.clear();
  pendingReply_.clear();
  GP_REN(true);
  GP_MTerm(kTerminatorLf);
  GP_EOI(true);
  GP_Time_Out(kTimeOut300ms);
  return CommStatus::Success;
}

CommStatus SimulatedMdl::Select(const char* /*operation*/, Transfer /*transfer*/, std::int16_t /*address*/) {
  return CommStatus::Success;
}

std::string SimulatedMdl::LookUp(std::string_view keys) const {
  if (responseFile_.empty() || keys.empty()) return {};
  const std::string_view key = keys.substr(keys.find_last_of(',') + 1);
  std::string reply = GetIniString(responseFile_, "ADRS" + std::to_string(Device()), key);
  if (reply.size() >= kReplyBuffer - 1) reply = kBufferOver;
  return reply;
}

CommStatus SimulatedMdl::Write(const std::string& text) {
  queryKeys_ = QueryKeys(text);
  pendingReply_ = LookUp(queryKeys_);
  return CommStatus::Success;
}

CommStatus SimulatedMdl::Read(std::span<char> buffer, Received& received) {
  // Taken before the prompt, which lets other exchanges run.
  std::string reply = std::exchange(pendingReply_, {});
  if ((reply.empty() || reply == kBufferOver) && replyPrompt_) {
    InputRequest request;
    request.prompt = queryKeys_ + "の応答メッセージを入力してください";
    reply = Services().prompts.Input(request).value_or(std::string());
  }
  received.count = std::min(reply.size(), buffer.size());
  std::copy_n(reply.begin(), received.count, buffer.begin());
  return CommStatus::Success;
}

CommStatus SimulatedMdl::SerialPoll(std::int16_t& statusByte) {
  std::string text;
  if (replyPrompt_) {
    InputRequest request;
    request.prompt = "シリアルポールの結果(数値)を入力してください";
    text = Services().prompts.Input(request).value_or(std::string());
  } else {
    text = LookUp("spoll");
  }
  const auto value = ToInt16(LeadingNumber(text));
  if (!value) {
    MessageRequest request;
    request.text = "シリアルポールの値が不正です。";
    Services().prompts.Message(request);
  }
  statusByte = value.value_or(std::int16_t{0});
  pendingReply_.clear();
  return CommStatus::Success;
}

CommStatus SimulatedMdl::SetTimeOut(std::int16_t /*code*/) {
  return CommStatus::Success;
}
CommStatus SimulatedMdl::SetTerminator(std::int16_t /*code*/) {
  return CommStatus::Success;
}
CommStatus SimulatedMdl::SetEndOnWrite(bool /*on*/) {
  return CommStatus::Success;
}
CommStatus SimulatedMdl::SetRemote(bool /*on*/) {
  return CommStatus::Success;
}

std::string SimulatedMdl::SerialPollLogText(std::int16_t /*statusByte*/) const {
  return "Debug Spoll";
}

CommStatus SimulatedMdl::GP_Send_AsciiBinary_Data(const std::string& /*header*/,
                                                  std::span<const std::uint8_t> data, std::int16_t address,
                                                  std::int16_t elementFormat, bool /*swapBytes*/) {
  LogBlock(RememberDevice(address), data, elementFormat, CommStatus::Success);
  return CommStatus::Success;
}

}  // namespace corlune
