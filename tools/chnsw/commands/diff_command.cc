#include "commands/diff_command.h"

#include <string>

#include "inspect/chassis/switch_differences.h"
#include "output/difference_columns.h"

namespace chnsw_tool {

namespace {

struct diff_options {
  std::string a;
  std::string b;
};

exit_code show_diff(const command_context& context, const diff_options& options) {
  const inspect::opened_switch a = inspect::open_switch(options.a);
  const inspect::opened_switch b = inspect::open_switch(options.b);
  const auto document = difference_document("A", "B", inspect::differences(a.chassis, b.chassis));
  context.print(document);
  return document.rows.empty() ? kFound : kNotFound;
}

} // namespace

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
