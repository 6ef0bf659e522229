// Opening a switch, and making it the one that the library asks.
#include "inspect/session/library_session.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>

#include "inspect/error.h"
#include "inspect/words/status_names.h"
#include "platform/platform_info.h"
#include "vswitch/chassis_file.h"
#include "vswitch/interface_index.h"
#include "vswitch/switch_store.h"
#include "vswitch/vswitch.h"

namespace inspect {

namespace {

// What the library thinks of one card's slot; empty when it agrees with the file.
std::string objection(const vswitch::chassis_description& chassis, unsigned slot) {
  uint8_t card = 0;
  int32_t answer = ficonm_platform_slot_to_lc_b0(static_cast<uint8_t>(slot - 1), &card);
  std::string kind =
      fmt::format("a chassis of {} slot{} and type {}", chassis.slots(), chassis.slots() == 1 ? "" : "s", chassis.type);
  if (answer == FICON_RC_PLATFORM)
    throw platform_error("the library cannot ask for slots: " + status_text(FICON_RC_PLATFORM));
  if (answer != 0)
    return fmt::format("slot {} is no line-card slot of {} (the library answers {}); put the card into another slot", slot,
                       kind, status_text(static_cast<uint32_t>(answer)));
  auto expected = vswitch::line_card_number(chassis, slot);
  if (expected && *expected == card) return "";
  return fmt::format(
      "slot {} is line card {} of {} for the library, but {} by the supervisors named here; check the supervisors", slot,
      card, kind, expected ? std::to_string(*expected) : "no line card");
}

void check_line_cards(const vswitch::chassis_description& chassis, const std::string& path,
                      const std::vector<vswitch::card_place>& places) {
  serve(chassis);
  std::vector<vswitch::file_problem> problems;
  for (const auto& place : places) {
    std::string what = objection(chassis, place.slot);
    if (!what.empty()) problems.push_back({path, place.line, place.column, what});
  }
  if (!problems.empty()) throw vswitch::chassis_file_error(std::move(problems));
}

std::string all_problems(const vswitch::chassis_file_error& error) {
  std::string text;
  for (const auto& problem : error.problems()) text += (text.empty() ? "" : "\n") + problem.text();
  return text;
}

// A file that is not there or may not be read says nothing about its content.
void require_readable(const std::string& path) {
  if (::access(path.c_str(), R_OK) == 0) return;
  throw platform_error(fmt::format("{}: {}; expected a chassis file or a switch's folder", path, std::strerror(errno)));
}

vswitch::chassis_description read_file(const std::string& path) {
  std::vector<vswitch::card_place> places;
  try {
    auto chassis = vswitch::read_chassis_file(path, &places);
    check_line_cards(chassis, path, places);
    return chassis;
  } catch (const vswitch::chassis_file_error& error) {
    throw file_error(all_problems(error));
  }
}

vswitch::chassis_description read_folder(const std::string& path) {
  try {
    return vswitch::switch_store::open(path)->describe();
  } catch (const vswitch::switch_error& error) {
    throw platform_error(error.what());
  }
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

} // namespace

bool is_folder(const std::string& path) {
  struct stat found;
  return ::stat(path.c_str(), &found) == 0 && S_ISDIR(found.st_mode);
}

opened_switch open_switch(const std::string& path) {
  require_readable(path);
  bool folder = is_folder(path);
  return {path, folder, folder ? read_folder(path) : read_file(path)};
}

void serve(const vswitch::chassis_description& chassis) {
  try {
    vswitch::use_switch(vswitch::switch_store::in_memory(chassis));
  } catch (const vswitch::switch_error& error) {
    throw platform_error(error.what());
  }
  // The library asks for the platform record once a process, but a command may look at two switches.
  if (libchnsw_pinfo != nullptr) get_platform_info(libchnsw_pinfo);
}

library_session::library_session(opened_switch opened) : opened_(std::move(opened)) {
  serve(opened_.chassis);
  ports_ = known_ports();
}

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
  vswitch::watch_events([&events](const vswitch::history_event& event) { events.emplace_back(event.text); });
  ask();
  vswitch::watch_events({});
  return events;
}

std::optional<uint32_t> port_map_place(unsigned slot, unsigned port) {
  if (port > FICON_PMAP_PORTS_PER_LC) return std::nullopt; // its index would be the next line card's
  uint8_t card = 0;
  if (ficonm_platform_slot_to_lc_b0(static_cast<uint8_t>(slot - 1), &card) != 0) return std::nullopt;
  return uint32_t{card} * FICON_PMAP_PORTS_PER_LC + port - 1;
}

bool is_beyond_port_map(uint32_t if_index) {
  auto port = vswitch::fc_port_of(if_index);
  if (!port) return false;
  auto place = port_map_place(port->slot, port->port);
  return place && *place >= FICON_PMAP_PORT_ENTRIES;
}

} // namespace inspect
