// The answer to every question about a port: all that belongs together, the library's statuses, and what it was not asked.
#ifndef INSPECT_PORT_ANSWER_H
#define INSPECT_PORT_ANSWER_H

#include <cstdint>
#include <optional>
#include <vector>

#include "inspect/session/library_session.h"
#include "vswitch/interface_index.h"

namespace inspect {

// Why the library was not asked: it would read its tables there without a test.
struct not_asked {
  enum class cause {
    index_beyond_map,   // the port would stand behind the last entry of the port map
    number_beyond_table // the index carries a number that no port of this chassis can have
  };

  cause why;
  uint32_t found;   // the index, or the number
  uint32_t highest; // that the library may be asked about
};

struct port_answer {
  // What was asked about, and what was found.
  std::optional<uint32_t> pn;
  std::optional<uint32_t> pa;
  std::optional<uint32_t> index;       // of the port map
  std::optional<uint32_t> if_index;    // no value or 0: none
  std::optional<uint32_t> phyif_index; // the same
  std::optional<uint32_t> asked_vsan;

  // The library's; no value: it was not asked for that.
  std::optional<uint32_t> status;       // of the number
  std::optional<uint32_t> if_status;    // of the interface
  std::optional<uint32_t> phyif_status; // of the physical interface
  std::optional<not_asked> unasked;     // with it there is no status at all

  // What the port map and the interfaces say beside that.
  std::optional<vswitch::fc_port> port;
  std::optional<std::vector<uint16_t>> vsans; // that the port is bound to
  std::optional<uint32_t> port_vsan;          // that it is in now; 0: none

  // Whether there is a whole answer: the library said OK to everything, and both numbers are assigned.
  bool is_found() const;
};

// How an address or a number is asked about.
struct search_options {
  std::optional<uint32_t> vsan;
  bool fast = false; // by the library's fast forms, which read its tables as prepare_fast_forms left them
};

// To be called before the first question with fast forms. Throws error.
void prepare_fast_forms(const search_options& options);

port_answer answer_address(const library_session& session, uint32_t pa, const search_options& options);
port_answer answer_number(const library_session& session, uint32_t pn, const search_options& options);

// skip_lag_check: a port-channel's member is answered like any other port.
port_answer answer_interface(const library_session& session, uint32_t if_index, bool skip_lag_check);
port_answer answer_slot(const library_session& session, const vswitch::fc_port& port);
port_answer answer_index(const library_session& session, uint32_t index);

// Adds what the port map and the interfaces say. Throws a platform error when the library was refused memory, which says
// nothing about the port.
port_answer complete(const library_session& session, port_answer answer);

bool is_number(std::optional<uint32_t> number);      // an assigned one
bool is_interface(std::optional<uint32_t> if_index); // one that is there

} // namespace inspect

#endif
