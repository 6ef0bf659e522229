// The switch that a command is about, and the library that answers for it.
#ifndef CHNSW_LIBRARY_SESSION_H
#define CHNSW_LIBRARY_SESSION_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "inspect/error.h"
#include "libchnsw.h"
#include "vswitch/chassis_description.h"

namespace inspect {

// A chassis file, or a folder that holds a switch, as it was at one moment.
struct opened_switch {
  std::string path;
  bool is_folder = false;
  vswitch::chassis_description chassis;
};

bool is_folder(const std::string& path);

// Reads a switch, and lets the library look at the line cards of a chassis file. Throws error.
opened_switch open_switch(const std::string& path);

// From here on the library answers for this switch, frozen as it is. A folder's map may move on meanwhile; what a command
// says is all of one moment.
void serve(const vswitch::chassis_description& chassis);

// The library, serving one switch, with the number of its ports made known to it.
class library_session {
 public:
  explicit library_session(opened_switch opened);

  const opened_switch& opened() const { return opened_; }
  const vswitch::chassis_description& chassis() const { return opened_.chassis; }

  uint32_t ports() const { return ports_; } // MAX_FICON_PORTS

  // The tables that the library has cached, fetched anew.
  const ficon_pmap_port_entry* port_to_pn() const;
  const uint16_t* port_to_vsan() const;
  const uint16_t* pa_to_pn() const;
  const uint32_t* pn_to_if() const;

 private:
  opened_switch opened_;
  uint32_t ports_;
};

// What the library reports and traces while ask runs.
std::vector<std::string> events_during(const std::function<void()>& ask);

// Where a physical port stands in the port map by the library's slot numbering; none when the slot has no line card. The
// library reads its tables there without a test, so beyond the last entry it must not be asked.
std::optional<uint32_t> port_map_place(unsigned slot, unsigned port);
bool is_beyond_port_map(uint32_t if_index);

} // namespace inspect

#endif
