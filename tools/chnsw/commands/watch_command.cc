#include "commands/watch_command.h"

#include <fmt/format.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

#include "inspect/chassis/switch_watch.h"
#include "inspect/port_map/map_entries.h"
#include "inspect/words/printable_text.h"
#include "interruption.h"
#include "output/difference_columns.h"
#include "output/map_document.h"
#include "output/row_stream.h"

namespace chnsw_tool {

namespace {

using inspect::difference;
using draw_function = std::function<void(const std::vector<difference>&)>;

struct watch_options {
  double interval_seconds = 1;
  uint64_t count = 0; // draws before it ends by itself; 0: never
};

// Draws the switch at once, and again whenever it has changed.
void draw_changes(const command_context& context, const watch_options& options, const interruption& stop,
                  inspect::switch_watch& watch, const draw_function& draw) {
  draw({});
  uint64_t draws = 1;
  while (!stop.has_come() && (options.count == 0 || draws < options.count)) {
    if (const auto found = watch.look()) {
      draw(*found);
      ++draws;
    } else {
      context.results.wait({stop.descriptor()}, static_cast<int>(options.interval_seconds * 1000));
    }
  }
}

std::string drawing_of(const command_context& context, const vswitch::chassis_description& chassis,
                       const std::vector<difference>& found) {
  const inspect::library_session session({context.switch_path, true, chassis});
  std::string text =
      fmt::format("{}  change counter {}\n\n", inspect::printable(context.switch_path), chassis.change_counter);
  text += render(map_document(session, indexes_in_use(session)), context.style);
  if (!found.empty()) text += "\n" + render(change_document(chassis.change_counter, found), context.style);
  return text;
}

// A terminal is cleared; a file or a pipe gets one picture after the other.
void watch_as_table(const command_context& context, const watch_options& options, const interruption& stop,
                    inspect::switch_watch& watch) {
  std::string separator;
  draw_changes(context, options, stop, watch, [&](const auto& found) {
    if (context.results.is_terminal()) separator = "\x1B[H\x1B[2J";
    context.results.write(separator + drawing_of(context, watch.seen(), found));
    separator = "\n";
  });
}

void watch_as_data(const command_context& context, const watch_options& options, const interruption& stop,
                   inspect::switch_watch& watch) {
  row_stream rows(context.results, context.style, change_columns()); // begun: from here on a change is seen
  rows.fill([&] {
    draw_changes(context, options, stop, watch, [&](const auto& found) {
      for (const auto& change : found) rows.add(change_cells(watch.seen().change_counter, change));
    });
  });
}

exit_code watch_switch(const command_context& context, const watch_options& options) {
  const std::string& folder =
      context.named_folder("it does not change by itself; watch needs a switch's folder (chnsw create)");
  const interruption stop; // from here on an interrupt ends the wait, and then the document is closed as it should be
  inspect::switch_watch watch(folder);
  if (context.style.format == output_format::table)
    watch_as_table(context, options, stop, watch);
  else
    watch_as_data(context, options, stop, watch);
  return kFound;
}

} // namespace

command watch_command() {
  auto options = std::make_shared<watch_options>();
  return {.name = "watch",
          .what = "Draw the port map again whenever it changes",
          .examples =
              "  chnsw -s /tmp/director watch\n  chnsw -s /tmp/director watch --format jsonl\n"
              "  chnsw -s /tmp/director watch --count 2 --interval 0.1",
          .arguments = {option("--interval", "SECONDS", &options->interval_seconds,
                               "Seconds between looks at the change counter; 1 when left out")
                            .between(0.01, 3600),
                        count_option(&options->count, "End after this many drawings; 0: go on until interrupted")},
          .run = runs(watch_switch, options),
          .parts = {}};
}

} // namespace chnsw_tool
