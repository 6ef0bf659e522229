// The chassis front as it is drawn, in text and as SVG.
#ifndef CHNSW_CHASSIS_PICTURE_H
#define CHNSW_CHASSIS_PICTURE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "inspect/session/library_session.h"

namespace chnsw_tool {

// One port as a picture shows it.
struct pictured_port {
  unsigned port = 0; // from 1
  uint32_t if_index = 0;
  std::optional<uint32_t> index; // of the port map, where it has a place
  std::optional<uint32_t> pn;
  std::optional<uint32_t> pa;
  uint32_t vsan = 0;    // that it is in now; 0: none
  uint32_t channel = 0; // port-channel that it is a member of
  size_t hue = 0;       // place of its VSAN in the legend
};

struct pictured_slot {
  enum class content { card, supervisor, empty };

  unsigned slot = 0;
  content holds = content::empty;
  std::string name;
  std::vector<pictured_port> ports;
};

struct legend_entry {
  uint32_t vsan;
  std::string name;
};

struct chassis_picture {
  std::string title;
  std::vector<pictured_slot> slots;
  std::vector<legend_entry> legend; // every VSAN that a port is in
};

chassis_picture picture_of(const library_session& session);

std::string draw_text(const chassis_picture& picture, bool colour);
std::string draw_svg(const chassis_picture& picture);

} // namespace chnsw_tool

#endif
