// FrmCommLog: the communication log as text that can be read, searched by eye and copied.
#pragma once

#include <string>

#include <QDialog>

#include "core/catalogue.h"

class QPlainTextEdit;

namespace corlune {

class FrmCommLog : public QDialog {
  Q_OBJECT

 public:
  // `path` (UTF-8) may be missing: an empty log.
  FrmCommLog(const MessageCatalogue& catalogue, std::string path, QWidget* parent = nullptr);

 private:
  void Load();

  const MessageCatalogue& catalogue_;
  std::string path_;
  QPlainTextEdit* text_;
};

}  // namespace corlune
