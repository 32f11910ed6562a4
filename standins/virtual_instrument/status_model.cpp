#include "standins/virtual_instrument/status_model.h"

#include <utility>

namespace corlune {

void StatusModel::Report(ScpiError error) {
  const int number = -static_cast<int>(error);
  if (number >= 400) {
    SetEvent(kEventQueryError);
  } else if (number >= 300) {
    SetEvent(kEventDeviceError);
  } else if (number >= 200) {
    SetEvent(kEventExecutionError);
  } else {
    SetEvent(kEventCommandError);
  }
  if (errors_.size() < kQueueDepth) {
    errors_.push_back(error);
  } else {
    errors_.back() = ScpiError::QueueOverflow;
    SetEvent(kEventDeviceError);
  }
}

void StatusModel::SetEvent(std::uint8_t bits) {
  events_ = static_cast<std::uint8_t>(events_ | bits);
}

std::string StatusModel::NextError() {
  ScpiError error = ScpiError::None;
  if (!errors_.empty()) {
    error = errors_.front();
    errors_.pop_front();
  }
  return std::to_string(static_cast<int>(error)) + ",\"" + std::string(ScpiErrorText(error)) + "\"";
}

std::uint8_t StatusModel::TakeEvents() {
  return std::exchange(events_, std::uint8_t{0});
}

std::uint8_t StatusModel::Bits(bool messageAvailable) const {
  unsigned bits = 0;
  if (!errors_.empty()) bits |= kStatusErrorQueue;
  if (messageAvailable) bits |= kStatusMessageAvailable;
  if ((events_ & eventEnable_) != 0) bits |= kStatusEventSummary;
  if (operation_) bits |= kStatusOperation;
  return static_cast<std::uint8_t>(bits);
}

std::uint8_t StatusModel::Summary(bool messageAvailable) const {
  const std::uint8_t bits = Bits(messageAvailable);
  return static_cast<std::uint8_t>(bits | ((bits & requestEnable_) != 0 ? kStatusRequest : 0));
}

void StatusModel::UpdateRequest(bool messageAvailable) {
  const auto reasons = static_cast<std::uint8_t>(Bits(messageAvailable) & requestEnable_);
  if ((reasons & ~seenReasons_) != 0) request_ = true;
  if (reasons == 0) request_ = false;
  seenReasons_ = reasons;
}

std::uint8_t StatusModel::SerialPoll(bool messageAvailable) {
  UpdateRequest(messageAvailable);
  const bool request = std::exchange(request_, false);
  return static_cast<std::uint8_t>(Bits(messageAvailable) | (request ? kStatusRequest : 0));
}

bool StatusModel::RequestsService(bool messageAvailable) {
  UpdateRequest(messageAvailable);
  return request_;
}

void StatusModel::Clear() {
  errors_.clear();
  events_ = 0;
  operation_ = false;
}

}  // namespace corlune
