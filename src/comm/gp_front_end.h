// GpFrontEnd: routes each operation of the family to the back-end of AppState::CurrentInterface. A code
// outside 0..4 performs nothing and returns Error.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "comm/gp_family.h"
#include "core/app_state.h"

namespace corlune {

// One USBTMC instrument as the search found it.
struct FoundInstrument {
  std::string Resource;  // whole VISA resource name
  std::string SerialNo;  // its fourth "::" field, or the whole name when it has fewer
  bool operator==(const FoundInstrument&) const = default;
};

// Searches VISA instruments; implemented by the USBTMC back-end.
class InstrumentSearch {
 public:
  virtual ~InstrumentSearch() = default;
  // Binds the library. False: there is none that can be used, and a search finds nothing at once.
  virtual bool CanSearch() = 0;
  // Number of instruments that match the VISA expression; 0 when the search fails. At most 21 are kept.
  virtual int GP_Find_Devices(const std::string& expression) = 0;
  virtual const std::vector<FoundInstrument>& Found() const = 0;
  // Why the last search or opening failed: the names tried and the reason for each; empty when it worked.
  virtual std::string LibraryProblem() const = 0;
};

struct LibraryState;

class GpFrontEnd {
 public:
  struct Library {
    std::shared_ptr<const LibraryState> state;
    std::function<void()> tryNow;  // loads it unless it is loaded
  };

  // Back-ends by InterfaceKind code; `search` may be null (then nothing is ever found).
  GpFrontEnd(AppState& state, std::array<std::unique_ptr<GpFamily>, 5> backends, InstrumentSearch* search);

  CommStatus GP_Init(const std::string& initString, bool emptyLog);
  CommStatus GP_End();
  CommStatus GP_Send_Str(std::int16_t address, const std::string& text);
  CommStatus GP_Receive_Str(std::int16_t address, std::string& reply);
  CommStatus GP_IFC();
  CommStatus GP_DCL();
  CommStatus GP_Spoll(std::int16_t address, std::int16_t& statusByte);
  CommStatus GP_Time_Out(std::int16_t code);
  CommStatus GP_MTerm(std::int16_t code);
  CommStatus GP_Send_AsciiBinary_Data(const std::string& header, std::span<const std::uint8_t> data,
                                      std::int16_t address, std::int16_t elementFormat, bool swapBytes);
  CommStatus Gp_Recv_ToFile(std::int16_t address, const std::string& fileName, std::uint32_t byteCount,
                            std::uint32_t& bytesRead);
  // Whatever CurrentInterface is: a search belongs to no instrument.
  bool CanSearch() { return search_ && search_->CanSearch(); }
  int GP_Find_Devices(const std::string& expression);
  const std::vector<FoundInstrument>& Found() const;
  // Of the current back-end.
  std::string OwnLibraryProblem() const;
  // The same, else that of the search.
  std::string LibraryProblem() const;
  void SetLibraries(std::vector<Library> libraries) { libraries_ = std::move(libraries); }
  // A line for every file that was loaded, and for every one that could not be, with the reason: "VISA: ...".
  // `tryAll`: also libraries that nobody needed yet; else these are left out.
  std::vector<std::string> LibraryLines(bool tryAll) const;
  // Of the current back-end: whether GP_Send_AsciiBinary_Data and Gp_Recv_ToFile do anything.
  bool CarriesBlocks() const;
  // Of the current back-end.
  bool ConnectionLost(std::int16_t address) const;

  // From now on every operation goes to the back-end of `kind`, whatever CurrentInterface is.
  void RouteAllTo(InterfaceKind kind) { route_ = kind; }

 private:
  GpFamily* Current() const;  // null outside 0..4

  AppState& state_;
  std::array<std::unique_ptr<GpFamily>, 5> backends_;
  InstrumentSearch* search_;
  std::optional<InterfaceKind> route_;
  std::vector<Library> libraries_;
};

}  // namespace corlune
