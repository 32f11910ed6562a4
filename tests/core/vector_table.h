// The measured platform results below tests/data/vectors: tab-separated tables, first line the header.
#pragma once

#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace corlune::testing {

using VectorRow = std::map<std::string, std::string>;

inline std::vector<std::string> SplitTabs(const std::string& line) {
  std::vector<std::string> fields(1);
  for (const char c : line) c == '\t' ? fields.emplace_back() : fields.back() += c;
  return fields;
}

// All rows of a table. An unreadable table or a row with another number of fields fails the test.
inline std::vector<VectorRow> ReadVectors(const std::string& name) {
  std::ifstream file(std::string(CORLUNE_TEST_DATA) + "/vectors/" + name + ".tsv", std::ios::binary);
  std::vector<VectorRow> rows;
  std::string line;
  if (!std::getline(file, line)) {
    ADD_FAILURE() << "no table " << name;
    return rows;
  }
  const auto header = SplitTabs(line);
  while (std::getline(file, line)) {
    const auto fields = SplitTabs(line);
    if (fields.size() != header.size()) {
      ADD_FAILURE() << name << ": " << line;
      continue;
    }
    VectorRow row;
    for (std::size_t i = 0; i < header.size(); ++i) row[header[i]] = fields[i];
    rows.push_back(row);
  }
  EXPECT_FALSE(rows.empty()) << name;
  return rows;
}

// Rows that a build may fail on.
inline bool IsSettled(const VectorRow& row) {
  const std::string& confidence = row.at("confidence");
  return confidence == "sure" || confidence == "likely" || confidence == "rule";
}

// Bytes of an escaped field. \uHHHH and, where `unicode` is set, \xHH are Unicode values in UTF-8.
inline std::string Unescape(const std::string& text, bool unicode = false) {
  std::string bytes;
  const auto append = [&](unsigned value, bool character) {
    if (!character || value < 0x80) {
      bytes += static_cast<char>(value);
    } else if (value < 0x800) {
      bytes += static_cast<char>(0xC0 | (value >> 6));
      bytes += static_cast<char>(0x80 | (value & 0x3F));
    } else {
      bytes += static_cast<char>(0xE0 | (value >> 12));
      bytes += static_cast<char>(0x80 | ((value >> 6) & 0x3F));
      bytes += static_cast<char>(0x80 | (value & 0x3F));
    }
  };
  std::size_t repeat = 1;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t before = bytes.size();
    if (text[i] != '\\') {
      bytes += text[i];
    } else if (text[i + 1] == '{') {
      const std::size_t close = text.find('}', i);
      repeat = std::stoul(text.substr(i + 2, close - i - 2));
      i = close;
      continue;
    } else {
      ++i;
      if (text[i] == 'x' || text[i] == 'u') {
        const std::size_t digits = text[i] == 'x' ? 2 : 4;
        append(static_cast<unsigned>(std::stoul(text.substr(i + 1, digits), nullptr, 16)),
               unicode || digits == 4);
        i += digits;
      } else {
        const std::size_t letter = std::string("trn0").find(text[i]);
        bytes += letter == std::string::npos ? text[i] : "\t\r\n\0"[letter];
      }
    }
    const std::string unit = bytes.substr(before);
    for (; repeat > 1; --repeat) bytes += unit;
  }
  return bytes;
}

}  // namespace corlune::testing
