// Watching the change counter.
#include "commands/watch_command.h"
#include "inspect/words/printable_text.h"

#include <fmt/format.h>

#include <memory>
#include <utility>

#include "commands/map_commands.h"
#include "inspect/chassis/switch_differences.h"
#include "interruption.h"
#include "vswitch/switch_store.h"

namespace chnsw_tool {

namespace {

// What is written at each draw.
class drawing {
 public:
  drawing(const command_context& context, const std::string& folder) : context_(context), folder_(folder) {
    columns_ = {{"change_counter", "CHANGE"}};
    add_difference_columns("BEFORE", "AFTER", columns_);
    if (!is_table()) context_.results.write(stream_begin(columns_, context_.style));
  }

  void draw(const vswitch::chassis_description& before, const vswitch::chassis_description& now) {
    auto found = differences(before, now);
    if (is_table())
      draw_table(found, now);
    else
      for (const auto& change : found) draw_row(change, now.change_counter);
  }

  void end() {
    if (!is_table()) context_.results.write(stream_end(any_row_, context_.style));
  }

 private:
  bool is_table() const { return context_.style.format == output_format::table; }

  result_row row_of(const difference& change, uint32_t counter) const {
    result_row row{{int64_t{counter}}, {}, nullptr};
    add_difference_cells(change, row.cells);
    return row;
  }

  void draw_table(const std::vector<difference>& found, const vswitch::chassis_description& now) {
    library_session session({folder_, true, now});
    // A terminal is cleared; a file or a pipe gets one drawing after the other.
    std::string text = context_.results.is_terminal() ? "\x1B[H\x1B[2J" : drawn_ ? "\n" : "";
    text += fmt::format("{}  change counter {}\n\n", printable(folder_), now.change_counter);
    text += render(map_document(session, indexes_in_use(session)), context_.style);
    result_document changes{columns_, {}};
    for (const auto& change : found) changes.rows.push_back(row_of(change, now.change_counter));
    if (!found.empty()) text += "\n" + render(changes, context_.style);
    context_.results.write(text);
    drawn_ = true;
  }

  void draw_row(const difference& change, uint32_t counter) {
    context_.results.write(stream_row(columns_, row_of(change, counter), !any_row_, context_.style));
    any_row_ = true;
  }

  const command_context& context_;
  const std::string& folder_;
  std::vector<column> columns_;
  bool any_row_ = false;
  bool drawn_ = false;
};

uint32_t change_counter(vswitch::switch_store& store) {
  const uint32_t key = FICON_PMAP_ELEM_CHANGE_COUNTER;
  uint32_t counter = 0;
  if (!store.look_up(FICON_ELEMDB_TABLE_PMAP, std::as_bytes(std::span(&key, 1)), &counter, sizeof counter))
    throw platform_error("the change counter cannot be read");
  return counter;
}

// The library knows one chassis for the life of its process.
void require_same_chassis(const vswitch::chassis_description& before, const vswitch::chassis_description& now) {
  if (before.platform_record == now.platform_record && before.type == now.type) return;
  throw platform_error("the switch was replaced by one with another chassis; start watch again");
}

void require_in_place(vswitch::switch_store& store, const std::string& folder) {
  switch (store.state_of_folder()) {
    case vswitch::folder_state::in_place:
      return;
    case vswitch::folder_state::removed:
      throw platform_error(folder + ": the switch was removed");
    case vswitch::folder_state::made_anew:
      throw platform_error(folder + ": the switch was removed and made anew; start watch again");
  }
}

void draw_changes(vswitch::switch_store& store, const command_context& context, const watch_options& options,
                  const interruption& stop, vswitch::chassis_description shown, drawing& picture) {
  uint64_t draws = 1;
  while (!stop.has_come() && (options.count == 0 || draws < options.count)) {
    require_in_place(store, context.switch_path);
    if (change_counter(store) == shown.change_counter) {
      context.results.wait({stop.descriptor()}, static_cast<int>(options.interval_seconds * 1000));
      continue;
    }
    auto now = store.describe();
    require_same_chassis(shown, now);
    picture.draw(shown, now);
    shown = std::move(now);
    ++draws;
  }
}

void watch(vswitch::switch_store& store, const command_context& context, const std::string& folder,
           const watch_options& options) {
  const interruption stop; // from here on an interrupt ends the wait, and then the document is closed as it should be
  auto shown = store.describe();
  drawing picture(context, folder); // begins the document: from here on a change is seen
  picture.draw(shown, shown);
  try {
    draw_changes(store, context, options, stop, std::move(shown), picture);
  } catch (...) {
    picture.end(); // what was written until now is a whole document
    throw;
  }
  picture.end();
}

} // namespace

exit_code watch_switch(const command_context& context, const watch_options& options) {
  const std::string& folder =
      context.named_folder("it does not change by itself; watch needs a switch's folder (chnsw create)");
  try {
    auto store = vswitch::switch_store::open(folder);
    watch(*store, context, folder, options);
  } catch (const vswitch::switch_error& error) {
    throw platform_error(error.what());
  }
  return kFound;
}

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
