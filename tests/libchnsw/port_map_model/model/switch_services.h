/* The services of a switch as the port map's model asks them: the answers of a programmable platform once more, and a log
 * in the words of its log. Of its own, so that the model is answered without the platform that the library runs on. */
#ifndef TESTS_PORT_MAP_MODEL_SWITCH_SERVICES_H
#define TESTS_PORT_MAP_MODEL_SWITCH_SERVICES_H

#include <libchnsw.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "programmable_platform.h"

namespace chnsw_test {

[[gnu::format(printf, 1, 2)]] std::string text_of(const char* format, ...);

struct switch_services {
  // ---- answers ----
  ficon_platform_info info{};
  service_answer info_answer;
  bool info_fills_on_failure = false;
  int32_t chassis_type = 0;
  service_answer chassis_answer;

  std::map<uint32_t, std::vector<uint8_t>> elements; // of the port map, by key
  struct element_failure {
    int status;
    bool copies;
  };
  std::map<uint32_t, element_failure> failing_elements;

  std::map<uint32_t, interface_answers> interfaces; // that are not as their bits say
  std::map<std::pair<uint8_t, uint8_t>, int> failing_ports;
  std::map<std::pair<uint8_t, uint8_t>, uint32_t> overridden_ports;

  std::set<int> refused_allocations; // by number, from 1
  std::set<uint32_t> refused_types;
  std::set<uint32_t> filtered_subtypes;
  std::set<int> debug_flags;

  // Runs after a call was logged and before it is answered.
  std::function<void()> on_call;

  // ---- what happened ----
  std::vector<std::string> log;
  std::vector<lagmap_port_query> lag_queries; // as they arrived; channel is what the model promises of it
  std::string printed;                        // on standard output
  int allocations = 0;                        // asked for
  int error = 0;                              // errno

  void forget();

  // ---- the services ----
  int get_platform_info(ficon_platform_info& record);
  int hwinv_get_chassis_type(int32_t& type);
  int elemdb_lookup_element(uint32_t key, uint32_t value_length, void* value);
  bool memacct_alloc(uint32_t type, uint32_t size); // whether it was granted
  int evtrc_hist_event_subtype_check(uint32_t subtype);
  void evtrc_hist_event(uint32_t subtype, const std::string& text);
  int evtrc_chk_int(int flag);
  void dbgout(const std::string& text);
  int if_index_get_type(uint32_t if_index, uint8_t& type);
  int if_index_get_slot(uint32_t if_index, uint8_t& slot);
  int if_index_get_port(uint32_t if_index, uint8_t& port);
  int if_index_phy_fc_port_init(uint32_t& if_index, uint8_t slot, uint8_t port);
  int portidx_port_by_if_index(uint32_t if_index);
  int lagmap_get_port(lagmap_port_query& query);

 private:
  void record(std::string line);
  int answer(const service_answer& answer);
  interface_answers answers_of(uint32_t if_index) const;
};

} // namespace chnsw_test

#endif
