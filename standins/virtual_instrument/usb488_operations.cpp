// The C operations of a USB488 library over the face that SetFace chose.

#include "standins/virtual_instrument/export.h"
// The declarations below come with the mark above.
#include "standins/virtual_instrument/chosen_face.h"
#include "standins/virtual_instrument/usb488_face.h"

namespace {

using corlune::Usb488Face;

template <class Operation>
std::int32_t With(Operation operation, std::int32_t noFace = USB488_STATUS_ERROR) {
  return corlune::WithFace<Usb488Face>(noFace, operation);
}

}  // namespace

int32_t CORLUNE_LIBRARY_CALL UsbInitialize() {
  return With([](Usb488Face& face) { return face.Initialize(); });
}

int32_t CORLUNE_LIBRARY_CALL UsbFinalize() {
  return With([](Usb488Face& face) { return face.Finalize(); });
}

int32_t CORLUNE_LIBRARY_CALL UsbOpenDevice(int32_t id) {
  return With([=](Usb488Face& face) { return face.OpenDevice(id); }, 0);
}

int32_t CORLUNE_LIBRARY_CALL UsbCloseDevice(int32_t handle) {
  return With([=](Usb488Face& face) { return face.CloseDevice(handle); });
}

int32_t CORLUNE_LIBRARY_CALL UsbSendTextData(int32_t handle, const char* text, int32_t length) {
  return With([=](Usb488Face& face) {
    return face.SendTextData(handle, {text, static_cast<std::size_t>(length)});
  });
}

int32_t CORLUNE_LIBRARY_CALL UsbReceiveTextData(int32_t handle, char* buffer, int32_t size) {
  return With([=](Usb488Face& face) {
    return face.ReceiveTextData(handle, {buffer, static_cast<std::size_t>(size)});
  });
}

int32_t CORLUNE_LIBRARY_CALL UsbGetDataCount() {
  return With([](Usb488Face& face) { return face.DataCount(); }, 0);
}

int32_t CORLUNE_LIBRARY_CALL UsbGetStatus() {
  return With([](Usb488Face& face) { return face.Status(); });
}

int32_t CORLUNE_LIBRARY_CALL UsbGetErrorCode() {
  return With([](Usb488Face& face) { return face.ErrorCode(); }, corlune::kUsb488NotInitialized);
}

int32_t CORLUNE_LIBRARY_CALL UsbSTBQuery(int32_t handle, int32_t* statusByte) {
  return With([=](Usb488Face& face) { return face.StatusByteQuery(handle, statusByte); });
}

int32_t CORLUNE_LIBRARY_CALL UsbSetTimeout(int32_t handle, int32_t milliseconds) {
  return With([=](Usb488Face& face) { return face.SetTimeout(handle, milliseconds); });
}

int32_t CORLUNE_LIBRARY_CALL UsbDevClear(int32_t handle) {
  return With([=](Usb488Face& face) { return face.DeviceClear(handle); });
}

int32_t CORLUNE_LIBRARY_CALL UsbSetIFC(int32_t handle) {
  return With([=](Usb488Face& face) { return face.SetInterfaceClear(handle); });
}

int32_t CORLUNE_LIBRARY_CALL UsbEnableRemote(int32_t handle) {
  return With([=](Usb488Face& face) { return face.SetRemote(handle, true); });
}

int32_t CORLUNE_LIBRARY_CALL UsbEnableLocal(int32_t handle) {
  return With([=](Usb488Face& face) { return face.SetRemote(handle, false); });
}

int32_t CORLUNE_LIBRARY_CALL UsbCLS() {
  return With([](Usb488Face& face) { return face.ClearStatus(); });
}
