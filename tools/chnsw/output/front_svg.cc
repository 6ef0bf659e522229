// Drawing the chassis front as a picture.
#include "output/front_svg.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

#include "output/front_text.h"
#include "vswitch/interface_index.h"

namespace chnsw_tool {

using inspect::chassis_front;
using inspect::front_port;
using inspect::front_slot;
using inspect::slot_content;

namespace {

constexpr unsigned kPortSize = 14;
constexpr unsigned kPortStep = 16;
constexpr unsigned kSlotStep = 44;
constexpr unsigned kLeft = 50;
constexpr unsigned kTop = 50;
constexpr unsigned kSvgPortsPerRow = 48;
constexpr const char* kSvgColours[] = {"#4477aa", "#228833", "#aa3377", "#ccbb44",
                                       "#66ccee", "#ee6677", "#8866cc", "#bb7733"};
// Characters that fit beside or under what they name, even wide ones; a tip has the rest.
constexpr size_t kNameRoom = 60;

// A colour by its hue of 360 degrees, with a lightness and a saturation of 0 to 1.
std::string colour_of(double hue, double saturation, double lightness) {
  auto part = [&](double shift) {
    double place = std::fmod(shift + hue / 30, 12);
    double strength = saturation * std::min(lightness, 1 - lightness);
    double value = lightness - strength * std::max(-1.0, std::min({place - 3, 9 - place, 1.0}));
    return static_cast<unsigned>(std::lround(value * 255));
  };
  return fmt::format("#{:02x}{:02x}{:02x}", part(0), part(8), part(4));
}

// The VSANs beyond the chosen colours turn by the golden angle, which keeps neighbours apart and never comes back.
std::string vsan_colour(size_t vsan_place) {
  if (vsan_place < std::size(kSvgColours)) return kSvgColours[vsan_place];
  constexpr double kGoldenAngle = 137.50776405;
  constexpr double kLightness[] = {0.62, 0.40, 0.78};
  return colour_of(std::fmod(static_cast<double>(vsan_place) * kGoldenAngle, 360), 0.6,
                   kLightness[vsan_place % std::size(kLightness)]);
}

std::string xml(std::string_view text) {
  std::string result;
  for (char c : text) {
    auto byte = static_cast<unsigned char>(c);
    if (c == '&')
      result += "&amp;";
    else if (c == '<')
      result += "&lt;";
    else if (c == '>')
      result += "&gt;";
    else if (c == '"')
      result += "&quot;";
    else if (byte < 0x20 || byte == 0x7F)
      result += '?'; // no control character may stand in XML
    else
      result += c;
  }
  return result;
}

// A name as long as there is room for; UTF-8 characters stay whole.
std::string shortened(const std::string& name) {
  size_t characters = 0;
  for (size_t i = 0; i < name.size(); ++i) {
    bool is_first_byte = (static_cast<unsigned char>(name[i]) & 0xC0) != 0x80;
    if (is_first_byte && ++characters > kNameRoom) return name.substr(0, i) + "...";
  }
  return name;
}

// Text with its whole length as a tip.
std::string svg_text(unsigned x, unsigned y, const char* look, const std::string& text) {
  return fmt::format("  <text x=\"{}\" y=\"{}\"{}>{}<title>{}</title></text>\n", x, y, look, xml(shortened(text)),
                     xml(text));
}

std::string fill_of(const front_port& port) {
  if (!port.index) return "none";
  return port.vsan == 0 ? "#dddddd" : vsan_colour(port.vsan_place);
}

std::string tip_of(const front_port& port) {
  std::string text = vswitch::interface_name(port.if_index);
  if (!port.index) return text + ", no place in the port map";
  text += fmt::format(", index {}", *port.index);
  if (port.pn) text += fmt::format(", PN {}", *port.pn);
  if (port.pa) text += fmt::format(", PA {:02X}", *port.pa);
  text += port.vsan == 0 ? ", in no VSAN" : fmt::format(", VSAN {}", port.vsan);
  return port.channel == 0 ? text : text + fmt::format(", port-channel{}", port.channel);
}

std::string box(unsigned x, unsigned y, const front_port& port) {
  return fmt::format("  <rect x=\"{}\" y=\"{}\" width=\"{}\" height=\"{}\" rx=\"2\" fill=\"{}\" {}", x, y, kPortSize,
                     kPortSize, fill_of(port),
                     port.channel != 0 ? "stroke=\"#000000\" stroke-width=\"2\"" : "stroke=\"#888888\"");
}

void add_port(const front_port& port, unsigned top, std::string& svg) {
  unsigned place = port.port - 1;
  unsigned x = kLeft + place % kSvgPortsPerRow * kPortStep;
  unsigned y = top + place / kSvgPortsPerRow * kPortStep;
  svg += fmt::format("{}><title>{}</title></rect>\n", box(x, y, port), xml(tip_of(port)));
}

unsigned port_rows(const front_slot& slot) {
  auto ports = static_cast<unsigned>(slot.ports.size());
  return std::max(1U, (ports + kSvgPortsPerRow - 1) / kSvgPortsPerRow);
}

unsigned slot_height(const front_slot& slot) {
  return kSlotStep + (port_rows(slot) - 1) * kPortStep;
}

std::string slot_label(const front_slot& slot) {
  if (slot.holds == slot_content::supervisor) return "supervisor";
  return slot.holds == slot_content::empty ? "empty" : slot.name;
}

void add_slot(const front_slot& slot, unsigned top, unsigned width, std::string& svg) {
  svg += fmt::format("  <rect x=\"10\" y=\"{}\" width=\"{}\" height=\"{}\" fill=\"#f7f7f7\" stroke=\"#bbbbbb\"/>\n", top,
                     width - 20, slot_height(slot) - 6);
  svg += fmt::format("  <text x=\"18\" y=\"{}\" font-weight=\"bold\">{}</text>\n", top + 19, slot.slot);
  // Under the ports a name has their whole width.
  unsigned name_top = slot.ports.empty() ? top + 19 : top + 18 + port_rows(slot) * kPortStep;
  if (!slot_label(slot).empty()) svg += svg_text(kLeft, name_top, "", slot_label(slot));
  for (const auto& port : slot.ports) add_port(port, top + 8, svg);
}

constexpr unsigned kLegendStep = 20;

struct svg_legend_line {
  front_port sample;
  std::string text;
};

// The VSANs, and then what every other look of a port means.
std::vector<svg_legend_line> svg_legend(const chassis_front& front) {
  std::vector<svg_legend_line> lines;
  front_port sample;
  sample.index = 0;
  for (size_t vsan_place = 0; vsan_place < front.vsans.size(); ++vsan_place) {
    const auto& entry = front.vsans[vsan_place];
    sample.vsan = entry.vsan;
    sample.vsan_place = vsan_place;
    lines.push_back({sample, fmt::format("VSAN {}{}{}", entry.vsan, entry.name.empty() ? "" : " ", entry.name)});
  }
  front_port without_vsan;
  without_vsan.index = 0;
  lines.push_back({without_vsan, "grey: in no VSAN"});
  front_port without_place;
  lines.push_back({without_place, "not filled: no place in the port map"});
  without_place.channel = 1;
  lines.push_back({without_place, "black border: member of a port-channel"});
  return lines;
}

void add_svg_legend(const std::vector<svg_legend_line>& lines, unsigned top, std::string& svg) {
  for (const auto& line : lines) {
    svg += box(18, top, line.sample) + "/>\n" + svg_text(40, top + 12, "", line.text);
    top += kLegendStep;
  }
}

} // namespace

std::string draw_front_svg(const chassis_front& front) {
  const std::string title = front_title(front);
  constexpr unsigned kWidth = kLeft + kSvgPortsPerRow * kPortStep + 20;
  auto legend = svg_legend(front);
  unsigned height = kTop + static_cast<unsigned>(legend.size()) * kLegendStep + 20;
  for (const auto& slot : front.slots) height += slot_height(slot);
  std::string svg = fmt::format(
      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" height=\"{1}\" viewBox=\"0 0 {0} {1}\" "
      "font-family=\"sans-serif\" font-size=\"12\">\n"
      "  <title>{2}</title>\n  <rect width=\"{0}\" height=\"{1}\" fill=\"#ffffff\"/>\n"
      "{3}",
      kWidth, height, xml(title), svg_text(10, 30, " font-size=\"18\"", title));
  unsigned top = kTop;
  for (const auto& slot : front.slots) {
    add_slot(slot, top, kWidth, svg);
    top += slot_height(slot);
  }
  add_svg_legend(legend, top + 10, svg);
  return svg + "</svg>\n";
}

} // namespace chnsw_tool
