// Asking for the default numbering, and holding it against the map.
#include "inspect/port_map/default_numbering.h"

#include <fmt/format.h>

#include <algorithm>

#include "inspect/error.h"
#include "inspect/port_map/port_place.h"
#include "libchnsw.h"

namespace inspect {

namespace {

// Entries that the widest layout reaches; the library tests a lower bound only.
constexpr uint32_t kLayoutEntries = 3328;
constexpr size_t kSlotNumbers = 254;
constexpr size_t kNumbersWithoutPort = 256;

using entry_list = std::vector<ficon_pmap_port_entry>;

struct default_layout {
  entry_list entries;
  bool is_known = false;
};

default_layout lay_out(const library_session& session) {
  entry_list entries(kLayoutEntries);
  const uint16_t* addresses = session.pa_to_pn();
  int32_t first_logical =
      ficon_port_to_pn_init(kLayoutEntries, entries.data(), static_cast<int32_t>(session.ports()), addresses);
  if (first_logical < 0)
    throw platform_error(fmt::format("the default numbering cannot be laid out (the library answers {})", first_logical));
  return {std::move(entries), first_logical != 0};
}

// The map in an array as long as the library may look; beyond the map there is no number.
entry_list mapped(const library_session& session) {
  entry_list entries(kLayoutEntries, ficon_pmap_port_entry{FICON_PMAP_NO_NUMBER, FICON_PMAP_NO_NUMBER, {}});
  std::copy_n(session.port_to_pn(), FICON_PMAP_PORT_ENTRIES, entries.begin());
  return entries;
}

bool is_default(const entry_list& entries) {
  int32_t answer = ficon_port_to_pn_is_default(entries.data());
  if (answer < 0)
    throw platform_error(fmt::format("the library cannot tell the default numbering (it answers {})", answer));
  return answer == 1;
}

// Only the library knows which entries it compares. Where it calls the layout itself the default, each difference is put into
// the layout alone, and the library is asked whether that is still the default.
std::optional<uint32_t> first_difference(const entry_list& expected, const entry_list& found, bool can_be_default) {
  for (uint32_t index = 0; index < FICON_PMAP_PORT_ENTRIES; ++index) {
    if (expected[index].pn == found[index].pn) continue;
    if (!can_be_default) return index;
    entry_list changed = expected;
    changed[index].pn = found[index].pn;
    if (!is_default(changed)) return index;
  }
  return std::nullopt;
}

default_entry entry_at(uint32_t index, const entry_list& expected, const entry_list& found) {
  return {index, port_at_place(index), expected[index].pn, expected[index].pa, found[index].pn, found[index].pa};
}

// The numbers that the library wrote; one without a number tells why there are none.
template <typename make_number>
std::vector<default_number> numbers_from(const std::vector<uint16_t>& pns, make_number&& make) {
  std::vector<default_number> numbers;
  for (uint32_t place = 0; place < pns.size(); ++place)
    if (pns[place] != FICON_PMAP_NO_NUMBER) numbers.push_back(make(place, std::optional<uint32_t>(pns[place])));
  if (numbers.empty()) numbers.push_back(make(std::nullopt, std::nullopt));
  return numbers;
}

} // namespace

default_numbering compare_with_default(const library_session& session) {
  default_layout layout = lay_out(session);
  entry_list found = mapped(session);
  default_numbering result;
  result.is_default = is_default(found);
  result.can_be_default = is_default(layout.entries);
  result.is_known = layout.is_known;
  if (!result.is_default && result.is_known)
    if (auto index = first_difference(layout.entries, found, result.can_be_default))
      result.first_difference = entry_at(*index, layout.entries, found);
  for (uint32_t index = 0; index < kLayoutEntries; ++index)
    if (layout.entries[index].pn != FICON_PMAP_NO_NUMBER) result.expected.push_back(entry_at(index, layout.entries, found));
  return result;
}

std::vector<default_number> default_numbers_of_slot(uint32_t slot) {
  std::vector<uint16_t> pns(kSlotNumbers, FICON_PMAP_NO_NUMBER);
  uint32_t status = ficon_get_default_pn(slot, 0, pns.data());
  return numbers_from(pns, [&](std::optional<uint32_t> place, std::optional<uint32_t> pn) -> default_number {
    if (!place) return {slot, std::nullopt, pn, status};
    return {slot, *place + 1, pn, status};
  });
}

std::vector<default_number> default_numbers_without_port() {
  std::vector<uint16_t> pns(kNumbersWithoutPort, FICON_PMAP_NO_NUMBER);
  uint32_t status = ficon_get_default_pn(0, 1, pns.data());
  return numbers_from(pns, [&](std::optional<uint32_t>, std::optional<uint32_t> pn) -> default_number {
    return {std::nullopt, std::nullopt, pn, status};
  });
}

} // namespace inspect
