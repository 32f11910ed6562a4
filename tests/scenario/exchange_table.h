// A table of all exchanges of something, with what becomes of it when one of them fails.
#pragma once

#include <algorithm>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "support/fake_ports.h"

namespace corlune::testing {

// "a|b|c" in three.
inline EventList Split(const std::string& text) {
  EventList parts;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t bar = std::min(text.find('|', at), text.size());
    parts.push_back(text.substr(at, bar - at));
    at = bar + 1;
  }
  return parts;
}

template <class Fate>
struct Exchange {
  std::string line;  // as the recorder writes it
  Fate fate;
};

// From lines "a|b|c" that share a fate.
template <class Fate>
std::vector<Exchange<Fate>> Exchanges(std::initializer_list<std::pair<Fate, const char*>> groups) {
  std::vector<Exchange<Fate>> table;
  for (const auto& [fate, lines] : groups) {
    for (std::string& line : Split(lines)) table.push_back({std::move(line), fate});
  }
  return table;
}

template <class Fate>
EventList LinesOf(const std::vector<Exchange<Fate>>& table, std::size_t from, std::size_t to) {
  EventList lines;
  for (std::size_t i = from; i < to; ++i) lines.push_back(table[i].line);
  return lines;
}
inline EventList Joined(EventList first, const EventList& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}
inline bool IsWrite(const std::string& line) {
  return line.find(" < ") != std::string::npos;
}
inline bool IsRead(const std::string& line) {
  return line.find(" > ") != std::string::npos;
}
// With nothing of what came in.
inline std::string FailedLine(const std::string& line, const std::string& suffix) {
  if (IsRead(line)) return "1 > " + suffix;
  return (line.starts_with("1 poll") ? "1 poll" : line) + suffix;
}

}  // namespace corlune::testing
