// front: the picture where it is wanted.
#include "front_command.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "chassis_picture.h"
#include "port_row.h"

namespace chnsw_tool {

namespace {

// Whole or not at all: a picture that was there stays until the new one is complete.
void write_file(const std::string& path, const std::string& text) {
  std::string draft = path + ".new";
  std::FILE* file = std::fopen(draft.c_str(), "wxe");
  bool written = file != nullptr && std::fwrite(text.data(), 1, text.size(), file) == text.size();
  int error = errno;
  if (file != nullptr && std::fclose(file) != 0) {
    written = false;
    error = errno;
  }
  if (written && std::rename(draft.c_str(), path.c_str()) == 0) return;
  if (written) error = errno;
  if (file != nullptr) std::remove(draft.c_str());
  throw platform_error(fmt::format("the picture cannot be written to {}: {}", path, std::strerror(error)));
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

} // namespace chnsw_tool
