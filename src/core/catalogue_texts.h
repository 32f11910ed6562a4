// The table behind the message catalogue.
#pragma once

#include <span>

namespace corlune {

// One text in both languages, UTF-8, line breaks "\n". `id` is the Japanese id; English is id + 10000.
struct CatalogueText {
  int id = 0;
  const char* english = "";
  const char* japanese = "";
};

// Every row, ascending by id, no id twice.
std::span<const CatalogueText> CatalogueTexts();

}  // namespace corlune
