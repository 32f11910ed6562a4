/* C interface of the IEEE_32M GPIB library. Bus actions are text commands handed to _ieee_transmit, such as
 * "UNT UNL TALK MTA LISTEN 5" and "DATA '*IDN?' EOI  10". A status is negative for an error, 0 for success
 * and positive for a time-out. */
#ifndef CORLUNE_PLATFORM_ABI_IEEE32M_H
#define CORLUNE_PLATFORM_ABI_IEEE32M_H

#include <stdint.h>

#include "platform/abi/library_call.h"

#ifdef __cplusplus
extern "C" {
#endif

#define IEEE32M_CALL(type) CORLUNE_LIBRARY_EXPORT type CORLUNE_LIBRARY_CALL

/* The library's own names begin with an underscore. */
/* NOLINTBEGIN(bugprone-reserved-identifier) */

/* Not 0: a board is present. */
IEEE32M_CALL(int32_t) _ieee_board_present(void);
/* Takes the controller's own address; `level` is 0. */
IEEE32M_CALL(int32_t) _ieee_initialize(int32_t address, int32_t level);
/* `length` in bytes, -1: up to the closing zero. */
IEEE32M_CALL(int32_t) _ieee_transmit(const char* command, int32_t length, int32_t* status);
/* One reply, or its next part, of the addressed talker: at most `size` bytes, `count` of them stored. Ends at
 * END and at the end-of-string character. */
IEEE32M_CALL(int32_t) _ieee_receive(char* buffer, int32_t size, int32_t* status, int32_t* count);
IEEE32M_CALL(int32_t) _ieee_spoll(int32_t address, uint8_t* statusByte, int32_t* status);
IEEE32M_CALL(int32_t) _ieee_settimeout(int32_t milliseconds);
/* The character that ends a read, 0: none. */
IEEE32M_CALL(int32_t) _ieee_setinputEOS(int32_t character);

/* NOLINTEND(bugprone-reserved-identifier) */

#ifdef __cplusplus
}
#endif

#endif
