// The I/O libraries as tables of function pointers, bound when a back-end first needs them. Tests fill a
// table with functions of their own.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/abi/ieee32m.h"
#include "platform/abi/ni488.h"
#include "platform/abi/usb488.h"
#include "platform/abi/visa.h"

namespace corlune {

struct VisaTable {
  decltype(&::viOpenDefaultRM) OpenDefaultRM = nullptr;
  decltype(&::viFindRsrc) FindRsrc = nullptr;
  decltype(&::viFindNext) FindNext = nullptr;
  decltype(&::viOpen) Open = nullptr;
  decltype(&::viClose) Close = nullptr;
  decltype(&::viSetAttribute) SetAttribute = nullptr;
  decltype(&::viRead) Read = nullptr;
  decltype(&::viWrite) Write = nullptr;
  decltype(&::viReadToFile) ReadToFile = nullptr;
  decltype(&::viReadSTB) ReadSTB = nullptr;
  decltype(&::viClear) Clear = nullptr;
  decltype(&::viGpibControlREN) GpibControlREN = nullptr;
  std::string Origin = {};  // "VISA library: " and the file; empty where a test made the table
};

struct Ni488Table {
  decltype(&::ibfind) Find = nullptr;
  decltype(&::ibconfig) Config = nullptr;
  decltype(&::ibsic) SendInterfaceClear = nullptr;
  decltype(&::ibsre) RemoteEnable = nullptr;
  decltype(&::ibcmd) Command = nullptr;
  decltype(&::ibwrt) Write = nullptr;
  decltype(&::ibrd) Read = nullptr;
  decltype(&::ibeos) EndOfString = nullptr;
  decltype(&::ibeot) EndOfTransfer = nullptr;
  decltype(&::ibtmo) TimeOut = nullptr;
  decltype(&::ReadStatusByte) ReadStatusByte = nullptr;
  decltype(&::ThreadIbsta) Status = nullptr;
  decltype(&::ThreadIberr) ErrorCode = nullptr;
  decltype(&::ThreadIbcntl) Count = nullptr;
  // Null where the library lacks them; the status then comes from the three calls above.
  decltype(&::RegisterGpibGlobalsForThread) RegisterGlobals = nullptr;
  decltype(&::UnregisterGpibGlobalsForThread) UnregisterGlobals = nullptr;
  std::string Origin = {};
};

struct Usb488Table {
  decltype(&::UsbInitialize) Initialize = nullptr;
  decltype(&::UsbFinalize) Finalize = nullptr;
  decltype(&::UsbOpenDevice) OpenDevice = nullptr;
  decltype(&::UsbCloseDevice) CloseDevice = nullptr;
  decltype(&::UsbSendTextData) SendTextData = nullptr;
  decltype(&::UsbReceiveTextData) ReceiveTextData = nullptr;
  decltype(&::UsbGetDataCount) GetDataCount = nullptr;
  decltype(&::UsbGetStatus) GetStatus = nullptr;
  decltype(&::UsbGetErrorCode) GetErrorCode = nullptr;
  decltype(&::UsbSTBQuery) StatusByteQuery = nullptr;
  decltype(&::UsbSetTimeout) SetTimeout = nullptr;
  decltype(&::UsbDevClear) DeviceClear = nullptr;
  decltype(&::UsbSetIFC) SetInterfaceClear = nullptr;
  decltype(&::UsbEnableRemote) EnableRemote = nullptr;
  decltype(&::UsbEnableLocal) EnableLocal = nullptr;
  decltype(&::UsbCLS) ClearStatus = nullptr;
  std::string Origin = {};
};

struct Ieee32mTable {
  decltype(&::_ieee_board_present) BoardPresent = nullptr;
  decltype(&::_ieee_initialize) Initialize = nullptr;
  decltype(&::_ieee_transmit) Transmit = nullptr;
  decltype(&::_ieee_receive) Receive = nullptr;
  decltype(&::_ieee_spoll) SerialPoll = nullptr;
  decltype(&::_ieee_settimeout) SetTimeout = nullptr;
  decltype(&::_ieee_setinputEOS) SetInputEos = nullptr;
  std::string Origin = {};
};

// Which shared library an interface uses: the default names, one file, or none at all.
struct LibraryChoice {
  bool none = false;
  std::string file;      // empty: the default names
  bool builtin = false;  // VISA: that of the program itself (builtin_visa.h)
};

// What became of one library, for a person; nothing but its title as long as nobody needed it.
struct LibraryState {
  std::string Title;                       // "VISA"
  std::string LoadedFrom = {};             // file, empty: not loaded
  std::vector<std::string> Failures = {};  // "name: reason" of each file that the last search did not load
};

// The bound table, or null with the reason in *problem (never null). Called again after a failure, so that
// a library that was installed meanwhile is found. The table lives as long as the loader.
template <typename Table>
using LibraryLoader = std::function<const Table*(std::string* problem)>;

// Loaders that look for the library's usual names in `programFolder`, then where the system loads libraries
// from. A choice with a file tries only that one. What becomes of it is written into *state. On Linux the
// program's own VISA serves where none is found and the kernel knows a USBTMC device.
LibraryLoader<VisaTable> VisaLoader(const LibraryChoice& choice, const std::string& programFolder,
                                    const std::shared_ptr<LibraryState>& state);
LibraryLoader<Ni488Table> Ni488Loader(const LibraryChoice& choice, const std::string& programFolder,
                                      const std::shared_ptr<LibraryState>& state);
LibraryLoader<Usb488Table> Usb488Loader(const LibraryChoice& choice, const std::string& programFolder,
                                        const std::shared_ptr<LibraryState>& state);
LibraryLoader<Ieee32mTable> Ieee32mLoader(const LibraryChoice& choice, const std::string& programFolder,
                                          const std::shared_ptr<LibraryState>& state);

}  // namespace corlune
