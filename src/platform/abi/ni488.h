/* C interface of an NI-488.2 library, as far as the program uses it.
 *
 * After each call the library leaves a status word (ibsta), an error code (iberr) and a byte count (ibcnt,
 * ibcntl). A thread reads them through ThreadIbsta, ThreadIberr and ThreadIbcntl, or from variables that it
 * registered with RegisterGpibGlobalsForThread. */
#ifndef CORLUNE_PLATFORM_ABI_NI488_H
#define CORLUNE_PLATFORM_ABI_NI488_H

#include <stdint.h>

#include "platform/abi/library_call.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Bits of ibsta */
#define NI488_ERR 0x8000
#define NI488_TIMO 0x4000
#define NI488_END 0x2000
#define NI488_SRQI 0x1000
#define NI488_RQS 0x0800
#define NI488_CMPL 0x0100
#define NI488_CIC 0x0020
#define NI488_ATN 0x0010
#define NI488_TACS 0x0008
#define NI488_LACS 0x0004

/* iberr */
#define NI488_EDVR 0 /* operating system error */
#define NI488_ECIC 1 /* not controller in charge */
#define NI488_ENOL 2 /* no listener */
#define NI488_EADR 3 /* board not addressed for the transfer */
#define NI488_EARG 4 /* invalid argument */
#define NI488_EABO 6 /* operation aborted, also by its time-out */
#define NI488_ENEB 7 /* no interface board */

#define NI488_IBC_AUTOPOLL 0x0007 /* ibconfig option: automatic serial polling */

/* ibeos: low byte the end-of-string character, high byte flags */
#define NI488_EOS_REOS 0x0400 /* end a read on the character */
#define NI488_EOS_BIN 0x1000  /* compare 8 bits */

#define NI488_CALL(type) CORLUNE_LIBRARY_EXPORT type CORLUNE_LIBRARY_CALL

/* Descriptor of the board or device, -1 when the name is unknown. */
NI488_CALL(int) ibfind(const char* name);
/* These return ibsta. */
NI488_CALL(int) ibconfig(int ud, int option, int value);
NI488_CALL(int) ibsic(int ud);
NI488_CALL(int) ibsre(int ud, int on);
NI488_CALL(int) ibcmd(int ud, const void* commands, long count);
NI488_CALL(int) ibwrt(int ud, const void* data, long count);
NI488_CALL(int) ibrd(int ud, void* buffer, long count);
NI488_CALL(int) ibeos(int ud, int value);
NI488_CALL(int) ibeot(int ud, int on);
NI488_CALL(int) ibtmo(int ud, int code);
NI488_CALL(void) ReadStatusByte(int board, short address, short* result);

NI488_CALL(int) ThreadIbsta(void);
NI488_CALL(int) ThreadIberr(void);
NI488_CALL(long) ThreadIbcntl(void);
/* Results: 0 registered, 1 this thread is registered already, 2 and 3 the library cannot keep it. A
 * library may lack both calls. */
NI488_CALL(int) RegisterGpibGlobalsForThread(int* ibsta, int* iberr, int* ibcnt, long* ibcntl);
NI488_CALL(int) UnregisterGpibGlobalsForThread(void);

#ifdef __cplusplus
}
#endif

#endif
