// A VISA library whose resource manager does not open. With STUB_WITHOUT_CLEAR it lacks viClear.
#define CORLUNE_LIBRARY_EXPORT __attribute__((visibility("default")))
#include "platform/abi/visa.h"

ViStatus viOpenDefaultRM(ViPSession) {
  return VI_ERROR_SYSTEM_ERROR;
}
ViStatus viFindRsrc(ViSession, ViConstString, ViPFindList, ViPUInt32, ViChar*) {
  return VI_ERROR_SYSTEM_ERROR;
}
ViStatus viFindNext(ViFindList, ViChar*) {
  return VI_ERROR_SYSTEM_ERROR;
}
ViStatus viOpen(ViSession, ViConstRsrc, ViAccessMode, ViUInt32, ViPSession) {
  return VI_ERROR_SYSTEM_ERROR;
}
ViStatus viClose(ViObject) {
  return VI_SUCCESS;
}
ViStatus viSetAttribute(ViObject, ViAttr, ViAttrState) {
  return VI_SUCCESS;
}
ViStatus viRead(ViSession, ViPBuf, ViUInt32, ViPUInt32) {
  return VI_ERROR_SYSTEM_ERROR;
}
ViStatus viWrite(ViSession, ViConstBuf, ViUInt32, ViPUInt32) {
  return VI_ERROR_SYSTEM_ERROR;
}
ViStatus viReadToFile(ViSession, ViConstString, ViUInt32, ViPUInt32) {
  return VI_ERROR_SYSTEM_ERROR;
}
ViStatus viReadSTB(ViSession, ViPUInt16) {
  return VI_ERROR_SYSTEM_ERROR;
}
#ifndef STUB_WITHOUT_CLEAR
ViStatus viClear(ViSession) {
  return VI_ERROR_SYSTEM_ERROR;
}
#endif
ViStatus viGpibControlREN(ViSession, ViUInt16) {
  return VI_ERROR_SYSTEM_ERROR;
}
