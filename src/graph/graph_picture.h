// GraphPicture: everything the sequence view draws for one state of the sequence, with its texts. A plain
// value: two equal pictures need no repaint.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/catalogue.h"
#include "graph/loop_rows.h"
#include "graph/step_graph.h"

namespace corlune {

struct AreaPicture {
  AreaGraph Graph;
  std::string Title;                 // "Area1  1-CH1  Frequency"
  std::vector<std::string> Legends;  // of the envelope, when there is one, then of each curve
  std::string Note;                  // in place of graphs: why there are none
  std::vector<std::string> Choices;  // names of the values 0, 1, ... of a parameter that is a list
  bool operator==(const AreaPicture&) const = default;
};

struct LoopPicture {
  LoopBracket Bracket;
  std::string Text;  // "x3"
  Color Fill;        // of the definition
  bool operator==(const LoopPicture&) const = default;
};

struct GraphPicture {
  TimeAxis Axis = TimeAxis::Time;
  std::vector<StepSpan> Spans;
  std::vector<std::string> StepLabels;  // step numbers as in column 0 of the grids
  std::vector<LoopPicture> Loops;       // by row
  int LoopRows = 0;
  std::vector<AreaPicture> Areas;
  std::string AxisTitle;                // of the time axis, with its unit
  std::optional<double> ReferenceLine;  // value
  std::string ReferenceText;
  std::string Note;  // in place of everything
  bool operator==(const GraphPicture&) const = default;
};

struct PictureWish {
  int Channels = 0;  // of the edited instrument
  TimeAxis Axis = TimeAxis::Time;
  StepLength Length = StepLength::Entered;
};

GraphPicture BuildGraphPicture(const SequenceData& sequence, const ModelDefinition& definition,
                               const MessageCatalogue& catalogue, const PictureWish& wish);

// A choice of the view lists in the interface language; a text that the catalogue does not know stays.
std::string ChoiceText(const MessageCatalogue& catalogue, const std::string& choice);

// "Frequency [Hz]", with the user unit when one is active.
std::string ParameterText(const SequenceData& sequence, const ModelDefinition& definition, int channel,
                          int slot);

// What a pointer over a graph reads: step, its time, and each parameter of the area with its values. Lines
// separated by "\n"; empty without a step.
std::string GraphTip(const SequenceData& sequence, const ModelDefinition& definition,
                     const MessageCatalogue& catalogue, const GraphPicture& picture, std::size_t area,
                     int step);

// What a pointer over a bracket reads.
std::string LoopTipText(const MessageCatalogue& catalogue, const GraphPicture& picture,
                        const LoopBracket& bracket);

}  // namespace corlune
