// Explaining which interface a port map index has.
#include <fmt/format.h>

#include "inspect/port_map/explained_calls.h"
#include "inspect/words/number_texts.h"
#include "inspect/words/status_names.h"
#include "libchnsw.h"
#include "platform/if_index.h"
#include "platform/lagmap.h"
#include "platform/portidx.h"

namespace inspect {

namespace {

struct interface_lookup {
  std::vector<std::string> steps;
  std::string rule;
  uint32_t status = 0;
  std::optional<uint32_t> written;
};

void settle(interface_lookup& found, uint32_t status, std::optional<uint32_t> written, std::string rule) {
  found.status = status;
  found.written = written;
  found.rule = std::move(rule);
}

// The interface of a physical index; whether the port is there is another question.
bool build_interface(uint32_t index, interface_lookup& found) {
  uint8_t slot = 0;
  auto card = static_cast<uint8_t>(index / FICON_PMAP_PORTS_PER_LC);
  auto port = static_cast<uint8_t>(index % FICON_PMAP_PORTS_PER_LC);
  int32_t failed = ficonm_platform_lc_to_slot_b0(card, &slot);
  if (failed != 0) {
    settle(found, static_cast<uint32_t>(failed), std::nullopt,
           fmt::format("line card {} has no slot in this chassis", card));
    return false;
  }
  uint32_t interface = 0;
  int built = if_index_phy_fc_port_init(&interface, slot, port, 0);
  found.steps.push_back(fmt::format("index {} is line card {}, slot {}, port {}", index, card, slot + 1, port + 1));
  settle(found, static_cast<uint32_t>(built), built == 0 ? std::optional<uint32_t>(interface) : std::nullopt,
         "the interface follows from slot and port, whether the port is there or not");
  return built == 0;
}

interface_lookup find_index(uint32_t index, const port_map_tables& tables) {
  interface_lookup found;
  if (index >= FICON_PMAP_PORT_ENTRIES) {
    settle(found, FICON_RC_INVALID_ARG, std::nullopt, "the highest port map index is 1279");
  } else if (index < FICON_PMAP_PHYS_ENTRIES) {
    build_interface(index, found);
  } else if (uint16_t pn = tables.port_to_pn[index].pn; pn == FICON_PMAP_NO_NUMBER) {
    settle(found, FICON_RC_INVALID_ARG, std::nullopt, "an index from 1024 on is found by its port number, and it has none");
  } else {
    uint32_t interface = tables.pn_to_if[pn];
    settle(found, interface != 0 ? 0 : uint32_t{FICON_RC_PLATFORM}, interface,
           fmt::format("an index from 1024 on has the interface that its port number, {}, is bound to", pn));
  }
  return found;
}

void judge_port_channel(uint32_t interface, interface_lookup& found) {
  lagmap_port_query query{interface, 0};
  auto member = static_cast<uint32_t>(lagmap_get_port(&query));
  if (member == 0 && query.channel != 0)
    settle(found, FICON_RC_LAG_MEMBER, 0, fmt::format("the port is a member of port-channel{}", query.channel));
  else if (member != 0 && member != FICON_LAGMAP_NOT_MEMBER)
    settle(found, FICON_RC_PLATFORM, interface, fmt::format("its port-channel cannot be told ({})", status_text(member)));
  else
    settle(found, 0, interface, "the port is there and in no port-channel: it is the answer");
}

interface_lookup find_physical_index(uint32_t index) {
  interface_lookup found;
  if (index >= FICON_PMAP_PHYS_ENTRIES) {
    settle(found, FICON_RC_INVALID_ARG, std::nullopt, "the highest index of a physical port is 1023");
    return found;
  }
  if (!build_interface(index, found)) return found;
  uint32_t interface = *found.written;
  uint16_t port_index = 0;
  auto there = static_cast<uint32_t>(portidx_port_by_if_index(interface, &port_index));
  if (there != 0)
    settle(found, there == FICON_PORTIDX_NO_PORT ? uint32_t{FICON_RC_NO_IF} : there, 0, "no such port is there");
  else
    judge_port_channel(interface, found);
  return found;
}

void explain_by(const interface_lookup& found, uint32_t status, uint32_t interface, explanation& explained) {
  explained.steps = found.steps;
  explained.rule = found.rule;
  explained.status = found.status;
  explained.result = found.status == 0 ? found.written : std::nullopt;
  explained.answer = found.status == 0 ? interface_text(*found.written) : "no interface";
  if (status != found.status || interface != found.written.value_or(kUntouched32))
    report_disagreement(explained, fmt::format("the library answered {} and {}, the tables say {}", status_text(status),
                                               interface_text(interface), status_text(found.status)));
}

} // namespace

explanation explain_index_to_interface(const library_session& session, uint32_t index) {
  port_map_tables tables = tables_of(session);
  uint32_t pn = FICON_PMAP_NO_NUMBER;
  if (index < FICON_PMAP_PORT_ENTRIES) pn = tables.port_to_pn[index].pn;
  uint32_t interface = kUntouched32;
  uint32_t status = 0;
  explanation explained;
  explained.translation = fmt::format("index {} to interface", index);
  explained.operation = "ficon_pmap_get_index_to_if";
  explained.traces =
      events_during([&] { status = ficon_pmap_get_index_to_if(static_cast<int32_t>(index), pn, &interface); });
  explain_by(find_index(index, tables), status, interface, explained);
  return explained;
}

explanation explain_index_to_physical_interface(uint32_t index) {
  uint32_t interface = kUntouched32;
  uint32_t status = 0;
  explanation explained;
  explained.translation = fmt::format("index {} to physical interface", index);
  explained.operation = "ficon_pmap_get_index_to_phyif";
  explained.traces =
      events_during([&] { status = ficon_pmap_get_index_to_phyif(static_cast<int32_t>(index), &interface); });
  explain_by(find_physical_index(index), status, interface, explained);
  return explained;
}

} // namespace inspect
