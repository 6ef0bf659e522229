#include "commands/swap_command.h"

#include <cstdint>
#include <string>

#include "inspect/messages/manager_client.h"
#include "inspect/messages/swap_session.h"
#include "inspect/words/port_lists.h"
#include "output/port_row.h"
#include "output/record_table.h"
#include "output/row_stream.h"

namespace chnsw_tool {

namespace {

using inspect::swap_event;

struct swap_options {
  std::string a;
  std::string b;
  std::string refuse;                                         // the step that is refused, the first time; empty: none
  uint32_t reason = 1;                                        // the swap status that refuses it
  double timeout_seconds = 2 * inspect::kUsualTimeoutSeconds; // longer than the manager waits for an answer
};

const record_column<swap_event> kSwapColumns[] = {
    {{"swap", "SWAP"}, [](const swap_event& event) { return optional_cell(event.swap); }},
    {{"step", "STEP", 0, false, column::everywhere, 10}, [](const swap_event& event) -> cell { return event.step; }},
    {{"interface_a", "A", 0, false, column::everywhere, 13},
     [](const swap_event& event) { return interface_name_cell(event.if_index_a); }},
    {{"if_index_a", "", 8, false, column::data_only},
     [](const swap_event& event) { return interface_cell(event.if_index_a); }},
    {{"interface_b", "B", 0, false, column::everywhere, 13},
     [](const swap_event& event) { return interface_name_cell(event.if_index_b); }},
    {{"if_index_b", "", 8, false, column::data_only},
     [](const swap_event& event) { return interface_cell(event.if_index_b); }},
    {{"vsans", "VSANS", 0, false, column::everywhere, 9},
     [](const swap_event& event) { return event.vsans ? cell(*event.vsans) : cell(); }},
    {{"swap_status", "ANSWER"}, [](const swap_event& event) { return optional_cell(event.swap_status); }},
    {{"refused_step", "REFUSED AT"},
     [](const swap_event& event) { return event.refused_step ? cell(*event.refused_step) : cell(); }},
    {{"status", "STATUS"}, [](const swap_event& event) { return status_cell(event.status); }},
};

exit_code swap_interfaces(const command_context& context, const swap_options& options) {
  const uint32_t a = inspect::parse_interface(options.a);
  const uint32_t b = inspect::parse_interface(options.b);
  inspect::manager_client manager(managed_folder(context), options.timeout_seconds);
  inspect::swap_session swap(manager, a, b, {options.refuse, options.reason});
  row_stream rows(context.results, context.style, columns_of<swap_event>(kSwapColumns));
  swap_event event;
  rows.fill([&] {
    do {
      event = swap.next();
      rows.add(cells_of<swap_event>(kSwapColumns, event));
    } while (!event.is_end());
  });
  return event.status == 0U ? kFound : kNotFound;
}

} // namespace

command swap_command() {
  auto options = std::make_shared<swap_options>();
  return {
      .name = "swap",
      .what = "Have the manager swap two interfaces, and answer each step of the handshake",
      .examples =
          "  chnsw -s /tmp/director swap fc1/1 fc2/1\n"
          "  chnsw -s /tmp/director swap fc1/1 fc2/1 --refuse do-swap --reason 7",
      .arguments = {word("A", &options->a, "Interface like fc3/5, or an index like 0x01020400"),
                    word("B", &options->b, "The other one"),
                    option("--refuse", "STEP", &options->refuse, "Refuse a step: check-lock, do-swap or unlock")
                        .one_of({"check-lock", "do-swap", "unlock"}),
                    option("--reason", "N", &options->reason, "The swap status that refuses it, decimal; 1 when left out")
                        .between(1, UINT32_MAX)
                        .only_with("--refuse"),
                    timeout_option(&options->timeout_seconds)},
      .run = runs(swap_interfaces, options),
      .parts = {}};
}

} // namespace chnsw_tool
