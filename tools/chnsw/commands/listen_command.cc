#include "commands/listen_command.h"

#include <fmt/format.h>

#include <cstdint>

#include "inspect/messages/manager_client.h"
#include "inspect/messages/manager_notices.h"
#include "interruption.h"
#include "output/node_columns.h"
#include "output/port_row.h"
#include "output/record_table.h"
#include "output/row_stream.h"
#include "vswitch/mainframe_time.h"

namespace chnsw_tool {

namespace {

using inspect::manager_notice;

struct listen_options {
  uint64_t count = 0; // notices before it ends by itself; 0: never
};

const record_column<manager_notice> kNoticeColumns[] = {
    {{"at", "", 0, false, column::data_only},
     [](const manager_notice&) -> cell { return vswitch::utc_text(vswitch::current_instant()); }},
    {{"opcode", "", 8, false, column::data_only},
     [](const manager_notice& received) -> cell { return int64_t{received.opcode}; }},
    {{"notice", "NOTICE", 0, false, column::everywhere, 7},
     [](const manager_notice& received) -> cell { return received.name; }},
    {{"vsan", "VSAN"}, [](const manager_notice& received) { return optional_cell(received.vsan); }},
    {{"interface", "INTERFACE", 0, false, column::everywhere, 13},
     [](const manager_notice& received) { return interface_name_cell(received.if_index); }},
    {{"if_index", "", 8, false, column::data_only},
     [](const manager_notice& received) { return interface_cell(received.if_index); }},
    {{"state", "STATE"}, [](const manager_notice& received) { return received.state ? cell(*received.state) : cell(); }},
    {{"reason", "REASON"}, [](const manager_notice& received) { return optional_cell(received.reason); }},
};
const column kStatusColumn = {"status", "STATUS"};

std::vector<column> notice_columns() {
  auto columns = columns_of<manager_notice>(kNoticeColumns);
  append(columns, node_columns());
  columns.push_back(kStatusColumn);
  return columns;
}

std::vector<cell> notice_cells(const manager_notice& received) {
  auto cells = cells_of<manager_notice>(kNoticeColumns, received);
  append(cells, node_cells(received.node));
  cells.emplace_back(status{received.status});
  return cells;
}

void add_notices(const command_context& context, inspect::manager_client& manager, const listen_options& options,
                 const interruption& stop, row_stream& rows) {
  const int messages = manager.descriptor();
  uint64_t notices = 0;
  while (!stop.has_come() && (options.count == 0 || notices < options.count)) {
    if (auto message = manager.receive_at_once()) {
      rows.add(notice_cells(inspect::read_notice(message.get())));
      ++notices;
    } else {
      context.results.wait({stop.descriptor(), messages}, -1);
    }
  }
}

exit_code listen_to_manager(const command_context& context, const listen_options& options) {
  const interruption stop;
  inspect::manager_client manager(managed_folder(context), inspect::kUsualTimeoutSeconds);
  manager.connect_to_notices();
  notice(fmt::format("listening to the manager of {}", context.named_switch()));
  row_stream rows(context.results, context.style, notice_columns());
  rows.fill([&] { add_notices(context, manager, options, stop, rows); });
  return kFound;
}

} // namespace

command listen_command() {
  auto options = std::make_shared<listen_options>();
  return {.name = "listen",
          .what = "The manager's notices as they come, until interrupted",
          .examples =
              "  chnsw -s /tmp/director listen\n  chnsw -s /tmp/director listen --format jsonl\n"
              "  chnsw -s /tmp/director listen --count 1",
          .arguments = {count_option(&options->count, "End after this many notices; 0: go on until interrupted")},
          .run = runs(listen_to_manager, options),
          .parts = {}};
}

} // namespace chnsw_tool
