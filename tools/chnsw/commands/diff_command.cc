#include "commands/diff_command.h"

#include "inspect/chassis/switch_differences.h"

namespace chnsw_tool {

exit_code show_diff(const command_context& context, const diff_options& options) {
  opened_switch a = open_switch(options.a);
  opened_switch b = open_switch(options.b);
  result_document document;
  add_difference_columns("A", "B", document.columns);
  for (const auto& found : differences(a.chassis, b.chassis)) {
    document.rows.emplace_back();
    add_difference_cells(found, document.rows.back().cells);
  }
  context.print(document);
  return document.rows.empty() ? kFound : kNotFound;
}

command diff_command() {
  auto options = std::make_shared<diff_options>();
  return {.name = "diff",
          .what = "Where two chassis files or switches differ; exit status 1 when they do",
          .examples =
              "  chnsw diff before.toml after.toml\n  chnsw diff /tmp/director examples/director-10.toml\n"
              "The change counter is not compared.",
          .arguments = {word("A", &options->a, "Chassis file or switch's folder").path(),
                        word("B", &options->b, "Chassis file or switch's folder").path()},
          .run = runs(show_diff, options),
          .parts = {}};
}

} // namespace chnsw_tool
