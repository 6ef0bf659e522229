#include "commands/listen_command.h"

#include <fmt/format.h>

#include "inspect/chassis/node_identity.h"
#include "inspect/messages/manager_client.h"
#include "interruption.h"
#include "output/port_row.h"
#include "output/row_stream.h"
#include "vswitch/interface_index.h"
#include "vswitch/mainframe_time.h"

namespace chnsw_tool {

namespace {

std::vector<column> notice_columns() {
  std::vector<column> columns = {{"at", "", 0, false, column::data_only},
                                 {"opcode", "", 8, false, column::data_only},
                                 {"notice", "NOTICE", 0, false, column::everywhere, 7},
                                 {"vsan", "VSAN"},
                                 {"interface", "INTERFACE", 0, false, column::everywhere, 13},
                                 {"if_index", "", 8, false, column::data_only},
                                 {"state", "STATE"},
                                 {"reason", "REASON"}};
  for (auto& column : node_columns()) columns.push_back(std::move(column));
  columns.push_back({"status", "STATUS"});
  return columns;
}

// What one notice says.
struct heard_notice {
  std::string name;
  cell vsan;
  uint32_t if_index = 0;
  cell state;
  cell reason;
  std::vector<cell> node = no_node_cells();
  uint32_t result = 0; // of the parser
};

std::string state_text(uint32_t state, const char* on, const char* off) {
  return state == 1 ? on : state == 0 ? off : std::to_string(state);
}

heard_notice read_vsan_state(msgq_message* message) {
  ficon_vsan_state_change change{};
  heard_notice notice{"vsan", {}, 0, {}, {}};
  notice.result = ficon_parse_vsan_state_change_payload(message, &change);
  if (notice.result != 0) return notice;
  notice.vsan = int64_t{change.word0};
  notice.state = state_text(change.word1, "up", "down");
  return notice;
}

heard_notice read_up_down(msgq_message* message) {
  ficon_updown_notice change{};
  heard_notice notice{"port", {}, 0, {}, {}};
  notice.result = ficon_parse_updown_payload(message, &change);
  if (notice.result != 0) return notice;
  notice.if_index = change.word0;
  notice.state = state_text(change.byte4, "up", "down");
  notice.reason = int64_t{change.byte5};
  return notice;
}

heard_notice read_enable(msgq_message* message) {
  ficon_enable_notice change{};
  heard_notice notice{"enable", {}, 0, {}, {}};
  notice.result = ficon_parse_enable_payload(message, &change);
  if (notice.result != 0) return notice;
  notice.if_index = change.word0;
  notice.state = state_text(change.byte4, "on", "off");
  return notice;
}

// The code page stands in the same record, but the parser of notifications does not hand it out; that of answers does.
heard_notice read_rnid(msgq_message* message) {
  uint32_t format = 0;
  uint32_t codepage = 0;
  ficon_node_descriptor descriptor{};
  heard_notice notice{"rnid", {}, 0, {}, {}};
  notice.result = ficon_parse_rnid_notification(message, &notice.if_index, nullptr, nullptr, &format, nullptr, &descriptor);
  if (notice.result != 0) return notice;
  ficon_parse_get_rnid(message, nullptr, nullptr, nullptr, &codepage, nullptr, nullptr, nullptr);
  const bool converted = format == FICON_RNID_FORMAT_CONVERTED;
  notice.node = node_cells(converted ? identity_of_converted(codepage, descriptor) : identity_of(codepage, descriptor));
  return notice;
}

heard_notice read_notice(msgq_message* message) {
  switch (msgq_opcode_get(message)) {
    case vswitch::kOpVsanStateChange:
      return read_vsan_state(message);
    case vswitch::kOpPortUpDown:
      return read_up_down(message);
    case vswitch::kOpPortEnable:
      return read_enable(message);
    case vswitch::kOpRnidNotification:
      return read_rnid(message);
    default:
      return {"unknown", {}, 0, {}, {}};
  }
}

std::vector<cell> cells_of(msgq_message* message) {
  heard_notice notice = read_notice(message);
  std::vector<cell> cells = {vswitch::utc_text(vswitch::current_instant()),
                             int64_t{msgq_opcode_get(message)},
                             std::move(notice.name),
                             std::move(notice.vsan),
                             interface_name_cell(notice.if_index),
                             interface_cell(notice.if_index),
                             std::move(notice.state),
                             std::move(notice.reason)};
  for (auto& value : notice.node) cells.push_back(std::move(value));
  cells.emplace_back(status{notice.result});
  return cells;
}

void add_what_comes(const command_context& context, manager_client& manager, const listen_options& options,
                    const interruption& stop, row_stream& rows) {
  const int messages = msgq_descriptor(manager.handle());
  if (messages == -1) throw platform_error("messages cannot be waited for");
  uint64_t heard = 0;
  while (!stop.has_come() && (options.count == 0 || heard < options.count)) {
    if (auto message = manager.receive_at_once()) {
      rows.add(cells_of(message.get()));
      ++heard;
    } else {
      context.results.wait({stop.descriptor(), messages}, -1);
    }
  }
}

} // namespace

exit_code listen_to_manager(const command_context& context, const listen_options& options) {
  const interruption stop;
  manager_client manager(managed_folder(context), kUsualTimeoutSeconds);
  manager.connect_to_notices();
  notice(fmt::format("listening to the manager of {}", context.named_switch()));
  row_stream rows(context, notice_columns());
  rows.fill([&] { add_what_comes(context, manager, options, stop, rows); });
  return kFound;
}

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
