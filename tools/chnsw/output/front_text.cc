// Drawing the chassis front in a terminal.
#include "output/front_text.h"

#include <fmt/format.h>

#include <iterator>

#include "inspect/words/printable_text.h"
#include "output/result_document.h"

namespace chnsw_tool {

using inspect::chassis_front;
using inspect::front_port;
using inspect::front_slot;
using inspect::slot_content;

namespace {

constexpr unsigned kPortsPerLine = 64;
constexpr unsigned kPortsPerGroup = 8;
constexpr int kLabelWidth = 6;
constexpr const char* kTextColours[] = {"44", "42", "45", "43", "46", "41", "104", "102"};

// Letters tell VSANs apart without colour: a to z, A to Z, and then they begin again.
char letter(size_t vsan_place) {
  size_t place = vsan_place % 52;
  return static_cast<char>(place < 26 ? 'a' + place : 'A' + (place - 26));
}

std::string port_mark(const front_port& port, bool colour) {
  std::string mark = port.channel != 0 ? "#"
                     : !port.index     ? "x"
                     : port.vsan == 0  ? "."
                                       : std::string(1, letter(port.vsan_place));
  if (!colour || port.vsan == 0 || !port.index) return mark;
  return fmt::format("\x1B[30;{}m{}\x1B[0m", kTextColours[port.vsan_place % std::size(kTextColours)], mark);
}

std::string port_lines(const front_slot& slot, bool colour) {
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

std::string slot_text(const front_slot& slot, bool colour) {
  std::string text = fmt::format("{:>4}  ", slot.slot);
  if (slot.holds == slot_content::supervisor) return text + "supervisor\n";
  if (slot.holds == slot_content::empty) return text + "-\n";
  text += port_lines(slot, colour);
  return slot.name.empty() ? text + "\n" : fmt::format("{}  {}\n", text, inspect::printable(slot.name));
}

std::string legend_text(const chassis_front& front, bool colour) {
  std::string text;
  for (size_t vsan_place = 0; vsan_place < front.vsans.size(); ++vsan_place) {
    front_port sample;
    sample.index = 0;
    sample.vsan = front.vsans[vsan_place].vsan;
    sample.vsan_place = vsan_place;
    text += fmt::format("{} VSAN {}{}{}\n", port_mark(sample, colour), sample.vsan,
                        front.vsans[vsan_place].name.empty() ? "" : " ", inspect::printable(front.vsans[vsan_place].name));
  }
  return text + ". in no VSAN  # member of a port-channel  x no place in the port map\n";
}

} // namespace

std::string front_title(const chassis_front& front) {
  return fmt::format("{}{}{} slot{}, type {}", front.name, front.name.empty() ? "" : ": ", front.slots.size(),
                     front.slots.size() == 1 ? "" : "s", front.type);
}

std::string draw_front_text(const chassis_front& front, bool colour) {
  std::string text = coloured(inspect::printable(front_title(front)), tone::strong, colour) + "\n\nslot  ports from 1\n";
  for (const auto& slot : front.slots) text += slot_text(slot, colour);
  return text + "\n" + legend_text(front, colour);
}

} // namespace chnsw_tool
