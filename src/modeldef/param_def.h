// Parameter definitions: the columns of the three grids, their units, modes, bounds and colours, as the
// CA_, SA_ and BA_ keys of the model definition file give them.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace corlune {

struct Color {
  std::uint8_t Red = 0;
  std::uint8_t Green = 0;
  std::uint8_t Blue = 0;
  bool operator==(const Color&) const = default;
};

inline constexpr Color kWindowColor{0xFF, 0xFF, 0xFF};  // the system window colour

struct ParamDef {
  bool InUse = false;                  // SA_PRMCOM
  std::int16_t UnitKind = 0;           // 0 none, 1 one fixed unit, 2 chosen from UnitList
  std::string UnitName;                // the unit shown
  std::string UnitTitle;               // kind 2: title of the list
  std::int16_t UnitDefault = 0;        // kind 2: index of the default unit
  std::vector<std::string> UnitList;   // kind 2, at most 11
  std::vector<std::string> UnitConv;   // at most 11
  std::int16_t ModeKind = 0;           // 1 one fixed mode, 2 a list of modes
  std::string ModeName;                // kind 1
  std::vector<std::string> ModeNames;  // kind 2, at most 11
  std::vector<Color> ModeColors;       // kind 2, same length as ModeNames
  std::int16_t ValueKind = 0;          // 0 range, 1 single number, 2 list of choices
  double Minimum = 0;
  double Maximum = 0;
  double Resolution = 0;
  // Common area, kind 0: the placeholder text ("$MAXSTEP") in place of minimum, maximum, resolution; empty
  // where the item was a number.
  std::array<std::string, 3> RangePlaceholder;
  std::string ResolutionText;        // sequence area, kind 0: the resolution as text
  double Default = 0;                // kind 2: index of the default choice
  std::vector<std::string> Choices;  // kind 2, at most 20
  std::string Script;                // SA_PRMSCR
  std::string Name;                  // SA_PRMNAM in the chosen language
  bool operator==(const ParamDef&) const = default;
};

inline constexpr int kAreaParams = 11;  // parameters of an area, and groups of the sequence area

struct CommonAreaDef {
  // CA_BTNCOL: the "+" button, and while it is pressed
  std::array<Color, 2> ButtonColors{kWindowColor, kWindowColor};
  Color Background = kWindowColor;   // CA_BGCOLO
  Color CurrentCell = kWindowColor;  // CA_CURCOL
  std::int16_t MaxSteps = 0;         // CA_MAXSTE
  std::int16_t LineNumber = 0;       // CA_LINENU, stored only
  std::array<ParamDef, kAreaParams> Params{};
  bool operator==(const CommonAreaDef&) const = default;
};

// Group g is the waveform code: Params[g][p] gives bounds and presence of parameter p for that waveform;
// names, units, modes and defaults come from group 0.
struct SequenceAreaDef {
  std::int16_t ParamCount = 0;  // SA_PRMCOU
  Color Background = kWindowColor;
  std::array<bool, kAreaParams> GroupEnabled{};  // SA_PRMREF
  std::array<std::array<ParamDef, kAreaParams>, kAreaParams> Params{};
  bool operator==(const SequenceAreaDef&) const = default;
};

struct BranchAreaDef {
  bool Visible = false;
  Color Background = kWindowColor;
  std::int16_t MaxChannel = 0;  // BA_MAXCH
  std::int16_t LineNumber = 0;  // BA_LINENUM, stored only
  std::int16_t ValueKind = 0;   // BA_STPVAL
  std::int16_t Minimum = 0;
  std::int16_t Maximum = 0;
  std::int16_t Resolution = 0;
  std::int16_t Default = 0;
  std::vector<std::string> Choices;
  bool operator==(const BranchAreaDef&) const = default;
};

}  // namespace corlune
