/* How an operation chooses among several ports that carry the number or address it was asked for. The contract tells it alike
 * for all of them: what counts differs, and so does the status when there is nothing. */
#ifndef TESTS_PORT_MAP_MODEL_SEARCH_H
#define TESTS_PORT_MAP_MODEL_SEARCH_H

#include <libchnsw.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace chnsw_test {

bool has_any_vsan(const ficon_pmap_port_entry& entry);
bool has_vsan(const ficon_pmap_port_entry& entry, uint32_t vsan);

// As traces show them.
std::string text_of_vsans(const ficon_pmap_port_entry& entry);

// The caller's VSAN. It is read anew at every port, since the caller may change it meanwhile.
struct asked_vsan {
  const uint32_t* address;  // NULL when the caller names none
  uint32_t read = 0;        // last
  int32_t table_in_use = 0; // whether the port-to-VSAN table tells what is in the VSAN
};

// A port that carries what was asked for. Ports are met from the highest index down, so the last one has the lowest.
struct port_met {
  uint32_t answer;
  bool counts;
  bool in_vsan = false;
  bool bound = false; // to the VSAN
};

int number_of(const std::vector<port_met>& ports, bool port_met::*quality);
uint32_t last_of(const std::vector<port_met>& ports, bool port_met::*quality, uint32_t otherwise);

struct chosen_port {
  const char* decision; // by which rule
  uint32_t status;
  std::optional<uint32_t> answer = {};
  uint32_t flag = 1;
};

// none: the status when no port answers.
chosen_port choose_port(const std::vector<port_met>& ports, const asked_vsan& vsan, uint32_t none);

} // namespace chnsw_test

#endif
