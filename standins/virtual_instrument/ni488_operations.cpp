// The C operations of an NI-488.2 library over the face that SetFace chose.

#include "standins/virtual_instrument/export.h"
// The declarations below come with the mark above.
#include "standins/virtual_instrument/chosen_face.h"
#include "standins/virtual_instrument/ni488_face.h"

namespace {

using corlune::Ni488Face;
constexpr int kNoFace = NI488_ERR | NI488_CMPL;

template <class Operation>
int With(Operation operation) {
  return corlune::WithFace<Ni488Face>(kNoFace, operation);
}

}  // namespace

int CORLUNE_LIBRARY_CALL ibfind(const char* name) {
  return corlune::WithFace<Ni488Face>(-1, [=](Ni488Face& face) { return face.Find(name); });
}

int CORLUNE_LIBRARY_CALL ibconfig(int ud, int option, int value) {
  return With([=](Ni488Face& face) { return face.Config(ud, option, value); });
}

int CORLUNE_LIBRARY_CALL ibsic(int ud) {
  return With([=](Ni488Face& face) { return face.SendInterfaceClear(ud); });
}

int CORLUNE_LIBRARY_CALL ibsre(int ud, int on) {
  return With([=](Ni488Face& face) { return face.RemoteEnable(ud, on); });
}

int CORLUNE_LIBRARY_CALL ibcmd(int ud, const void* commands, long count) {
  return With([=](Ni488Face& face) { return face.Command(ud, commands, count); });
}

int CORLUNE_LIBRARY_CALL ibwrt(int ud, const void* data, long count) {
  return With([=](Ni488Face& face) { return face.Write(ud, data, count); });
}

int CORLUNE_LIBRARY_CALL ibrd(int ud, void* buffer, long count) {
  return With([=](Ni488Face& face) { return face.Read(ud, buffer, count); });
}

int CORLUNE_LIBRARY_CALL ibeos(int ud, int value) {
  return With([=](Ni488Face& face) { return face.EndOfString(ud, value); });
}

int CORLUNE_LIBRARY_CALL ibeot(int ud, int on) {
  return With([=](Ni488Face& face) { return face.EndOfTransfer(ud, on); });
}

int CORLUNE_LIBRARY_CALL ibtmo(int ud, int code) {
  return With([=](Ni488Face& face) { return face.TimeOut(ud, code); });
}

void CORLUNE_LIBRARY_CALL ReadStatusByte(int board, short address, short* result) {
  With([=](Ni488Face& face) {
    face.ReadStatusByte(board, address, result);
    return 0;
  });
}

int CORLUNE_LIBRARY_CALL ThreadIbsta() {
  return With([](Ni488Face& face) { return face.Status(); });
}

int CORLUNE_LIBRARY_CALL ThreadIberr() {
  return With([](Ni488Face& face) { return face.ErrorCode(); });
}

long CORLUNE_LIBRARY_CALL ThreadIbcntl() {
  return corlune::WithFace<Ni488Face>(0L, [](Ni488Face& face) { return face.Count(); });
}

int CORLUNE_LIBRARY_CALL RegisterGpibGlobalsForThread(int* ibsta, int* iberr, int* ibcnt, long* ibcntl) {
  return corlune::WithFace<Ni488Face>(
      2, [=](Ni488Face& face) { return face.RegisterGlobals(ibsta, iberr, ibcnt, ibcntl); });
}

int CORLUNE_LIBRARY_CALL UnregisterGpibGlobalsForThread() {
  return corlune::WithFace<Ni488Face>(2, [](Ni488Face& face) { return face.UnregisterGlobals(); });
}
