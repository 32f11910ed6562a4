// A table of all exchanges of something, with what becomes of it when one of them fails.
#pragma once

#include "support/fake_ports.h"

namespace corlune::testing {

template <class Fate>
struct Exchange {
  const char* line;  // as the recorder writes it
  Fate fate;
};

template <class Fate>
EventList LinesOf(const std::vector<Exchange<Fate>>& table, std::size_t from, std::size_t to) {
  EventList lines;
  for (std::size_t i = from; i < to; ++i) lines.emplace_back(table[i].line);
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
