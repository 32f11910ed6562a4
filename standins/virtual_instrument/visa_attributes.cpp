// Attributes and status texts of the VISA face.

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <utility>

#include "standins/virtual_instrument/visa_face.h"

namespace corlune {
namespace {

constexpr ViUInt32 kImplementationVersion = 0x00100000;

// Attributes that are numbers. `bytes` is the size of the attribute's own type, which viGetAttribute writes.
struct NumberRow {
  ViAttr attribute;
  std::size_t bytes;
  bool writable;
  ViUInt64 initial;
  ViUInt64 highest;  // of a value to set
};

constexpr ViUInt64 kAny32 = 0xFFFFFFFF;

constexpr std::array kNumbers{
    NumberRow{VI_ATTR_TMO_VALUE, 4, true, 2000, kAny32},
    NumberRow{VI_ATTR_TERMCHAR, 1, true, '\n', 0xFF},
    NumberRow{VI_ATTR_TERMCHAR_EN, 2, true, VI_FALSE, 1},
    NumberRow{VI_ATTR_SEND_END_EN, 2, true, VI_TRUE, 1},
    NumberRow{VI_ATTR_SUPPRESS_END_EN, 2, true, VI_FALSE, 0},
    NumberRow{VI_ATTR_FILE_APPEND_EN, 2, true, VI_FALSE, 1},
    NumberRow{VI_ATTR_IO_PROT, 2, true, VI_PROT_NORMAL, VI_PROT_NORMAL},
    NumberRow{VI_ATTR_DMA_ALLOW_EN, 2, true, VI_FALSE, 1},
    NumberRow{VI_ATTR_MAX_QUEUE_LENGTH, 4, true, 50, kAny32},
    NumberRow{VI_ATTR_RD_BUF_OPER_MODE, 2, true, VI_FLUSH_DISABLE, VI_FLUSH_DISABLE},
    NumberRow{VI_ATTR_WR_BUF_OPER_MODE, 2, true, VI_FLUSH_WHEN_FULL, VI_FLUSH_WHEN_FULL},
    NumberRow{VI_ATTR_USER_DATA_32, 4, true, 0, kAny32},
    NumberRow{VI_ATTR_TRIG_ID, 2, false, static_cast<ViUInt16>(VI_TRIG_SW), 0},
    NumberRow{VI_ATTR_4882_COMPLIANT, 2, false, VI_TRUE, 0},
    NumberRow{VI_ATTR_USB_INTFC_NUM, 2, false, 0, 0},
    NumberRow{VI_ATTR_USB_PROTOCOL, 2, false, 1, 0},
    NumberRow{VI_ATTR_USB_MAX_INTR_SIZE, 2, false, 2, 0},
    NumberRow{VI_ATTR_INTF_TYPE, 2, false, VI_INTF_USB, 0},
    NumberRow{VI_ATTR_INTF_NUM, 2, false, 0, 0},
    NumberRow{VI_ATTR_MANF_ID, 2, false, kUsbVendor, 0},
    NumberRow{VI_ATTR_RSRC_MANF_ID, 2, false, kUsbVendor, 0},
    NumberRow{VI_ATTR_RSRC_IMPL_VERSION, 4, false, kImplementationVersion, 0},
    NumberRow{VI_ATTR_RSRC_SPEC_VERSION, 4, false, VI_SPEC_VERSION, 0},
    // Of the session or its instrument, see DeviceValue.
    NumberRow{VI_ATTR_MODEL_CODE, 2, false, 0, 0},
    NumberRow{VI_ATTR_RM_SESSION, 4, false, 0, 0},
    NumberRow{VI_ATTR_RSRC_LOCK_STATE, 4, false, 0, 0},
    NumberRow{VI_ATTR_GPIB_REN_STATE, 2, false, 0, 0},
};

const NumberRow* FindNumber(ViAttr attribute) {
  const auto* const found = std::find_if(kNumbers.begin(), kNumbers.end(), [attribute](const NumberRow& row) {
    return row.attribute == attribute;
  });
  return found == kNumbers.end() ? nullptr : found;
}

void Store(void* out, std::size_t bytes, ViUInt64 value) {
  const auto byte = static_cast<ViUInt8>(value);
  const auto word = static_cast<ViUInt16>(value);
  const auto wide = static_cast<ViUInt32>(value);
  if (bytes == 1) std::memcpy(out, &byte, 1);
  if (bytes == 2) std::memcpy(out, &word, 2);
  if (bytes == 4) std::memcpy(out, &wide, 4);
}

void StoreText(void* out, std::string_view text) {
  std::memcpy(out, text.data(), text.size());
  static_cast<char*>(out)[text.size()] = '\0';
}

constexpr std::array kStatusTexts{
    std::pair{VI_SUCCESS, "Operation completed successfully."},
    std::pair{VI_SUCCESS_EVENT_EN, "The event is already enabled."},
    std::pair{VI_SUCCESS_EVENT_DIS, "The event is already disabled."},
    std::pair{VI_SUCCESS_QUEUE_EMPTY, "The event queue was empty already."},
    std::pair{VI_SUCCESS_TERM_CHAR, "The termination character was read."},
    std::pair{VI_SUCCESS_MAX_CNT, "The number of bytes asked for was read; more may follow."},
    std::pair{VI_SUCCESS_NESTED_EXCLUSIVE, "The session still holds an exclusive lock."},
    std::pair{VI_WARN_NULL_OBJECT, "The object reference is VI_NULL."},
    std::pair{VI_ERROR_SYSTEM_ERROR, "The library could not be set up."},
    std::pair{VI_ERROR_INV_OBJECT, "The session or object reference is invalid."},
    std::pair{VI_ERROR_RSRC_LOCKED, "Another session has locked the instrument."},
    std::pair{VI_ERROR_INV_EXPR, "The search expression is malformed."},
    std::pair{VI_ERROR_RSRC_NFOUND, "No such instrument is present."},
    std::pair{VI_ERROR_INV_RSRC_NAME, "The resource name is malformed."},
    std::pair{VI_ERROR_INV_ACC_MODE, "The access mode is invalid."},
    std::pair{VI_ERROR_TMO, "Timeout expired before operation completed."},
    std::pair{VI_ERROR_NSUP_ATTR, "The attribute is not supported."},
    std::pair{VI_ERROR_NSUP_ATTR_STATE, "The attribute cannot have this value."},
    std::pair{VI_ERROR_ATTR_READONLY, "The attribute is read-only."},
    std::pair{VI_ERROR_INV_LOCK_TYPE, "This type of lock is not supported."},
    std::pair{VI_ERROR_INV_EVENT, "The event type is not supported."},
    std::pair{VI_ERROR_NENABLED, "The event is not enabled."},
    std::pair{VI_ERROR_INV_SETUP, "The set-up is invalid."},
    std::pair{VI_ERROR_IO, "An error occurred during the transfer."},
    std::pair{VI_ERROR_USER_BUF, "A buffer is missing."},
    std::pair{VI_ERROR_INV_PROT, "The protocol is not supported."},
    std::pair{VI_ERROR_INV_MODE, "The mode is invalid."},
    std::pair{VI_ERROR_SESN_NLOCKED, "The session holds no lock."},
    std::pair{VI_ERROR_FILE_ACCESS, "The file cannot be opened."},
    std::pair{VI_ERROR_FILE_IO, "The file could not be read or written."},
    std::pair{VI_ERROR_NSUP_MECH, "The event mechanism is not supported."},
    std::pair{VI_ERROR_CONN_LOST, "The connection to the instrument was lost."},
};

}  // namespace

ViUInt64 VisaFace::Value(const Session& session, ViAttr attribute) const {
  const auto set = session.attributes.find(attribute);
  if (set != session.attributes.end()) return set->second;
  const NumberRow* const row = FindNumber(attribute);
  return row == nullptr ? 0 : row->initial;
}

std::optional<ViUInt64> VisaFace::DeviceValue(const Session& session, ViAttr attribute) {
  VirtualInstrument& instrument = Instrument(session);
  switch (attribute) {
    case VI_ATTR_MODEL_CODE:
      return VirtualBench::UsbProduct(instrument.Identity());
    case VI_ATTR_RM_SESSION:
      return session.manager;
    case VI_ATTR_RSRC_LOCK_STATE:
      return session.locks > 0 || LockedByOther(session) ? VI_EXCLUSIVE_LOCK : VI_NO_LOCK;
    case VI_ATTR_GPIB_REN_STATE:
      return instrument.Remote() ? VI_STATE_ASSERTED : VI_STATE_UNASSERTED;
    default:
      return std::nullopt;
  }
}

std::optional<std::string> VisaFace::DeviceText(const Session& session, ViAttr attribute) const {
  const InstrumentIdentity& identity = bench_.At(session.instrument).Identity();
  switch (attribute) {
    case VI_ATTR_RSRC_CLASS:
      return "INSTR";
    case VI_ATTR_RSRC_NAME:
      return VirtualBench::ResourceName(identity);
    case VI_ATTR_RSRC_MANF_NAME:
      return "Corlune";
    case VI_ATTR_MANF_NAME:
      return "Tavrin";
    case VI_ATTR_MODEL_NAME:
      return identity.model;
    case VI_ATTR_USB_SERIAL_NUM:
      return identity.serial;
    case VI_ATTR_INTF_INST_NAME:
      return "USB0 (virtual instruments)";
    default:
      return std::nullopt;
  }
}

ViStatus VisaFace::GetManagerAttribute(ViAttr attribute, void* state) {
  switch (attribute) {
    case VI_ATTR_RSRC_CLASS:
      StoreText(state, "RM");
      return VI_SUCCESS;
    case VI_ATTR_RSRC_NAME:
      StoreText(state, "");
      return VI_SUCCESS;
    case VI_ATTR_RSRC_MANF_NAME:
      StoreText(state, "Corlune");
      return VI_SUCCESS;
    case VI_ATTR_RSRC_MANF_ID:
    case VI_ATTR_RSRC_IMPL_VERSION:
    case VI_ATTR_RSRC_SPEC_VERSION:
    case VI_ATTR_MAX_QUEUE_LENGTH: {
      const NumberRow* const row = FindNumber(attribute);
      Store(state, row->bytes, row->initial);
      return VI_SUCCESS;
    }
    default:
      return VI_ERROR_NSUP_ATTR;
  }
}

ViStatus VisaFace::GetAttribute(ViObject object, ViAttr attribute, void* state) {
  const auto found = objects_.find(object);
  if (found == objects_.end()) return VI_ERROR_INV_OBJECT;
  if (state == nullptr) return VI_ERROR_USER_BUF;
  if (std::holds_alternative<Manager>(found->second)) return GetManagerAttribute(attribute, state);
  if (std::holds_alternative<Event>(found->second)) {
    if (attribute != VI_ATTR_EVENT_TYPE) return VI_ERROR_NSUP_ATTR;
    Store(state, 4, VI_EVENT_SERVICE_REQ);
    return VI_SUCCESS;
  }
  const auto* const session = std::get_if<Session>(&found->second);
  if (session == nullptr) return VI_ERROR_NSUP_ATTR;
  if (const auto text = DeviceText(*session, attribute)) {
    StoreText(state, *text);
    return VI_SUCCESS;
  }
  const NumberRow* const row = FindNumber(attribute);
  if (row == nullptr) return VI_ERROR_NSUP_ATTR;
  Store(state, row->bytes, DeviceValue(*session, attribute).value_or(Value(*session, attribute)));
  return VI_SUCCESS;
}

ViStatus VisaFace::SetAttribute(ViObject object, ViAttr attribute, ViAttrState state) {
  const auto found = objects_.find(object);
  if (found == objects_.end()) return VI_ERROR_INV_OBJECT;
  auto* const session = std::get_if<Session>(&found->second);
  if (session == nullptr) return VI_ERROR_NSUP_ATTR;
  if (DeviceText(*session, attribute)) return VI_ERROR_ATTR_READONLY;
  const NumberRow* const row = FindNumber(attribute);
  if (row == nullptr) return VI_ERROR_NSUP_ATTR;
  if (!row->writable) return VI_ERROR_ATTR_READONLY;
  // Clients with 32-bit attribute values leave whatever they like in the upper half.
  const ViUInt64 value = state & kAny32;
  if (value > row->highest) return VI_ERROR_NSUP_ATTR_STATE;
  session->attributes[attribute] = value;
  return VI_SUCCESS;
}

ViStatus VisaFace::StatusDesc(ViObject object, ViStatus status, char* text) {
  if (!objects_.contains(object)) return VI_ERROR_INV_OBJECT;
  if (text == nullptr) return VI_ERROR_USER_BUF;
  for (const auto& [code, description] : kStatusTexts) {
    if (code != status) continue;
    StoreText(text, description);
    return VI_SUCCESS;
  }
  StoreText(text, "Unknown status code.");
  return VI_WARN_UNKNOWN_STATUS;
}

}  // namespace corlune
