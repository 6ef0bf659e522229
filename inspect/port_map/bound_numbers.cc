// Asking for bound port numbers.
#include "inspect/port_map/bound_numbers.h"

#include "inspect/error.h"
#include "inspect/words/status_names.h"
#include "libchnsw.h"

namespace inspect {

namespace {

std::vector<uint32_t> members_of(const vswitch::chassis_description& chassis, uint32_t if_index) {
  for (const auto& interface : chassis.interfaces)
    if (interface.if_index == if_index) return interface.members;
  return {};
}

} // namespace

std::vector<bound_number> bound_numbers(const library_session& session) {
  std::vector<uint16_t> pns(session.ports());
  std::vector<uint32_t> interfaces(session.ports());
  uint32_t count = 0;
  uint32_t status = ficon_pmap_get_pn_logif(pns.data(), interfaces.data(), &count);
  if (status != 0) throw platform_error("the logical interfaces cannot be read: " + status_text(status));
  std::vector<bound_number> numbers;
  for (uint32_t which = 0; which < count; ++which)
    numbers.push_back({pns[which], interfaces[which], members_of(session.chassis(), interfaces[which])});
  return numbers;
}

} // namespace inspect
