// Default numbering, as the library lays it out, and held against the map.
#include "commands/default_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

#include "inspect/port_map/default_numbering.h"
#include "inspect/words/number_lists.h"
#include "output/cells.h"
#include "output/record_table.h"

namespace chnsw_tool {

namespace {

using inspect::default_entry;
using inspect::default_number;
using inspect::default_numbering;
using inspect::library_session;

struct default_options {
  std::vector<std::string> slots; // the default numbers of these slots
  bool logical = false;           // the default numbers without a physical port
  bool verdict = false;           // only whether the map is the default
};

// ---- Verdict ----

std::string number_or_none(uint16_t number) {
  return number == FICON_PMAP_NO_NUMBER ? "no number" : fmt::format("PN {}", number);
}

std::string in_words(const default_numbering& numbering) {
  if (numbering.is_default) return "the port map is the default numbering";
  if (!numbering.is_known) return "the library knows no default numbering for this chassis";
  std::string text = "the port map is not the default numbering";
  if (!numbering.can_be_default)
    text += "; the library never calls a map of this chassis the default, not even its own layout";
  if (!numbering.first_difference) return text + ", and this map equals that layout";
  const auto& place = *numbering.first_difference;
  return fmt::format("{}; first difference at index {}: the default is {}, the map has {}", text, place.index,
                     number_or_none(place.default_pn), number_or_none(place.map_pn));
}

// A cell of the first difference; none where there is none.
cell difference_cell(const default_numbering& numbering, cell (*value)(const default_entry&)) {
  return numbering.first_difference ? value(*numbering.first_difference) : cell();
}

std::span<const record_column<default_numbering>> verdict_table() {
  static const record_column<default_numbering> kTable[] = {
      {{"is_default", "DEFAULT"}, [](const default_numbering& of) -> cell { return of.is_default; }},
      {{"can_be_default", "CAN BE"}, [](const default_numbering& of) -> cell { return of.can_be_default; }},
      {{"first_difference", "DIFFERS AT INDEX"},
       [](const default_numbering& of) {
         return difference_cell(of, [](const default_entry& at) -> cell { return int64_t{at.index}; });
       }},
      {{"slot_port", "SLOT/PORT", 0, false, column::table_only},
       [](const default_numbering& of) {
         return difference_cell(of, [](const default_entry& at) { return slot_and_port_cell(at.port); });
       }},
      {{"slot", "", 0, false, column::data_only},
       [](const default_numbering& of) {
         return difference_cell(of, [](const default_entry& at) { return slot_cell(at.port); });
       }},
      {{"port", "", 0, false, column::data_only},
       [](const default_numbering& of) {
         return difference_cell(of, [](const default_entry& at) { return port_cell(at.port); });
       }},
      {{"default_pn", "DEFAULT PN", 2},
       [](const default_numbering& of) {
         return difference_cell(of, [](const default_entry& at) { return number_cell(at.default_pn); });
       }},
      {{"map_pn", "MAP PN", 2},
       [](const default_numbering& of) {
         return difference_cell(of, [](const default_entry& at) { return number_cell(at.map_pn); });
       }},
      {{"why", "", 0, false, column::data_only}, [](const default_numbering& of) -> cell { return in_words(of); }}};
  return kTable;
}

// ---- Lists ----

std::span<const record_column<default_entry>> layout_table() {
  static const record_column<default_entry> kTable[] = {
      {{"index", "INDEX"}, [](const default_entry& of) -> cell { return int64_t{of.index}; }},
      {{"slot_port", "SLOT/PORT", 0, false, column::table_only},
       [](const default_entry& of) { return slot_and_port_cell(of.port); }},
      {{"slot", "", 0, false, column::data_only}, [](const default_entry& of) { return slot_cell(of.port); }},
      {{"port", "", 0, false, column::data_only}, [](const default_entry& of) { return port_cell(of.port); }},
      {{"default_pn", "DEFAULT PN", 2}, [](const default_entry& of) { return number_cell(of.default_pn); }},
      {{"default_pa", "DEFAULT PA", 2, true}, [](const default_entry& of) { return number_cell(of.default_pa); }},
      {{"map_pn", "MAP PN", 2}, [](const default_entry& of) { return number_cell(of.map_pn); }},
      {{"map_pa", "MAP PA", 2, true}, [](const default_entry& of) { return number_cell(of.map_pa); }}};
  return kTable;
}

std::span<const record_column<default_number>> number_table() {
  static const record_column<default_number> kTable[] = {
      {{"slot", "SLOT"}, [](const default_number& of) { return optional_cell(of.slot); }},
      {{"port", "PORT"}, [](const default_number& of) { return optional_cell(of.port); }},
      {{"default_pn", "DEFAULT PN", 2}, [](const default_number& of) { return optional_cell(of.pn); }},
      {{"status", "STATUS"}, [](const default_number& of) { return status_cell(of.status); }}};
  return kTable;
}

exit_code print_slots(const command_context& context, const default_options& options, const library_session& session) {
  std::vector<uint32_t> cards;
  for (const auto& card : session.chassis().line_cards) cards.push_back(card.slot);
  std::vector<default_number> numbers;
  for (uint32_t slot : parse_numbers(inspect::kSlot, options.slots, cards))
    append(numbers, inspect::default_numbers_of_slot(slot));
  if (options.logical) append(numbers, inspect::default_numbers_without_port());
  context.print(document_of(number_table(), numbers));
  const bool all_found = std::all_of(numbers.begin(), numbers.end(), [](const auto& one) { return one.pn.has_value(); });
  return all_found ? kFound : kNotFound;
}

exit_code show_default(const command_context& context, const default_options& options) {
  const library_session session = context.open_session();
  if (!options.slots.empty() || options.logical) return print_slots(context, options, session);
  const default_numbering numbering = compare_with_default(session);
  if (options.verdict) {
    context.print(document_of(verdict_table(), {numbering}));
    return numbering.is_default ? kFound : kNotFound;
  }
  context.print(document_of(layout_table(), numbering.expected));
  notice(in_words(numbering));
  return numbering.expected.empty() ? kNotFound : kFound;
}

} // namespace

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
