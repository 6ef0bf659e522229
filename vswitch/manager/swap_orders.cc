#include "swap_orders.h"

#include <platform/if_index.h>

#include <array>
#include <string>
#include <utility>

#include "map_changes.h"
#include "map_places.h"
#include "vswitch/interface_index.h"
#include "vswitch/manager/manager_protocol.h"
#include "vswitch/vsan_set.h"
#include "vswitch/vswitch.h"

namespace vswitch {

swap_orders::swap_orders(switch_store& store, const served_end& requests, outbox& answers, const event_log& log,
                         int patience_ms)
    : store_(store), requests_(requests), answers_(answers), log_(log), swaps_(actions(), patience_ms) {}

swap_actions swap_orders::actions() {
  return {[this](uint64_t peer, uint32_t opcode, const ficon_if_swap_req& request) {
            return requests_.send(peer, opcode, std::as_bytes(std::span(&request, 1)));
          },
          [this](uint32_t a, uint32_t b) { return write(a, b); },
          [this](msgq_message* order, const swap_result& result) {
            answers_.answer(owned_message(order), flat_payload(result));
          },
          log_};
}

void swap_orders::advance(int64_t now_ms) {
  if (swaps_.empty()) return;
  swaps_.give_up_disconnected(requests_.peers(), now_ms);
  swaps_.resend_questions(now_ms);
  swaps_.give_up_overdue(now_ms);
}

void swap_orders::take_reply(msgq_message* reply, int64_t now_ms) {
  const auto response = flat_record<ficon_if_swap_resp>(payload_of(reply));
  const uint64_t peer = msgq_peer_get(reply);
  if (!response)
    log_(peer, "a reply to nothing, not well formed", FICON_RC_INVALID_ARG);
  else if (!swaps_.respond(peer, *response, now_ms))
    log_(peer, "a response to swap " + std::to_string(response->swap_word4) + ", which does not wait for it",
         FICON_RC_INVALID_ARG);
}

// Whether the swap may begin, and the VSANs of both.
uint32_t swap_orders::check(uint32_t if_index_a, uint32_t if_index_b, vsan_block& vsans) const {
  const chassis_description& chassis = *chassis_in_use();
  map_tables tables = {};
  uint32_t result = fetch_tables(tables);
  if (result == 0) result = swaps_.may_begin(chassis, tables, if_index_a, if_index_b);
  if (result != 0) return result;
  std::array<ficon_pmap_port_entry, 2> entries = {tables.port_to_pn[*index_of(chassis, tables, if_index_a)],
                                                  tables.port_to_pn[*index_of(chassis, tables, if_index_b)]};
  vsans = bound_vsans(entries);
  return 0;
}

void swap_orders::take_order(owned_message message, int64_t now_ms) {
  const uint64_t peer = msgq_peer_get(message.get());
  const auto order = flat_record<swap_order>(payload_of(message.get()));
  if (!order) {
    log_(peer, "swap, not well formed", FICON_RC_INVALID_ARG);
    return answers_.answer(std::move(message), flat_payload(manager_result{FICON_RC_INVALID_ARG}));
  }
  const uint32_t a = ntoh_if_index(order->if_index_a);
  const uint32_t b = ntoh_if_index(order->if_index_b);
  vsan_block vsans = no_vsans();
  const uint32_t result = check(a, b, vsans);
  if (result == 0) return swaps_.begin(message.release(), peer, a, b, vsans, now_ms);
  log_(peer, "swap of " + interface_name(a) + " and " + interface_name(b), result);
  answers_.answer(std::move(message), flat_payload(swap_result{result, kNoStep, 0}));
}

bool swap_orders::write(uint32_t if_index_a, uint32_t if_index_b) {
  try {
    store_.change_map([&](port_map& map) {
      map_place a;
      map_place b;
      const chassis_description& chassis = *chassis_in_use();
      if (find_swappable(chassis, tables_of(map), if_index_a, a) != 0 ||
          find_swappable(chassis, tables_of(map), if_index_b, b) != 0)
        throw switch_error("the interfaces have lost their numbers");
      swap_interfaces(map, a, b);
    });
    return true;
  } catch (const switch_error& error) {
    log_(0, std::string("the map cannot be written: ") + error.what(), FICON_RC_PLATFORM);
    return false;
  }
}

} // namespace vswitch
