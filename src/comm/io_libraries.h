// The I/O libraries as tables of function pointers, bound when a back-end first needs them. Tests fill a
// table with functions of their own.
#pragma once

#include <functional>
#include <string>

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
};

struct Ieee32mTable {
  decltype(&::_ieee_board_present) BoardPresent = nullptr;
  decltype(&::_ieee_initialize) Initialize = nullptr;
  decltype(&::_ieee_transmit) Transmit = nullptr;
  decltype(&::_ieee_receive) Receive = nullptr;
  decltype(&::_ieee_spoll) SerialPoll = nullptr;
  decltype(&::_ieee_settimeout) SetTimeout = nullptr;
  decltype(&::_ieee_setinputEOS) SetInputEos = nullptr;
};

// Which shared library an interface uses: the default names, one file, or none at all.
struct LibraryChoice {
  bool none = false;
  std::string file;  // empty: the default names
};

// The bound table, or null with the reason in *problem (never null). Called again after a failure, so that
// a library that was installed meanwhile is found. The table lives as long as the loader.
template <typename Table>
using LibraryLoader = std::function<const Table*(std::string* problem)>;

// Loaders that look for the library's usual names in `programFolder`, then where the system loads libraries
// from. A choice with a file tries only that one.
LibraryLoader<VisaTable> VisaLoader(const LibraryChoice& choice, const std::string& programFolder);
LibraryLoader<Ni488Table> Ni488Loader(const LibraryChoice& choice, const std::string& programFolder);
LibraryLoader<Usb488Table> Usb488Loader(const LibraryChoice& choice, const std::string& programFolder);
LibraryLoader<Ieee32mTable> Ieee32mLoader(const LibraryChoice& choice, const std::string& programFolder);

}  // namespace corlune
