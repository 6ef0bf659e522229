// How many messages of a connection are received in one turn.
#ifndef VSWITCH_MESSAGES_TURN_LENGTH_H
#define VSWITCH_MESSAGES_TURN_LENGTH_H

#include <algorithm>

namespace vswitch {

// Asking which connections are ready costs as much as a message, and so does asking a connection for a message that is not there.
// So turns grow as long as they are used up; after one message with nothing behind it they are of one message, for twice as many
// turns each time (bench/transport, "under way": with turns that always try for more, small messages take a tenth longer).
class turn_length {
 public:
  unsigned messages() const noexcept { return messages_; }

  void was_used_up() noexcept {
    if (messages_ == 1 && short_turns_ > 0) {
      --short_turns_;
      return;
    }
    messages_ = std::min(messages_ * 2, kMostMessages);
    next_short_turns_ = 1;
  }

  void ended_early(unsigned received) noexcept {
    if (received > 1) return;
    messages_ = 1;
    short_turns_ = next_short_turns_;
    next_short_turns_ = std::min(next_short_turns_ * 2, kMostShortTurns);
  }

 private:
  static constexpr unsigned kMostMessages = 16;
  static constexpr unsigned kMostShortTurns = 16;

  unsigned messages_ = 1;
  unsigned short_turns_ = 0; // of one message, before more are tried for again
  unsigned next_short_turns_ = 1;
};

} // namespace vswitch

#endif
