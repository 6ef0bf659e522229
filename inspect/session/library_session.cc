// Making a switch the one that the library asks.
#include "inspect/session/library_session.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>

#include "inspect/error.h"
#include "inspect/words/status_names.h"
#include "platform/platform_info.h"
#include "vswitch/switch_store.h"
#include "vswitch/vswitch.h"

namespace inspect {

namespace {

pid_t process_being_served = 0; // 0: none; in a child process still that of its parent

template <typename element>
void release(element*& table) {
  std::free(table);
  table = nullptr;
}

// Puts the library back to how it was loaded. It asks once a process how many numbers a chassis has, and makes tables of that
// length, but a process may look at one switch after the other.
void forget_tables() {
  release(ficon_pmap_port_to_vsan);
  release(ficon_pmap_port_to_pn);
  release(ficon_pmap_pa_to_pn);
  release(ficon_pmap_pn_to_logif);
  MAX_FICON_PORTS = 0;
  fastpath_got_vsan_port = 0;
}

void serve(const vswitch::chassis_description& chassis) {
  forget_tables();
  try {
    vswitch::use_switch(vswitch::switch_store::in_memory(chassis));
  } catch (const vswitch::switch_error& error) {
    throw platform_error(error.what());
  }
  // It also asks for the platform record once.
  if (libchnsw_pinfo != nullptr) get_platform_info(libchnsw_pinfo);
}

uint32_t known_ports() {
  int32_t ports = ficon_get_max_ficon_ports();
  if (ports <= 0) throw platform_error("the library cannot tell how many ports this chassis has");
  return static_cast<uint32_t>(ports);
}

void require_fetched(int32_t answer, const char* table) {
  if (answer == 0) return;
  throw platform_error(
      fmt::format("the library cannot fetch the {} table: {}", table, status_text(static_cast<uint32_t>(answer))));
}

// Collects events for as long as it is there.
class event_watch {
 public:
  explicit event_watch(std::vector<std::string>& events) {
    vswitch::watch_events([&events](const vswitch::history_event& event) { events.emplace_back(event.text); });
  }
  ~event_watch() { vswitch::watch_events({}); }
  event_watch(const event_watch&) = delete;
  event_watch& operator=(const event_watch&) = delete;
};

} // namespace

served_switch::served_switch(const vswitch::chassis_description& chassis) : process_(::getpid()) {
  if (process_being_served == process_)
    throw question_error("another switch is open in this process; close it first, or ask from a process of its own");
  serve(chassis);
  process_being_served = process_;
}

served_switch::~served_switch() {
  // In a child process that has opened a switch of its own, what it inherited is not open any more.
  if (process_being_served == process_) process_being_served = 0;
}

library_session::library_session(opened_switch opened)
    : opened_(std::move(opened)), served_(opened_.chassis), ports_(known_ports()) {}

const ficon_pmap_port_entry* library_session::port_to_pn() const {
  require_fetched(ficon_get_pmap_portpn(), "port number");
  return ficon_pmap_port_to_pn;
}

const uint16_t* library_session::port_to_vsan() const {
  require_fetched(ficon_get_pmap_portvsan(0), "VSAN");
  return ficon_pmap_port_to_vsan;
}

const uint16_t* library_session::pa_to_pn() const {
  require_fetched(ficon_get_pmap_papn(), "port address");
  return ficon_pmap_pa_to_pn;
}

const uint32_t* library_session::pn_to_if() const {
  require_fetched(ficon_get_pmap_pnif(), "interface");
  return ficon_pmap_pn_to_logif;
}

std::vector<std::string> events_during(const std::function<void()>& ask) {
  std::vector<std::string> events;
  const event_watch watch(events);
  ask();
  return events;
}

} // namespace inspect
