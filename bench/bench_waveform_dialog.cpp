// The dialog of the arbitrary waveforms, offscreen: opening it over 128 files, half of them counted by nobody
// yet, up to its first paint; and one repaint of the preview of 524,288 points in another width. The
// references are a bare dialog with a table view of the same size over an empty model, and an image filled
// with one stroke a column.
#include <benchmark/benchmark.h>
#include <memory>
#include <string>

#include <QApplication>
#include <QDialog>
#include <QImage>
#include <QPainter>
#include <QStandardItemModel>
#include <QTableView>
#include <QVBoxLayout>

#include "bench/instrument_bench.h"
#include "dialogs/frm_arb_file.h"
#include "dialogs/wave_preview.h"

namespace corlune::bench {
namespace {

constexpr int kWidth = 1200;
constexpr int kHeight = 200;

void Show(QDialog& dialog) {
  dialog.show();
  QApplication::processEvents(QEventLoop::ExcludeSocketNotifiers, 0);
  dialog.grab();
}

void waveform_dialog_open(benchmark::State& state) {
  InstrumentBench bench;
  Session& session = *bench.session;
  std::string values;
  for (int i = 0; i < kMinWaveformPoints; ++i) values += std::to_string(i) + "\n";
  auto& entries = session.Sequence().Channels.ArbFiles;
  for (int number = 1; number <= kArbNumbers; ++number) {
    const bool text = number % 2 == 0;
    const std::string name = std::to_string(number) + (text ? ".txt" : ".wdb");
    entries[static_cast<std::size_t>(number - 1)].FilePath = bench.folder.Write(
        name, text ? values : std::string(352 + 2 * std::size_t{kMaxWaveformPoints}, '\1'));
  }
  for (auto _ : state) {
    WaveFacts facts;
    WaveformForm form(session.Sequence(), session.State(), session.Definition(), facts, session.Catalogue());
    FrmArbFile dialog({session, bench.prompts, bench.files, form, {QStringLiteral("1")}, {}}, nullptr);
    Show(dialog);
  }
}
BENCHMARK(waveform_dialog_open);

void waveform_dialog_reference(benchmark::State& state) {
  for (auto _ : state) {
    QDialog dialog;
    auto* layout = new QVBoxLayout(&dialog);
    auto* grid = new QTableView(&dialog);
    QStandardItemModel empty(kArbNumbers, 6);
    grid->setModel(&empty);
    grid->setMinimumSize(700, 300);
    layout->addWidget(grid);
    Show(dialog);
  }
}
BENCHMARK(waveform_dialog_reference);

void waveform_preview(benchmark::State& state) {
  testing::TempFolder folder;
  std::string bytes(352 + 2 * std::size_t{kMaxWaveformPoints}, '\0');
  for (std::size_t i = 352; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 2654435761U >> 13);
  WaveCache cache;
  const auto file = cache.Read(folder.Write("whole.wdb", bytes));
  WavePreview preview({});
  preview.Show(file, QStringLiteral("ARB 1"));
  int width = kWidth;
  for (auto _ : state) {
    width = width == kWidth ? kWidth + 1 : kWidth;  // every column anew
    preview.resize(width, kHeight);
    benchmark::DoNotOptimize(preview.grab());
  }
}
BENCHMARK(waveform_preview);

void waveform_preview_reference(benchmark::State& state) {
  QImage image(kWidth, kHeight, QImage::Format_ARGB32_Premultiplied);
  for (auto _ : state) {
    image.fill(Qt::white);
    QPainter painter(&image);
    for (int x = 0; x < image.width(); ++x) painter.fillRect(QRectF(x, 20, 1, 160), Qt::blue);
    benchmark::DoNotOptimize(image.bits());
  }
}
BENCHMARK(waveform_preview_reference);

}  // namespace
}  // namespace corlune::bench
