// Default numbering, as the library lays it out, and held against the map.
#include "commands/default_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "inspect/port_map/port_map_walk.h"
#include "inspect/words/target_numbers.h"
#include "output/port_row.h"

namespace chnsw_tool {

namespace {

// Entries that the widest layout reaches; the library tests a lower bound only.
constexpr size_t kLayoutEntries = 3328;
constexpr size_t kSlotNumbers = 254;
constexpr size_t kLogicalNumbers = 256;

using layout = std::vector<ficon_pmap_port_entry>;

struct default_layout {
  layout entries;
  int32_t first_logical = 0; // 0: the library knows no default for this chassis
};

default_layout lay_out(const library_session& session) {
  default_layout result{layout(kLayoutEntries), 0};
  const uint16_t* addresses = session.pa_to_pn();
  result.first_logical =
      ficon_port_to_pn_init(kLayoutEntries, result.entries.data(), static_cast<int32_t>(session.ports()), addresses);
  if (result.first_logical < 0)
    throw platform_error(
        fmt::format("the default numbering cannot be laid out (the library answers {})", result.first_logical));
  return result;
}

// The map in an array as long as the library may look; beyond the map there is no number.
layout mapped(const library_session& session) {
  layout entries(kLayoutEntries, ficon_pmap_port_entry{FICON_PMAP_NO_NUMBER, FICON_PMAP_NO_NUMBER, {}});
  std::copy_n(session.port_to_pn(), FICON_PMAP_PORT_ENTRIES, entries.begin());
  return entries;
}

bool is_default(const layout& entries) {
  int32_t answer = ficon_port_to_pn_is_default(entries.data());
  if (answer < 0)
    throw platform_error(fmt::format("the library cannot tell the default numbering (it answers {})", answer));
  return answer == 1;
}

// ---- Verdict ----

struct verdict {
  bool is_default = false;
  bool can_be_default = false; // whether the library would call its own layout the default
  std::optional<size_t> first_difference;
};

// Where the map first differs from the layout in a place that the library minds. Which places those are only the library
// knows, so each is put into the layout alone and the library is asked about it. Where it accepts no layout at all, every
// place counts.
std::optional<size_t> first_difference(const layout& expected, const layout& found, bool library_minds) {
  for (size_t i = 0; i < FICON_PMAP_PORT_ENTRIES; ++i) {
    if (expected[i].pn == found[i].pn) continue;
    if (!library_minds) return i;
    layout changed = expected;
    changed[i].pn = found[i].pn;
    if (!is_default(changed)) return i;
  }
  return std::nullopt;
}

verdict judge(const default_layout& expected, const layout& found) {
  verdict result;
  result.is_default = is_default(found);
  result.can_be_default = is_default(expected.entries);
  if (!result.is_default && expected.first_logical != 0)
    result.first_difference = first_difference(expected.entries, found, result.can_be_default);
  return result;
}

std::string number_or_none(uint16_t number) {
  return number == FICON_PMAP_NO_NUMBER ? "no number" : fmt::format("PN {}", number);
}

std::string in_words(const verdict& judged, const default_layout& expected, const layout& found) {
  if (judged.is_default) return "the port map is the default numbering";
  if (expected.first_logical == 0) return "the library knows no default numbering for this chassis";
  std::string text = "the port map is not the default numbering";
  if (!judged.can_be_default)
    text += "; the library never calls a map of this chassis the default, not even its own layout";
  if (!judged.first_difference) return text + ", and this map equals that layout";
  size_t place = *judged.first_difference;
  return fmt::format("{}; first difference at index {}: the default is {}, the map has {}", text, place,
                     number_or_none(expected.entries[place].pn), number_or_none(found[place].pn));
}

exit_code print_verdict(const command_context& context, const verdict& judged, const default_layout& expected,
                        const layout& found) {
  cell index;
  cell default_pn;
  cell map_pn;
  slot_and_port place;
  if (judged.first_difference) {
    auto at = static_cast<uint32_t>(*judged.first_difference);
    index = int64_t{at};
    place = slot_and_port_of(std::nullopt, at);
    default_pn = number_cell(expected.entries[at].pn);
    map_pn = number_cell(found[at].pn);
  }
  result_document document{{{"is_default", "DEFAULT"},
                            {"can_be_default", "CAN BE"},
                            {"first_difference", "DIFFERS AT INDEX"},
                            {"slot_port", "SLOT/PORT", 0, false, column::table_only},
                            {"slot", "", 0, false, column::data_only},
                            {"port", "", 0, false, column::data_only},
                            {"default_pn", "DEFAULT PN", 2},
                            {"map_pn", "MAP PN", 2},
                            {"why", "", 0, false, column::data_only}},
                           {}};
  document.add({judged.is_default, judged.can_be_default, index, place.text, place.slot, place.port, default_pn, map_pn,
                in_words(judged, expected, found)});
  context.print(document);
  return judged.is_default ? kFound : kNotFound;
}

// ---- Lists ----

exit_code print_layout(const command_context& context, const default_layout& expected, const layout& found) {
  result_document document{{{"index", "INDEX"},
                            {"slot_port", "SLOT/PORT", 0, false, column::table_only},
                            {"slot", "", 0, false, column::data_only},
                            {"port", "", 0, false, column::data_only},
                            {"default_pn", "DEFAULT PN", 2},
                            {"default_pa", "DEFAULT PA", 2, true},
                            {"map_pn", "MAP PN", 2},
                            {"map_pa", "MAP PA", 2, true}},
                           {}};
  for (size_t i = 0; i < kLayoutEntries; ++i) {
    const auto& entry = expected.entries[i];
    if (entry.pn == FICON_PMAP_NO_NUMBER) continue;
    auto place = slot_and_port_of(std::nullopt, static_cast<uint32_t>(i));
    document.add({static_cast<int64_t>(i), place.text, place.slot, place.port, number_cell(entry.pn), number_cell(entry.pa),
                  number_cell(found[i].pn), number_cell(found[i].pa)});
  }
  context.print(document);
  return document.rows.empty() ? kNotFound : kFound;
}

void add_slot(uint32_t slot, bool logical, result_document& document, bool& all_found) {
  std::vector<uint16_t> pns(logical ? kLogicalNumbers : kSlotNumbers, FICON_PMAP_NO_NUMBER);
  uint32_t answer = ficon_get_default_pn(slot, logical ? 1 : 0, pns.data());
  cell where;
  if (!logical) where = int64_t{slot};
  size_t before = document.rows.size();
  for (size_t i = 0; i < pns.size(); ++i) {
    if (pns[i] == FICON_PMAP_NO_NUMBER) continue;
    document.add({where, logical ? cell() : cell(static_cast<int64_t>(i) + 1), int64_t{pns[i]}, status{answer}});
  }
  if (document.rows.size() != before) return;
  all_found = false;
  document.add({where, cell(), cell(), status{answer}});
}

exit_code print_slots(const command_context& context, const default_options& options, const library_session& session) {
  result_document document{{{"slot", "SLOT"}, {"port", "PORT"}, {"default_pn", "DEFAULT PN", 2}, {"status", "STATUS"}}, {}};
  bool all_found = true;
  std::vector<uint32_t> cards;
  for (const auto& card : session.chassis().line_cards) cards.push_back(card.slot);
  for (uint32_t slot : parse_numbers(kSlot, options.slots, cards)) add_slot(slot, false, document, all_found);
  if (options.logical) add_slot(0, true, document, all_found);
  context.print(document);
  return all_found ? kFound : kNotFound;
}

} // namespace

exit_code show_default(const command_context& context, const default_options& options) {
  library_session session = context.open_session();
  if (!options.slots.empty() || options.logical) return print_slots(context, options, session);
  default_layout expected = lay_out(session);
  layout found = mapped(session);
  verdict judged = judge(expected, found);
  if (options.verdict) return print_verdict(context, judged, expected, found);
  exit_code code = print_layout(context, expected, found);
  notice(in_words(judged, expected, found));
  return code;
}

command default_command() {
  auto options = std::make_shared<default_options>();
  return {
      .name = "default",
      .what = "The default port numbering, and whether the map still is the default",
      .examples =
          "  chnsw -s FILE default\n  chnsw -s FILE default --verdict\n"
          "  chnsw -s FILE default --slot 1-2 --logical",
      .arguments = {flag("--verdict", &options->verdict,
                         "Only whether the map is the default by the library's word, and where it first differs; "
                         "exit status 1 when it is not"),
                    option("--slot", "LIST", &options->slots,
                           fmt::format("Default numbers of slots: 3, 1-4 or all. {}", kDecimalDigits))
                        .without("--verdict"),
                    flag("--logical", &options->logical, "Default numbers without a physical port").without("--verdict")},
      .run = runs(show_default, options),
      .parts = {}};
}

} // namespace chnsw_tool
