// Drawing the chassis front.
#include "output/chassis_picture.h"
#include "inspect/words/printable_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "output/result_document.h"
#include "vswitch/interface_index.h"

namespace chnsw_tool {

namespace {

// ---- What is drawn ----

uint32_t channel_of(const vswitch::chassis_description& chassis, uint32_t if_index) {
  for (const auto& interface : chassis.interfaces)
    if (std::find(interface.members.begin(), interface.members.end(), if_index) != interface.members.end())
      return vswitch::logical_number(interface.if_index);
  return 0;
}

std::optional<uint32_t> assigned(uint16_t number) {
  if (number == FICON_PMAP_NO_NUMBER) return std::nullopt;
  return number;
}

pictured_port picture_port(const library_session& session, unsigned slot, unsigned port) {
  pictured_port result;
  result.port = port;
  result.if_index = vswitch::fc_port_index(slot, port);
  result.channel = channel_of(session.chassis(), result.if_index);
  auto index = vswitch::port_map_index(session.chassis(), slot, port);
  if (!index) return result;
  result.index = *index;
  result.pn = assigned(session.port_to_pn()[*index].pn);
  result.pa = assigned(session.port_to_pn()[*index].pa);
  result.vsan = session.port_to_vsan()[*index];
  return result;
}

pictured_slot picture_slot(const library_session& session, unsigned slot) {
  const auto& chassis = session.chassis();
  pictured_slot result;
  result.slot = slot;
  if (std::find(chassis.supervisors.begin(), chassis.supervisors.end(), slot) != chassis.supervisors.end())
    result.holds = pictured_slot::content::supervisor;
  const auto* card = vswitch::card_in_slot(chassis, slot);
  if (card == nullptr) return result;
  result.holds = pictured_slot::content::card;
  result.name = card->name;
  for (unsigned port = 1; port <= card->ports; ++port) result.ports.push_back(picture_port(session, slot, port));
  return result;
}

// Gives every VSAN its place in the legend.
void add_legend(const vswitch::chassis_description& chassis, chassis_picture& picture) {
  std::set<uint32_t> vsans;
  for (const auto& slot : picture.slots)
    for (const auto& port : slot.ports)
      if (port.vsan != 0) vsans.insert(port.vsan);
  std::map<uint32_t, size_t> places;
  for (uint32_t vsan : vsans) {
    places[vsan] = picture.legend.size();
    auto known = chassis.vsans.find(static_cast<uint16_t>(vsan));
    picture.legend.push_back({vsan, known == chassis.vsans.end() ? "" : known->second});
  }
  for (auto& slot : picture.slots)
    for (auto& port : slot.ports)
      if (port.vsan != 0) port.hue = places[port.vsan];
}

// ---- Text ----

constexpr unsigned kPortsPerLine = 64;
constexpr unsigned kPortsPerGroup = 8;
constexpr int kLabelWidth = 6;
constexpr const char* kTextHues[] = {"44", "42", "45", "43", "46", "41", "104", "102"};

// Letters tell VSANs apart without colour: a to z, A to Z, and then they begin again.
char letter(size_t hue) {
  size_t place = hue % 52;
  return static_cast<char>(place < 26 ? 'a' + place : 'A' + (place - 26));
}

std::string port_mark(const pictured_port& port, bool colour) {
  std::string mark = port.channel != 0 ? "#" : !port.index ? "x" : port.vsan == 0 ? "." : std::string(1, letter(port.hue));
  if (!colour || port.vsan == 0 || !port.index) return mark;
  return fmt::format("\x1B[30;{}m{}\x1B[0m", kTextHues[port.hue % std::size(kTextHues)], mark);
}

std::string port_lines(const pictured_slot& slot, bool colour) {
  std::string text;
  for (size_t i = 0; i < slot.ports.size(); ++i) {
    if (i != 0 && i % kPortsPerLine == 0)
      text += "\n" + std::string(kLabelWidth, ' ');
    else if (i != 0 && i % kPortsPerGroup == 0)
      text += ' ';
    text += port_mark(slot.ports[i], colour);
  }
  return text;
}

std::string slot_text(const pictured_slot& slot, bool colour) {
  std::string text = fmt::format("{:>4}  ", slot.slot);
  if (slot.holds == pictured_slot::content::supervisor) return text + "supervisor\n";
  if (slot.holds == pictured_slot::content::empty) return text + "-\n";
  text += port_lines(slot, colour);
  return slot.name.empty() ? text + "\n" : fmt::format("{}  {}\n", text, printable(slot.name));
}

std::string legend_text(const chassis_picture& picture, bool colour) {
  std::string text;
  for (size_t hue = 0; hue < picture.legend.size(); ++hue) {
    pictured_port sample;
    sample.index = 0;
    sample.vsan = picture.legend[hue].vsan;
    sample.hue = hue;
    text += fmt::format("{} VSAN {}{}{}\n", port_mark(sample, colour), sample.vsan,
                        picture.legend[hue].name.empty() ? "" : " ", printable(picture.legend[hue].name));
  }
  return text + ". in no VSAN  # member of a port-channel  x no place in the port map\n";
}

// ---- SVG ----

constexpr unsigned kPortSize = 14;
constexpr unsigned kPortStep = 16;
constexpr unsigned kSlotStep = 44;
constexpr unsigned kLeft = 50;
constexpr unsigned kTop = 50;
constexpr unsigned kSvgPortsPerRow = 48;
constexpr const char* kSvgHues[] = {"#4477aa", "#228833", "#aa3377", "#ccbb44", "#66ccee", "#ee6677", "#8866cc", "#bb7733"};
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
std::string vsan_colour(size_t hue) {
  if (hue < std::size(kSvgHues)) return kSvgHues[hue];
  constexpr double kGoldenAngle = 137.50776405;
  constexpr double kLightness[] = {0.62, 0.40, 0.78};
  return colour_of(std::fmod(static_cast<double>(hue) * kGoldenAngle, 360), 0.6, kLightness[hue % std::size(kLightness)]);
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

std::string fill_of(const pictured_port& port) {
  if (!port.index) return "none";
  return port.vsan == 0 ? "#dddddd" : vsan_colour(port.hue);
}

std::string tip_of(const pictured_port& port) {
  std::string text = vswitch::interface_name(port.if_index);
  if (!port.index) return text + ", no place in the port map";
  text += fmt::format(", index {}", *port.index);
  if (port.pn) text += fmt::format(", PN {}", *port.pn);
  if (port.pa) text += fmt::format(", PA {:02X}", *port.pa);
  text += port.vsan == 0 ? ", in no VSAN" : fmt::format(", VSAN {}", port.vsan);
  return port.channel == 0 ? text : text + fmt::format(", port-channel{}", port.channel);
}

std::string box(unsigned x, unsigned y, const pictured_port& port) {
  return fmt::format("  <rect x=\"{}\" y=\"{}\" width=\"{}\" height=\"{}\" rx=\"2\" fill=\"{}\" {}", x, y, kPortSize,
                     kPortSize, fill_of(port),
                     port.channel != 0 ? "stroke=\"#000000\" stroke-width=\"2\"" : "stroke=\"#888888\"");
}

void add_port(const pictured_port& port, unsigned top, std::string& svg) {
  unsigned place = port.port - 1;
  unsigned x = kLeft + place % kSvgPortsPerRow * kPortStep;
  unsigned y = top + place / kSvgPortsPerRow * kPortStep;
  svg += fmt::format("{}><title>{}</title></rect>\n", box(x, y, port), xml(tip_of(port)));
}

unsigned port_rows(const pictured_slot& slot) {
  auto ports = static_cast<unsigned>(slot.ports.size());
  return std::max(1U, (ports + kSvgPortsPerRow - 1) / kSvgPortsPerRow);
}

unsigned slot_height(const pictured_slot& slot) {
  return kSlotStep + (port_rows(slot) - 1) * kPortStep;
}

std::string slot_label(const pictured_slot& slot) {
  if (slot.holds == pictured_slot::content::supervisor) return "supervisor";
  return slot.holds == pictured_slot::content::empty ? "empty" : slot.name;
}

void add_slot(const pictured_slot& slot, unsigned top, unsigned width, std::string& svg) {
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
  pictured_port sample;
  std::string text;
};

// The VSANs, and then what every other look of a port means.
std::vector<svg_legend_line> svg_legend(const chassis_picture& picture) {
  std::vector<svg_legend_line> lines;
  pictured_port sample;
  sample.index = 0;
  for (size_t hue = 0; hue < picture.legend.size(); ++hue) {
    const auto& entry = picture.legend[hue];
    sample.vsan = entry.vsan;
    sample.hue = hue;
    lines.push_back({sample, fmt::format("VSAN {}{}{}", entry.vsan, entry.name.empty() ? "" : " ", entry.name)});
  }
  pictured_port without_vsan;
  without_vsan.index = 0;
  lines.push_back({without_vsan, "grey: in no VSAN"});
  pictured_port without_place;
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

chassis_picture picture_of(const library_session& session) {
  const auto& chassis = session.chassis();
  chassis_picture picture;
  picture.title = fmt::format("{}{}{} slot{}, type {}", chassis.name, chassis.name.empty() ? "" : ": ", chassis.slots(),
                              chassis.slots() == 1 ? "" : "s", chassis.type);
  for (unsigned slot = 1; slot <= chassis.slots(); ++slot) picture.slots.push_back(picture_slot(session, slot));
  add_legend(chassis, picture);
  return picture;
}

std::string draw_text(const chassis_picture& picture, bool colour) {
  std::string text = coloured(printable(picture.title), tone::strong, colour) + "\n\nslot  ports from 1\n";
  for (const auto& slot : picture.slots) text += slot_text(slot, colour);
  return text + "\n" + legend_text(picture, colour);
}

std::string draw_svg(const chassis_picture& picture) {
  constexpr unsigned kWidth = kLeft + kSvgPortsPerRow * kPortStep + 20;
  auto legend = svg_legend(picture);
  unsigned height = kTop + static_cast<unsigned>(legend.size()) * kLegendStep + 20;
  for (const auto& slot : picture.slots) height += slot_height(slot);
  std::string svg = fmt::format(
      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" height=\"{1}\" viewBox=\"0 0 {0} {1}\" "
      "font-family=\"sans-serif\" font-size=\"12\">\n"
      "  <title>{2}</title>\n  <rect width=\"{0}\" height=\"{1}\" fill=\"#ffffff\"/>\n"
      "{3}",
      kWidth, height, xml(picture.title), svg_text(10, 30, " font-size=\"18\"", picture.title));
  unsigned top = kTop;
  for (const auto& slot : picture.slots) {
    add_slot(slot, top, kWidth, svg);
    top += slot_height(slot);
  }
  add_svg_legend(legend, top + 10, svg);
  return svg + "</svg>\n";
}

} // namespace chnsw_tool
