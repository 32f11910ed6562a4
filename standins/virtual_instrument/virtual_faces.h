// VirtualFaces: the four libraries of a bench, each instrument reached through its connectors. While the
// object lives, the C operations of all four (viOpenDefaultRM, ibfind, UsbInitialize, _ieee_initialize ...)
// work on it.
#pragma once

#include <utility>

#include "standins/virtual_instrument/chosen_face.h"
#include "standins/virtual_instrument/ieee32m_face.h"
#include "standins/virtual_instrument/ni488_face.h"
#include "standins/virtual_instrument/usb488_face.h"
#include "standins/virtual_instrument/visa_face.h"

namespace corlune {

struct VirtualFaces {
  // The bench must outlive the faces. `sleep` is called for time-outs and late replies.
  VirtualFaces(VirtualBench& bench, InstrumentIo::Sleep sleep)
      : io(sleep), visa(bench, std::move(sleep)), bus(bench, io), usb488(bench, io) {
    SetFace(&visa);
    SetFace(&ni488);
    SetFace(&ieee32m);
    SetFace(&usb488);
  }
  ~VirtualFaces() {
    SetFace<VisaFace>(nullptr);
    SetFace<Ni488Face>(nullptr);
    SetFace<Ieee32mFace>(nullptr);
    SetFace<Usb488Face>(nullptr);
  }
  VirtualFaces(const VirtualFaces&) = delete;
  VirtualFaces& operator=(const VirtualFaces&) = delete;

  InstrumentIo io;
  VisaFace visa;
  GpibBus bus;
  Ni488Face ni488{bus};
  Ieee32mFace ieee32m{bus};
  Usb488Face usb488;
};

}  // namespace corlune
