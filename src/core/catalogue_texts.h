// The texts behind the message catalogue.
#pragma once

#include "core/text_id.h"

namespace corlune {

// One text in both languages, UTF-8, line breaks "\n".
struct CatalogueText {
  const char* english = "";
  const char* japanese = "";
};

// Both empty for a number that is no id.
CatalogueText TextOf(TextId id);

}  // namespace corlune
