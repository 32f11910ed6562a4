// BlockingCall: a call into a library that gives no control back until it has ended. A label says first what
// it is for, and is on the screen before it begins; the pointer shows an hourglass while the object lives.
#pragma once

#include <QLabel>

namespace corlune {

class BlockingCall {
 public:
  BlockingCall(QLabel& label, const QString& text);
  ~BlockingCall();
  BlockingCall(const BlockingCall&) = delete;
  BlockingCall& operator=(const BlockingCall&) = delete;
};

}  // namespace corlune
