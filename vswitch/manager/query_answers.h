// Answers to requests that change nothing. Each gets the request's payload; one that is not well formed is answered by a
// manager_result of FICON_RC_INVALID_ARG. The library's tables are fetched anew for each.
#ifndef VSWITCH_MANAGER_QUERY_ANSWERS_H
#define VSWITCH_MANAGER_QUERY_ANSWERS_H

#include <libchnsw.h>

#include "requests.h"
#include "vswitch/chassis_description.h"

namespace vswitch {

answer answer_port_map(const chassis_description& chassis, payload_view payload);
answer answer_enabled_vsans(payload_view payload);
answer answer_ifvsan_state(const chassis_description& chassis, payload_view payload);
answer answer_rnid(const chassis_description& chassis, payload_view payload, ficon_convert_fn convert);

// Fills in result, codepage and descriptor of an interface's record. Returns the result.
uint32_t fill_rnid(const chassis_description& chassis, uint32_t if_index, ficon_convert_fn convert, ficon_rnid_rec& record);

} // namespace vswitch

#endif
