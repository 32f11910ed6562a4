// The five back-ends, four of them over the libraries of one virtual bench, and what they differ in. On the
// bench stand A (GPIB 5, USB488 3) and B (GPIB 6, USB488 4), both also on USB; the response file of the
// simulated interface has the replies that they give.
#pragma once

#include <array>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "bench_devices.h"
#include "comm/builtin_visa.h"
#include "comm/ieee32m_backend.h"
#include "comm/ni_gpib_backend.h"
#include "comm/simulated_backend.h"
#include "comm/usb488_backend.h"
#include "comm/usbtmc_backend.h"
#include "comm_fixture.h"
#include "support/bench_tables.h"

namespace corlune::testing {

constexpr CommStatus kOk = CommStatus::Success;
constexpr CommStatus kTimeOut = CommStatus::TimeOut;
constexpr CommStatus kError = CommStatus::Error;
constexpr CommStatus kNoBoard = CommStatus::NoBoard;

struct Kind {
  std::string name;
  InterfaceKind kind;
  std::int16_t first, second;   // addresses of A and B
  std::string firstName;        // of A in log lines
  bool wired;                   // there are instruments
  std::string initLog, useLog;  // of GP_Init and of the first use of a device
  std::string deviceClears;     // on the wire when A, then B were used
  bool readsEndAtTerminator;    // or at END alone
  bool turnsWithoutAddress;     // a receive may follow a send without addresses; GPIB would have to readdress
  CommStatus timedOut, lostWrite, lostRead, lostEnd;
  CommStatus noLibrary, badTerminator;
  std::array<std::uint32_t, 19> timeOuts;  // ms that a read without a reply takes, by code; 18 is none
  // Statuses of the library and what they mean.
  std::vector<std::pair<std::string, CommStatus>> errors;
};

inline void PrintTo(const Kind& kind, std::ostream* out) {
  *out << kind.name;
}

// An endless time-out ends after a minute on the bench.
constexpr std::uint32_t kEndless = 60'000;

// clang-format off
inline const std::vector<Kind>& Kinds() {
  const std::string open = "ALL < GP_IFC|ALL < GP_REN|ALL < GP_MTerm\"LF\"|ALL < GP_EOI|ALL < GP_Time_Out\"300ms\"|";
  const std::string openBoard = open.substr(std::string("ALL < GP_IFC|").size());
  static const std::vector<Kind> kinds{
    {"NiGpib", InterfaceKind::NiGpib, 5, 6, "5", true, open + "GP_INIT", "", "A clear|B clear|", true, false,
     // The error bit stands beside the time-out bit.
     kError, kError, kError, kOk, kNoBoard, kError,
     {kEndless, 1, 1, 1, 1, 1, 3, 10, 30, 100, 300, 1000, 3000, 10000, 30000, kEndless, kEndless, kEndless, 300},
     {{"2", kError}, {"7", kNoBoard}}},
    {"Ieee32m", InterfaceKind::KiGpib, 5, 6, "5", true, openBoard + "GP_INIT", "", "A clear|B clear|", true, false,
     kTimeOut, kError, kTimeOut, kOk, kNoBoard, kError,
     {kEndless, 55, 55, 55, 55, 55, 55, 55, 55, 110, 330, 1045, 3025, 10010, 30030, kEndless, kEndless, kEndless,
      kEndless},
     {{"3", kTimeOut}, {"0xFFFFFFFF", kError}}},
    {"Usb488", InterfaceKind::Usb488, 3, 4, "3", true, "GP_INIT", open, "B clear|", false, true,
     kTimeOut, kNoBoard, kNoBoard, kNoBoard, kError, kError,
     {1, 1, 1, 1, 1, 1, 3, 10, 30, 100, 300, 1000, 3000, 10000, 30000, kEndless, kEndless, kEndless, kEndless},
     {{"1", kError}, {"7", kNoBoard}}},
    {"UsbTmc", InterfaceKind::UsbTmc, 0, 1, "USB0::0X3A1F::0X2220::A::INSTR", true,
     "ALL < GP_REN|ALL < GP_MTerm\"LF\"|GP_INIT", "", "A clear|B clear|", true, true,
     kTimeOut, kError, kError, kError, kError, kError,
     {1, 1, 1, 1, 1, 1, 3, 10, 30, 100, 300, 1000, 3000, 10000, 30000, kEndless, kEndless, kEndless, 0},
     {{"0xBFFF0015", kTimeOut}, {"0xBFFF003E", kError}, {"0x3FFF0006", kOk}}},
    {"Simulated", InterfaceKind::Simulated, 5, 6, "5", false, openBoard + "GP_INIT", "", "", false, true,
     kOk, kOk, kOk, kOk, kOk, kOk, {}, {}},
    // The same back-end over the program's own VISA.
    {"UsbTmcBuiltin", InterfaceKind::UsbTmc, 0, 1, "USB0::0X3A1F::0X2220::A::INSTR", true,
     "ALL < GP_REN|ALL < GP_MTerm\"LF\"|VISA library: built in|GP_INIT", "", "A clear|B clear|", true, true,
     kTimeOut, kError, kError, kError, kError, kError,
     {100, 100, 100, 100, 100, 100, 100, 100, 100, 100, 300, 1000, 3000, 10000, 30000, kEndless, kEndless, kEndless,
      100},
     {{"110", kTimeOut}, {"5", kError}}}};
  return kinds;
}
// clang-format on

inline std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += (text.empty() ? "" : "|") + line;
  return text;
}

struct InterfaceRig : CommWorld {
  explicit InterfaceRig(const Kind& which) : kind(which) {
    std::string problem;
    EXPECT_TRUE(
        bench.AddFromText("QM2220:A:usbtmc+gpib=5+usb488=3,QM2210:B:usbtmc+gpib=6+usb488=4", "", &problem))
        << problem;
    for (std::size_t i = 0; i < bench.Count(); ++i) {
      const std::string name = bench.At(i).Identity().serial;
      bench.At(i).SetTrace([this, name](ExchangeKind exchange, std::string_view bytes, bool end) {
        if (exchange == ExchangeKind::Poll || exchange == ExchangeKind::Clear) {
          wire += name + (exchange == ExchangeKind::Poll ? " poll|" : " clear|");
          return;
        }
        if (bytes.size() > 1000) {
          block = bytes;
          bytes = "(block)";
        }
        wire +=
            name + (exchange == ExchangeKind::Write ? "<" : ">") + std::string(bytes) + (end ? "^|" : "|");
      });
    }
    folder.Write("replies.ini", "[ADRS5]\n*ESE?=60\n[ADRS6]\n*ESE?=36\n");
    Make();
  }
  InterfaceRig(const InterfaceRig&) = delete;
  InterfaceRig& operator=(const InterfaceRig&) = delete;

  void Make() {
    if (kind.kind == InterfaceKind::NiGpib) {
      gp = std::make_unique<NiGpibMdl>(Services(), LoaderOf(tables.ni488));
    } else if (kind.kind == InterfaceKind::KiGpib) {
      gp = std::make_unique<Ieee32mMdl>(Services(), LoaderOf(tables.ieee32m));
    } else if (kind.kind == InterfaceKind::Usb488) {
      gp = std::make_unique<Usb488Mdl>(Services(), LoaderOf(tables.usb488));
    } else if (kind.kind == InterfaceKind::UsbTmc) {
      if (kind.name == "UsbTmcBuiltin") tables.visa = BuiltinVisa(devices);
      gp = std::make_unique<UsbTmcMdl>(Services(), LoaderOf(tables.visa));
    } else {
      gp = std::make_unique<SimulatedMdl>(Services(), std::make_shared<std::string>());
    }
  }
  CommStatus Init(const std::string& more = "") {
    return gp->GP_Init(
        "LOG_FILE=comm.log,INI_FILE=replies.ini,USBTMC_NAME=USB0::0x3A1F::0x2220::A::INSTR/"
        "USB0::0x3A1F::0x2210::B::INSTR" +
            more,
        true);
  }
  // Open, both devices used once; nothing of it is kept.
  void Use() {
    ASSERT_EQ(Init(), kOk);
    ASSERT_EQ(gp->GP_Send_Str(kind.second, "*ESE 36"), kOk);
    ASSERT_EQ(gp->GP_Send_Str(kind.first, "*ESE 60"), kOk);
    TakeWire();
    ClearLog();
  }
  // The reply to "*ESE?"; the status when there is none.
  std::string Ask(std::int16_t address) {
    const CommStatus sent = gp->GP_Send_Str(address, "*ESE?");
    return Failed(sent) ? "sent " + std::to_string(static_cast<int>(sent)) : Receive(address);
  }
  std::string Receive(std::int16_t address) {
    std::string reply = "unchanged";
    const CommStatus status = gp->GP_Receive_Str(address, reply);
    if (!Failed(status)) return reply;
    EXPECT_EQ(reply, "unchanged");
    return "status " + std::to_string(static_cast<int>(status));
  }
  void Faults(const std::string& text) {
    const auto faults = ParseFaults(text, "A");
    ASSERT_TRUE(faults) << text;
    bench.At(0).SetFaults(FaultPlan(*faults));
  }
  std::string TakeWire() { return std::exchange(wire, {}); }
  std::string TakeLog() {
    const std::string lines = Joined(Log());
    ClearLog();
    return lines;
  }
  // What is on the wire when there is one.
  std::string Wired(const std::string& text) const { return kind.wired ? text : ""; }

  const Kind& kind;
  VirtualBench bench{[this] { return clock.Now(); }};
  VirtualFaces faces{bench, [this](std::uint32_t milliseconds) { clock.Advance(milliseconds); }};
  BenchDevices devices{bench, faces.io};
  BenchTables tables;  // a test may put functions of its own in
  // "A<*RST\n^|B>1\n^|": bytes to and from the instruments, "^" is END.
  std::string wire;
  std::string block;  // the last one
  std::unique_ptr<GpBackendBase> gp;
};

}  // namespace corlune::testing
