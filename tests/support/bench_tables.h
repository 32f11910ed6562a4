// The libraries of the virtual bench that stands in this process, as the back-ends bind them.
#pragma once

#include <string>

#include "comm/io_libraries.h"
#include "standins/virtual_instrument/virtual_faces.h"

namespace corlune::testing {

struct BenchTables {
  VisaTable visa{&viOpenDefaultRM, &viFindRsrc, &viFindNext,   &viOpen,    &viClose, &viSetAttribute,
                 &viRead,          &viWrite,    &viReadToFile, &viReadSTB, &viClear, &viGpibControlREN};
  Ni488Table ni488{&ibfind,
                   &ibconfig,
                   &ibsic,
                   &ibsre,
                   &ibcmd,
                   &ibwrt,
                   &ibrd,
                   &ibeos,
                   &ibeot,
                   &ibtmo,
                   &ReadStatusByte,
                   &ThreadIbsta,
                   &ThreadIberr,
                   &ThreadIbcntl,
                   &RegisterGpibGlobalsForThread,
                   &UnregisterGpibGlobalsForThread};
  Usb488Table usb488{&UsbInitialize,   &UsbFinalize,        &UsbOpenDevice,   &UsbCloseDevice,
                     &UsbSendTextData, &UsbReceiveTextData, &UsbGetDataCount, &UsbGetStatus,
                     &UsbGetErrorCode, &UsbSTBQuery,        &UsbSetTimeout,   &UsbDevClear,
                     &UsbSetIFC,       &UsbEnableRemote,    &UsbEnableLocal,  &UsbCLS};
  Ieee32mTable ieee32m{&_ieee_board_present, &_ieee_initialize, &_ieee_transmit,   &_ieee_receive,
                       &_ieee_spoll,         &_ieee_settimeout, &_ieee_setinputEOS};
};

// The table must outlive the loader.
template <class Table>
LibraryLoader<Table> LoaderOf(const Table& table) {
  return [&table](std::string*) { return &table; };
}

}  // namespace corlune::testing
