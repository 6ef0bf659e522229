// Writing chassis files: runs of ports that count up together become one entry.
#include <algorithm>
#include <array>
#include <cstdio>
#include <span>
#include <string>
#include <vector>

#include "vswitch/chassis_file.h"
#include "vswitch/interface_index.h"

namespace vswitch {

namespace {

std::string quoted(std::string_view text) {
  std::string quoted = "\"";
  for (char character : text) {
    char escaped[7];
    if (character == '"' || character == '\\') {
      quoted += {'\\', character};
    } else if (static_cast<unsigned char>(character) < ' ' || character == 0x7F) {
      std::snprintf(escaped, sizeof escaped, "\\u%04X", static_cast<unsigned>(character));
      quoted += escaped;
    } else {
      quoted += character;
    }
  }
  return quoted + '"';
}

std::string hexadecimal(std::span<const uint8_t> bytes) {
  std::string text;
  for (uint8_t byte : bytes) {
    char digits[4];
    std::snprintf(digits, sizeof digits, "%02x ", byte);
    text += digits;
  }
  if (!text.empty()) text.pop_back();
  return text;
}

template <typename numbers>
std::string list_of(const numbers& values) {
  std::string text;
  for (auto value : values) text += (text.empty() ? "" : ", ") + std::to_string(value);
  return "[" + text + "]";
}

std::string assignment(const char* key, const std::string& value) {
  return std::string(key) + " = " + value + "\n";
}
std::string assignment(const char* key, int64_t value) {
  return assignment(key, std::to_string(value));
}

std::string chassis_table(const chassis_description& chassis) {
  std::array<uint8_t, 8> usual_record{};
  usual_record[2] = static_cast<uint8_t>(chassis.slots());
  std::string text = "[chassis]\n";
  if (!chassis.name.empty()) text += assignment("name", quoted(chassis.name));
  text += assignment("slots", chassis.slots()) + assignment("type", chassis.type) +
          assignment("supervisors", list_of(chassis.supervisors));
  if (chassis.platform_record != usual_record)
    text += assignment("platform_record", quoted(hexadecimal(chassis.platform_record)));
  if (chassis.change_counter != 1) text += assignment("change_counter", chassis.change_counter);
  if (chassis.map.vsan_array != std::array<uint8_t, 32>{})
    text += assignment("port_vsan_array", quoted(hexadecimal(chassis.map.vsan_array)));
  return text;
}

std::string hexadecimal_number(uint32_t number, int digits) {
  char text[11];
  std::snprintf(text, sizeof text, "0x%0*X", digits, number);
  return text;
}

// Port addresses are written as the mainframe's people write them.
std::string address(unsigned pa) {
  return hexadecimal_number(pa, 2);
}

std::string line_card_tables(const chassis_description& chassis) {
  std::string text;
  for (const auto& card : chassis.line_cards) {
    text += "\n[[line_card]]\n" + assignment("slot", card.slot) + assignment("ports", card.ports);
    if (!card.name.empty()) text += assignment("name", quoted(card.name));
  }
  return text;
}

std::string vsan_tables(const chassis_description& chassis) {
  std::string text;
  for (const auto& [number, name] : chassis.vsans) {
    text += "\n[[vsan]]\n" + assignment("number", number);
    if (!name.empty()) text += assignment("name", quoted(name));
  }
  return text;
}

// "fc1/1-48" for the ports from first to last of one card.
std::string port_run_name(uint32_t first, uint32_t last) {
  std::string name = interface_name(first);
  if (first != last) name += "-" + std::to_string(fc_port_of(last)->port);
  return name;
}

constexpr uint32_t kNextPort = 0x100; // from one port's index to that of the port beside it

std::string member_list(const std::vector<uint32_t>& members) {
  std::string text;
  for (size_t begin = 0; begin < members.size();) {
    size_t end = begin + 1;
    while (end < members.size() && members[end] == members[end - 1] + kNextPort &&
           fc_port_of(members[end])->slot == fc_port_of(members[begin])->slot)
      ++end;
    text += (text.empty() ? "" : ", ") + quoted(port_run_name(members[begin], members[end - 1]));
    begin = end;
  }
  return "[" + text + "]";
}

std::string interface_tables(const chassis_description& chassis) {
  std::string channels;
  std::string others;
  for (const auto& interface : chassis.interfaces) {
    if (interface_type(interface.if_index) == IF_TYPE_PORT_CHANNEL)
      channels += "\n[[port_channel]]\n" + assignment("number", logical_number(interface.if_index)) +
                  assignment("members", member_list(interface.members));
    else
      others += "\n[[interface]]\n" + assignment("name", quoted(interface_name(interface.if_index)));
  }
  return channels + others;
}

// One entry of the port map with all that a file says about it.
struct described_port {
  std::optional<uint32_t> if_index;
  unsigned index;
  ficon_pmap_port_entry entry;
  uint16_t vsan;
};

described_port port_at(const chassis_description& chassis, unsigned index) {
  return {port_at_index(chassis, index), index, chassis.map.port_to_pn[index], chassis.map.port_to_vsan[index]};
}

bool says_something(const described_port& port) {
  return port.entry.pn != FICON_PMAP_NO_NUMBER || port.entry.pa != FICON_PMAP_NO_NUMBER || port.vsan != 0 ||
         std::any_of(std::begin(port.entry.vsans), std::end(port.entry.vsans), [](uint16_t vsan) { return vsan != 0; });
}

bool counts_on(uint16_t number, uint16_t next) {
  return number == FICON_PMAP_NO_NUMBER || next == FICON_PMAP_NO_NUMBER ? number == next : next == number + 1;
}

// Whether next can stand in the same [[port]] as port, the one before it.
bool continues(const described_port& port, const described_port& next) {
  const bool beside =
      port.if_index && next.if_index ? *next.if_index == *port.if_index + kNextPort : !port.if_index && !next.if_index;
  return beside && counts_on(port.entry.pn, next.entry.pn) && counts_on(port.entry.pa, next.entry.pa) &&
         port.vsan == next.vsan && std::equal(std::begin(port.entry.vsans), std::end(port.entry.vsans), next.entry.vsans);
}

std::string run_place(const described_port& first, const described_port& last) {
  if (first.if_index) return assignment("interface", quoted(port_run_name(*first.if_index, *last.if_index)));
  if (first.index == last.index) return assignment("index", first.index);
  return assignment("index", quoted(std::to_string(first.index) + "-" + std::to_string(last.index)));
}

std::string current_vsan(uint16_t vsan, const std::vector<uint16_t>& bound) {
  if (vsan == (bound.empty() ? 0 : bound.front())) return "";
  return vsan == 0 ? assignment("vsan", quoted("none")) : assignment("vsan", vsan);
}

std::string port_table(const described_port& first, const described_port& last) {
  std::vector<uint16_t> bound;
  for (uint16_t vsan : first.entry.vsans)
    if (vsan != 0) bound.push_back(vsan);
  std::string text = "\n[[port]]\n" + run_place(first, last);
  if (first.entry.pn != FICON_PMAP_NO_NUMBER) text += assignment("pn", first.entry.pn);
  if (first.entry.pa != FICON_PMAP_NO_NUMBER) text += assignment("pa", address(first.entry.pa));
  if (!bound.empty()) text += assignment("vsans", list_of(bound));
  return text + current_vsan(first.vsan, bound);
}

std::string port_tables(const chassis_description& chassis) {
  std::string text;
  for (unsigned index = 0; index < FICON_PMAP_PORT_ENTRIES;) {
    const described_port first = port_at(chassis, index++);
    if (!says_something(first)) continue;
    described_port last = first;
    for (; index < FICON_PMAP_PORT_ENTRIES && continues(last, port_at(chassis, index)); ++index)
      last = port_at(chassis, index);
    text += port_table(first, last);
  }
  return text;
}

// A described interface by its name, any other index as it is.
std::string bound_name(const chassis_description& chassis, uint32_t if_index) {
  return has_interface(chassis, if_index) ? interface_name(if_index) : hexadecimal_number(if_index, 8);
}

std::string binding_tables(const chassis_description& chassis) {
  std::string text;
  for (unsigned pn = 0; pn < kNumbers; ++pn)
    if (uint32_t if_index = chassis.map.pn_to_if[pn])
      text += "\n[[binding]]\n" + assignment("pn", pn) + assignment("interface", quoted(bound_name(chassis, if_index)));
  return text;
}

std::string address_run(unsigned first, unsigned last, uint16_t pn) {
  const std::string pa = first == last ? address(first) : quoted(address(first) + "-" + address(last));
  return "\n[[address]]\n" + assignment("pa", pa) + assignment("pn", pn);
}

// The addresses stand in the file only when the ports do not say the same.
std::string address_tables(const port_map& map) {
  if (map.pa_to_pn == addresses_of_ports(map)) return "";
  std::string text;
  for (unsigned pa = 0; pa < kNumbers;) {
    const unsigned first = pa++;
    const uint16_t pn = map.pa_to_pn[first];
    if (pn == FICON_PMAP_NO_NUMBER) continue;
    while (pa < kNumbers && map.pa_to_pn[pa] != FICON_PMAP_NO_NUMBER && map.pa_to_pn[pa] == pn + (pa - first)) ++pa;
    text += address_run(first, pa - 1, pn);
  }
  return text.empty() ? address_run(0, 0, FICON_PMAP_NO_NUMBER) : text;
}

// What no clock says is written as the record's two words.
std::string host_assignments(const ficon_host_time& host) {
  if (host.microseconds >= 0 && host.microseconds < kMicrosecondsPerSecond)
    return assignment("host_time", quoted(utc_text(instant_of(host))));
  return assignment("host_seconds", host.seconds) + assignment("host_microseconds", host.microseconds);
}

std::string time_tables(const chassis_description& chassis) {
  std::string text;
  for (const auto& [vsan, reference] : chassis.times)
    text += "\n[[time_reference]]\n" + assignment("vsan", vsan) + host_assignments(reference.host) +
            assignment("tod", quoted(tod_text(reference.tod)));
  return text;
}

std::string node_tables(const chassis_description& chassis) {
  const node_descriptor usual;
  std::string text;
  for (const auto& [if_index, node] : chassis.nodes) {
    text += "\n[[node]]\n" + assignment("interface", quoted(interface_name(if_index)));
    if (node.codepage != usual.codepage) text += assignment("codepage", node.codepage);
    if (node.flags != usual.flags) text += assignment("flags", hexadecimal_number(node.flags, 8));
    for (const node_text& field : kNodeTexts)
      if (node.*field.text != usual.*field.text) text += assignment(field.name, quoted(without_blanks(node.*field.text)));
    if (node.tag != usual.tag) text += assignment("tag", hexadecimal_number(node.tag, 4));
  }
  return text;
}

} // namespace

std::string write_chassis_file(const chassis_description& chassis) {
  return chassis_table(chassis) + line_card_tables(chassis) + vsan_tables(chassis) + interface_tables(chassis) +
         port_tables(chassis) + binding_tables(chassis) + address_tables(chassis.map) + time_tables(chassis) +
         node_tables(chassis);
}

} // namespace vswitch
