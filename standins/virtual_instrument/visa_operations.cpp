// The C operations of a VISA library over the face that SetFace chose.

#include "standins/virtual_instrument/export.h"
// The declarations below come with the mark above.
#include "standins/virtual_instrument/chosen_face.h"
#include "standins/virtual_instrument/visa_face.h"

using corlune::VisaFace;

namespace {

template <class Operation>
ViStatus WithFace(Operation operation) {
  return corlune::WithFace<VisaFace>(ViStatus{VI_ERROR_SYSTEM_ERROR}, operation);
}

}  // namespace

// ---- Resource manager ----

ViStatus CORLUNE_LIBRARY_CALL viOpenDefaultRM(ViPSession sesn) {
  return WithFace([=](VisaFace& face) { return face.OpenDefaultRM(sesn); });
}

ViStatus CORLUNE_LIBRARY_CALL viFindRsrc(ViSession sesn, ViConstString expr, ViPFindList findList,
                                         ViPUInt32 retcnt, ViChar* desc) {
  return WithFace([=](VisaFace& face) { return face.FindRsrc(sesn, expr, findList, retcnt, desc); });
}

ViStatus CORLUNE_LIBRARY_CALL viFindNext(ViFindList findList, ViChar* desc) {
  return WithFace([=](VisaFace& face) { return face.FindNext(findList, desc); });
}

ViStatus CORLUNE_LIBRARY_CALL viParseRsrc(ViSession sesn, ViConstRsrc rsrcName, ViPUInt16 intfType,
                                          ViPUInt16 intfNum) {
  return WithFace([=](VisaFace& face) {
    return face.ParseRsrc(sesn, rsrcName, intfType, intfNum, nullptr, nullptr, nullptr);
  });
}

ViStatus CORLUNE_LIBRARY_CALL viParseRsrcEx(ViSession sesn, ViConstRsrc rsrcName, ViPUInt16 intfType,
                                            ViPUInt16 intfNum, ViChar* rsrcClass,
                                            ViChar* expandedUnaliasedName, ViChar* aliasIfExists) {
  return WithFace([=](VisaFace& face) {
    return face.ParseRsrc(sesn, rsrcName, intfType, intfNum, rsrcClass, expandedUnaliasedName, aliasIfExists);
  });
}

// An instrument opens at once or not at all, so the time-out has nothing to do.
ViStatus CORLUNE_LIBRARY_CALL viOpen(ViSession sesn, ViConstRsrc rsrcName, ViAccessMode accessMode, ViUInt32,
                                     ViPSession vi) {
  return WithFace([=](VisaFace& face) { return face.Open(sesn, rsrcName, accessMode, vi); });
}

// ---- Every object ----

ViStatus CORLUNE_LIBRARY_CALL viClose(ViObject vi) {
  return WithFace([=](VisaFace& face) { return face.Close(vi); });
}

ViStatus CORLUNE_LIBRARY_CALL viSetAttribute(ViObject vi, ViAttr attrName, ViAttrState attrState) {
  return WithFace([=](VisaFace& face) { return face.SetAttribute(vi, attrName, attrState); });
}

ViStatus CORLUNE_LIBRARY_CALL viGetAttribute(ViObject vi, ViAttr attrName, void* attrState) {
  return WithFace([=](VisaFace& face) { return face.GetAttribute(vi, attrName, attrState); });
}

ViStatus CORLUNE_LIBRARY_CALL viStatusDesc(ViObject vi, ViStatus status, ViChar* desc) {
  return WithFace([=](VisaFace& face) { return face.StatusDesc(vi, status, desc); });
}

ViStatus CORLUNE_LIBRARY_CALL viLock(ViSession vi, ViAccessMode lockType, ViUInt32 timeout, ViConstKeyId,
                                     ViChar*) {
  return WithFace([=](VisaFace& face) { return face.Lock(vi, lockType, timeout); });
}

ViStatus CORLUNE_LIBRARY_CALL viUnlock(ViSession vi) {
  return WithFace([=](VisaFace& face) { return face.Unlock(vi); });
}

// ---- Events ----

ViStatus CORLUNE_LIBRARY_CALL viEnableEvent(ViSession vi, ViEventType eventType, ViUInt16 mechanism,
                                            ViEventFilter) {
  return WithFace([=](VisaFace& face) { return face.EnableEvent(vi, eventType, mechanism); });
}

ViStatus CORLUNE_LIBRARY_CALL viDisableEvent(ViSession vi, ViEventType eventType, ViUInt16 mechanism) {
  return WithFace([=](VisaFace& face) { return face.DisableEvent(vi, eventType, mechanism); });
}

ViStatus CORLUNE_LIBRARY_CALL viDiscardEvents(ViSession vi, ViEventType eventType, ViUInt16 mechanism) {
  return WithFace([=](VisaFace& face) { return face.DiscardEvents(vi, eventType, mechanism); });
}

ViStatus CORLUNE_LIBRARY_CALL viWaitOnEvent(ViSession vi, ViEventType inEventType, ViUInt32 timeout,
                                            ViPEventType outEventType, ViPEvent outContext) {
  return WithFace(
      [=](VisaFace& face) { return face.WaitOnEvent(vi, inEventType, timeout, outEventType, outContext); });
}

// ---- Message-based transfer ----

ViStatus CORLUNE_LIBRARY_CALL viRead(ViSession vi, ViPBuf buf, ViUInt32 cnt, ViPUInt32 retCnt) {
  return WithFace([=](VisaFace& face) { return face.Read(vi, buf, cnt, retCnt); });
}

ViStatus CORLUNE_LIBRARY_CALL viReadToFile(ViSession vi, ViConstString filename, ViUInt32 cnt,
                                           ViPUInt32 retCnt) {
  return WithFace([=](VisaFace& face) { return face.ReadToFile(vi, filename, cnt, retCnt); });
}

ViStatus CORLUNE_LIBRARY_CALL viWrite(ViSession vi, ViConstBuf buf, ViUInt32 cnt, ViPUInt32 retCnt) {
  return WithFace([=](VisaFace& face) { return face.Write(vi, buf, cnt, retCnt); });
}

ViStatus CORLUNE_LIBRARY_CALL viWriteFromFile(ViSession vi, ViConstString filename, ViUInt32 cnt,
                                              ViPUInt32 retCnt) {
  return WithFace([=](VisaFace& face) { return face.WriteFromFile(vi, filename, cnt, retCnt); });
}

ViStatus CORLUNE_LIBRARY_CALL viAssertTrigger(ViSession vi, ViUInt16 protocol) {
  return WithFace([=](VisaFace& face) { return face.AssertTrigger(vi, protocol); });
}

ViStatus CORLUNE_LIBRARY_CALL viReadSTB(ViSession vi, ViPUInt16 status) {
  return WithFace([=](VisaFace& face) { return face.ReadSTB(vi, status); });
}

ViStatus CORLUNE_LIBRARY_CALL viClear(ViSession vi) {
  return WithFace([=](VisaFace& face) { return face.Clear(vi); });
}

ViStatus CORLUNE_LIBRARY_CALL viGpibControlREN(ViSession vi, ViUInt16 mode) {
  return WithFace([=](VisaFace& face) { return face.GpibControlREN(vi, mode); });
}
