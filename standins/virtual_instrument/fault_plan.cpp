#include "standins/virtual_instrument/fault_plan.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "core/ascii_case.h"

namespace corlune {
namespace {

enum class NumberMeans { Exchange, Value, Nothing };

struct FaultName {
  std::string_view name;
  FaultKind kind;
  NumberMeans number;  // behind "="
};

constexpr std::array kFaultNames{
    FaultName{"timeout", FaultKind::TimeOut, NumberMeans::Exchange},
    FaultName{"error", FaultKind::ErrorStatus, NumberMeans::Exchange},
    FaultName{"drop", FaultKind::DropReply, NumberMeans::Exchange},
    FaultName{"late", FaultKind::LateReply, NumberMeans::Exchange},
    FaultName{"long", FaultKind::LongReply, NumberMeans::Exchange},
    FaultName{"text", FaultKind::TextReply, NumberMeans::Exchange},
    FaultName{"binary", FaultKind::BinaryReply, NumberMeans::Exchange},
    FaultName{"empty", FaultKind::EmptyReply, NumberMeans::Exchange},
    FaultName{"bare", FaultKind::BareReply, NumberMeans::Exchange},
    FaultName{"gone", FaultKind::Gone, NumberMeans::Exchange},
    FaultName{"trip", FaultKind::OutputTrip, NumberMeans::Value},
    FaultName{"busy", FaultKind::SlowBusy, NumberMeans::Value},
    FaultName{"full", FaultKind::MemoryFull, NumberMeans::Nothing},
    FaultName{"refuse", FaultKind::RefuseCompile, NumberMeans::Nothing},
};

bool Contains(std::string_view text, std::string_view part) {
  return std::search(text.begin(), text.end(), part.begin(), part.end(), SameAsciiLetter) != text.end();
}

bool ChangesReply(FaultKind kind) {
  switch (kind) {
    case FaultKind::DropReply:
    case FaultKind::LateReply:
    case FaultKind::LongReply:
    case FaultKind::TextReply:
    case FaultKind::BinaryReply:
    case FaultKind::EmptyReply:
    case FaultKind::BareReply:
      return true;
    default:
      return false;
  }
}

bool StopsExchange(FaultKind kind) {
  return kind == FaultKind::TimeOut || kind == FaultKind::ErrorStatus;
}

// Decimal or "0x..." hexadecimal, up to 32 bits.
std::optional<std::int64_t> ReadNumber(std::string_view text) {
  int base = 10;
  if (text.size() > 2 && text[0] == '0' && LowerAscii(text[1]) == 'x') {
    base = 16;
    text.remove_prefix(2);
  }
  std::uint32_t value = 0;
  const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (problem != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
  return value;
}

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

// Cuts `text` at the first `mark` and returns what stands behind it; nullopt without the mark.
std::optional<std::string_view> CutBehind(std::string_view& text, char mark) {
  const std::size_t at = text.find(mark);
  if (at == std::string_view::npos) return std::nullopt;
  const std::string_view behind = text.substr(at + 1);
  text = text.substr(0, at);
  return behind;
}

// One entry without its serial number.
std::optional<Fault> ParseFault(std::string_view entry) {
  Fault fault;
  if (const auto command = CutBehind(entry, '@')) fault.command = Trimmed(*command);
  const auto value = CutBehind(entry, ':');
  const auto number = CutBehind(entry, '=');
  const auto* const row = std::find_if(
      kFaultNames.begin(), kFaultNames.end(),
      [&](const FaultName& candidate) { return EqualIgnoringCase(candidate.name, Trimmed(entry)); });
  if (row == kFaultNames.end()) return std::nullopt;
  fault.kind = row->kind;
  if (number) {
    const auto parsed = ReadNumber(Trimmed(*number));
    if (!parsed || *parsed > INT32_MAX || row->number == NumberMeans::Nothing) return std::nullopt;
    if (row->number == NumberMeans::Exchange) {
      fault.exchange = static_cast<int>(*parsed);
    } else {
      fault.value = *parsed;
    }
  } else if (row->number == NumberMeans::Value) {
    return std::nullopt;
  }
  const bool needsValue = fault.kind == FaultKind::ErrorStatus || fault.kind == FaultKind::LateReply;
  if (fault.kind == FaultKind::TextReply) {
    fault.text = value ? std::string(*value) : "ERROR";
  } else if (value.has_value() != needsValue) {
    return std::nullopt;
  } else if (needsValue) {
    const auto parsed = ReadNumber(Trimmed(*value));
    if (!parsed) return std::nullopt;
    fault.value = *parsed;
  }
  return fault;
}

}  // namespace

FaultPlan::FaultPlan(std::vector<Fault> faults) {
  for (Fault& fault : faults) {
    if (fault.kind == FaultKind::Gone && fault.exchange == 0) unplugged_ = true;
    entries_.push_back({std::move(fault), 0});
  }
}

ExchangeVerdict FaultPlan::Next(ExchangeKind kind, std::string_view message) {
  if (unplugged_) return {ExchangeVerdict::Kind::Gone, 0};
  if (kind == ExchangeKind::Write) replyFault_.reset();
  ExchangeVerdict verdict;
  for (Entry& entry : entries_) {
    const Fault& fault = entry.fault;
    const bool forReply = ChangesReply(fault.kind);
    if (!StopsExchange(fault.kind) && !forReply && fault.kind != FaultKind::Gone) continue;
    if (forReply && kind != ExchangeKind::Write) continue;
    if (!fault.command.empty() && !Contains(message, fault.command)) continue;
    ++entry.seen;
    if (fault.kind == FaultKind::Gone) {
      if (entry.seen > fault.exchange) {
        unplugged_ = true;
        verdict = {ExchangeVerdict::Kind::Gone, 0};
      }
    } else if (fault.exchange == 0 || fault.exchange == entry.seen) {
      if (StopsExchange(fault.kind)) {
        if (verdict.kind == ExchangeVerdict::Kind::Pass) {
          verdict = {fault.kind == FaultKind::TimeOut ? ExchangeVerdict::Kind::TimeOut
                                                      : ExchangeVerdict::Kind::Error,
                     fault.value};
        }
      } else {
        replyFault_ = fault;
      }
    }
  }
  return verdict;
}

const Fault* FaultPlan::Standing(FaultKind kind) const {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [kind](const Entry& entry) { return entry.fault.kind == kind; });
  return found == entries_.end() ? nullptr : &found->fault;
}

std::optional<std::vector<Fault>> ParseFaults(std::string_view text, std::string_view serial,
                                              std::string* error) {
  std::vector<Fault> faults;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find(';'), text.size());
    std::string_view entry = Trimmed(text.substr(0, length));
    text.remove_prefix(std::min(length + 1, text.size()));
    if (entry.empty()) continue;
    const std::string_view whole = entry;
    const std::size_t slash = entry.substr(0, entry.find_first_of("=:@")).find('/');
    if (slash != std::string_view::npos) {
      const bool other = !EqualIgnoringCase(entry.substr(0, slash), serial);
      entry.remove_prefix(slash + 1);
      if (other && ParseFault(entry)) continue;
    }
    auto fault = ParseFault(entry);
    if (!fault) {
      if (error != nullptr) *error = "not a fault: " + std::string(whole);
      return std::nullopt;
    }
    faults.push_back(std::move(*fault));
  }
  return faults;
}

}  // namespace corlune
