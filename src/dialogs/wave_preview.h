// WavePreview: one period of a waveform, as wide as there is room, or why there is none to see.
#pragma once

#include <memory>
#include <vector>

#include <QString>
#include <QWidget>

#include "graph/wave_cache.h"

namespace corlune {

class WavePreview : public QWidget {
  Q_OBJECT

 public:
  explicit WavePreview(const QString& name, QWidget* parent = nullptr);

  // `file` has a waveform, or is nullptr; then `text` stands in its place, otherwise over it.
  void Show(std::shared_ptr<const WaveFile> file, const QString& text);
  const QString& ShownText() const { return text_; }
  // Has a waveform to draw.
  bool Draws() const { return file_ != nullptr; }

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QRect Plot() const;
  void PaintWave(QPainter& painter, const QRect& plot);

  std::shared_ptr<const WaveFile> file_;
  QString text_;
  std::vector<WaveRange> columns_;  // of the pixels across the plot, as far as they are up to date
};

}  // namespace corlune
