// A VISA library of the program's own for Linux machines without one: the operations that the USBTMC back-end
// uses, over the kernel's USBTMC devices. Resource names are "USB0::0x3A1F::0x2220::<serial>::INSTR" as other
// VISA libraries write them; letter case does not matter.
#pragma once

#include "comm/io_libraries.h"
#include "platform/usbtmc_devices.h"

namespace corlune {

// C function pointers carry no object: the operations work on the devices of the last call, which must
// outlive every use of the table.
const VisaTable& BuiltinVisa(UsbTmcDevices& devices);

}  // namespace corlune
