// frmAbout: the about box, with the state of the libraries.
#pragma once

#include <string>
#include <vector>

#include <QDate>
#include <QDialog>

#include "core/catalogue.h"

namespace corlune {

struct AboutFacts {
  std::string version;            // "major.minor.revision"
  QDate programDate;              // modification date of the program file; may be invalid
  std::string instrumentProblem;  // which libraries were tried and why they do not serve; empty: none
  std::string compilerProblem;
  std::vector<std::string> libraries;  // what was loaded, from where, and what could not be
};

class FrmAbout : public QDialog {
  Q_OBJECT

 public:
  FrmAbout(const MessageCatalogue& catalogue, const AboutFacts& facts, QWidget* parent = nullptr);
};

// "Version 1.0.0.0 Sept.5,2018".
std::string VersionLine(const MessageCatalogue& catalogue, const AboutFacts& facts);
// Both libraries, each with its problem or as free of one.
std::string LibraryLines(const MessageCatalogue& catalogue, const AboutFacts& facts);

}  // namespace corlune
