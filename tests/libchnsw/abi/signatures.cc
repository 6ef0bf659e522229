/* The prototypes that every build keeps: one libchnsw.so serves clients that were compiled against any of its headers. */
#include <type_traits>

#include "libchnsw.h"

namespace {

using entry = ficon_pmap_port_entry;

// Says in one place what an operation's type must be, exactly.
#define SIGNATURE(name, ...) static_assert(std::is_same_v<decltype(name), __VA_ARGS__>, #name)

// frame
SIGNATURE(__libchnsw_mem_type_t_find, const char*(int32_t));
SIGNATURE(__libchnsw_mem_type_t_str2enum, int32_t(const char*));
SIGNATURE(ficon_get_platform_info, int32_t(ficon_platform_info*));

// code pages
static_assert(
    std::is_same_v<ficon_convert_fn, int (*)(const char*, int32_t, uint32_t, char**, uint32_t*, uint32_t*, uint32_t)>);
SIGNATURE(ficon_get_convert_fn_ptr, ficon_convert_fn());
SIGNATURE(convert_codepage, uint32_t(uint32_t, uint32_t, char*, int32_t));
SIGNATURE(ficon_get_codepage_name, const char*(uint32_t));

// messages: header
SIGNATURE(ficon_init_cmi_hdr, void(ficon_cmi_hdr*, uint32_t, const char*, const char*, uint32_t));

// messages: port map and VSANs
SIGNATURE(ficon_send_get_portmap_nonblock,
          int32_t(msgq*, const char*, const char*, uint32_t, uint8_t, uint32_t, uint16_t, uint16_t, uintptr_t));
SIGNATURE(ficon_parse_get_portmap, uint32_t(msgq_message*, uint32_t*, uint16_t*, uint16_t*));
SIGNATURE(ficon_send_get_enabled_vsans, int32_t(msgq*, uintptr_t));
SIGNATURE(ficon_parse_get_enabled_vsans, uint32_t(msgq_message*, void**));
SIGNATURE(ficon_send_query_ifvsan_state, int32_t(msgq*, const ficon_ifvsan_query*, uintptr_t));
SIGNATURE(ficon_parse_query_ifvsan, uint32_t(msgq_message*, ficon_ifvsan_query*));

// messages: VSAN install
SIGNATURE(ficon_send_vsan_install,
          uint32_t(msgq*, uint32_t, const uint32_t*, uint8_t, int32_t, int32_t, const vsan_block*));
SIGNATURE(ficon_parse_vsan_install,
          uint32_t(msgq_message*, uint32_t*, uint32_t**, uint32_t*, int32_t*, int32_t*, vsan_block*));

// messages: RNID
SIGNATURE(ficon_send_get_rnid_nonblock, int32_t(msgq*, uint32_t, uint16_t, uint32_t, uint32_t, uint32_t, uintptr_t));
SIGNATURE(ficon_parse_get_rnid,
          uint32_t(msgq_message*, uint32_t*, uint16_t*, uint32_t*, uint32_t*, uint32_t*, uint32_t*, void*));
SIGNATURE(ficon_parse_rnid_notification,
          uint32_t(msgq_message*, uint32_t*, uint16_t*, uint32_t*, uint32_t*, uint32_t*, void*));
SIGNATURE(ficon_format_rnid, uint32_t(uint32_t, void*));

// messages: interface swap
using swap_parse = uint32_t(msgq_message*, uint32_t*, uint32_t*, uint32_t*);
using swap_parse_with_vsan = uint32_t(msgq_message*, uint32_t*, uint32_t*, uint32_t*, vsan_block*);
using swap_respond = uint32_t(msgq*, msgq_message*, uint32_t, uint32_t, uint32_t, uint32_t);
SIGNATURE(ficon_if_swap_chk_lock_parse, swap_parse);
SIGNATURE(ficon_if_swap_chk_lock_parse_with_vsan, swap_parse_with_vsan);
SIGNATURE(ficon_if_swap_chk_lock_send_resp, swap_respond);
SIGNATURE(ficon_if_swap_chk_lock_send_resp_with_reasoncode, uint32_t(msgq*, msgq_message*, const ficon_if_swap_resp*));
SIGNATURE(ficon_if_swap_do_swap_parse, swap_parse);
SIGNATURE(ficon_if_swap_do_swap_parse_with_vsan, swap_parse_with_vsan);
SIGNATURE(ficon_if_swap_do_swap_send_resp, swap_respond);
SIGNATURE(ficon_if_swap_unlock_parse, swap_parse);
SIGNATURE(ficon_if_swap_unlock_parse_with_vsan, swap_parse_with_vsan);
SIGNATURE(ficon_if_swap_unlock_send_resp, swap_respond);

// messages: notices
SIGNATURE(ficon_parse_vsan_state_change_payload, uint32_t(msgq_message*, ficon_vsan_state_change*));
SIGNATURE(ficon_parse_updown_payload, uint32_t(msgq_message*, ficon_updown_notice*));
SIGNATURE(ficon_parse_enable_payload, uint32_t(msgq_message*, ficon_enable_notice*));

// tables
SIGNATURE(ficon_get_pmap_portvsan, int32_t(uint32_t));
SIGNATURE(ficon_get_pmap_portpn, int32_t());
SIGNATURE(ficon_get_pmap_papn, int32_t());
SIGNATURE(ficon_get_pmap_pnif, int32_t());
SIGNATURE(ficon_cmi_get_pmap_change_counter, int32_t(uint32_t*));
SIGNATURE(ficon_pmap_prepare_fastpath, int32_t(uint32_t));
SIGNATURE(ficon_cmi_get_max_portnumber, int32_t());
SIGNATURE(ficon_get_max_ficon_ports, int32_t());

// port address and port number
SIGNATURE(ficon_pmap_get_pa_to_pn_withpvsan, uint32_t(int32_t, const uint32_t*, uint16_t*, uint32_t*, int32_t));
SIGNATURE(ficon_pmap_get_pa_to_pn, uint32_t(int32_t, uint16_t*));
SIGNATURE(ficon_pmap_get_pa_vsan_to_pn, uint32_t(int32_t, uint32_t, uint16_t*));
SIGNATURE(ficon_pmap_get_pa_to_pn_fast, uint32_t(int32_t, uint16_t*));
SIGNATURE(ficon_pmap_get_pa_vsan_to_pn_fast, uint32_t(int32_t, uint32_t, uint16_t*));
SIGNATURE(ficon_pmap_get_pn_to_pa_withpvsan, uint32_t(int32_t, const uint32_t*, uint16_t*, uint32_t*, int32_t));
SIGNATURE(ficon_pmap_get_pn_to_pa, uint32_t(int32_t, uint16_t*));
SIGNATURE(ficon_pmap_get_pn_vsan_to_pa, uint32_t(int32_t, uint32_t, uint16_t*));
SIGNATURE(ficon_pmap_get_pn_to_pa_fast, uint32_t(int32_t, uint16_t*));
SIGNATURE(ficon_pmap_get_pn_vsan_to_pa_fast, uint32_t(int32_t, uint32_t, uint16_t*));

// default numbering
SIGNATURE(ficon_port_to_pn_init, int32_t(int32_t, entry*, int32_t, const uint16_t*));
SIGNATURE(ficon_port_to_pn_is_default, int32_t(const entry*));
SIGNATURE(ficon_get_default_pn, uint32_t(uint32_t, uint32_t, uint16_t*));

// slots and line cards
SIGNATURE(ficonm_platform_slot_to_lc_b0, int32_t(uint8_t, uint8_t*));
SIGNATURE(ficonm_platform_lc_to_slot_b0, int32_t(uint8_t, uint8_t*));
SIGNATURE(ficonm_platform_slot_to_pnpa_index_withpmap, int32_t(uint32_t, uint32_t, entry*, uint32_t*, const entry*));
SIGNATURE(ficonm_platform_slot_to_pnpa_index, int32_t(uint32_t, uint32_t, entry*, uint32_t*));
SIGNATURE(ficonm_platform_slot_to_pnpa, int32_t(uint32_t, uint32_t, entry*));
SIGNATURE(ficonm_platform_slot_to_pn, uint16_t(uint32_t, uint32_t));

// port number and index to interface
SIGNATURE(ficon_pmap_get_pn_to_if_withpvsan, uint32_t(int32_t, const uint32_t*, uint32_t*, uint32_t*, int32_t));
SIGNATURE(ficon_pmap_get_pn_vsan_to_if_fast, uint32_t(int32_t, uint32_t, uint32_t*));
SIGNATURE(ficon_pmap_get_pn_to_if_fast, uint32_t(int32_t, uint32_t*));
SIGNATURE(ficon_pmap_get_pn_vsan_to_if, uint32_t(int32_t, uint32_t, uint32_t*));
SIGNATURE(ficon_pmap_get_pn_to_if, uint32_t(int32_t, uint32_t*));
SIGNATURE(ficon_pmap_get_index_to_if_withpmap, uint32_t(int32_t, uint32_t, uint32_t*, const uint32_t*));
SIGNATURE(ficon_pmap_get_index_to_if, uint32_t(int32_t, uint32_t, uint32_t*));
SIGNATURE(ficon_pmap_get_index_to_phyif, uint32_t(int32_t, uint32_t*));

// interface to port number, address and index
SIGNATURE(ficon_pmap_get_if_to_pnpa_index_with2pmaps,
          int32_t(uint32_t, entry*, uint32_t*, const uint32_t*, const entry*, int32_t));
SIGNATURE(ficon_pmap_get_if_to_pnpa_index_withpmap, int32_t(uint32_t, entry*, uint32_t*, const uint32_t*, int32_t));
SIGNATURE(ficon_pmap_get_if_to_pnpa_withpmap, int32_t(uint32_t, entry*, const uint32_t*, int32_t));
SIGNATURE(ficon_pmap_get_if_to_pn_withpmap, int32_t(uint32_t, uint16_t*, const uint32_t*, int32_t));
SIGNATURE(ficon_pmap_get_if_to_pn, int32_t(uint32_t, uint16_t*));
SIGNATURE(ficon_pmap_get_if_to_pa, int32_t(uint32_t, uint16_t*));
SIGNATURE(ficon_pmap_get_if_to_index, int32_t(uint32_t, uint32_t*));
SIGNATURE(ficon_pmap_get_if_to_index_with2pmaps, int32_t(uint32_t, uint32_t*, const uint32_t*, const entry*, int32_t));

// iteration, address to interface
SIGNATURE(ficon_pmap_get_next_if, int32_t(uint32_t, uint32_t*));
SIGNATURE(ficon_pmap_get_last_if, int32_t(uint32_t, uint32_t*));
SIGNATURE(ficon_pmap_get_pa_to_if, uint32_t(int32_t, uint32_t*));
SIGNATURE(ficon_pmap_get_pa_vsan_to_if, uint32_t(int32_t, uint32_t, uint32_t*));
SIGNATURE(ficon_pmap_get_pa_to_if_fast, uint32_t(int32_t, uint32_t*));
SIGNATURE(ficon_pmap_get_pa_vsan_to_if_fast, uint32_t(int32_t, uint32_t, uint32_t*));

// port number to physical interface
SIGNATURE(ficon_pmap_get_pn_to_phyif_withpvsan,
          uint32_t(int32_t, const uint32_t*, int32_t, uint32_t*, const uint32_t*, uint32_t*));
SIGNATURE(ficon_pmap_get_pn_to_phyif, uint32_t(int32_t, uint32_t*, int32_t, const uint32_t*));
SIGNATURE(ficon_pmap_get_pn_vsan_to_phyif, uint32_t(int32_t, uint32_t, uint32_t*, int32_t, const uint32_t*));
SIGNATURE(ficon_pmap_get_pa_to_phyif, uint32_t(int32_t, uint32_t*));
SIGNATURE(ficon_pmap_get_pa_vsan_to_phyif, uint32_t(int32_t, uint32_t, uint32_t*));

// logical interfaces, per-VSAN information, slot and port
SIGNATURE(ficon_pmap_get_pn_logif, uint32_t(uint16_t*, uint32_t*, uint32_t*));
SIGNATURE(ficon_pmap_get_info_in_vsan, uint32_t(uint32_t, uint16_t**, uint16_t**, uint32_t**, uint32_t**, uint32_t*));
SIGNATURE(ficon_if_to_slot_port_logic, int32_t(uint32_t, uint8_t*, uint8_t*, uint32_t*));

// time of day
SIGNATURE(ficon_get_TOD_format, void(uint64_t, const char**, int32_t));
SIGNATURE(ficon_get_TOD, void(uint64_t, const char**));
SIGNATURE(ficon_cmi_compute_host_tstmp, uint64_t(const ficon_host_time*, uint64_t));
SIGNATURE(ficon_cmi_compute_host_tstmp_given_time, uint64_t(const ficon_host_time*, uint64_t, const ficon_host_time*));
SIGNATURE(ficon_cmi_get_vsan_tstmp, uint32_t(uint32_t, const char**, int32_t));
SIGNATURE(ficon_cmi_get_vsan_tstmp_given_time, uint32_t(uint32_t, const char**, int32_t, const ficon_host_time*));

// globals
SIGNATURE(ficon_pmap_port_to_vsan, uint16_t*);
SIGNATURE(ficon_pmap_port_to_pn, entry*);
SIGNATURE(ficon_pmap_pa_to_pn, uint16_t*);
SIGNATURE(ficon_pmap_pn_to_logif, uint32_t*);
SIGNATURE(ficon_port_to_vsan_array, uint8_t[32]);
SIGNATURE(MAX_FICON_PORTS, int32_t);
SIGNATURE(fastpath_got_vsan_port, int32_t);
SIGNATURE(libchnsw_pinfo, ficon_platform_info*);
SIGNATURE(convert_fnptr, ficon_convert_fn);
SIGNATURE(SECONDS_BTWN_EPOCHS, uint64_t);

} // namespace
