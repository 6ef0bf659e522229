// The library, answering for one switch.
//
// The library keeps one set of tables a process, so a process has one session at a time. A second one is refused while the
// first is open; one after the other is ordinary. Who asks about many switches at once gives each a child process, which
// opens a session of its own; a session that the parent had open does not count there, and must not be asked there.
#ifndef INSPECT_LIBRARY_SESSION_H
#define INSPECT_LIBRARY_SESSION_H

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "inspect/session/opened_switch.h"
#include "libchnsw.h"
#include "vswitch/chassis_description.h"

namespace inspect {

// From here on the library answers for this switch, frozen as it is; a folder's map may move on meanwhile. As long as one is
// there, a second one is refused with a question error.
class served_switch {
 public:
  explicit served_switch(const vswitch::chassis_description& chassis);
  ~served_switch();
  served_switch(const served_switch&) = delete;
  served_switch& operator=(const served_switch&) = delete;

 private:
  pid_t process_; // that it belongs to
};

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
  served_switch served_;
  uint32_t ports_;
};

// What the library reports and traces while ask runs.
std::vector<std::string> events_during(const std::function<void()>& ask);

} // namespace inspect

#endif
