// The four translations of the library that choose among several ports, and what sets them apart.
#ifndef INSPECT_TRANSLATION_H
#define INSPECT_TRANSLATION_H

#include <cstdint>

namespace inspect {

enum class translation { pa_to_pn, pn_to_pa, pn_to_if, pn_to_phyif };

struct translation_rules {
  translation what;
  const char* name;      // "PA to PN"
  const char* operation; // the library's name for it
  const char* searched;  // what an entry carries: "address", "number"
  const char* result;    // what is handed back: "port number", ...
  bool by_address;
  bool gives_interface;
  bool is_traced;   // whether the library traces the entries that it counts
  unsigned entries; // of the port map, searched from the highest index down
  uint32_t range_status;
  uint32_t none_status;
};

const translation_rules& rules_of(translation what);

} // namespace inspect

#endif
