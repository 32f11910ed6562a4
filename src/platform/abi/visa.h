/* C interface of a VISA library: types, values and operations as the VISA standard (VPP-4.3, VPP-4.3.2)
 * publishes them, as far as a client of message-based instruments uses them.
 *
 * A client takes pointer types from the declarations (decltype(&viOpen)) and resolves the symbols at run
 * time; nothing links against them. */
#ifndef CORLUNE_PLATFORM_ABI_VISA_H
#define CORLUNE_PLATFORM_ABI_VISA_H

#include <stdint.h>

#include "platform/abi/library_call.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Types ---- */

typedef int8_t ViInt8;
typedef uint8_t ViUInt8;
typedef int16_t ViInt16;
typedef uint16_t ViUInt16;
typedef int32_t ViInt32;
typedef uint32_t ViUInt32;
typedef int64_t ViInt64;
typedef uint64_t ViUInt64;
typedef char ViChar;
typedef uint8_t ViByte;
typedef void* ViAddr;
typedef uint16_t ViBoolean;
typedef double ViReal64;

typedef ViInt8* ViPInt8;
typedef ViUInt8* ViPUInt8;
typedef ViInt16* ViPInt16;
typedef ViUInt16* ViPUInt16;
typedef ViInt32* ViPInt32;
typedef ViUInt32* ViPUInt32;
typedef ViChar* ViPChar;
typedef ViByte* ViPByte;
typedef ViAddr* ViPAddr;
typedef ViBoolean* ViPBoolean;

typedef ViPByte ViBuf;
typedef ViPByte ViPBuf;
typedef const ViByte* ViConstBuf;
typedef ViPChar ViString;
typedef ViPChar ViPString;
typedef const ViChar* ViConstString;
typedef ViString ViRsrc;
typedef ViString ViPRsrc;
typedef ViConstString ViConstRsrc;
typedef ViString ViKeyId;
typedef ViConstString ViConstKeyId;

typedef ViInt32 ViStatus;
typedef ViUInt32 ViVersion;
typedef ViUInt32 ViObject;
typedef ViUInt32* ViPObject;
typedef ViObject ViSession;
typedef ViSession* ViPSession;
typedef ViObject ViFindList;
typedef ViFindList* ViPFindList;
typedef ViObject ViEvent;
typedef ViEvent* ViPEvent;
typedef ViUInt32 ViAttr;
typedef ViUInt32 ViAccessMode;
typedef ViUInt32 ViEventType;
typedef ViEventType* ViPEventType;
typedef ViUInt32 ViEventFilter;
typedef ViUInt32 ViJobId;
typedef ViJobId* ViPJobId;

/* As wide as a pointer: an attribute's value can be an address. */
#if UINTPTR_MAX > 0xFFFFFFFFU
typedef ViUInt64 ViAttrState;
typedef ViUInt64 ViBusAddress;
typedef ViUInt64 ViBusSize;
#else
typedef ViUInt32 ViAttrState;
typedef ViUInt32 ViBusAddress;
typedef ViUInt32 ViBusSize;
#endif

typedef ViStatus(CORLUNE_LIBRARY_CALL* ViHndlr)(ViSession vi, ViEventType eventType, ViEvent event,
                                                ViAddr userHandle);

#define VI_NULL 0
#define VI_TRUE 1
#define VI_FALSE 0

#define VI_SPEC_VERSION 0x00500800U
#define VI_FIND_BUFLEN 256

/* ---- Completion codes: zero and above succeed, positive ones say more; negative ones are errors ---- */

#define VI_SUCCESS 0
#define VI_SUCCESS_EVENT_EN 0x3FFF0002
#define VI_SUCCESS_EVENT_DIS 0x3FFF0003
#define VI_SUCCESS_QUEUE_EMPTY 0x3FFF0004
#define VI_SUCCESS_TERM_CHAR 0x3FFF0005
#define VI_SUCCESS_MAX_CNT 0x3FFF0006
#define VI_SUCCESS_DEV_NPRESENT 0x3FFF007D
#define VI_SUCCESS_TRIG_MAPPED 0x3FFF007E
#define VI_SUCCESS_QUEUE_NEMPTY 0x3FFF0080
#define VI_SUCCESS_NCHAIN 0x3FFF0098
#define VI_SUCCESS_NESTED_SHARED 0x3FFF0099
#define VI_SUCCESS_NESTED_EXCLUSIVE 0x3FFF009A
#define VI_SUCCESS_SYNC 0x3FFF009B

#define VI_WARN_QUEUE_OVERFLOW 0x3FFF000C
#define VI_WARN_CONFIG_NLOADED 0x3FFF0077
#define VI_WARN_NULL_OBJECT 0x3FFF0082
#define VI_WARN_NSUP_ATTR_STATE 0x3FFF0084
#define VI_WARN_UNKNOWN_STATUS 0x3FFF0085
#define VI_WARN_NSUP_BUF 0x3FFF0088
#define VI_WARN_EXT_FUNC_NIMPL 0x3FFF00A9

/* Errors are 0xBFFF0000 and above as 32-bit words. */
#define CORLUNE_VI_ERROR(code) (INT32_MIN + 0x3FFF0000 + (code))

#define VI_ERROR_SYSTEM_ERROR CORLUNE_VI_ERROR(0x00)
#define VI_ERROR_INV_OBJECT CORLUNE_VI_ERROR(0x0E)
#define VI_ERROR_INV_SESSION CORLUNE_VI_ERROR(0x0E)
#define VI_ERROR_RSRC_LOCKED CORLUNE_VI_ERROR(0x0F)
#define VI_ERROR_INV_EXPR CORLUNE_VI_ERROR(0x10)
#define VI_ERROR_RSRC_NFOUND CORLUNE_VI_ERROR(0x11)
#define VI_ERROR_INV_RSRC_NAME CORLUNE_VI_ERROR(0x12)
#define VI_ERROR_INV_ACC_MODE CORLUNE_VI_ERROR(0x13)
#define VI_ERROR_TMO CORLUNE_VI_ERROR(0x15) /* 0xBFFF0015 */
#define VI_ERROR_CLOSING_FAILED CORLUNE_VI_ERROR(0x16)
#define VI_ERROR_INV_DEGREE CORLUNE_VI_ERROR(0x1B)
#define VI_ERROR_INV_JOB_ID CORLUNE_VI_ERROR(0x1C)
#define VI_ERROR_NSUP_ATTR CORLUNE_VI_ERROR(0x1D)
#define VI_ERROR_NSUP_ATTR_STATE CORLUNE_VI_ERROR(0x1E)
#define VI_ERROR_ATTR_READONLY CORLUNE_VI_ERROR(0x1F)
#define VI_ERROR_INV_LOCK_TYPE CORLUNE_VI_ERROR(0x20)
#define VI_ERROR_INV_ACCESS_KEY CORLUNE_VI_ERROR(0x21)
#define VI_ERROR_INV_EVENT CORLUNE_VI_ERROR(0x26)
#define VI_ERROR_INV_MECH CORLUNE_VI_ERROR(0x27)
#define VI_ERROR_HNDLR_NINSTALLED CORLUNE_VI_ERROR(0x28)
#define VI_ERROR_INV_HNDLR_REF CORLUNE_VI_ERROR(0x29)
#define VI_ERROR_INV_CONTEXT CORLUNE_VI_ERROR(0x2A)
#define VI_ERROR_QUEUE_OVERFLOW CORLUNE_VI_ERROR(0x2D)
#define VI_ERROR_NENABLED CORLUNE_VI_ERROR(0x2F)
#define VI_ERROR_ABORT CORLUNE_VI_ERROR(0x30)
#define VI_ERROR_RAW_WR_PROT_VIOL CORLUNE_VI_ERROR(0x34)
#define VI_ERROR_RAW_RD_PROT_VIOL CORLUNE_VI_ERROR(0x35)
#define VI_ERROR_OUTP_PROT_VIOL CORLUNE_VI_ERROR(0x36)
#define VI_ERROR_INP_PROT_VIOL CORLUNE_VI_ERROR(0x37)
#define VI_ERROR_BERR CORLUNE_VI_ERROR(0x38)
#define VI_ERROR_IN_PROGRESS CORLUNE_VI_ERROR(0x39)
#define VI_ERROR_INV_SETUP CORLUNE_VI_ERROR(0x3A)
#define VI_ERROR_QUEUE_ERROR CORLUNE_VI_ERROR(0x3B)
#define VI_ERROR_ALLOC CORLUNE_VI_ERROR(0x3C)
#define VI_ERROR_INV_MASK CORLUNE_VI_ERROR(0x3D)
#define VI_ERROR_IO CORLUNE_VI_ERROR(0x3E)
#define VI_ERROR_INV_FMT CORLUNE_VI_ERROR(0x3F)
#define VI_ERROR_NSUP_FMT CORLUNE_VI_ERROR(0x41)
#define VI_ERROR_LINE_IN_USE CORLUNE_VI_ERROR(0x42)
#define VI_ERROR_NSUP_MODE CORLUNE_VI_ERROR(0x46)
#define VI_ERROR_SRQ_NOCCURRED CORLUNE_VI_ERROR(0x4A)
#define VI_ERROR_INV_SPACE CORLUNE_VI_ERROR(0x4E)
#define VI_ERROR_INV_OFFSET CORLUNE_VI_ERROR(0x51)
#define VI_ERROR_INV_WIDTH CORLUNE_VI_ERROR(0x52)
#define VI_ERROR_NSUP_OFFSET CORLUNE_VI_ERROR(0x54)
#define VI_ERROR_NSUP_VAR_WIDTH CORLUNE_VI_ERROR(0x55)
#define VI_ERROR_WINDOW_NMAPPED CORLUNE_VI_ERROR(0x57)
#define VI_ERROR_RESP_PENDING CORLUNE_VI_ERROR(0x59)
#define VI_ERROR_NLISTENERS CORLUNE_VI_ERROR(0x5F)
#define VI_ERROR_NCIC CORLUNE_VI_ERROR(0x60)
#define VI_ERROR_NSYS_CNTLR CORLUNE_VI_ERROR(0x61)
#define VI_ERROR_NSUP_OPER CORLUNE_VI_ERROR(0x67)
#define VI_ERROR_INTR_PENDING CORLUNE_VI_ERROR(0x68)
#define VI_ERROR_ASRL_PARITY CORLUNE_VI_ERROR(0x6A)
#define VI_ERROR_ASRL_FRAMING CORLUNE_VI_ERROR(0x6B)
#define VI_ERROR_ASRL_OVERRUN CORLUNE_VI_ERROR(0x6C)
#define VI_ERROR_TRIG_NMAPPED CORLUNE_VI_ERROR(0x6E)
#define VI_ERROR_NSUP_ALIGN_OFFSET CORLUNE_VI_ERROR(0x70)
#define VI_ERROR_USER_BUF CORLUNE_VI_ERROR(0x71)
#define VI_ERROR_RSRC_BUSY CORLUNE_VI_ERROR(0x72)
#define VI_ERROR_NSUP_WIDTH CORLUNE_VI_ERROR(0x76)
#define VI_ERROR_INV_PARAMETER CORLUNE_VI_ERROR(0x78)
#define VI_ERROR_INV_PROT CORLUNE_VI_ERROR(0x79)
#define VI_ERROR_INV_SIZE CORLUNE_VI_ERROR(0x7B)
#define VI_ERROR_WINDOW_MAPPED CORLUNE_VI_ERROR(0x80)
#define VI_ERROR_NIMPL_OPER CORLUNE_VI_ERROR(0x81)
#define VI_ERROR_INV_LENGTH CORLUNE_VI_ERROR(0x83)
#define VI_ERROR_INV_MODE CORLUNE_VI_ERROR(0x91)
#define VI_ERROR_SESN_NLOCKED CORLUNE_VI_ERROR(0x9C)
#define VI_ERROR_MEM_NSHARED CORLUNE_VI_ERROR(0x9D)
#define VI_ERROR_LIBRARY_NFOUND CORLUNE_VI_ERROR(0x9E)
#define VI_ERROR_NSUP_INTR CORLUNE_VI_ERROR(0x9F)
#define VI_ERROR_INV_LINE CORLUNE_VI_ERROR(0xA0)
#define VI_ERROR_FILE_ACCESS CORLUNE_VI_ERROR(0xA1)
#define VI_ERROR_FILE_IO CORLUNE_VI_ERROR(0xA2)
#define VI_ERROR_NSUP_LINE CORLUNE_VI_ERROR(0xA3)
#define VI_ERROR_NSUP_MECH CORLUNE_VI_ERROR(0xA4)
#define VI_ERROR_INTF_NUM_NCONFIG CORLUNE_VI_ERROR(0xA5)
#define VI_ERROR_CONN_LOST CORLUNE_VI_ERROR(0xA6)
#define VI_ERROR_MACHINE_NAVAIL CORLUNE_VI_ERROR(0xA7)
#define VI_ERROR_NPERMISSION CORLUNE_VI_ERROR(0xA8)

/* ---- Attributes ---- */

#define VI_ATTR_RSRC_CLASS 0xBFFF0001U
#define VI_ATTR_RSRC_NAME 0xBFFF0002U
#define VI_ATTR_RSRC_IMPL_VERSION 0x3FFF0003U
#define VI_ATTR_RSRC_LOCK_STATE 0x3FFF0004U
#define VI_ATTR_MAX_QUEUE_LENGTH 0x3FFF0005U
#define VI_ATTR_USER_DATA_32 0x3FFF0007U
#define VI_ATTR_USER_DATA_64 0x3FFF000AU
#define VI_ATTR_SEND_END_EN 0x3FFF0016U
#define VI_ATTR_TERMCHAR 0x3FFF0018U
#define VI_ATTR_TMO_VALUE 0x3FFF001AU
#define VI_ATTR_GPIB_READDR_EN 0x3FFF001BU
#define VI_ATTR_IO_PROT 0x3FFF001CU
#define VI_ATTR_DMA_ALLOW_EN 0x3FFF001EU
#define VI_ATTR_RD_BUF_OPER_MODE 0x3FFF002AU
#define VI_ATTR_RD_BUF_SIZE 0x3FFF002BU
#define VI_ATTR_WR_BUF_OPER_MODE 0x3FFF002DU
#define VI_ATTR_WR_BUF_SIZE 0x3FFF002EU
#define VI_ATTR_SUPPRESS_END_EN 0x3FFF0036U
#define VI_ATTR_TERMCHAR_EN 0x3FFF0038U
#define VI_ATTR_MANF_NAME 0xBFFF0072U
#define VI_ATTR_MODEL_NAME 0xBFFF0077U
#define VI_ATTR_RM_SESSION 0x3FFF00C4U
#define VI_ATTR_MANF_ID 0x3FFF00D9U
#define VI_ATTR_MODEL_CODE 0x3FFF00DFU
#define VI_ATTR_INTF_INST_NAME 0xBFFF00E9U
#define VI_ATTR_RSRC_SPEC_VERSION 0x3FFF0170U
#define VI_ATTR_INTF_TYPE 0x3FFF0171U
#define VI_ATTR_GPIB_PRIMARY_ADDR 0x3FFF0172U
#define VI_ATTR_GPIB_SECONDARY_ADDR 0x3FFF0173U
#define VI_ATTR_RSRC_MANF_NAME 0xBFFF0174U
#define VI_ATTR_RSRC_MANF_ID 0x3FFF0175U
#define VI_ATTR_INTF_NUM 0x3FFF0176U
#define VI_ATTR_TRIG_ID 0x3FFF0177U
#define VI_ATTR_GPIB_REN_STATE 0x3FFF0181U
#define VI_ATTR_DEV_STATUS_BYTE 0x3FFF0189U
#define VI_ATTR_FILE_APPEND_EN 0x3FFF0192U
#define VI_ATTR_4882_COMPLIANT 0x3FFF019FU
#define VI_ATTR_USB_SERIAL_NUM 0xBFFF01A0U
#define VI_ATTR_USB_INTFC_NUM 0x3FFF01A1U
#define VI_ATTR_USB_PROTOCOL 0x3FFF01A7U
#define VI_ATTR_USB_MAX_INTR_SIZE 0x3FFF01AFU
#define VI_ATTR_JOB_ID 0x3FFF4006U
#define VI_ATTR_EVENT_TYPE 0x3FFF4010U
#define VI_ATTR_STATUS 0x3FFF4025U
#define VI_ATTR_RET_COUNT_32 0x3FFF4026U
#define VI_ATTR_BUFFER 0xBFFF4027U
#define VI_ATTR_RET_COUNT_64 0x3FFF4028U
#define VI_ATTR_OPER_NAME 0xBFFF4042U
#if UINTPTR_MAX > 0xFFFFFFFFU
#define VI_ATTR_USER_DATA VI_ATTR_USER_DATA_64
#define VI_ATTR_RET_COUNT VI_ATTR_RET_COUNT_64
#else
#define VI_ATTR_USER_DATA VI_ATTR_USER_DATA_32
#define VI_ATTR_RET_COUNT VI_ATTR_RET_COUNT_32
#endif

/* ---- Attribute and argument values ---- */

#define VI_NO_LOCK 0
#define VI_EXCLUSIVE_LOCK 1
#define VI_SHARED_LOCK 2
#define VI_LOAD_CONFIG 4

#define VI_TMO_IMMEDIATE 0U
#define VI_TMO_INFINITE 0xFFFFFFFFU

#define VI_INTF_GPIB 1
#define VI_INTF_VXI 2
#define VI_INTF_GPIB_VXI 3
#define VI_INTF_ASRL 4
#define VI_INTF_PXI 5
#define VI_INTF_TCPIP 6
#define VI_INTF_USB 7

#define VI_PROT_NORMAL 1
#define VI_PROT_FDC 2
#define VI_PROT_HS488 3
#define VI_PROT_4882_STRS 4
#define VI_PROT_USBTMC_VENDOR 5

#define VI_STATE_ASSERTED 1
#define VI_STATE_UNASSERTED 0
#define VI_STATE_UNKNOWN (-1)

#define VI_GPIB_REN_DEASSERT 0
#define VI_GPIB_REN_ASSERT 1
#define VI_GPIB_REN_DEASSERT_GTL 2
#define VI_GPIB_REN_ASSERT_ADDRESS 3
#define VI_GPIB_REN_ASSERT_LLO 4
#define VI_GPIB_REN_ASSERT_ADDRESS_LLO 5
#define VI_GPIB_REN_ADDRESS_GTL 6

#define VI_TRIG_ALL (-2)
#define VI_TRIG_SW (-1)
#define VI_TRIG_PROT_DEFAULT 0

#define VI_QUEUE 1
#define VI_HNDLR 2
#define VI_SUSPEND_HNDLR 4
#define VI_ALL_MECH 0xFFFF
#define VI_ANY_HNDLR 0

#define VI_EVENT_IO_COMPLETION 0x3FFF2009U
#define VI_EVENT_TRIG 0xBFFF200AU
#define VI_EVENT_SERVICE_REQ 0x3FFF200BU
#define VI_EVENT_CLEAR 0x3FFF200DU
#define VI_EVENT_EXCEPTION 0xBFFF200EU
#define VI_EVENT_USB_INTR 0x3FFF2037U
#define VI_ALL_ENABLED_EVENTS 0x3FFF7FFFU

#define VI_READ_BUF 1
#define VI_WRITE_BUF 2
#define VI_READ_BUF_DISCARD 4
#define VI_WRITE_BUF_DISCARD 8
#define VI_IO_IN_BUF 16
#define VI_IO_OUT_BUF 32
#define VI_IO_IN_BUF_DISCARD 64
#define VI_IO_OUT_BUF_DISCARD 128

#define VI_FLUSH_ON_ACCESS 1
#define VI_FLUSH_WHEN_FULL 2
#define VI_FLUSH_DISABLE 3

/* ---- Operations ---- */

#define VISA_OPERATION CORLUNE_LIBRARY_EXPORT ViStatus CORLUNE_LIBRARY_CALL

/* Resource manager; `desc` and the name buffers of viParseRsrcEx hold VI_FIND_BUFLEN characters. */
VISA_OPERATION viOpenDefaultRM(ViPSession sesn);
VISA_OPERATION viFindRsrc(ViSession sesn, ViConstString expr, ViPFindList findList, ViPUInt32 retcnt,
                          ViChar* desc);
VISA_OPERATION viFindNext(ViFindList findList, ViChar* desc);
VISA_OPERATION viParseRsrc(ViSession sesn, ViConstRsrc rsrcName, ViPUInt16 intfType, ViPUInt16 intfNum);
VISA_OPERATION viParseRsrcEx(ViSession sesn, ViConstRsrc rsrcName, ViPUInt16 intfType, ViPUInt16 intfNum,
                             ViChar* rsrcClass, ViChar* expandedUnaliasedName, ViChar* aliasIfExists);
VISA_OPERATION viOpen(ViSession sesn, ViConstRsrc rsrcName, ViAccessMode accessMode, ViUInt32 openTimeout,
                      ViPSession vi);

/* Every object. `attrState` of viGetAttribute points at a value of the attribute's own type. */
VISA_OPERATION viClose(ViObject vi);
VISA_OPERATION viSetAttribute(ViObject vi, ViAttr attrName, ViAttrState attrState);
VISA_OPERATION viGetAttribute(ViObject vi, ViAttr attrName, void* attrState);
VISA_OPERATION viStatusDesc(ViObject vi, ViStatus status, ViChar* desc);
VISA_OPERATION viTerminate(ViObject vi, ViUInt16 degree, ViJobId jobId);
VISA_OPERATION viLock(ViSession vi, ViAccessMode lockType, ViUInt32 timeout, ViConstKeyId requestedKey,
                      ViChar* accessKey);
VISA_OPERATION viUnlock(ViSession vi);

/* Events */
VISA_OPERATION viEnableEvent(ViSession vi, ViEventType eventType, ViUInt16 mechanism, ViEventFilter context);
VISA_OPERATION viDisableEvent(ViSession vi, ViEventType eventType, ViUInt16 mechanism);
VISA_OPERATION viDiscardEvents(ViSession vi, ViEventType eventType, ViUInt16 mechanism);
VISA_OPERATION viWaitOnEvent(ViSession vi, ViEventType inEventType, ViUInt32 timeout,
                             ViPEventType outEventType, ViPEvent outContext);
VISA_OPERATION viInstallHandler(ViSession vi, ViEventType eventType, ViHndlr handler, ViAddr userHandle);
VISA_OPERATION viUninstallHandler(ViSession vi, ViEventType eventType, ViHndlr handler, ViAddr userHandle);

/* Message-based transfer */
VISA_OPERATION viRead(ViSession vi, ViPBuf buf, ViUInt32 cnt, ViPUInt32 retCnt);
VISA_OPERATION viReadAsync(ViSession vi, ViPBuf buf, ViUInt32 cnt, ViPJobId jobId);
VISA_OPERATION viReadToFile(ViSession vi, ViConstString filename, ViUInt32 cnt, ViPUInt32 retCnt);
VISA_OPERATION viWrite(ViSession vi, ViConstBuf buf, ViUInt32 cnt, ViPUInt32 retCnt);
VISA_OPERATION viWriteAsync(ViSession vi, ViConstBuf buf, ViUInt32 cnt, ViPJobId jobId);
VISA_OPERATION viWriteFromFile(ViSession vi, ViConstString filename, ViUInt32 cnt, ViPUInt32 retCnt);
VISA_OPERATION viAssertTrigger(ViSession vi, ViUInt16 protocol);
VISA_OPERATION viReadSTB(ViSession vi, ViPUInt16 status);
VISA_OPERATION viClear(ViSession vi);
VISA_OPERATION viSetBuf(ViSession vi, ViUInt16 mask, ViUInt32 bufSize);
VISA_OPERATION viFlush(ViSession vi, ViUInt16 mask);
VISA_OPERATION viBufRead(ViSession vi, ViPBuf buf, ViUInt32 cnt, ViPUInt32 retCnt);
VISA_OPERATION viBufWrite(ViSession vi, ViConstBuf buf, ViUInt32 cnt, ViPUInt32 retCnt);

/* Interface specific */
VISA_OPERATION viGpibControlREN(ViSession vi, ViUInt16 mode);
VISA_OPERATION viGpibControlATN(ViSession vi, ViUInt16 mode);
VISA_OPERATION viGpibSendIFC(ViSession vi);
VISA_OPERATION viGpibCommand(ViSession vi, ViConstBuf cmd, ViUInt32 cnt, ViPUInt32 retCnt);
VISA_OPERATION viGpibPassControl(ViSession vi, ViUInt16 primAddr, ViUInt16 secAddr);
VISA_OPERATION viUsbControlOut(ViSession vi, ViInt16 bmRequestType, ViInt16 bRequest, ViUInt16 wValue,
                               ViUInt16 wIndex, ViUInt16 wLength, ViConstBuf buf);
VISA_OPERATION viUsbControlIn(ViSession vi, ViInt16 bmRequestType, ViInt16 bRequest, ViUInt16 wValue,
                              ViUInt16 wIndex, ViUInt16 wLength, ViPBuf buf, ViPUInt16 retCnt);

#ifdef __cplusplus
}
#endif

#endif
