// UndoHistory: steps back and forth between states of the sequence. An entry holds only the records that
// differ between two neighbouring states; going through it exchanges them with the sequence.
//
// Not part of a state: start step and branch channel (fields of their own), sequence name and number, run
// times, and what is known of the instrument's waveform memory. Start values are computed anew.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "editing/grid_place.h"
#include "sequence/sequence_data.h"

namespace corlune {

inline constexpr std::size_t kUndoLevels = 200;
inline constexpr std::size_t kUndoLeastLevels = 40;
inline constexpr std::size_t kUndoBytes = 16U * 1024 * 1024;

// The steps (0-based slots, both included) and other parts that an exchange touched.
struct UndoSpan {
  int FirstSlot = MAX_STEPS;
  int LastSlot = -1;
  bool CountChanged = false;
  bool Others = false;  // common parameters, channel settings, mode settings, view areas
};

class UndoEntry {
 public:
  // The difference between two states; nullopt when there is none.
  static std::optional<UndoEntry> Between(const SequenceData& before, const SequenceData& after);
  // Exchanges the entry's records with those of `sequence` and brings the start values up to date.
  void Exchange(SequenceData& sequence);
  UndoSpan Span() const;
  std::size_t Bytes() const;

 private:
  struct StepChange {
    int Slot = 0;
    StepRow Row;
  };
  struct CellChange {
    double Value = 0;
    std::int16_t Index = 0;  // into SequenceData::Cells
    std::int16_t ChangeMode = 0;
    std::int16_t UnitIndex = 0;
  };
  // The parts outside the two tables; they change rarely and together.
  struct OtherParts {
    CommonParams Common;
    std::array<OutputLoad, kChannelSlots> Loads{};
    std::array<std::array<UserUnitDef, MAX_PARAMS>, kChannelSlots> UserUnits{};
    decltype(SequenceData::ModeSettings) ModeSettings{};
    decltype(SequenceData::ViewAreas) ViewAreas{};
    bool operator==(const OtherParts&) const = default;
  };
  static OtherParts OthersOf(const SequenceData& sequence);
  static void ExchangeOthers(OtherParts& parts, SequenceData& sequence);

  std::int16_t stepCount_ = 0;
  bool countChanged_ = false;
  std::vector<StepChange> steps_;
  std::vector<CellChange> cells_;
  std::vector<std::pair<int, std::string>> arbPaths_;  // index, path
  std::vector<OtherParts> others_;                     // none or one
};

class UndoHistory {
 public:
  // Records the way from `before` to `after` under a caption, with the cursor that it was made at; nothing
  // when they do not differ. Drops what could be redone. Returns what the entry touches; nullopt when nothing
  // was recorded.
  std::optional<UndoSpan> Record(std::string caption, const GridCursor& cursor, const SequenceData& before,
                                 const SequenceData& after);
  // Nothing to undo or redo: nullopt.
  std::optional<UndoSpan> Undo(SequenceData& sequence);
  std::optional<UndoSpan> Redo(SequenceData& sequence);
  bool CanUndo() const { return position_ > 0; }
  bool CanRedo() const { return position_ < entries_.size(); }
  // Where the entry was made that Undo or Redo goes through next; only with such an entry.
  const GridCursor& UndoCursor() const { return entries_[position_ - 1].Cursor; }
  const GridCursor& RedoCursor() const { return entries_[position_].Cursor; }
  // Caption of what would be undone or redone next; empty when there is nothing.
  std::string UndoCaption() const;
  std::string RedoCaption() const;
  void Clear();

  // The saved state. Any other code may set or clear the program's modified flag: Synchronise compares the
  // flag with the marker before an operation and moves or drops the marker accordingly.
  void Synchronise(bool modified);
  bool AtSavedState() const { return saved_ == current_; }

  std::size_t Levels() const { return entries_.size(); }
  std::size_t Bytes() const { return bytes_; }

 private:
  struct Level {
    std::string Caption;
    GridCursor Cursor;
    UndoEntry Entry;
    std::uint64_t Before = 0;  // numbers of the states that the entry connects
    std::uint64_t After = 0;
  };
  std::optional<UndoSpan> Step(SequenceData& sequence, Level& level, std::uint64_t state);
  void DropRedo();
  void DropOldest();

  std::deque<Level> entries_;
  std::size_t position_ = 0;  // entries before it can be undone
  std::size_t bytes_ = 0;
  std::uint64_t current_ = 0;
  std::uint64_t newest_ = 0;
  std::optional<std::uint64_t> saved_ = 0;
};

}  // namespace corlune
