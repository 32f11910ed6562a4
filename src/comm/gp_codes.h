// Codes of the communication family: time-outs and terminators.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace corlune {

// GP_Time_Out codes 0..17.
inline constexpr std::array<std::string_view, 18> kTimeOutNames{
    "NONE",  "10us",  "30us", "100us", "300us", "1ms", "3ms",  "10ms", "30ms",
    "100ms", "300ms", "1s",   "3s",    "10s",   "30s", "100s", "300s", "1000s"};
inline constexpr std::int16_t kTimeOut100ms = 9;
inline constexpr std::int16_t kTimeOut300ms = 10;
inline constexpr std::int16_t kTimeOut3s = 12;
inline constexpr std::int16_t kTimeOut30s = 14;

// The same codes in milliseconds for libraries that count in them; 1 ms is the shortest.
inline constexpr std::array<std::uint32_t, 18> kTimeOutMilliseconds{
    1, 1, 1, 1, 1, 1, 3, 10, 30, 100, 300, 1000, 3000, 10000, 30000, 100000, 300000, 1000000};

constexpr bool IsTimeOutCode(std::int16_t code) {
  return code >= 0 && static_cast<std::size_t>(code) < kTimeOutNames.size();
}
// Name for log lines, empty outside 0..17.
constexpr std::string_view TimeOutName(std::int16_t code) {
  return IsTimeOutCode(code) ? kTimeOutNames[static_cast<std::size_t>(code)] : std::string_view();
}
// 0 outside 0..17.
constexpr std::uint32_t TimeOutMilliseconds(std::int16_t code) {
  return IsTimeOutCode(code) ? kTimeOutMilliseconds[static_cast<std::size_t>(code)] : 0;
}

// GP_MTerm codes 0..3.
struct Terminator {
  std::string_view name;   // in log lines
  std::string_view text;   // appended to written text
  std::uint8_t endOfRead;  // the character that ends a read, 0: none
};
inline constexpr std::array<Terminator, 4> kTerminators{
    {{"NONE", "", 0}, {"LF", "\n", 10}, {"CR", "\r", 13}, {"CRLF", "\r\n", 10}}};
inline constexpr std::int16_t kTerminatorNone = 0;
inline constexpr std::int16_t kTerminatorLf = 1;

constexpr bool IsTerminatorCode(std::int16_t code) {
  return code >= 0 && static_cast<std::size_t>(code) < kTerminators.size();
}
// `code` must be 0..3.
constexpr const Terminator& TerminatorOf(std::int16_t code) {
  return kTerminators[static_cast<std::size_t>(code)];
}

}  // namespace corlune
