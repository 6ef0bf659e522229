#include "messages/received_message.h"

namespace vswitch {

msgq_message* message_pool::take() {
  msgq_message* message = free_count_ != 0 ? free_[--free_count_] : new msgq_message;
  message->pool = this;
  ++handed_out_;
  return message;
}

void message_pool::give_back(msgq_message* message) noexcept {
  --handed_out_;
  if (!closed_ && free_count_ < kKept)
    free_[free_count_++] = message;
  else
    delete message;
  if (closed_ && handed_out_ == 0) delete this;
}

message_pool::~message_pool() {
  while (free_count_ != 0) delete free_[--free_count_];
}

void message_pool::close() noexcept {
  closed_ = true;
  if (handed_out_ == 0) delete this;
}

} // namespace vswitch
