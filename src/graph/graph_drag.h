// GraphDrag: what of the sequence view a person can take hold of, and what a value becomes while it is
// dragged.
//
// A level takes its value along, a ramp its end value (its start belongs to the step before), an edge of the
// envelope the amplitude, the end of a step its time. Values that a step does not use, keeps from the step
// before or chooses from a list cannot be dragged, nor can times while the axis counts steps.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "editing/value_entry.h"
#include "graph/graph_picture.h"
#include "graph/plot_lines.h"

namespace corlune {

inline constexpr double kLineReach = 5;  // pixels from a line, at most
inline constexpr double kEndReach = 3;   // from the end of a step
inline constexpr double kFinePart = 0.1;

struct DragHandle {
  enum class Kind { Level, HighEdge, LowEdge, StepEnd };
  Kind Part = Kind::Level;
  int Step = 0;      // slot
  int Channel = 0;   // this and the next two: not of a step's end
  int Slot = 0;      // parameter
  double Along = 1;  // place within the step, 0 at its start
  bool operator==(const DragHandle&) const = default;
};

// What can be taken hold of at a place of an area of the picture, which shows `sequence`.
std::optional<DragHandle> HandleAt(const SequenceData& sequence, const ModelDefinition& definition,
                                   const GraphPicture& picture, std::size_t area, const PlotScale& scale,
                                   PixelPoint place);

// One value on its way, on a copy of the sequence.
class ValueDrag {
 public:
  // `scale`: of the handle's area when the drag begins; it holds throughout. The references must outlive this
  // object.
  ValueDrag(const AppState& state, const ModelDefinition& definition, const SequenceData& sequence,
            const MessageCatalogue& catalogue, const DragHandle& handle, const PlotScale& scale);

  // The pointer has moved by so many pixels, "y" down. The value follows in steps that are round numbers of
  // about a pixel, never finer than it is shown, and stays within its bounds. `fine`: a tenth of all that.
  void Move(double dx, double dy, bool fine);

  const DragHandle& Handle() const { return handle_; }
  // The sequence with the value as it stands, accepted or not.
  const SequenceData& Sequence() const { return *sequence_; }
  // Cell of the value, and what would have to be typed there.
  CellPlace Place() const;
  const std::string& Text() const { return text_; }
  bool Changed() const { return text_ != before_; }
  // "Amplitude: 2.5 Vp-p", and in a second line why it would be refused.
  std::string Label() const;
  const EntryResult& Refusal() const { return refusal_; }

 private:
  std::optional<double> PointedValue() const;
  // How far what is drawn moves when the value moves by 1.
  double PartOfValue() const;
  std::string ValueTextAt(bool fine) const;
  std::string TimeTextAt(bool fine) const;
  void Take(const std::string& text);

  const ModelDefinition& definition_;
  const MessageCatalogue& catalogue_;
  std::unique_ptr<SequenceData> sequence_;
  GridViews views_;
  DragHandle handle_;
  PlotScale scale_;
  StepRow row_;  // of the step, as they were
  ParamCell cell_;
  double dx_ = 0;  // pixels
  double dy_ = 0;
  std::string before_;
  std::string text_;
  EntryResult refusal_;
};

}  // namespace corlune
