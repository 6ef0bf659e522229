/* The library's port map a second time, for reading: every operation step by step as its contract tells it, without a
 * thought for speed; what operations share is what the contract tells once for them. Operations have the names and arguments
 * of libchnsw.h. */
#ifndef TESTS_PORT_MAP_MODEL_PORT_MAP_MODEL_H
#define TESTS_PORT_MAP_MODEL_PORT_MAP_MODEL_H

#include <libchnsw.h>

#include <array>
#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "search.h"
#include "switch_services.h"

namespace chnsw_test {

// A call whose outcome nobody promises: it reads behind a table, in front of one, or one that was never fetched.
struct undefined_call : std::exception {
  const char* what() const noexcept override { return "nobody promises what this call does"; }
};

inline constexpr uint32_t kLagmapNotMember = 0x40470006;
inline constexpr uint32_t kPortidxNoPort = 0x40460002;

inline int32_t as_signed(uint32_t status) {
  return static_cast<int32_t>(status);
}
inline uint32_t as_unsigned(int32_t status) {
  return static_cast<uint32_t>(status);
}

// Elements of the tables that a caller passes.
inline constexpr size_t kPassedNumbers = 512;
inline constexpr size_t kPassedPorts = 65536; // any slot and port

// What the exported variables hold.
struct library_state {
  std::optional<std::vector<uint16_t>> port_to_vsan;
  std::optional<std::vector<ficon_pmap_port_entry>> port_to_pn;
  std::optional<std::vector<uint16_t>> pa_to_pn;
  std::optional<std::vector<uint32_t>> pn_to_logif;
  std::array<uint8_t, 32> port_to_vsan_array{};
  int32_t max_ficon_ports = 0;
  int32_t fastpath_got_vsan_port = 0;
  std::optional<ficon_platform_info> pinfo;
};

class port_map_model {
 public:
  explicit port_map_model(switch_services& services) : services_(services) {}

  library_state state;
  std::set<std::string> decided; // every decision that a search among several ports has come to

  int32_t ficon_get_platform_info(ficon_platform_info* info);

  int32_t ficon_get_pmap_portvsan(uint32_t vsan);
  int32_t ficon_get_pmap_portpn();
  int32_t ficon_get_pmap_papn();
  int32_t ficon_get_pmap_pnif();
  int32_t ficon_cmi_get_pmap_change_counter(uint32_t* counter);
  int32_t ficon_pmap_prepare_fastpath(uint32_t vsan);
  int32_t ficon_cmi_get_max_portnumber();
  int32_t ficon_get_max_ficon_ports();

  uint32_t ficon_pmap_get_pa_to_pn_withpvsan(int32_t pa, const uint32_t* vsan, uint16_t* pn, uint32_t* flag, int32_t fast);
  uint32_t ficon_pmap_get_pa_to_pn(int32_t pa, uint16_t* pn);
  uint32_t ficon_pmap_get_pa_vsan_to_pn(int32_t pa, uint32_t vsan, uint16_t* pn);
  uint32_t ficon_pmap_get_pa_to_pn_fast(int32_t pa, uint16_t* pn);
  uint32_t ficon_pmap_get_pa_vsan_to_pn_fast(int32_t pa, uint32_t vsan, uint16_t* pn);
  uint32_t ficon_pmap_get_pn_to_pa_withpvsan(int32_t pn, const uint32_t* vsan, uint16_t* pa, uint32_t* flag, int32_t fast);
  uint32_t ficon_pmap_get_pn_to_pa(int32_t pn, uint16_t* pa);
  uint32_t ficon_pmap_get_pn_vsan_to_pa(int32_t pn, uint32_t vsan, uint16_t* pa);
  uint32_t ficon_pmap_get_pn_to_pa_fast(int32_t pn, uint16_t* pa);
  uint32_t ficon_pmap_get_pn_vsan_to_pa_fast(int32_t pn, uint32_t vsan, uint16_t* pa);

  int32_t ficon_port_to_pn_init(int32_t count, ficon_pmap_port_entry* entries, int32_t pa_count, const uint16_t* pa_to_pn);
  int32_t ficon_port_to_pn_is_default(const ficon_pmap_port_entry* entries);
  uint32_t ficon_get_default_pn(uint32_t slot, uint32_t logical, uint16_t* pns);

  int32_t ficonm_platform_slot_to_lc_b0(uint8_t slot, uint8_t* lc);
  int32_t ficonm_platform_lc_to_slot_b0(uint8_t lc, uint8_t* slot);
  int32_t ficonm_platform_slot_to_pnpa_index_withpmap(uint32_t slot, uint32_t port, ficon_pmap_port_entry* entry,
                                                      uint32_t* index, const ficon_pmap_port_entry* port_to_pn);
  int32_t ficonm_platform_slot_to_pnpa_index(uint32_t slot, uint32_t port, ficon_pmap_port_entry* entry, uint32_t* index);
  int32_t ficonm_platform_slot_to_pnpa(uint32_t slot, uint32_t port, ficon_pmap_port_entry* entry);
  uint16_t ficonm_platform_slot_to_pn(uint32_t slot, uint32_t port);

  uint32_t ficon_pmap_get_pn_to_if_withpvsan(int32_t pn, const uint32_t* vsan, uint32_t* if_index, uint32_t* flag,
                                             int32_t fast);
  uint32_t ficon_pmap_get_pn_vsan_to_if_fast(int32_t pn, uint32_t vsan, uint32_t* if_index);
  uint32_t ficon_pmap_get_pn_to_if_fast(int32_t pn, uint32_t* if_index);
  uint32_t ficon_pmap_get_pn_vsan_to_if(int32_t pn, uint32_t vsan, uint32_t* if_index);
  uint32_t ficon_pmap_get_pn_to_if(int32_t pn, uint32_t* if_index);
  uint32_t ficon_pmap_get_index_to_if_withpmap(int32_t index, uint32_t pn, uint32_t* if_index, const uint32_t* pn_to_if);
  uint32_t ficon_pmap_get_index_to_if(int32_t index, uint32_t pn, uint32_t* if_index);
  uint32_t ficon_pmap_get_index_to_phyif(int32_t index, uint32_t* if_index);

  int32_t ficon_pmap_get_if_to_pnpa_index_with2pmaps(uint32_t if_index, ficon_pmap_port_entry* entry, uint32_t* index,
                                                     const uint32_t* pn_to_if, const ficon_pmap_port_entry* port_to_pn,
                                                     int32_t skip_lag_check);
  int32_t ficon_pmap_get_if_to_pnpa_index_withpmap(uint32_t if_index, ficon_pmap_port_entry* entry, uint32_t* index,
                                                   const uint32_t* pn_to_if, int32_t skip_lag_check);
  int32_t ficon_pmap_get_if_to_pnpa_withpmap(uint32_t if_index, ficon_pmap_port_entry* entry, const uint32_t* pn_to_if,
                                             int32_t skip_lag_check);
  int32_t ficon_pmap_get_if_to_pn_withpmap(uint32_t if_index, uint16_t* pn, const uint32_t* pn_to_if,
                                           int32_t skip_lag_check);
  int32_t ficon_pmap_get_if_to_pn(uint32_t if_index, uint16_t* pn);
  int32_t ficon_pmap_get_if_to_pa(uint32_t if_index, uint16_t* pa);
  int32_t ficon_pmap_get_if_to_index(uint32_t if_index, uint32_t* index);
  int32_t ficon_pmap_get_if_to_index_with2pmaps(uint32_t if_index, uint32_t* index, const uint32_t* pn_to_if,
                                                const ficon_pmap_port_entry* port_to_pn, int32_t skip_lag_check);

  int32_t ficon_pmap_get_next_if(uint32_t if_index, uint32_t* next_if_index);
  int32_t ficon_pmap_get_last_if(uint32_t if_index, uint32_t* last_if_index);
  uint32_t ficon_pmap_get_pa_to_if(int32_t pa, uint32_t* if_index);
  uint32_t ficon_pmap_get_pa_vsan_to_if(int32_t pa, uint32_t vsan, uint32_t* if_index);
  uint32_t ficon_pmap_get_pa_to_if_fast(int32_t pa, uint32_t* if_index);
  uint32_t ficon_pmap_get_pa_vsan_to_if_fast(int32_t pa, uint32_t vsan, uint32_t* if_index);

  uint32_t ficon_pmap_get_pn_to_phyif_withpvsan(int32_t pn, const uint32_t* vsan, int32_t pn_bound, uint32_t* if_index,
                                                const uint32_t* pn_to_if, uint32_t* flag);
  uint32_t ficon_pmap_get_pn_to_phyif(int32_t pn, uint32_t* if_index, int32_t pn_bound, const uint32_t* pn_to_if);
  uint32_t ficon_pmap_get_pn_vsan_to_phyif(int32_t pn, uint32_t vsan, uint32_t* if_index, int32_t pn_bound,
                                           const uint32_t* pn_to_if);
  uint32_t ficon_pmap_get_pa_to_phyif(int32_t pa, uint32_t* if_index);
  uint32_t ficon_pmap_get_pa_vsan_to_phyif(int32_t pa, uint32_t vsan, uint32_t* if_index);

  uint32_t ficon_pmap_get_pn_logif(uint16_t* pns, uint32_t* if_indexes, uint32_t* count);
  uint32_t ficon_pmap_get_info_in_vsan(uint32_t vsan, uint16_t** pns, uint16_t** pas, uint32_t** if_indexes,
                                       uint32_t** bound, uint32_t* count);
  int32_t ficon_if_to_slot_port_logic(uint32_t if_index, uint8_t* slot, uint8_t* port, uint32_t* flag);

 private:
  // A table to read from, the caller's or a cached one.
  template <class Value>
  struct table {
    const Value* values; // NULL when the caller passed none
    size_t size;
    const Value& at(int64_t place) const;
  };
  struct two_tables {
    table<uint32_t> pn_to_if;
    table<ficon_pmap_port_entry> port_to_pn;
  };
  template <class Value>
  static table<Value> cached(const std::optional<std::vector<Value>>& values);
  table<uint32_t> cached_or_null() const;

  // The arguments of a report are evaluated once for each place that it goes to, hence a function that makes the text.
  using text_maker = std::function<std::string()>;
  void log_error(const text_maker& text);
  void log_debug(const std::string& text);
  void log(uint32_t subtype, const text_maker& text);
  void malloc_warning(int line, uint32_t size);

  template <class Value>
  bool allocate(std::optional<std::vector<Value>>& values, size_t count, uint32_t type, int line);
  template <class Value>
  void fetch(uint32_t key, std::vector<Value>& values, size_t count);
  template <class Value>
  Value* allocate_for_caller(size_t count, uint32_t type, int line);

  // Searches (search.h).
  uint32_t fetch_vsans(asked_vsan& vsan);
  port_met meet_port(asked_vsan& vsan, int index, const ficon_pmap_port_entry& entry, uint32_t answer, bool counts) const;

  uint32_t prepare_ports(asked_vsan& vsan, int32_t fast);
  std::vector<port_met> ports_of_address(int32_t pa, asked_vsan& vsan);
  std::vector<port_met> ports_of_number(int32_t pn, asked_vsan& vsan) const;
  uint32_t hand_back_number(const std::string& search, const std::vector<port_met>& ports, const asked_vsan& vsan,
                            uint32_t asked_for, uint16_t* number, uint32_t* flag);

  int32_t ask_chassis(int& num_slots, int32_t& chassis_type);
  int32_t ask_cached_chassis(int& num_slots, int32_t& chassis_type);
  int32_t slot_to_pnpa(uint8_t slot, uint32_t port, ficon_pmap_port_entry* entry, uint32_t* index,
                       const std::function<table<ficon_pmap_port_entry>()>& port_to_pn);

  uint32_t bound_interface(uint32_t pn, uint32_t* if_index, table<uint32_t> pn_to_if);
  uint32_t index_to_if(int32_t index, uint32_t pn, uint32_t* if_index, table<uint32_t> pn_to_if);
  int32_t find_port(uint32_t if_index);
  uint32_t check_port_channel(int32_t index, uint32_t* if_index);
  uint32_t prepare_numbers_and_ports(asked_vsan& vsan, int32_t fast);
  bool answers_for_itself(int32_t pn, uint32_t if_index);
  std::vector<port_met> interfaces_of_number(int32_t pn, asked_vsan& vsan, table<uint32_t> pn_to_if);
  uint32_t hand_back_interface(const std::string& search, const std::vector<port_met>& ports, const asked_vsan& vsan,
                               uint32_t* if_index, uint32_t* flag);
  uint32_t fetch_for_ports(int32_t pn, int32_t pn_bound, table<uint32_t>& pn_to_if);
  bool is_without_port(int32_t pn) const;
  std::vector<port_met> physical_ports_of_number(int32_t pn, asked_vsan& vsan, table<uint32_t> pn_to_if);
  uint32_t pn_to_phyif(int32_t pn, const uint32_t* vsan, int32_t pn_bound, uint32_t* if_index, table<uint32_t> pn_to_if,
                       uint32_t* flag);

  int32_t number_of_logical(uint32_t if_index, ficon_pmap_port_entry* entry, uint32_t* index, const two_tables& tables,
                            uint32_t status_to_return);
  int32_t fetch_missing(two_tables& tables);
  int32_t type_of(uint32_t if_index, uint8_t& type);
  int32_t slot_and_port_of(uint32_t if_index, uint8_t& slot, uint8_t& port);
  int32_t number_of_port(uint8_t slot, uint8_t port, ficon_pmap_port_entry* entry, uint32_t* index,
                         const two_tables& tables);
  int32_t number_of_port_or_channel(uint32_t if_index, uint8_t slot, uint8_t port, ficon_pmap_port_entry* entry,
                                    uint32_t* index, const two_tables& tables);
  int32_t place_of(uint32_t if_index, uint32_t* index);
  bool is_numbered(uint32_t index);
  int32_t interface_at(uint32_t line_card, uint32_t position, uint32_t* if_index);

  switch_services& services_;
};

template <class Value>
const Value& port_map_model::table<Value>::at(int64_t place) const {
  if (place < 0 || static_cast<size_t>(place) >= size) throw undefined_call();
  return values[place];
}

template <class Value>
port_map_model::table<Value> port_map_model::cached(const std::optional<std::vector<Value>>& values) {
  if (!values) throw undefined_call();
  return {values->data(), values->size()};
}

} // namespace chnsw_test

#endif
