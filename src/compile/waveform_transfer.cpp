#include "compile/waveform_transfer.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "comm/gp_codes.h"
#include "compile/block_header.h"
#include "core/files.h"
#include "core/numbers.h"
#include "core/profile_file.h"
#include "sequence/waveform_file.h"
#include "sequence/waveform_path.h"

namespace corlune {

namespace {

constexpr std::size_t kInfoReply = 128;  // characters of the information query's reply that count
constexpr std::int64_t kMebibyte = 1048576;
constexpr std::int64_t kTimePerMebibyte = 25000;  // ms

struct ArbInfo {
  std::int16_t form = 0;
  std::int32_t points = 0;
};

// "name",form,points. The name may hold commas, and quotation marks written twice.
std::optional<ArbInfo> ParseArbInfo(std::string_view reply) {
  const std::size_t first = reply.find('"');
  const std::size_t last = reply.rfind('"');
  if (first == std::string_view::npos || first == last) return std::nullopt;
  const std::string_view rest = reply.substr(last + 1);
  if (rest.empty() || rest[0] != ',') return std::nullopt;
  const std::vector<std::string_view> fields = SplitList(rest.substr(1));
  if (fields.size() != 2) return std::nullopt;
  const std::optional<std::int16_t> form = ParseInt16(fields[0]);
  const std::optional<std::int32_t> points = ParseInt32(fields[1]);
  if (!form || !points || *points < 0) return std::nullopt;
  return ArbInfo{*form, *points};
}

}  // namespace

WaveformTransfer::WaveformTransfer(CommandLayer& commands, InstrumentDialogues& dialogues, Prompts& prompts,
                                   const MessageCatalogue& catalogue)
    : commands_(commands), dialogues_(dialogues), prompts_(prompts), catalogue_(catalogue) {}

ArbTransfer WaveformTransfer::TransferArbFile(ArbFileEntry& entry, int number) {
  const std::string path = ResolveWaveformPath(entry.FilePath, commands_.State());
  const FileStamp stamp = StampOf(path);
  ReadArbFile(path, read_);
  if (read_.problem == WaveformProblem::None && StampOf(path) != stamp) {
    read_.problem = WaveformProblem::CannotAccess;
    read_.reason = {TextId::WaveChangedMeanwhile, {}};
  }
  if (read_.problem != WaveformProblem::None) {
    if (const auto message = MessageOf(read_.problem)) {
      ShowMessage(prompts_, catalogue_, *message, PromptIcon::Exclamation);
    }
    return ArbTransfer::FileRefused;
  }
  entry.ArrayForm = read_.arrayForm ? 1 : 0;
  entry.PointCount = read_.pointCount;
  entry.Sent = stamp;

  if (Failed(commands_.SendCommand(commands_.SelectInstrument(0), "*CLS", 0))) return ArbTransfer::NotSent;
  const std::string numberText = std::to_string(number);
  const std::string header =
      BlockHeader(":TRACe:DATA " + numberText + ",\"Arb" + numberText + "\",", read_.block.size());
  const CommStatus status = commands_.SendBlockData(header, {read_.block.data(), read_.block.size()},
                                                    commands_.SelectInstrument(0));
  return Failed(status) ? ArbTransfer::NotSent : ArbTransfer::Done;
}

ArbTransfer WaveformTransfer::SendAndCheck(ArbFileEntry& entry, int number,
                                           const std::function<void(std::int32_t)>& wait) {
  if (commands_.Online() && !commands_.CarriesBlocks()) {
    ShowMessage(prompts_, catalogue_, TextId::CarriesNoBlocks, PromptIcon::Exclamation);
    return ArbTransfer::NotSent;
  }
  const std::int16_t wasTransferred = entry.Transferred;
  const std::int16_t wasInInstrument = entry.InInstrument;
  const ArbTransfer sent = TransferArbFile(entry, number);
  if (sent != ArbTransfer::Done) return sent;
  entry.Transferred = 1;
  entry.InInstrument = 1;
  wait(TransferTime(entry));
  const std::optional<std::int32_t> error = dialogues_.QueryErrorNumber();
  if (error && *error != kErrorMemoryFull) return ArbTransfer::Done;
  // The instrument did not keep it, or may not have, so it has to be sent again.
  entry.Transferred = wasTransferred;
  entry.InInstrument = wasInInstrument;
  if (!error) return ArbTransfer::ReplyUnreadable;
  ShowMessage(prompts_, catalogue_, TextId::ArbMemoryFull, PromptIcon::Critical);
  return ArbTransfer::MemoryFull;
}

ArbTransfer WaveformTransfer::TransferOne(ArbFileEntry& entry, int number) {
  SetTimeOut(kTimeOut30s);
  const ArbTransfer result =
      SendAndCheck(entry, number, [this](std::int32_t milliseconds) { commands_.DelayMs(milliseconds); });
  SetTimeOut(kTimeOut3s);
  return result;
}

CommStatus WaveformTransfer::ClearOne(ArbFileEntry& entry, int number) {
  const CommStatus status = DeleteArb(number);
  if (Failed(status)) return status;
  entry.InInstrument = 0;
  if (!entry.FilePath.empty()) entry.Transferred = 0;
  return status;
}

CommStatus WaveformTransfer::DeleteArb(int number, int instrument) {
  return commands_.SendCommand(commands_.SelectInstrument(instrument),
                               ":TRACe:DELete " + std::to_string(number), 0);
}

bool WaveformTransfer::QueryArbInfo(ArbFileEntry& entry, int number, int instrument) {
  std::string reply;
  const std::string query = ":TRAC:INF? " + std::to_string(number);
  if (Failed(commands_.SendCommand(commands_.SelectInstrument(instrument), query, 0))) return false;
  if (Failed(commands_.ReceiveReply(commands_.SelectInstrument(instrument), reply))) return false;
  const std::optional<ArbInfo> info = ParseArbInfo(std::string_view(reply).substr(0, kInfoReply));
  if (!info) return false;
  if (info->form != entry.ArrayForm || info->points != entry.PointCount) entry.Transferred = 0;
  entry.ArrayForm = info->form;
  entry.PointCount = info->points;
  entry.InInstrument = info->points != 0 ? 1 : 0;
  return true;
}

int WaveformTransfer::QueryArbDirectory(ArbEntries& entries, const std::function<bool(int)>& goOn,
                                        int instrument) {
  int answered = 0;
  while (answered < kArbNumbers && goOn(answered)) {
    if (!QueryArbInfo(entries[static_cast<std::size_t>(answered)], answered + 1, instrument)) break;
    ++answered;
  }
  return answered;
}

void WaveformTransfer::SetTimeOut(std::int16_t code) {
  commands_.SelectInstrument(0);
  commands_.Gp().GP_Time_Out(code);
}

std::int32_t TransferTime(const ArbFileEntry& entry) {
  const std::int64_t bytes = std::int64_t{entry.PointCount} * (entry.ArrayForm == 1 ? 2 : 6);
  return static_cast<std::int32_t>(std::max<std::int64_t>(1000, bytes / kMebibyte * kTimePerMebibyte));
}

bool NeedsTransfer(const ArbFileEntry& entry, const std::string& folder) {
  if (entry.FilePath.empty()) return false;
  if (entry.Transferred == 0) return true;
  const FileStamp now = StampOf(ResolveWaveformPath(entry.FilePath, folder));
  return now.Exists() && now != entry.Sent;
}

MemoryUse MemoryUseOf(const ChannelUse& use, const ArbEntries& entries) {
  MemoryUse memory;
  if (use.WorkArea) memory.Points += kSweepWorkArea;
  memory.Unknown = use.BuiltInWaveforms;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (!use.Arbs[i]) continue;
    if (entries[i].PointCount != 0) {
      memory.Points += entries[i].PointCount;
    } else {
      ++memory.Unknown;
    }
  }
  return memory;
}

ArbCheck CheckMemory(const MemoryUse& memory) {
  if (memory.Points > kWaveformMemory) return ArbCheck::MemoryFull;
  const bool tooFew =
      memory.Unknown != 0 && (kWaveformMemory - memory.Points) / memory.Unknown < kSmallestWaveform;
  return tooFew ? ArbCheck::TooManyWaveforms : ArbCheck::Passed;
}

ArbCheck CheckArbResources(const StepFlow& flow, int channels, ArbEntries& entries,
                           const std::string& folder) {
  WaveformRead read;
  for (int channel = 0; channel < channels; ++channel) {
    const ChannelUse& use = flow.Channels[static_cast<std::size_t>(channel)];
    if (use.ArbWithoutNumber) return ArbCheck::NoArbNumber;
    for (std::size_t i = 0; i < entries.size(); ++i) {
      ArbFileEntry& entry = entries[i];
      if (!use.Arbs[i]) continue;
      if (entry.FilePath.empty()) {
        if (entry.InInstrument == 0) return ArbCheck::ArbMissing;
        continue;
      }
      // A size on record may be that of what the instrument held before; what will be sent counts.
      if (entry.PointCount != 0 && !NeedsTransfer(entry, folder)) continue;
      ReadArbFile(ResolveWaveformPath(entry.FilePath, folder), read);
      const bool readable = read.problem == WaveformProblem::None;
      entry.ArrayForm = readable && read.arrayForm ? 1 : 0;
      entry.PointCount = readable ? read.pointCount : 0;
    }
  }
  for (int channel = 0; channel < channels; ++channel) {
    const ArbCheck check =
        CheckMemory(MemoryUseOf(flow.Channels[static_cast<std::size_t>(channel)], entries));
    if (check != ArbCheck::Passed) return check;
  }
  return ArbCheck::Passed;
}

std::array<ArbInformation, kArbNumbers> ArbInformationTable(const ArbEntries& entries) {
  std::array<ArbInformation, kArbNumbers> table{};
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const ArbFileEntry& entry = entries[i];
    if (entry.ArrayForm == 1) {
      table[i] = {0, ToInt32(entry.PointCount / 1024.0).value_or(0)};
    } else {
      table[i] = {1, 0};
    }
  }
  return table;
}

}  // namespace corlune
