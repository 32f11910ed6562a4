// SignalPainter: where the parts of the signal strip stand, and their painting. Measures in
// device-independent pixels of the strip.
#pragma once

#include <vector>

#include <QFont>
#include <QPainter>
#include <QRectF>
#include <QSize>

#include "graph/signal_picture.h"

namespace corlune {

class GraphColors;

struct SignalLayout {
  struct Row {
    QRectF Legend;
    double Top = 0;  // of the plots of this channel
    double Bottom = 0;
  };
  struct Column {
    double Left = 0;
    double Right = 0;
  };
  std::vector<Row> Channels;
  std::vector<Column> Panes;  // one: the whole step; two: a part and the whole step
  QRectF TickLabels;          // of the time axes
  QRectF Captions;

  QRectF Plot(std::size_t channel, std::size_t pane) const {
    const Row& row = Channels[channel];
    const Column& column = Panes[pane];
    return {column.Left, row.Top, column.Right - column.Left, row.Bottom - row.Top};
  }
};

SignalLayout ComputeSignalLayout(const QSize& size, const QFont& font, int channels, int panes);
// Height for that many channels; the least leaves room for three lines of text in every plot.
int SignalHeight(const QFont& font, int channels, int plotLines);

void PaintSignal(QPainter& painter, const SignalSubject& subject, const SignalPicture& picture,
                 const SignalLayout& layout, const GraphColors& colors, const QFont& font);

}  // namespace corlune
