// The step number of a row: its number, the brackets of the loops around it, and the mark of the running
// step.
#pragma once

#include <vector>

#include <QColor>
#include <QPainter>

#include "editing/loop_brackets.h"
#include "ui/cell_texts.h"

namespace corlune {

struct StepNumberCell {
  QString Number;
  bool Running = false;
  int Lanes = 0;  // of the whole sequence, so that the brackets stand below one another
  std::vector<LoopPart> Loops;
  QColor Text;
  QColor LoopColor;     // brackets of counted loops
  QColor EndlessColor;  // of endless ones
};

// Paints into `cell` with the painter's font; the background is there. The number comes first where the cell
// is too narrow for all: then the count and at last the mark are left out.
void PaintStepNumber(QPainter& painter, const QRect& cell, const StepNumberCell& shown, CellTexts& texts);

}  // namespace corlune
