#include "editing/undo_history.h"

#include <algorithm>

#include "sequence/defaults.h"
#include "sequence/start_values.h"

namespace corlune {

namespace {

bool SameStep(StepRow a, const StepRow& b) {
  a.StepRunTime = b.StepRunTime;
  return a == b;
}

bool SameCell(const ParamCell& a, const ParamCell& b) {
  return a.Value == b.Value && a.ChangeMode == b.ChangeMode && a.UnitIndex == b.UnitIndex;
}

int SlotOfCell(std::size_t index) {
  return static_cast<int>(index / MAX_CHANNELS) % MAX_STEPS;
}

template <typename Item>
std::size_t BytesOf(const std::vector<Item>& items) {
  return items.capacity() * sizeof(Item);
}

}  // namespace

UndoEntry::OtherParts UndoEntry::OthersOf(const SequenceData& sequence) {
  return {sequence.Common, sequence.Channels.Loads, sequence.Channels.UserUnits, sequence.ModeSettings,
          sequence.ViewAreas};
}

void UndoEntry::ExchangeOthers(OtherParts& parts, SequenceData& sequence) {
  std::swap(parts.Common, sequence.Common);
  std::swap(parts.Loads, sequence.Channels.Loads);
  std::swap(parts.UserUnits, sequence.Channels.UserUnits);
  std::swap(parts.ModeSettings, sequence.ModeSettings);
  std::swap(parts.ViewAreas, sequence.ViewAreas);
}

std::optional<UndoEntry> UndoEntry::Between(const SequenceData& before, const SequenceData& after) {
  UndoEntry entry;
  entry.stepCount_ = before.StepCount;
  entry.countChanged_ = before.StepCount != after.StepCount;
  for (std::size_t slot = 0; slot < before.Steps.size(); ++slot) {
    if (SameStep(before.Steps[slot], after.Steps[slot])) continue;
    entry.steps_.push_back({static_cast<int>(slot), before.Steps[slot]});
  }
  for (std::size_t i = 0; i < before.Cells.size(); ++i) {
    const ParamCell& cell = before.Cells[i];
    if (SameCell(cell, after.Cells[i])) continue;
    entry.cells_.push_back({cell.Value, static_cast<std::int16_t>(i), cell.ChangeMode, cell.UnitIndex});
  }
  for (std::size_t i = 0; i < before.Channels.ArbFiles.size(); ++i) {
    const std::string& path = before.Channels.ArbFiles[i].FilePath;
    if (path != after.Channels.ArbFiles[i].FilePath) entry.arbPaths_.emplace_back(static_cast<int>(i), path);
  }
  OtherParts others = OthersOf(before);
  if (!(others == OthersOf(after))) entry.others_.push_back(std::move(others));
  const bool differs = entry.countChanged_ || !entry.steps_.empty() || !entry.cells_.empty() ||
                       !entry.arbPaths_.empty() || !entry.others_.empty();
  if (!differs) return std::nullopt;
  entry.steps_.shrink_to_fit();
  entry.cells_.shrink_to_fit();
  entry.arbPaths_.shrink_to_fit();
  return entry;
}

void UndoEntry::Exchange(SequenceData& sequence) {
  std::swap(stepCount_, sequence.StepCount);
  for (StepChange& change : steps_) {
    StepRow& row = sequence.Step(change.Slot);
    change.Row.StepRunTime = row.StepRunTime;
    std::swap(change.Row, row);
  }
  for (CellChange& change : cells_) {
    ParamCell& cell = sequence.Cells[static_cast<std::size_t>(change.Index)];
    std::swap(change.Value, cell.Value);
    std::swap(change.ChangeMode, cell.ChangeMode);
    std::swap(change.UnitIndex, cell.UnitIndex);
  }
  for (auto& [index, path] : arbPaths_) {
    ArbFileEntry& entry = sequence.Channels.ArbFiles[static_cast<std::size_t>(index)];
    ArbFileEntry other = EntryWithFile(entry, std::move(path));
    path = std::move(entry.FilePath);
    entry = std::move(other);
  }
  for (OtherParts& parts : others_) ExchangeOthers(parts, sequence);
  if (!cells_.empty()) ComputeStartValues(sequence);
}

UndoSpan UndoEntry::Span() const {
  UndoSpan span;
  const auto include = [&](int slot) {
    span.FirstSlot = std::min(span.FirstSlot, slot);
    span.LastSlot = std::max(span.LastSlot, slot);
  };
  for (const StepChange& change : steps_) include(change.Slot);
  for (const CellChange& change : cells_) include(SlotOfCell(static_cast<std::size_t>(change.Index)));
  span.CountChanged = countChanged_;
  span.Others = !others_.empty() || !arbPaths_.empty();
  return span;
}

std::size_t UndoEntry::Bytes() const {
  std::size_t bytes = BytesOf(steps_) + BytesOf(cells_) + BytesOf(arbPaths_) + BytesOf(others_);
  for (const auto& [index, path] : arbPaths_) bytes += path.capacity();
  return bytes;
}

std::optional<UndoSpan> UndoHistory::Record(std::string caption, const GridCursor& cursor,
                                            const SequenceData& before, const SequenceData& after) {
  std::optional<UndoEntry> entry = UndoEntry::Between(before, after);
  if (!entry) return std::nullopt;
  DropRedo();
  const UndoSpan span = entry->Span();
  bytes_ += entry->Bytes();
  ++newest_;
  entries_.push_back({std::move(caption), cursor, std::move(*entry), current_, newest_});
  current_ = newest_;
  position_ = entries_.size();
  DropOldest();
  return span;
}

// An exchange keeps the number of records, so an entry's size never changes but for the lengths of paths.
std::optional<UndoSpan> UndoHistory::Step(SequenceData& sequence, Level& level, std::uint64_t state) {
  bytes_ -= level.Entry.Bytes();
  level.Entry.Exchange(sequence);
  bytes_ += level.Entry.Bytes();
  current_ = state;
  return level.Entry.Span();
}

std::optional<UndoSpan> UndoHistory::Undo(SequenceData& sequence) {
  if (!CanUndo()) return std::nullopt;
  Level& level = entries_[--position_];
  return Step(sequence, level, level.Before);
}

std::optional<UndoSpan> UndoHistory::Redo(SequenceData& sequence) {
  if (!CanRedo()) return std::nullopt;
  Level& level = entries_[position_++];
  return Step(sequence, level, level.After);
}

std::string UndoHistory::UndoCaption() const {
  return CanUndo() ? entries_[position_ - 1].Caption : std::string();
}

std::string UndoHistory::RedoCaption() const {
  return CanRedo() ? entries_[position_].Caption : std::string();
}

void UndoHistory::Clear() {
  entries_.clear();
  position_ = 0;
  bytes_ = 0;
  current_ = ++newest_;
  saved_.reset();
}

void UndoHistory::Synchronise(bool modified) {
  if (!modified) {
    saved_ = current_;
  } else if (saved_ == current_) {
    saved_.reset();
  }
}

void UndoHistory::DropRedo() {
  while (entries_.size() > position_) {
    bytes_ -= entries_.back().Entry.Bytes();
    entries_.pop_back();
  }
}

void UndoHistory::DropOldest() {
  const auto tooMuch = [this] {
    return entries_.size() > kUndoLevels || (bytes_ > kUndoBytes && entries_.size() > kUndoLeastLevels);
  };
  while (tooMuch()) {
    bytes_ -= entries_.front().Entry.Bytes();
    entries_.pop_front();
    --position_;
  }
}

}  // namespace corlune
