// One entry of the model definition file while it is read: its key, its items, and their conversions. Used
// by the key tables of this folder only.
//
// A conversion that fails throws BadEntry; the exception never leaves this folder.
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/profile_file.h"
#include "modeldef/model_definition.h"

namespace corlune::modeldef {

struct BadEntry {
  std::string reason;
};

class DefinitionEntry {
 public:
  DefinitionEntry(const IniEntry& entry, bool japanese);

  bool Japanese() const { return japanese_; }
  std::string_view Whole() const { return entry_.whole; }
  std::string Value() const { return std::string(entry_.value); }

  // Object number: the digit `fromEnd` characters before the last of the key. Throws when it is no digit or
  // above `maximum`.
  int KeyDigit(int maximum, std::size_t fromEnd = 0) const;

  // Items of the value between commas; an empty value has none. The accessors throw when the item is missing
  // or does not convert.
  std::size_t ItemCount() const { return items_.size(); }
  bool Has(std::size_t index) const { return index < items_.size(); }
  std::string Text(std::size_t index) const;
  std::string TrimmedText(std::size_t index) const;
  // True for exactly "1"; a missing item is false.
  bool Flag(std::size_t index) const { return Has(index) && items_[index] == "1"; }
  std::int16_t Int16(std::size_t index) const;
  std::int32_t Int32(std::size_t index) const;
  double Number(std::size_t index) const;
  Color RedGreenBlue(std::size_t index) const;
  Color BlueGreenRed(std::size_t index) const;
  // Int16 within minimum..maximum.
  std::int16_t Int16In(std::size_t index, int minimum, int maximum) const;
  // Three integers: default, minimum, maximum.
  RangeSpec Range(std::size_t first) const;
  // Every item from `first` on, at most `capacity`.
  std::vector<std::string> Texts(std::size_t first, std::size_t capacity) const;
  // A count and that many texts; texts behind them, at most `capacity` in all, are not offered.
  TextList CountedTexts(std::size_t capacity) const;
  // All items but the last, with their commas.
  std::string AllButLast() const;

 private:
  std::string_view Item(std::size_t index) const;

  IniEntry entry_;
  bool japanese_;
  std::vector<std::string_view> items_;
};

[[noreturn]] void Refuse(std::string reason);

enum class KeyMatch { Whole, Beginning };

// One kind of key: its name and what it does with an entry's items.
template <class Target>
struct KeyRow {
  std::string_view key;
  KeyMatch match;
  void (*read)(const DefinitionEntry& entry, Target& target);
  bool Matches(std::string_view name) const {
    return match == KeyMatch::Whole ? name == key : name.substr(0, key.size()) == key;
  }
};

// The keys of a "SPEC" section by family.
std::span<const KeyRow<ModelDefinition>> PanelKeys();    // MN_ SC_ CL_
std::span<const KeyRow<ModelDefinition>> ViewKeys();     // DP_ VS_ AW_ MD_
std::span<const KeyRow<ModelDefinition>> AreaKeys();     // CA_ SA_ BA_
std::span<const KeyRow<ModelDefinition>> CommandKeys();  // CM_

}  // namespace corlune::modeldef
