// Which port, number, address and interface belong together, asked from any side.
#include "commands/resolve_commands.h"

#include <fmt/format.h>

#include <optional>
#include <string>
#include <vector>

#include "inspect/port_map/explanation.h"
#include "inspect/port_map/port_answer.h"
#include "inspect/words/number_lists.h"
#include "inspect/words/port_lists.h"
#include "output/explanation_document.h"
#include "output/port_row.h"
#include "vswitch/interface_index.h"

namespace chnsw_tool {

namespace {

using inspect::library_session;
using inspect::port_answer;

struct resolve_options {
  std::vector<std::string> what;
  std::optional<std::string> vsan; // addresses and numbers
  bool fast = false;               // the same: through the library's _fast forms
  bool skip_lag_check = false;     // interfaces: answer a port-channel's member like any port
  bool explain = false;
};

// Answers as a document, which remembers whether every question was answered.
class answer_document {
 public:
  explicit answer_document(const resolve_options& options) : options_(options) {
    document_.columns = columns_of(port_table());
  }

  // what names the port in the notice that the library was not asked; explain makes the explanations, where they are wanted.
  template <typename explain_function>
  void add(const std::string& what, const port_answer& answer, explain_function&& explain) {
    if (answer.unasked) notice(not_asked_text(what, *answer.unasked));
    document_.add(cells_of(port_table(), answer));
    if (options_.explain) attach(explain(), document_.rows.back());
    if (!answer.is_found()) all_found_ = false;
  }

  exit_code print(const command_context& context) const {
    context.print(document_);
    return all_found_ ? kFound : kNotFound;
  }

 private:
  const resolve_options& options_;
  result_document document_;
  bool all_found_ = true;
};

inspect::search_options search_of(const resolve_options& options) {
  inspect::search_options search;
  if (options.vsan) search.vsan = inspect::parse_number(inspect::kVsan, *options.vsan);
  search.fast = options.fast;
  if (search.fast) inspect::prepare_fast_forms(search);
  return search;
}

std::string slot_text(const vswitch::fc_port& port) {
  return fmt::format("slot {}, port {}", port.slot, port.port);
}

exit_code resolve_addresses(const command_context& context, const resolve_options& options) {
  const library_session session = context.open_session();
  const auto search = search_of(options);
  answer_document document(options);
  for (uint32_t pa : parse_numbers(inspect::kPortAddress, options.what, inspect::numbers_below(session.ports()))) {
    const port_answer answer = answer_address(session, pa, search);
    document.add("", answer, [&] { return explain_address(session, answer, search); });
  }
  return document.print(context);
}

exit_code resolve_numbers(const command_context& context, const resolve_options& options) {
  const library_session session = context.open_session();
  const auto search = search_of(options);
  answer_document document(options);
  for (uint32_t pn : parse_numbers(inspect::kPortNumber, options.what, inspect::numbers_below(session.ports()))) {
    const port_answer answer = answer_number(session, pn, search);
    document.add("", answer, [&] { return explain_number(session, answer, search); });
  }
  return document.print(context);
}

exit_code resolve_interfaces(const command_context& context, const resolve_options& options) {
  const library_session session = context.open_session();
  answer_document document(options);
  for (uint32_t if_index : inspect::parse_interfaces(session.chassis(), options.what)) {
    const port_answer answer = answer_interface(session, if_index, options.skip_lag_check);
    document.add(vswitch::interface_name(if_index), answer,
                 [&] { return explain_interface(session, answer, options.skip_lag_check); });
  }
  return document.print(context);
}

exit_code resolve_slots(const command_context& context, const resolve_options& options) {
  const library_session session = context.open_session();
  answer_document document(options);
  for (const auto& port : inspect::parse_ports(session.chassis(), options.what)) {
    const port_answer answer = answer_slot(session, port);
    document.add(slot_text(port), answer, [&] { return explain_slot(session, answer); });
  }
  return document.print(context);
}

exit_code resolve_indexes(const command_context& context, const resolve_options& options) {
  const library_session session = context.open_session();
  answer_document document(options);
  const auto all = inspect::numbers_below(FICON_PMAP_PORT_ENTRIES);
  for (uint32_t index : parse_numbers(inspect::kPortMapIndex, options.what, all)) {
    const port_answer answer = answer_index(session, index);
    document.add(fmt::format("index {}", index), answer, [&] { return explain_index(session, answer); });
  }
  return document.print(context);
}

// ---- The commands ----

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
