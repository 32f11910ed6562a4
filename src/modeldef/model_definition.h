// ModelDefinition: everything that differs between instrument models, as loaded from the model definition
// file "Corlune_Std.ini". Values only; the loader is modeldef/read_model_definition.h.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "modeldef/command_table.h"
#include "modeldef/param_def.h"

namespace corlune {

// Default, minimum and maximum of a count, address or id.
struct RangeSpec {
  std::int32_t Default = 0;
  std::int32_t Minimum = 0;
  std::int32_t Maximum = 0;
  bool operator==(const RangeSpec&) const = default;
};

// Section "INTERFACE <model>": a model's connection limits.
struct ModelInterfaceSpec {
  std::vector<std::string> InterfaceNames;  // IF_USBGPIB, at most 4: "NI", "KI", "USB", "USBTMC"
  std::string UsbTmcId;                     // IF_USBTMCID, beginning of the VISA resource name, ends in "::"
  std::string SerialNo;                     // IF_SERIALNO
  RangeSpec UsbId;                          // IF_USBID
  RangeSpec GpibAddress;                    // IF_GPAD
  bool ChannelSelectable = false;           // IF_CH first item
  RangeSpec Channels;                       // IF_CH items 2 to 4
  bool operator==(const ModelInterfaceSpec&) const = default;
};

// One main menu: shown or not, and a flag per entry.
struct MenuSpec {
  bool Visible = false;
  std::array<bool, 9> Items{};
  bool operator==(const MenuSpec&) const = default;
};

// A button of the execution panel.
struct ButtonSpec {
  bool Visible = false;
  Color Color1;
  Color Color2;
  bool operator==(const ButtonSpec&) const = default;
};

// Start-step or branch-channel selector.
struct SelectorSpec {
  bool Visible = false;
  std::int16_t Default = 0;
  std::int16_t Minimum = 0;
  std::int16_t Maximum = 0;
  bool operator==(const SelectorSpec&) const = default;
};

// A counted list of texts.
struct TextList {
  std::int16_t Count = 0;
  std::vector<std::string> Texts;
  bool operator==(const TextList&) const = default;
};

inline constexpr int kModeSets = 8;
inline constexpr int kChannelSlots = 3;  // load and user-unit slots; slot 0 is channel 1

// One mode set (MD_ keys).
struct ModeSetSpec {
  std::string Name;
  TextList Choices;
  std::vector<std::int16_t> Values;
  bool operator==(const ModeSetSpec&) const = default;
};

enum class Menu { File, Edit, View, Mode, Run, Tool, Help };
inline constexpr int kMenuCount = 7;
// Entries the definition can switch, per menu, in Menu order.
inline constexpr std::array<int, kMenuCount> kMenuItemCounts{5, 9, 3, 2, 6, 5, 5};

enum class PanelButton { Mode, Start, Stop, Hold, Branch, Output };
inline constexpr int kPanelButtonCount = 6;

struct ModelDefinition {
  // FILE and SYSTEM
  std::string ProgId;
  std::string VerNo;
  std::vector<std::string> Models;  // SS_MODEL, the order defines ModelIndex
  RangeSpec InstrumentCount;        // SS_CNT

  std::vector<ModelInterfaceSpec> Interfaces;  // one per model

  // Menus and execution panel
  std::array<MenuSpec, kMenuCount> Menus{};
  std::array<ButtonSpec, kPanelButtonCount> Buttons{};
  SelectorSpec StartStep;  // SC_STARTSTP
  SelectorSpec Branch;     // SC_BRANCH

  // Sequence colours
  Color DefaultSequence;  // CL_DEFSEQ
  Color LoopSequence;     // CL_LOPSEQ
  Color EndlessSequence;  // CL_INFSEQ
  Color Indicator;        // CL_INDICATOR
  Color CurrentStep;      // CL_CURSTEP, digits read as blue, green, red; in the sequence view

  // Sequence view
  bool ReferenceFlag = false;  // DP_REFFL
  std::string ReferenceText;
  std::array<TextList, 11> DisplaySelections{};  // DP_SELCT0..10, keys 0..9 reachable by one digit
  std::array<TextList, 5> ViewSelections{};      // VS_SELCT0..4

  // Arbitrary waveforms
  std::array<std::int16_t, 2> ArbFormat{};  // AW_FORMAT
  bool ArbPerChannel = false;               // AW_CHNFLG
  TextList ArbItems;                        // AW_ARBITEM

  // Mode sets
  std::int16_t ModeSetCount = 0;  // MD_SETCOU
  bool ModePerChannel = false;    // MD_CHNFLG
  std::array<ModeSetSpec, kModeSets> ModeSets{};

  CommonAreaDef Common;
  SequenceAreaDef Sequence;
  BranchAreaDef Branches;
  // SA_PRMUSC: user-unit capability by channel slot 0..2 and parameter slot 0..10.
  std::array<std::array<std::int32_t, kAreaParams>, kChannelSlots> UserUnitCapability{};

  CommandTable Commands;

  bool operator==(const ModelDefinition&) const = default;

  // Interface record of the model at `modelIndex`; an empty record outside the list.
  const ModelInterfaceSpec& InterfaceOf(int modelIndex) const {
    static const ModelInterfaceSpec kNone;
    if (modelIndex < 0 || modelIndex >= static_cast<int>(Interfaces.size())) return kNone;
    return Interfaces[static_cast<std::size_t>(modelIndex)];
  }
  // Position in Models, -1 when it is not listed.
  int IndexOfModel(const std::string& name) const {
    for (std::size_t i = 0; i < Models.size(); ++i) {
      if (Models[i] == name) return static_cast<int>(i);
    }
    return -1;
  }
};

}  // namespace corlune
