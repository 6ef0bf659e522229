// The handshake of a swap, as a table of what follows what: no messages, no time, no map.
#ifndef VSWITCH_MANAGER_SWAP_HANDSHAKE_H
#define VSWITCH_MANAGER_SWAP_HANDSHAKE_H

#include <libchnsw.h>

#include <cstdint>
#include <optional>

#include "vswitch/manager/manager_protocol.h"

namespace vswitch {

enum class swap_phase {
  check_lock, // from here to unlock the client decides
  do_swap,
  unlock,
  map,       // the map is to be written
  swap_back, // from here on what the client says changes nothing
  unlock_again,
  done
};

struct swap_state {
  swap_phase phase = swap_phase::check_lock;
  swap_result result = {0, kNoStep, 0}; // of the order, when all is done

  bool operator==(const swap_state& other) const;
};

// What the client is asked in a phase; none in map and done.
struct swap_question {
  uint32_t opcode;
  bool other_way_round;
  const char* name; // for the log

  bool operator==(const swap_question& other) const {
    return opcode == other.opcode && other_way_round == other.other_way_round;
  }
};
std::optional<swap_question> question_in(swap_phase phase);

// What comes next.
swap_state after_response(const swap_state& state, uint32_t swap_status);
swap_state after_silence(const swap_state& state); // not answered in time, or nobody there to answer
swap_state after_map(const swap_state& state, bool written);

// The request of a question.
ficon_if_swap_req swap_request(const swap_question& question, uint32_t number, uint32_t if_index_a, uint32_t if_index_b,
                               const vsan_block& vsans);

} // namespace vswitch

#endif
