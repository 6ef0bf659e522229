// Lists and ranges of numbers, ports and interfaces.
#include "inspect/words/target_numbers.h"

#include <fmt/format.h>

#include <charconv>
#include <functional>

#include "inspect/error.h"

namespace inspect {

namespace {

constexpr std::string_view kEverything = "all";

// A piece of a word, which still knows where in the word it stands.
struct piece {
  std::string_view word;
  std::string_view text;

  size_t position() const { return static_cast<size_t>(text.data() - word.data()) + 1; }
  piece part(size_t from, size_t length = std::string_view::npos) const { return {word, text.substr(from, length)}; }
};

std::string shown(const number_kind& kind, uint32_t number) {
  return kind.base == 16 ? fmt::format("{:X}", number) : fmt::format("{}", number);
}

[[noreturn]] void refuse(std::string_view what, const piece& at, std::string_view why) {
  throw question_error(fmt::format("{} \"{}\", character {}: {}", what, at.word, at.position(), why));
}

[[noreturn]] void refuse_number(const number_kind& kind, const piece& at, std::string_view found) {
  refuse(
      kind.what, at,
      fmt::format("{}; expected {} number from {} to {}, as in {}", found, kind.base == 16 ? "a hexadecimal" : "a decimal",
                  shown(kind, kind.lowest), shown(kind, kind.highest), kind.example));
}

uint32_t read_number(const number_kind& kind, const piece& at) {
  std::string_view digits = at.text;
  int base = static_cast<int>(kind.base);
  if (digits.starts_with("0x") || digits.starts_with("0X")) {
    digits.remove_prefix(2);
    base = 16;
  }
  if (digits.empty()) refuse_number(kind, at, "a number is missing");
  uint64_t number = 0;
  auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
  if (end != digits.data() + digits.size()) refuse_number(kind, at, fmt::format("\"{}\" is not a number", at.text));
  if (error != std::errc() || number < kind.lowest || number > kind.highest)
    refuse_number(kind, at, fmt::format("{} is out of range", at.text));
  return static_cast<uint32_t>(number);
}

struct number_range {
  uint32_t first;
  uint32_t last;
};

number_range read_range(const number_kind& kind, const piece& item) {
  size_t dash = item.text.find('-');
  if (dash == std::string_view::npos) {
    uint32_t number = read_number(kind, item);
    return {number, number};
  }
  number_range range{read_number(kind, item.part(0, dash)), read_number(kind, item.part(dash + 1))};
  if (range.first > range.last) refuse(kind.what, item, fmt::format("the range {} runs backwards", item.text));
  return range;
}

// Hands over what stands between the commas of every word.
void for_each_item(const std::vector<std::string>& words, const std::function<void(const piece&)>& use) {
  for (const auto& word : words) {
    std::string_view rest = word;
    while (true) {
      size_t comma = rest.find(',');
      use({word, rest.substr(0, comma)});
      if (comma == std::string_view::npos) break;
      rest.remove_prefix(comma + 1);
    }
  }
}

constexpr number_kind kPortOnCard = {"port", 10, 1, 254, "3/5 or 3/1-48"};
constexpr std::string_view kInterfaceForms =
    "expected a name like fc3/5, fc3/1-48, port-channel5, fcip3 or mgmt0, or an index like 0x01020400";

void add_card_ports(const vswitch::line_card& card, std::vector<vswitch::fc_port>& ports) {
  for (unsigned port = 1; port <= card.ports; ++port) ports.push_back({card.slot, port});
}

void add_all_ports(const vswitch::chassis_description& chassis, std::vector<vswitch::fc_port>& ports) {
  for (const auto& card : chassis.line_cards) add_card_ports(card, ports);
}

void add_slot(const vswitch::chassis_description& chassis, const piece& at, std::vector<vswitch::fc_port>& ports) {
  uint32_t slot = read_number(kSlot, at);
  const vswitch::line_card* card = vswitch::card_in_slot(chassis, slot);
  if (card == nullptr)
    refuse("slot", at, fmt::format("slot {} has no line card; name a port, as in {}/1, to ask anyway", slot, slot));
  add_card_ports(*card, ports);
}

void add_ports(const vswitch::chassis_description& chassis, const piece& item, std::vector<vswitch::fc_port>& ports) {
  size_t slash = item.text.find('/');
  if (slash == std::string_view::npos) return add_slot(chassis, item, ports);
  uint32_t slot = read_number(kSlot, item.part(0, slash));
  number_range range = read_range(kPortOnCard, item.part(slash + 1));
  for (uint32_t port = range.first; port <= range.last; ++port) ports.push_back({slot, port});
}

// "fc3/1-48" names 48 ports; "port-channel5" and everything else that is no port names itself.
bool is_port_range(std::string_view name) {
  return name.starts_with("fc") && name.find('/') != std::string_view::npos && name.find('-') != std::string_view::npos;
}

void add_port_range(const piece& item, std::vector<uint32_t>& interfaces) {
  size_t slash = item.text.find('/');
  uint32_t slot = read_number(kSlot, item.part(2, slash - 2));
  number_range range = read_range(kPortOnCard, item.part(slash + 1));
  for (uint32_t port = range.first; port <= range.last; ++port) interfaces.push_back(vswitch::fc_port_index(slot, port));
}

void add_all_interfaces(const vswitch::chassis_description& chassis, std::vector<uint32_t>& interfaces) {
  std::vector<vswitch::fc_port> ports;
  add_all_ports(chassis, ports);
  for (const auto& port : ports) interfaces.push_back(vswitch::fc_port_index(port.slot, port.port));
  for (const auto& interface : chassis.interfaces) interfaces.push_back(interface.if_index);
}

uint32_t read_interface(const piece& item) {
  auto if_index = vswitch::parse_interface_name(item.text);
  if (!if_index) refuse("interface", item, fmt::format("\"{}\" is not an interface; {}", item.text, kInterfaceForms));
  return *if_index;
}

} // namespace

std::vector<uint32_t> numbers_below(uint32_t end) {
  std::vector<uint32_t> numbers(end);
  for (uint32_t number = 0; number < end; ++number) numbers[number] = number;
  return numbers;
}

std::vector<uint32_t> parse_numbers(const number_kind& kind, const std::vector<std::string>& words,
                                    const std::vector<uint32_t>& all) {
  std::vector<uint32_t> numbers;
  for_each_item(words, [&](const piece& item) {
    if (item.text == kEverything) {
      numbers.insert(numbers.end(), all.begin(), all.end());
      return;
    }
    number_range range = read_range(kind, item);
    for (uint32_t number = range.first; number <= range.last; ++number) numbers.push_back(number);
  });
  return numbers;
}

uint32_t parse_number(const number_kind& kind, std::string_view word) {
  return read_number(kind, {word, word});
}

std::vector<vswitch::fc_port> parse_ports(const vswitch::chassis_description& chassis,
                                          const std::vector<std::string>& words) {
  std::vector<vswitch::fc_port> ports;
  for_each_item(words, [&](const piece& item) {
    if (item.text == kEverything) return add_all_ports(chassis, ports);
    add_ports(chassis, item, ports);
  });
  return ports;
}

std::vector<uint32_t> parse_interfaces(const vswitch::chassis_description& chassis, const std::vector<std::string>& words) {
  std::vector<uint32_t> interfaces;
  for_each_item(words, [&](const piece& item) {
    if (item.text == kEverything) return add_all_interfaces(chassis, interfaces);
    if (is_port_range(item.text)) return add_port_range(item, interfaces);
    interfaces.push_back(read_interface(item));
  });
  return interfaces;
}

uint32_t parse_interface(std::string_view word) {
  return read_interface({word, word});
}

} // namespace inspect
