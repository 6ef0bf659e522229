// Which port, number, address and interface belong together, asked from any side.
#include "commands/resolve_commands.h"
#include "inspect/words/status_names.h"

#include <fmt/format.h>

#include "inspect/port_map/explanation.h"
#include "inspect/words/target_numbers.h"
#include "output/port_row.h"
#include "vswitch/interface_index.h"

namespace chnsw_tool {

namespace {

// Asks one question after the other, and remembers whether every one was answered.
class questioning {
 public:
  questioning(const command_context& context, const resolve_options& options)
      : context_(context), options_(options), session_(context.open_session()) {
    document_.columns = port_columns();
    if (options.vsan) vsan_ = parse_number(kVsan, *options.vsan);
    if (options.fast) prepare_fast_path();
  }

  const library_session& session() const { return session_; }
  const resolve_options& options() const { return options_; }
  const uint32_t* vsan() const { return vsan_ ? &*vsan_ : nullptr; }
  std::optional<uint32_t> asked_vsan() const { return vsan_; }

  explanation explain(translation what, uint32_t number) const {
    return explain_walk(session_, {what, number, vsan_}, options_.fast);
  }

  void add(const port_row& row, const std::vector<explanation>& explanations) {
    document_.rows.push_back(show(row, session_));
    if (options_.explain) attach(explanations, document_.rows.back());
    if (!row.is_found()) all_found_ = false;
  }

  exit_code finish() const {
    context_.print(document_);
    return all_found_ ? kFound : kNotFound;
  }

 private:
  void prepare_fast_path() {
    int32_t answer = ficon_pmap_prepare_fastpath(vsan_.value_or(0));
    if (answer != 0)
      throw platform_error("the library cannot prepare its fast path: " + status_text(static_cast<uint32_t>(answer)));
  }

  const command_context& context_;
  const resolve_options& options_;
  library_session session_;
  std::optional<uint32_t> vsan_;
  result_document document_;
  bool all_found_ = true;
};

// ---- Address ----

uint32_t interface_of_address(uint32_t pa, const questioning& asked, uint32_t& interface) {
  auto number = static_cast<int32_t>(pa);
  const uint32_t* vsan = asked.vsan();
  if (asked.options().fast)
    return vsan ? ficon_pmap_get_pa_vsan_to_if_fast(number, *vsan, &interface)
                : ficon_pmap_get_pa_to_if_fast(number, &interface);
  return vsan ? ficon_pmap_get_pa_vsan_to_if(number, *vsan, &interface) : ficon_pmap_get_pa_to_if(number, &interface);
}

// The library has no fast form of this one.
uint32_t physical_interface_of_address(uint32_t pa, const uint32_t* vsan, uint32_t& interface) {
  auto number = static_cast<int32_t>(pa);
  return vsan ? ficon_pmap_get_pa_vsan_to_phyif(number, *vsan, &interface) : ficon_pmap_get_pa_to_phyif(number, &interface);
}

// The entry that the number or address comes from, for what has no interface to be found by.
std::optional<uint32_t> deciding_index(translation what, uint32_t number, const questioning& asked) {
  walk_result walked = walk_port_map({what, number, asked.asked_vsan()}, tables_of(asked.session()));
  return walked.index;
}

// A number is an answer with status 0, and where the library hands one back in spite of an ambiguity, with its flag
// cleared.
bool is_answered(uint32_t status, uint32_t flag) {
  return status == 0 || (status == FICON_RC_MULTI_IF && flag == 0);
}

void resolve_address(uint32_t pa, questioning& asked) {
  port_row row;
  row.pa = pa;
  row.asked_vsan = asked.asked_vsan();
  uint16_t pn = 0;
  uint32_t flag = 1;
  row.answer = ficon_pmap_get_pa_to_pn_withpvsan(static_cast<int32_t>(pa), asked.vsan(), &pn, &flag, asked.options().fast);
  if (is_answered(*row.answer, flag)) row.pn = pn;
  uint32_t interface = 0;
  row.if_answer = interface_of_address(pa, asked, interface);
  row.if_index = interface;
  uint32_t physical = 0;
  row.phyif_answer = physical_interface_of_address(pa, asked.vsan(), physical);
  row.phyif_index = physical;
  if (row.pn && interface == 0 && physical == 0) row.index = deciding_index(translation::pa_to_pn, pa, asked);

  std::vector<explanation> why;
  if (asked.options().explain) {
    why.push_back(asked.explain(translation::pa_to_pn, pa));
    if (*row.answer == 0) why.push_back(asked.explain(translation::pn_to_if, pn));
    if (*row.answer == 0) why.push_back(asked.explain(translation::pn_to_phyif, pn));
  }
  asked.add(row, why);
}

// ---- Number ----

void resolve_number(uint32_t number, questioning& asked) {
  auto pn = static_cast<int32_t>(number);
  int32_t fast = asked.options().fast;
  port_row row;
  row.pn = number;
  row.asked_vsan = asked.asked_vsan();
  uint16_t pa = 0;
  uint32_t flag = 1;
  row.answer = ficon_pmap_get_pn_to_pa_withpvsan(pn, asked.vsan(), &pa, &flag, fast);
  if (is_answered(*row.answer, flag)) row.pa = pa;
  uint32_t interface = 0;
  row.if_answer = ficon_pmap_get_pn_to_if_withpvsan(pn, asked.vsan(), &interface, &flag, fast);
  row.if_index = interface;
  uint32_t physical = 0;
  row.phyif_answer = ficon_pmap_get_pn_to_phyif_withpvsan(pn, asked.vsan(), static_cast<int32_t>(asked.session().ports()),
                                                          &physical, nullptr, &flag);
  row.phyif_index = physical;
  if (row.pa && interface == 0 && physical == 0) row.index = deciding_index(translation::pn_to_pa, number, asked);

  std::vector<explanation> why;
  if (asked.options().explain) {
    for (translation what : {translation::pn_to_pa, translation::pn_to_if, translation::pn_to_phyif})
      why.push_back(asked.explain(what, number));
  }
  asked.add(row, why);
}

// ---- Interface, slot and port, index ----

void ask_physical_interface(port_row& row) {
  if (!row.index || *row.index >= FICON_PMAP_PHYS_ENTRIES) return;
  uint32_t physical = 0;
  row.phyif_answer = ficon_pmap_get_index_to_phyif(static_cast<int32_t>(*row.index), &physical);
  row.phyif_index = physical;
}

void tell_not_asked(const std::string& what, uint32_t place) {
  notice(fmt::format("{} would be at port map index {}, beyond the last, {}: the library is not asked", what, place,
                     FICON_PMAP_PORT_ENTRIES - 1));
}

// What the library found by an interface or a slot. It may be content and find nothing: when it cannot tell whether a port is
// in a port-channel, it answers 0 and writes nothing.
struct found_entry {
  ficon_pmap_port_entry entry{FICON_PMAP_NO_NUMBER, FICON_PMAP_NO_NUMBER, {}};
  uint32_t index = FICON_PMAP_PORT_ENTRIES;
};

void take_over(const found_entry& found, port_row& row) {
  if (*row.answer != 0 || found.index >= FICON_PMAP_PORT_ENTRIES) return;
  row.pn = found.entry.pn;
  row.pa = found.entry.pa;
  row.index = found.index;
  ask_physical_interface(row);
}

void resolve_interface(uint32_t if_index, questioning& asked) {
  port_row row;
  row.if_index = if_index;
  if (is_beyond_port_map(if_index)) {
    auto port = vswitch::fc_port_of(if_index);
    row.index = port_map_place(port->slot, port->port);
    tell_not_asked(vswitch::interface_name(if_index), *row.index);
    return asked.add(row, {});
  }
  found_entry found;
  row.answer = static_cast<uint32_t>(ficon_pmap_get_if_to_pnpa_index_with2pmaps(
      if_index, &found.entry, &found.index, nullptr, nullptr, asked.options().skip_lag_check));
  take_over(found, row);
  std::vector<explanation> why;
  if (asked.options().explain) {
    why.push_back(explain_interface(asked.session(), if_index, asked.options().skip_lag_check));
    if (row.phyif_answer) why.push_back(explain_physical_index(*row.index));
  }
  asked.add(row, why);
}

void resolve_slot(const vswitch::fc_port& port, questioning& asked) {
  port_row row;
  row.if_index = vswitch::fc_port_index(port.slot, port.port);
  auto place = port_map_place(port.slot, port.port);
  if (place && *place >= FICON_PMAP_PORT_ENTRIES) {
    row.index = place;
    tell_not_asked(fmt::format("slot {}, port {}", port.slot, port.port), *place);
    return asked.add(row, {});
  }
  asked.session().port_to_pn(); // the library reads the table as it is
  found_entry found;
  row.answer =
      static_cast<uint32_t>(ficonm_platform_slot_to_pnpa_index(port.slot - 1, port.port - 1, &found.entry, &found.index));
  take_over(found, row);
  std::vector<explanation> why;
  if (asked.options().explain) {
    why.push_back(explain_slot(asked.session(), port.slot, port.port));
    if (row.phyif_answer) why.push_back(explain_physical_index(*row.index));
  }
  asked.add(row, why);
}

// An index without a port has the interface of its number; the library looks that up without a test, so a number beyond its
// table must not be handed to it.
bool may_ask_index(uint32_t index, uint32_t pn, uint32_t ports) {
  return index < FICON_PMAP_PHYS_ENTRIES || pn < ports || pn == FICON_PMAP_NO_NUMBER;
}

void resolve_index(uint32_t index, questioning& asked) {
  port_row row;
  row.index = index;
  uint32_t pn = FICON_PMAP_NO_NUMBER;
  if (index < FICON_PMAP_PORT_ENTRIES) {
    const auto& entry = asked.session().port_to_pn()[index];
    pn = entry.pn;
    row.pn = entry.pn;
    row.pa = entry.pa;
  }
  if (!may_ask_index(index, pn, asked.session().ports())) {
    notice(fmt::format("index {} carries port number {}, beyond the highest, {}: the library is not asked", index, pn,
                       asked.session().ports() - 1));
    return asked.add(row, {});
  }
  uint32_t interface = 0;
  row.answer = ficon_pmap_get_index_to_if(static_cast<int32_t>(index), pn, &interface);
  row.if_index = interface;
  ask_physical_interface(row);
  std::vector<explanation> why;
  if (asked.options().explain) {
    why.push_back(explain_index(asked.session(), index));
    if (row.phyif_answer) why.push_back(explain_physical_index(*row.index));
  }
  asked.add(row, why);
}

} // namespace

exit_code resolve_addresses(const command_context& context, const resolve_options& options) {
  questioning asked(context, options);
  for (uint32_t pa : parse_numbers(kPortAddress, options.what, numbers_below(asked.session().ports())))
    resolve_address(pa, asked);
  return asked.finish();
}

exit_code resolve_numbers(const command_context& context, const resolve_options& options) {
  questioning asked(context, options);
  for (uint32_t pn : parse_numbers(kPortNumber, options.what, numbers_below(asked.session().ports())))
    resolve_number(pn, asked);
  return asked.finish();
}

exit_code resolve_interfaces(const command_context& context, const resolve_options& options) {
  questioning asked(context, options);
  for (uint32_t if_index : parse_interfaces(asked.session().chassis(), options.what)) resolve_interface(if_index, asked);
  return asked.finish();
}

exit_code resolve_slots(const command_context& context, const resolve_options& options) {
  questioning asked(context, options);
  for (const auto& port : parse_ports(asked.session().chassis(), options.what)) resolve_slot(port, asked);
  return asked.finish();
}

exit_code resolve_indexes(const command_context& context, const resolve_options& options) {
  questioning asked(context, options);
  for (uint32_t index : parse_numbers(kPortMapIndex, options.what, numbers_below(FICON_PMAP_PORT_ENTRIES)))
    resolve_index(index, asked);
  return asked.finish();
}

// ---- The commands ----

namespace {

argument question_words(resolve_options& options, const std::string& what) {
  return word("WHAT", &options.what, what).offering({"all"});
}

argument explain_flag(resolve_options& options) {
  return flag("--explain", &options.explain,
              "Show every entry that was considered, the counters and the rule that decided");
}

argument vsan_option(resolve_options& options) {
  return option("--vsan", "V", &options.vsan, "The VSAN that is asked about, 0 to 4095, decimal; none when left out");
}

argument fast_flag(resolve_options& options) {
  return flag("--fast", &options.fast, "Ask the library's fast forms, which read the tables once");
}

command pa_command() {
  auto options = std::make_shared<resolve_options>();
  return {
      .name = "pa",
      .what = "What belongs to a port address",
      .examples =
          "  chnsw -s FILE pa C0\n  chnsw -s FILE pa 10-1F,30 --vsan 10\n  chnsw -s FILE pa all --format csv\n"
          "  chnsw -s FILE pa 20 --vsan 10 --explain",
      .arguments = {question_words(*options, fmt::format("Port addresses: C0, 10-1F,30 or all. {}", kHexadecimalDigits)),
                    explain_flag(*options), vsan_option(*options), fast_flag(*options)},
      .run = runs(resolve_addresses, options),
      .parts = {}};
}

command pn_command() {
  auto options = std::make_shared<resolve_options>();
  return {.name = "pn",
          .what = "What belongs to a port number",
          .examples = "  chnsw -s FILE pn 12\n  chnsw -s FILE pn 0-47,240 --vsan 10\n  chnsw -s FILE pn all --format jsonl",
          .arguments = {question_words(*options, fmt::format("Port numbers: 12, 0-47,240 or all. {}", kDecimalDigits)),
                        explain_flag(*options), vsan_option(*options), fast_flag(*options)},
          .run = runs(resolve_numbers, options),
          .parts = {}};
}

command if_command() {
  auto options = std::make_shared<resolve_options>();
  return {.name = "if",
          .what = "What belongs to an interface",
          .examples =
              "  chnsw -s FILE if fc3/5\n  chnsw -s FILE if fc3/1-48,port-channel5\n"
              "  chnsw -s FILE if 0x01020400 --explain\n  chnsw -s FILE if all",
          .arguments = {question_words(*options,
                                       "Interfaces: fc3/5, fc3/1-48, port-channel5, fcip3, an index like 0x01020400, or "
                                       "all. Slots and ports count from 1 and are decimal."),
                        explain_flag(*options),
                        flag("--skip-lag-check", &options->skip_lag_check,
                             "Answer a port-channel's member like any other port")},
          .run = runs(resolve_interfaces, options),
          .parts = {}};
}

command slot_command() {
  auto options = std::make_shared<resolve_options>();
  return {.name = "slot",
          .what = "What belongs to a slot and port",
          .examples = "  chnsw -s FILE slot 3/5\n  chnsw -s FILE slot 3/1-8,4/1\n  chnsw -s FILE slot 3",
          .arguments = {question_words(*options, fmt::format("Slot and port, both from 1: 3/5, 3/1-48, 3 for the whole "
                                                             "card, or all. {}",
                                                             kDecimalDigits)),
                        explain_flag(*options)},
          .run = runs(resolve_slots, options),
          .parts = {}};
}

command index_command() {
  auto options = std::make_shared<resolve_options>();
  return {.name = "index",
          .what = "What belongs to a port map index",
          .examples = "  chnsw -s FILE index 254\n  chnsw -s FILE index 0-47,1024\n  chnsw -s FILE index all",
          .arguments = {question_words(*options, fmt::format("Port map indexes, 0 to 1279: 254, 0-47,1024 or all. {}",
                                                             kDecimalDigits)),
                        explain_flag(*options)},
          .run = runs(resolve_indexes, options),
          .parts = {}};
}

} // namespace

std::vector<command> resolve_commands() {
  return {pa_command(), pn_command(), if_command(), slot_command(), index_command()};
}

} // namespace chnsw_tool
