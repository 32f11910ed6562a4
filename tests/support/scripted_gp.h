// Scripted instruments behind the communication family: replies prepared per command, every exchange
// recorded in order, any exchange made to fail.
//
//   GpScript script;
//   script.Reply(":SYST:ERR?", {"0,\"No error\""});            // the last reply repeats
//   script.StatusBytes({0, 0, 0x80});                           // serial polls, the last one repeats
//   script.FailAt(3, CommStatus::TimeOut);                      // the fourth exchange fails
//   GpFrontEnd gp(state, ScriptedBackends(script), nullptr);
//   ... EXPECT_THAT(script.Log(), ElementsAre("0 < *CLS", "0 spoll 0"));
//
// A query whose reply was not prepared times out when it is read; a new message drops an unread reply.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "comm/gp_family.h"
#include "core/app_state.h"

namespace corlune::testing {

struct SentBlock {
  std::string header;
  std::vector<std::uint8_t> data;
  std::int16_t address = 0;
  std::int16_t elementFormat = 0;
};

class GpScript {
 public:
  // Replies to `command`, in order; the last one repeats. Replaces what was prepared before.
  void Reply(const std::string& command, std::vector<std::string> replies) {
    replies_[command] = {replies.begin(), replies.end()};
  }
  // Answers of the serial poll, in order; the last one repeats. 0 when none were prepared.
  void StatusBytes(std::vector<std::int16_t> bytes) { statusBytes_ = {bytes.begin(), bytes.end()}; }
  // Content that the next block replies write into their files; without it the read times out.
  void FileReply(std::string content) { fileReply_ = std::move(content); }

  // Exchange number `index` (0-based, counted over every operation) returns `status` and does nothing.
  void FailAt(std::size_t index, CommStatus status) { failAt_[index] = status; }
  // The next `times` exchanges whose log line begins with `beginning` fail.
  void FailOn(const std::string& beginning, CommStatus status, int times = 1) {
    failOn_.push_back({beginning, status, times});
  }
  // The device is unplugged: every exchange from now on fails, and the back-end knows why.
  void Unplug() { unplugged_ = true; }
  // Called with the log line before each exchange is carried out; may call into the program.
  std::function<void(const std::string&)> onExchange;

  // One line an exchange:
  //   "0 < text"  "0 > reply"  "0 spoll 128"  "timeout 14"  "0 block header (8 bytes)"  "0 file name"
  //   "init options"  "end"  "ifc"  "dcl"  "mterm 1"
  // with "[kind] " in front for a kind other than USBTMC, and " !status" behind a failed one.
  const std::vector<std::string>& Log() const { return log_; }
  const std::vector<SentBlock>& Blocks() const { return blocks_; }
  void ClearLog() {
    log_.clear();
    blocks_.clear();
  }
  // Exchanges so far, the next one's number for FailAt.
  std::size_t Count() const { return count_; }
  // How many log lines begin with `beginning`.
  int CountOf(const std::string& beginning) const {
    return static_cast<int>(std::count_if(log_.begin(), log_.end(), [&](const std::string& line) {
      return line.compare(0, beginning.size(), beginning) == 0;
    }));
  }
  // Only the commands and blocks sent, without addresses.
  std::vector<std::string> Sent() const {
    std::vector<std::string> sent;
    for (const std::string& line : log_) {
      const std::size_t mark = line.find(" < ");
      if (mark != std::string::npos) sent.push_back(line.substr(mark + 3));
      const std::size_t block = line.find(" block ");
      if (block != std::string::npos) sent.push_back(line.substr(block + 7));
    }
    return sent;
  }

 private:
  friend class ScriptedGp;
  struct FailRule {
    std::string beginning;
    CommStatus status;
    int times;
  };

  // Notes the exchange; the status it has to return.
  CommStatus Note(InterfaceKind kind, const std::string& line) {
    const std::string shown =
        kind == InterfaceKind::UsbTmc ? line : "[" + std::to_string(static_cast<int>(kind)) + "] " + line;
    const std::size_t index = count_++;
    CommStatus status = CommStatus::Success;
    if (const auto at = failAt_.find(index); at != failAt_.end()) status = at->second;
    if (unplugged_) status = CommStatus::Error;
    for (FailRule& rule : failOn_) {
      if (rule.times > 0 && shown.compare(0, rule.beginning.size(), rule.beginning) == 0) {
        --rule.times;
        status = rule.status;
        break;
      }
    }
    log_.push_back(shown + (Failed(status) ? " !" + std::to_string(static_cast<int>(status)) : ""));
    if (onExchange) {
      const auto hook = onExchange;
      hook(shown);
    }
    return status;
  }
  std::optional<std::string> TakeReply(const std::string& command) {
    const auto found = replies_.find(command);
    if (found == replies_.end() || found->second.empty()) return std::nullopt;
    std::string reply = found->second.front();
    if (found->second.size() > 1) found->second.pop_front();
    return reply;
  }

  std::map<std::string, std::deque<std::string>> replies_;
  std::map<std::int16_t, std::string> pending_;  // by address: the message whose reply is unread
  std::deque<std::int16_t> statusBytes_;
  std::optional<std::string> fileReply_;
  std::map<std::size_t, CommStatus> failAt_;
  std::vector<FailRule> failOn_;
  std::vector<std::string> log_;
  std::vector<SentBlock> blocks_;
  std::size_t count_ = 0;
  bool unplugged_ = false;
};

// One back-end over a script.
class ScriptedGp : public GpFamily {
 public:
  ScriptedGp(InterfaceKind kind, GpScript& script) : kind_(kind), script_(script) {}

  CommStatus GP_Init(const std::string& initString, bool emptyLog) override {
    return script_.Note(kind_, "init " + initString + (emptyLog ? "" : " (log kept)"));
  }
  CommStatus GP_End() override { return script_.Note(kind_, "end"); }
  CommStatus GP_Send_Str(std::int16_t address, const std::string& text) override {
    const CommStatus status = script_.Note(kind_, At(address) + "< " + text);
    if (!Failed(status)) script_.pending_[address] = text;
    return status;
  }
  CommStatus GP_Receive_Str(std::int16_t address, std::string& reply) override {
    std::optional<std::string> text;
    if (const auto pending = script_.pending_.find(address); pending != script_.pending_.end()) {
      text = script_.TakeReply(pending->second);
      script_.pending_.erase(pending);
    }
    CommStatus status = script_.Note(kind_, At(address) + "> " + text.value_or("(none)"));
    if (!Failed(status) && !text) status = CommStatus::TimeOut;
    if (!Failed(status)) reply = *text;
    return status;
  }
  CommStatus GP_IFC() override { return script_.Note(kind_, "ifc"); }
  CommStatus GP_DCL() override { return script_.Note(kind_, "dcl"); }
  CommStatus GP_Spoll(std::int16_t address, std::int16_t& statusByte) override {
    const std::int16_t byte = script_.statusBytes_.empty() ? std::int16_t{0} : script_.statusBytes_.front();
    if (script_.statusBytes_.size() > 1) script_.statusBytes_.pop_front();
    const CommStatus status = script_.Note(kind_, At(address) + "spoll " + std::to_string(byte));
    if (!Failed(status)) statusByte = byte;
    return status;
  }
  CommStatus GP_Time_Out(std::int16_t code) override {
    return script_.Note(kind_, "timeout " + std::to_string(code));
  }
  CommStatus GP_MTerm(std::int16_t code) override {
    return script_.Note(kind_, "mterm " + std::to_string(code));
  }
  CommStatus GP_Send_AsciiBinary_Data(const std::string& header, std::span<const std::uint8_t> data,
                                      std::int16_t address, std::int16_t elementFormat,
                                      bool /*swapBytes*/) override {
    const CommStatus status =
        script_.Note(kind_, At(address) + "block " + header + " (" + std::to_string(data.size()) + " bytes)");
    if (!Failed(status))
      script_.blocks_.push_back({header, {data.begin(), data.end()}, address, elementFormat});
    script_.pending_.erase(address);
    return status;
  }
  CommStatus Gp_Recv_ToFile(std::int16_t address, const std::string& fileName, std::uint32_t byteCount,
                            std::uint32_t& bytesRead) override {
    const std::string name = fileName.substr(fileName.find_last_of("/\\") + 1);
    CommStatus status = script_.Note(kind_, At(address) + "file " + name);
    if (!Failed(status) && !script_.fileReply_) status = CommStatus::TimeOut;
    bytesRead = 0;
    if (Failed(status)) return status;
    const std::string content = script_.fileReply_->substr(0, byteCount);
    std::ofstream file(fileName, std::ios::binary | std::ios::trunc);
    file << content;
    if (!file.flush()) return CommStatus::Error;
    bytesRead = static_cast<std::uint32_t>(content.size());
    return status;
  }
  bool ConnectionLost(std::int16_t) const override {
    return kind_ == InterfaceKind::UsbTmc && script_.unplugged_;
  }

 private:
  static std::string At(std::int16_t address) { return std::to_string(address) + " "; }

  InterfaceKind kind_;
  GpScript& script_;
};

// A back-end of every kind over one script, for GpFrontEnd.
inline std::array<std::unique_ptr<GpFamily>, 5> ScriptedBackends(GpScript& script) {
  std::array<std::unique_ptr<GpFamily>, 5> backends;
  for (std::size_t kind = 0; kind < backends.size(); ++kind) {
    backends[kind] = std::make_unique<ScriptedGp>(static_cast<InterfaceKind>(kind), script);
  }
  return backends;
}

}  // namespace corlune::testing
