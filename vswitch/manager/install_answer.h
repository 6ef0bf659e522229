// VSAN install: the message, and what becomes of it.
#ifndef VSWITCH_MANAGER_INSTALL_ANSWER_H
#define VSWITCH_MANAGER_INSTALL_ANSWER_H

#include <libchnsw.h>

#include <cstdint>
#include <string>
#include <vector>

#include "map_changes.h"
#include "requests.h"
#include "vswitch/chassis_description.h"
#include "vswitch/switch_store.h"

namespace vswitch {

// Whether the library may parse it, which believes the message.
bool is_well_formed_install(payload_view payload);

// Reads a well-formed one. Returns 0; FICON_RC_INVALID_ARG for VSAN 0; FICON_RC_NO_MEMORY.
uint32_t read_install(msgq_message* message, install_request& request);

struct vsan_change {
  uint16_t vsan;
  bool enabled;
};

// The VSANs that are enabled, or not any more, ascending.
std::vector<vsan_change> changes_between(const port_map& before, const port_map& after);

// In one transaction, and none when nothing changes. Returns the answer's result; changes: out, written on 0. why: out,
// what the switch said when it could not be written.
uint32_t install_on_switch(switch_store& store, const chassis_description& chassis, const install_request& request,
                           std::vector<vsan_change>& changes, std::string& why);

std::string description_of(const install_request& request); // for the log

} // namespace vswitch

#endif
