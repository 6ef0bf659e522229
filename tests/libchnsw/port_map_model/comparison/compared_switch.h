/* The switch that library and model are asked about: the same one twice, as a programmable platform for the library and as
 * services for the model, with all that changes it between calls and disturbs a call. */
#ifndef TESTS_PORT_MAP_MODEL_COMPARED_SWITCH_H
#define TESTS_PORT_MAP_MODEL_COMPARED_SWITCH_H

#include <libchnsw.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "comparison_report.h"
#include "drawn_values.h"
#include "port_map_model.h"
#include "programmable_platform.h"
#include "switch_services.h"

namespace chnsw_test {

inline constexpr size_t kNumbers = 600;           // elements of the database's tables by number, more than any chassis has
inline constexpr size_t kNumberingEntries = 3400; // more than any default numbering lays out
inline constexpr int kErrorBefore = 77;           // errno before a call

// As it is right after loading.
void make_library_fresh();

// The tables that a caller passes, of the sizes that the model counts on.
struct passed_tables {
  passed_tables();
  void clear();
  std::vector<uint32_t> pn_to_if;
  std::vector<ficon_pmap_port_entry> port_to_pn;
};
passed_tables& the_passed_tables();

class compared_switch {
 public:
  // The first step tells what switch it is.
  compared_switch(step from, comparison_report& report);

  void change_map(step& from);
  void change_interface(step& from);
  void change_platform(step& from);

  // Of the next call, or not: one call in three does not find everything in order.
  void disturb(step& from);
  void end_disturbances();

  // To be called before a call. Makes the programmable platform answer as the model's services do.
  void program_platform();
  // While a side is called, with the VSAN that it was given.
  void watch_model(uint32_t& vsan);
  void watch_library(uint32_t& vsan);
  void end_call();

  programmable_platform& platform() { return platform_; }
  switch_services& services() { return services_; }
  port_map_model& model() { return model_; }
  const std::array<uint16_t, kNumbers>& pa_to_pn() const { return pa_to_pn_; }

 private:
  // What happens in the middle of a call.
  struct disturbance {
    int at_call = 0; // of any service, from 1; 0 is none
    std::optional<uint32_t> vsan;
    bool map_becomes_empty = false;
  };

  void draw_reporting(step& from);
  void bind_number(step& from, const ficon_pmap_port_entry& entry, uint16_t index);
  void load_anew();
  void change_chassis(step& from);
  void preset_ports(step& from);
  void restore_interfaces();
  void set_elements();
  void program_services();
  void program_disturbances();
  std::string disturb_services(unsigned kind, unsigned detail);
  std::string refuse_allocation(unsigned kind, unsigned detail);
  std::string disturb_call(unsigned kind, unsigned detail);

  comparison_report& report_;
  programmable_platform& platform_ = the_platform();
  switch_services services_;
  port_map_model model_;
  bool services_changed_ = true;
  bool disturbed_ = false;
  int platform_allocations_ = 0; // since the platform's last reset
  int calls_of_services_ = 0;    // in this call
  disturbance disturbance_;
  bool errno_moves_ = false; // with every call of a service
  std::set<uint32_t> missing_elements_;
  std::map<uint32_t, size_t> short_elements_; // key -> bytes

  std::array<ficon_pmap_port_entry, 1280> port_to_pn_;
  std::array<uint16_t, 1280> port_to_vsan_{};
  std::array<uint16_t, kNumbers> pa_to_pn_{};
  std::array<uint32_t, kNumbers> pn_to_if_{};
  uint32_t change_counter_ = 1;
};

} // namespace chnsw_test

#endif
