#include "graph/signal_picture.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/numbers.h"

namespace corlune {

namespace {

struct TimeUnit {
  double PerSecond;
  const char* Name;
};

// In which the time reads best: 1 to 999 where there is such a unit.
TimeUnit UnitFor(double seconds) {
  constexpr std::array<TimeUnit, 4> kUnits{{{1, "s"}, {1e3, "ms"}, {1e6, "µs"}, {1e9, "ns"}}};
  const auto* const unit = std::find_if(kUnits.begin(), kUnits.end() - 1, [&](const TimeUnit& each) {
    return seconds * each.PerSecond >= 1 - 1e-9;
  });
  return *unit;
}

std::string TimeIn(double seconds, const TimeUnit& unit) {
  return FormatNumber(seconds * unit.PerSecond, "0.###") + " " + unit.Name;
}

bool IsWhole(const AxisWindow& window, double length) {
  return window.Start <= 0 && window.End >= length;
}

std::string SpanText(const AxisWindow& window, double length, const MessageCatalogue& catalogue) {
  const std::string whole = ShortTimeText(length);
  if (IsWhole(window, length)) return catalogue.GetResString(TextId::SignalWholeStep, {whole});
  if (window.Start <= 0)
    return catalogue.GetResString(TextId::SignalBegin, {ShortTimeText(window.End), whole});
  return catalogue.GetResString(TextId::SignalSection,
                                {ShortTimeText(window.Start), ShortTimeText(window.End), whole});
}

std::string CaptionOf(const SignalSubject& subject, const SignalPane& pane, const TimeUnit& unit,
                      const MessageCatalogue& catalogue) {
  std::string text = catalogue.GetResString(TextId::TimeAxisTitle, {unit.Name}) + "  " +
                     SpanText(pane.Window, subject.Length, catalogue);
  const bool shaded = std::any_of(pane.Traces.begin(), pane.Traces.end(),
                                  [](const SignalTrace& trace) { return trace.Shaded; });
  if (shaded) text += "  " + catalogue.GetResString(TextId::SignalShaded);
  return text;
}

// What is to be said about a signal that is drawn.
std::string RemarkOf(const ChannelSignal& signal, const WaveFile* file, const MessageCatalogue& catalogue) {
  if (signal.Waveform == kWaveNoise) return catalogue.GetResString(TextId::SignalNoise);
  if (file != nullptr && file->Wave && file->Wave->Pairs()) {
    return catalogue.GetResString(TextId::SignalPointPairs);
  }
  return {};
}

}  // namespace

std::string SignalNote(const ChannelSignal& signal, const WaveFile* file, const MessageCatalogue& catalogue) {
  if (!signal.Note.empty() || signal.WavePath.empty()) return signal.Note;
  const std::string name = signal.WavePath.substr(signal.WavePath.find_last_of("/\\") + 1);
  if (file == nullptr) return catalogue.GetResString(TextId::SignalReading, {name});
  if (file->Wave) return {};
  return catalogue.GetResString(TextId::SignalFileRefused, {std::to_string(signal.ArbNumber), name,
                                                            ReasonText(file->Reason, catalogue)});
}

std::string ShortTimeText(double seconds) {
  return TimeIn(seconds, UnitFor(seconds));
}

std::vector<std::string> WavePathsOf(const SignalSubject& subject) {
  std::vector<std::string> paths;
  for (const ChannelSignal& signal : subject.Channels) {
    const bool known = std::find(paths.begin(), paths.end(), signal.WavePath) != paths.end();
    if (!signal.WavePath.empty() && !known) paths.push_back(signal.WavePath);
  }
  return paths;
}

SignalPicture BuildSignalPicture(const SignalSubject& subject, const SignalFiles& files,
                                 const MessageCatalogue& catalogue, const AxisWindow& window,
                                 const PaneColumns& columns) {
  SignalPicture picture;
  for (std::size_t i = 0; i < subject.Channels.size(); ++i) {
    const ValueRange range = SignalRange(subject.Channels[i]);
    picture.Ranges.push_back(FitRange(range.Low, range.High));
    picture.Notes.push_back(SignalNote(subject.Channels[i], files[i].get(), catalogue));
  }
  const auto add = [&](const AxisWindow& part, int width) {
    SignalPane pane;
    pane.Window = part;
    const TimeUnit unit = UnitFor(part.End);
    pane.UnitsPerSecond = unit.PerSecond;
    std::string remarks;
    for (std::size_t i = 0; i < subject.Channels.size(); ++i) {
      const WaveFile* file = files[i].get();
      const SignalWave* wave = file != nullptr && file->Wave ? &*file->Wave : nullptr;
      pane.Traces.push_back(picture.Notes[i].empty()
                                ? TraceOf(subject.Channels[i], wave, subject.Length, part, width)
                                : SignalTrace{});
      const std::string remark = RemarkOf(subject.Channels[i], file, catalogue);
      if (!remark.empty()) remarks += "  " + remark;
    }
    pane.Caption = CaptionOf(subject, pane, unit, catalogue);
    if (picture.Panes.empty()) pane.Caption += remarks;
    picture.Panes.push_back(std::move(pane));
  };
  if (IsWhole(window, subject.Length)) {
    add({0, subject.Length}, columns.Only);
  } else {
    add(window, columns.Part);
    add({0, subject.Length}, columns.Whole);
  }
  return picture;
}

}  // namespace corlune
