// CommandTable: the instrument commands of a model as text templates, from the CM_ keys of the model
// definition file. commands/expand_template.h fills their placeholders just before sending.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace corlune {

struct CommandEntry {
  std::string Template;
  // After sending: > 0 milliseconds to wait; < 0 poll the busy query; 0 nothing.
  std::int32_t Wait = 0;
  bool operator==(const CommandEntry&) const = default;
};

// A numbered list. Size is the number of the entry read last.
struct CommandList {
  std::array<CommandEntry, 11> Entries{};
  std::int16_t Size = 0;
  bool operator==(const CommandList&) const = default;
};

struct BusyQuery {
  std::string Query;           // empty: no busy polling
  std::string Mask;            // decimal integer, bits that mean busy
  std::int32_t TimeLimit = 0;  // ms
  bool operator==(const BusyQuery&) const = default;
};

struct CommandTable {
  std::string LibraryInit;     // CM_LIBI
  CommandList Device;          // CM_DEVI
  CommandList Basic;           // CM_BSCS
  CommandList SendStep;        // CM_SNDS
  CommandEntry Model;          // CM_MODL
  CommandEntry OutputOn;       // CM_OUTPON
  CommandEntry OutputOff;      // CM_OUTPOF
  CommandEntry OutputQuery;    // CM_OUTPQR
  CommandEntry CurrentStep;    // CM_CSTP
  CommandEntry Status;         // CM_SSTS
  CommandEntry Start;          // CM_STAR
  CommandEntry Hold;           // CM_HOLD
  CommandEntry Stop;           // CM_STOP
  CommandEntry Branch;         // CM_BRAN
  CommandList SendAll;         // CM_SNDA
  CommandList ArbMemory;       // CM_ARBM
  BusyQuery Busy;              // CM_BUSY
  std::string ErrorQuery;      // CM_ERRO first text
  std::string ErrorQueryText;  // CM_ERRO second text, stored only
  bool operator==(const CommandTable&) const = default;
};

}  // namespace corlune
