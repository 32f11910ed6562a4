// OutputSwing: how amplitude and offset of a step make the output's voltage.
#pragma once

#include <array>

#include "modeldef/model_definition.h"
#include "sequence/sequence_data.h"

namespace corlune {

// The part of the shown amplitude that lies below and above the offset: the range FS reaches to both sides,
// PFS only above, MFS only below. The polarity turns the waveform over within its range.
std::array<double, 2> SwingParts(const SequenceData& sequence, int channel, int step);

// Amplitude and offset can be added: both are in volts, or in user units that scale volts alike.
bool SameUnit(const SequenceData& sequence, const ModelDefinition& definition, int channel);

}  // namespace corlune
