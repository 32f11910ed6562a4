#include "graph/plot_lines.h"

#include <algorithm>
#include <array>
#include <utility>

namespace corlune {

namespace {

struct Box {
  double Left, Top, Right, Bottom;
};

// Cuts the line from `a` to `b` at the box; nullopt when none of it lies inside.
std::optional<std::array<PixelPoint, 2>> Cut(PixelPoint a, PixelPoint b, const Box& box) {
  double from = 0;
  double to = 1;
  const auto edge = [&](double start, double delta, double low, double high) {
    if (delta == 0) return start >= low && start <= high;
    const double one = (low - start) / delta;
    const double other = (high - start) / delta;
    from = std::max(from, std::min(one, other));
    to = std::min(to, std::max(one, other));
    return from <= to;
  };
  const double dx = b.X - a.X;
  const double dy = b.Y - a.Y;
  if (!edge(a.X, dx, box.Left, box.Right) || !edge(a.Y, dy, box.Top, box.Bottom)) return std::nullopt;
  const PixelPoint start = from == 0 ? a : PixelPoint{a.X + dx * from, a.Y + dy * from};
  const PixelPoint end = to == 1 ? b : PixelPoint{a.X + dx * to, a.Y + dy * to};
  return std::array{start, end};
}

}  // namespace

std::vector<PixelLine> VisibleLines(const GraphCurve& curve, const PlotScale& scale) {
  const Box box{scale.Left - scale.Width, scale.Top - scale.Height, scale.Left + 2 * scale.Width,
                scale.Top + 2 * scale.Height};
  std::vector<PixelLine> lines;
  std::optional<PixelPoint> last;
  bool open = false;  // the line under way ends at `last`
  for (const GraphPoint& point : curve.Points) {
    const PixelPoint here{scale.XOf(point.X), scale.YOf(point.Y)};
    if (last && !point.Begins) {
      const auto piece = Cut(*last, here, box);
      if (piece) {
        if (!open || lines.back().back() != (*piece)[0]) lines.push_back({(*piece)[0]});
        lines.back().push_back((*piece)[1]);
      }
      open = piece && (*piece)[1] == here;
    } else {
      open = false;
    }
    last = here;
  }
  return lines;
}

EnvelopePiece CutToWindow(const EnvelopePiece& piece, const AxisWindow& window) {
  const double length = piece.End - piece.Start;
  if (length <= 0) return piece;
  const double margin = (window.End - window.Start) / 10;
  const double from = std::clamp((window.Start - margin - piece.Start) / length, 0.0, 1.0);
  const double to = std::clamp((window.End + margin - piece.Start) / length, 0.0, 1.0);
  const auto at = [](double a, double b, double part) { return a + (b - a) * part; };
  return {at(piece.Start, piece.End, from),       at(piece.Start, piece.End, to),
          at(piece.LowStart, piece.LowEnd, from), at(piece.HighStart, piece.HighEnd, from),
          at(piece.LowStart, piece.LowEnd, to),   at(piece.HighStart, piece.HighEnd, to)};
}

std::vector<std::optional<double>> PlaceLabels(const std::vector<LabelWish>& wishes, double left,
                                               double right, double gap) {
  std::vector<std::optional<double>> places(wishes.size());
  std::vector<std::pair<double, double>> taken;
  const auto place = [&](std::size_t i) {
    const LabelWish& wish = wishes[i];
    if (wish.Center < left || wish.Center > right || wish.Width > right - left) return;
    const double start = std::clamp(wish.Center - wish.Width / 2, left, right - wish.Width);
    const double end = start + wish.Width;
    const bool free = std::none_of(taken.begin(), taken.end(), [&](const auto& other) {
      return start < other.second + gap && other.first < end + gap;
    });
    if (!free) return;
    places[i] = start;
    taken.emplace_back(start, end);
  };
  const auto fits = [&](std::size_t i) { return wishes[i].Width + gap <= wishes[i].Room; };
  for (std::size_t i = 0; i < wishes.size(); ++i) {
    if (fits(i)) place(i);
  }
  for (std::size_t i = 0; i < wishes.size(); ++i) {
    if (!fits(i)) place(i);
  }
  return places;
}

}  // namespace corlune
