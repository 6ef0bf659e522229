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
#include <string_view>

#include "output/chassis_picture.h"
#include "output/port_row.h"

namespace chnsw_tool {

namespace {

[[noreturn]] void refuse(const std::string& path, int error) {
  throw platform_error(fmt::format("the picture cannot be written to {}: {}", path, std::strerror(error)));
}

// Closes the file; returns 0, or the error that kept the text from getting there whole.
int write_whole(int fd, std::string_view text) {
  int error = 0;
  while (error == 0 && !text.empty()) {
    ssize_t written = ::write(fd, text.data(), text.size());
    if (written >= 0)
      text.remove_prefix(static_cast<size_t>(written));
    else if (errno != EINTR)
      error = errno;
  }
  return ::close(fd) != 0 && error == 0 ? errno : error;
}

// A device or a pipe takes the text as it comes; it must not be replaced by a file.
void write_through(const std::string& path, const std::string& text) {
  int fd = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
  if (fd == -1) refuse(path, errno);
  if (int error = write_whole(fd, text)) refuse(path, error);
}

mode_t mode_of_new_files() {
  mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

// Whole or not at all: a picture that was there stays until the new one is complete, and then passes its mode on.
void replace_file(const std::string& path, const std::string& text, mode_t mode) {
  std::string draft = path + ".XXXXXX";
  int fd = ::mkostemp(draft.data(), O_CLOEXEC);
  if (fd == -1) refuse(path, errno);
  int error = ::fchmod(fd, mode) == 0 ? 0 : errno;
  if (int unwritten = write_whole(fd, text)) error = unwritten;
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

const char* content_name(pictured_slot::content content) {
  if (content == pictured_slot::content::card) return "card";
  return content == pictured_slot::content::supervisor ? "supervisor" : "empty";
}

cell unless_zero(uint32_t number) {
  return vsan_cell(number);
}

// The picture as data: a row a port, and one for a slot without ports.
result_document as_document(const chassis_picture& picture) {
  result_document document{{{"slot", ""},
                            {"holds", ""},
                            {"card_name", ""},
                            {"port", ""},
                            {"interface", ""},
                            {"if_index", "", 8},
                            {"index", ""},
                            {"pn", "", 2},
                            {"pa", "", 2},
                            {"port_vsan", ""},
                            {"port_channel", ""}},
                           {}};
  for (const auto& slot : picture.slots) {
    cell where = int64_t{slot.slot};
    cell holds = std::string(content_name(slot.holds));
    if (slot.ports.empty()) document.add({where, holds, slot.name, {}, {}, {}, {}, {}, {}, {}, {}});
    for (const auto& port : slot.ports)
      document.add({where, holds, slot.name, int64_t{port.port}, interface_name_cell(port.if_index),
                    interface_cell(port.if_index), optional_cell(port.index), optional_cell(port.pn),
                    optional_cell(port.pa), unless_zero(port.vsan), unless_zero(port.channel)});
  }
  return document;
}

} // namespace

exit_code show_front(const command_context& context, const front_options& options) {
  library_session session = context.open_session();
  chassis_picture picture = picture_of(session);
  if (options.svg == "-") {
    context.results.write(draw_svg(picture));
  } else if (!options.svg.empty()) {
    write_file(options.svg, draw_svg(picture));
  } else if (context.style.format == output_format::table) {
    context.results.write(draw_text(picture, context.style.colour));
  } else {
    context.print(as_document(picture));
  }
  return kFound;
}

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
