// StatusModel: IEEE 488.2 status reporting of the virtual instrument: event status register, enable masks,
// status byte, and the error queue of SCPI.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>

#include "standins/virtual_instrument/scpi_parser.h"

namespace corlune {

// Bits of the event status register.
inline constexpr std::uint8_t kEventOperationComplete = 0x01;
inline constexpr std::uint8_t kEventQueryError = 0x04;
inline constexpr std::uint8_t kEventDeviceError = 0x08;
inline constexpr std::uint8_t kEventExecutionError = 0x10;
inline constexpr std::uint8_t kEventCommandError = 0x20;
inline constexpr std::uint8_t kEventPowerOn = 0x80;

// Bits of the status byte.
inline constexpr std::uint8_t kStatusErrorQueue = 0x04;
inline constexpr std::uint8_t kStatusMessageAvailable = 0x10;
inline constexpr std::uint8_t kStatusEventSummary = 0x20;
inline constexpr std::uint8_t kStatusRequest = 0x40;
inline constexpr std::uint8_t kStatusOperation = 0x80;  // a compilation has ended well

class StatusModel {
 public:
  static constexpr std::size_t kQueueDepth = 20;

  // Queues the error and sets its class's event bit. When the queue is full its newest entry becomes
  // "Queue overflow" and the error itself is lost.
  void Report(ScpiError error);
  void SetEvent(std::uint8_t bits);
  void SetOperation(bool on) { operation_ = on; }

  // `<number>,"<text>"` of the oldest error, which leaves the queue; `0,"No error"` when there is none.
  std::string NextError();
  std::size_t ErrorCount() const { return errors_.size(); }

  std::uint8_t TakeEvents();  // reads and clears the event status register
  void SetEventEnable(std::uint8_t mask) { eventEnable_ = mask; }
  std::uint8_t EventEnable() const { return eventEnable_; }
  void SetRequestEnable(std::uint8_t mask) {
    requestEnable_ = mask & static_cast<std::uint8_t>(~kStatusRequest);
  }
  std::uint8_t RequestEnable() const { return requestEnable_; }

  // Status byte with the master summary in bit 6, as *STB? answers.
  std::uint8_t Summary(bool messageAvailable) const;
  // Status byte with the service request in bit 6, which the poll takes back.
  std::uint8_t SerialPoll(bool messageAvailable);
  // True from the moment an enabled reason appeared until the serial poll that answers it.
  bool RequestsService(bool messageAvailable);

  void Clear();  // *CLS: events, operation bit and error queue; the masks stay

 private:
  std::uint8_t Bits(bool messageAvailable) const;
  void UpdateRequest(bool messageAvailable);

  std::deque<ScpiError> errors_;
  std::uint8_t events_ = kEventPowerOn;
  std::uint8_t eventEnable_ = 0;
  std::uint8_t requestEnable_ = 0;
  std::uint8_t seenReasons_ = 0;  // reasons that have led to a request already
  bool operation_ = false;
  bool request_ = false;
};

}  // namespace corlune
