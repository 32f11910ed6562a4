/* C interface of the USB488 library, as far as the program uses it. One device is open at a time. After
 * each call UsbGetStatus gives a status word and UsbGetErrorCode the reason of an error. */
#ifndef CORLUNE_PLATFORM_ABI_USB488_H
#define CORLUNE_PLATFORM_ABI_USB488_H

#include <stdint.h>

#include "platform/abi/library_call.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Bits of UsbGetStatus */
#define USB488_STATUS_ERROR 0x8000
#define USB488_STATUS_TIMEOUT 0x4000

/* UsbGetErrorCode: no device with the id is present */
#define USB488_ERROR_NO_DEVICE 7

#define USB488_CALL(type) CORLUNE_LIBRARY_EXPORT type CORLUNE_LIBRARY_CALL

USB488_CALL(int32_t) UsbInitialize(void);
USB488_CALL(int32_t) UsbFinalize(void);
/* Handle of the device, positive; 0 or less when it cannot be opened. */
USB488_CALL(int32_t) UsbOpenDevice(int32_t id);
USB488_CALL(int32_t) UsbCloseDevice(int32_t handle);
/* One whole message; the library marks its end. `length` is in bytes. */
USB488_CALL(int32_t) UsbSendTextData(int32_t handle, const char* text, int32_t length);
/* At most `size` bytes of the reply, not closed by a zero; a further call continues a longer one. */
USB488_CALL(int32_t) UsbReceiveTextData(int32_t handle, char* buffer, int32_t size);
/* Bytes that the last receive stored. */
USB488_CALL(int32_t) UsbGetDataCount(void);
USB488_CALL(int32_t) UsbGetStatus(void);
USB488_CALL(int32_t) UsbGetErrorCode(void);
/* Status byte of the device, 0..255. */
USB488_CALL(int32_t) UsbSTBQuery(int32_t handle, int32_t* statusByte);
USB488_CALL(int32_t) UsbSetTimeout(int32_t handle, int32_t milliseconds);
USB488_CALL(int32_t) UsbDevClear(int32_t handle);
USB488_CALL(int32_t) UsbSetIFC(int32_t handle);
USB488_CALL(int32_t) UsbEnableRemote(int32_t handle);
USB488_CALL(int32_t) UsbEnableLocal(int32_t handle);
/* Clears status word and error code. */
USB488_CALL(int32_t) UsbCLS(void);

#ifdef __cplusplus
}
#endif

#endif
