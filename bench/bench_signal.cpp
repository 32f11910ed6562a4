// The signal strip with a waveform of 524,288 points on both channels, offscreen, each turn with another
// offset and its repaint. The reference fills an image of the strip's size with one stroke a column.
#include <benchmark/benchmark.h>
#include <memory>
#include <random>
#include <string>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QTimer>

#include "bench/samples.h"
#include "support/temp_folder.h"
#include "view/signal_strip.h"

namespace corlune::bench {
namespace {

constexpr QSize kStrip(1900, 240);

class Strip {
 public:
  Strip() {
    std::mt19937 random(3);
    std::uniform_int_distribution<int> value(-32767, 32767);
    std::string text;
    for (int i = 0; i < kMaxWaveformPoints; ++i) text += std::to_string(value(random)) + "\n";
    const std::string path = folder_.Write("wave.txt", text);
    ResetSequence(*sequence_, ShippedDefinition());
    sequence_->StepCount = 1;
    sequence_->Steps[0].StepTime = 1;
    sequence_->Channels.ArbFiles[0].FilePath = path;
    for (int channel = 0; channel < MAX_CHANNELS; ++channel) {
      sequence_->Cell(channel, 0, kSlotWaveform).Value = kWaveUser;
      sequence_->Cell(channel, 0, kSlotArbNumber).Value = 1;
      sequence_->Cell(channel, 0, kSlotFrequency).Value = 0.9;  // nearly a whole period in the window
      sequence_->Cell(channel, 0, kSlotAmplitude).Value = 5;
    }
    strip_.resize(kStrip);
    strip_.show();
    Show(0);
    strip_.findChild<QTimer*>()->start(0);
    while (!strip_.Picture().Notes.at(0).empty()) QApplication::processEvents();
    QApplication::processEvents();
  }
  void Show(double offset) {
    for (int channel = 0; channel < MAX_CHANNELS; ++channel) {
      sequence_->Cell(channel, 0, kSlotOffset).Value = offset;
    }
    ComputeStartValues(*sequence_);
    strip_.Show(BuildSignalSubject(*sequence_, ShippedDefinition(), catalogue_, {2, 0, false, {}}));
    QApplication::processEvents();
  }

 private:
  testing::TempFolder folder_;
  MessageCatalogue catalogue_{10000};
  std::unique_ptr<SequenceData> sequence_ = std::make_unique<SequenceData>();
  SignalStrip strip_{catalogue_};
};

void signal_repaint(benchmark::State& state) {
  Strip strip;
  bool other = false;
  for (auto _ : state) {
    other = !other;
    strip.Show(other ? 1 : 0);
  }
}
BENCHMARK(signal_repaint);

void signal_reference(benchmark::State& state) {
  QImage image(kStrip, QImage::Format_ARGB32_Premultiplied);
  for (auto _ : state) {
    image.fill(Qt::white);
    QPainter painter(&image);
    for (int x = 0; x < image.width(); ++x) painter.fillRect(QRectF(x, 20, 1, 180), Qt::blue);
    benchmark::DoNotOptimize(image.bits());
  }
}
BENCHMARK(signal_reference);

}  // namespace
}  // namespace corlune::bench
