// front: the picture where it is wanted.
#include "commands/front_command.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include "inspect/chassis/front.h"
#include "output/cells.h"
#include "output/front_svg.h"
#include "output/front_text.h"
#include "output/record_table.h"
#include "vswitch/descriptor.h"

namespace chnsw_tool {

namespace {

struct front_options {
  std::string svg; // file to draw into, "-" for standard output; empty: draw in the terminal
};

[[noreturn]] void refuse(const std::string& path, int error) {
  throw inspect::platform_error(fmt::format("the picture cannot be written to {}: {}", path, std::strerror(error)));
}

// Closes the file; returns 0, or the error that kept the text from getting there whole.
int write_whole(vswitch::descriptor file, std::string_view text) {
  int error = 0;
  while (error == 0 && !text.empty()) {
    ssize_t written = ::write(file.number(), text.data(), text.size());
    if (written >= 0)
      text.remove_prefix(static_cast<size_t>(written));
    else if (errno != EINTR)
      error = errno;
  }
  return ::close(file.release()) != 0 && error == 0 ? errno : error;
}

// A device or a pipe takes the text as it comes; it must not be replaced by a file.
void write_through(const std::string& path, const std::string& text) {
  vswitch::descriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
  if (!file.open()) refuse(path, errno);
  if (int error = write_whole(std::move(file), text)) refuse(path, error);
}

mode_t mode_of_new_files() {
  mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

// Whole or not at all: a picture that was there stays until the new one is complete, and then passes its mode on.
void replace_file(const std::string& path, const std::string& text, mode_t mode) {
  std::string draft = path + ".XXXXXX";
  vswitch::descriptor file(::mkostemp(draft.data(), O_CLOEXEC));
  if (!file.open()) refuse(path, errno);
  int error = ::fchmod(file.number(), mode) == 0 ? 0 : errno;
  if (int unwritten = write_whole(std::move(file), text)) error = unwritten;
  if (error == 0 && ::rename(draft.c_str(), path.c_str()) == 0) return;
  if (error == 0) error = errno;
  ::unlink(draft.c_str());
  refuse(path, error);
}

void write_file(const std::string& path, const std::string& text) {
  struct stat found;
  if (::stat(path.c_str(), &found) != 0) return replace_file(path, text, mode_of_new_files());
  if (!S_ISREG(found.st_mode)) return write_through(path, text);
  // Behind a link it is the file that is replaced, not the link.
  replace_file(std::filesystem::canonical(path).string(), text, found.st_mode & 07777);
}

// One row of the front as data: a port, or a slot without ports.
struct front_row {
  const inspect::front_slot& slot;
  const inspect::front_port* port; // null for a slot without ports
};

// A port's cell; none for a slot without ports.
cell port_value(const front_row& row, cell (*value)(const inspect::front_port&)) {
  return row.port != nullptr ? value(*row.port) : cell();
}

std::span<const record_column<front_row>> front_table() {
  using inspect::front_port;
  static const record_column<front_row> kTable[] = {
      {{"slot", ""}, [](const front_row& of) -> cell { return int64_t{of.slot.slot}; }},
      {{"holds", ""}, [](const front_row& of) -> cell { return std::string(content_name(of.slot.holds)); }},
      {{"card_name", ""}, [](const front_row& of) -> cell { return of.slot.name; }},
      {{"port", ""},
       [](const front_row& of) { return port_value(of, [](const front_port& at) -> cell { return int64_t{at.port}; }); }},
      {{"interface", ""},
       [](const front_row& of) {
         return port_value(of, [](const front_port& at) { return interface_name_cell(at.if_index); });
       }},
      {{"if_index", "", 8},
       [](const front_row& of) {
         return port_value(of, [](const front_port& at) { return interface_cell(at.if_index); });
       }},
      {{"index", ""},
       [](const front_row& of) { return port_value(of, [](const front_port& at) { return optional_cell(at.index); }); }},
      {{"pn", "", 2},
       [](const front_row& of) { return port_value(of, [](const front_port& at) { return optional_cell(at.pn); }); }},
      {{"pa", "", 2},
       [](const front_row& of) { return port_value(of, [](const front_port& at) { return optional_cell(at.pa); }); }},
      {{"port_vsan", ""},
       [](const front_row& of) { return port_value(of, [](const front_port& at) { return vsan_cell(at.vsan); }); }},
      {{"port_channel", ""},
       [](const front_row& of) { return port_value(of, [](const front_port& at) { return vsan_cell(at.channel); }); }}};
  return kTable;
}

result_document as_document(const inspect::chassis_front& front) {
  std::vector<front_row> rows;
  for (const auto& slot : front.slots) {
    if (slot.ports.empty()) rows.push_back({slot, nullptr});
    for (const auto& port : slot.ports) rows.push_back({slot, &port});
  }
  return document_of(front_table(), rows);
}

exit_code show_front(const command_context& context, const front_options& options) {
  const inspect::library_session session = context.open_session();
  const inspect::chassis_front front = front_of(session);
  if (options.svg == "-") {
    context.results.write(draw_front_svg(front));
  } else if (!options.svg.empty()) {
    write_file(options.svg, draw_front_svg(front));
  } else if (context.style.format == output_format::table) {
    context.results.write(draw_front_text(front, context.style.colour));
  } else {
    context.print(as_document(front));
  }
  return kFound;
}

} // namespace

command front_command() {
  auto options = std::make_shared<front_options>();
  return {.name = "front",
          .what = "A picture of the chassis front, coloured by VSAN",
          .examples =
              "  chnsw -s FILE front\n  chnsw -s FILE front --svg front.svg\n"
              "  chnsw -s FILE front --svg - > front.svg",
          .arguments =
              {option("--svg", "FILE", &options->svg, "Draw an SVG picture into a file; - for standard output").path()},
          .run = runs(show_front, options),
          .parts = {}};
}

} // namespace chnsw_tool
