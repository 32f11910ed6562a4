// The C operations of an IEEE_32M library over the face that SetFace chose.

#include <cstring>

#include "standins/virtual_instrument/export.h"
// The declarations below come with the mark above.
#include "standins/virtual_instrument/chosen_face.h"
#include "standins/virtual_instrument/ieee32m_face.h"

namespace {

using corlune::Ieee32mFace;

template <class Operation>
std::int32_t With(Operation operation) {
  return corlune::WithFace<Ieee32mFace>(std::int32_t{corlune::kIeee32mSyntax}, operation);
}

}  // namespace

// The library's own names begin with an underscore.
// NOLINTBEGIN(bugprone-reserved-identifier)

int32_t CORLUNE_LIBRARY_CALL _ieee_board_present() {
  return corlune::WithFace<Ieee32mFace>(std::int32_t{0}, [](Ieee32mFace&) { return 1; });
}

int32_t CORLUNE_LIBRARY_CALL _ieee_initialize(int32_t address, int32_t) {
  return With([=](Ieee32mFace& face) { return face.Initialize(address); });
}

int32_t CORLUNE_LIBRARY_CALL _ieee_transmit(const char* command, int32_t length, int32_t* status) {
  *status = With([=](Ieee32mFace& face) {
    return face.Transmit({command, length < 0 ? std::strlen(command) : static_cast<std::size_t>(length)});
  });
  return *status;
}

int32_t CORLUNE_LIBRARY_CALL _ieee_receive(char* buffer, int32_t size, int32_t* status, int32_t* count) {
  *count = 0;
  *status = With([=](Ieee32mFace& face) {
    return face.Receive({buffer, static_cast<std::size_t>(size)}, count);
  });
  return *status;
}

int32_t CORLUNE_LIBRARY_CALL _ieee_spoll(int32_t address, uint8_t* statusByte, int32_t* status) {
  *status = With([=](Ieee32mFace& face) { return face.SerialPoll(address, statusByte); });
  return *status;
}

int32_t CORLUNE_LIBRARY_CALL _ieee_settimeout(int32_t milliseconds) {
  return With([=](Ieee32mFace& face) { return face.SetTimeout(milliseconds); });
}

int32_t CORLUNE_LIBRARY_CALL _ieee_setinputEOS(int32_t character) {
  return With([=](Ieee32mFace& face) { return face.SetInputEos(character); });
}

// NOLINTEND(bugprone-reserved-identifier)
