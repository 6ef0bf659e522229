// Reading chassis files. Every problem is collected before the file is refused; what depends on something that is already
// known to be wrong is not complained about a second time.
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <set>
#include <sstream>
#include <system_error>
#include <utility>

#include "chassis_file/table_reader.h"
#include "vswitch/chassis_file.h"
#include "vswitch/interface_index.h"

namespace vswitch {

namespace {

constexpr number_range kSlots{1, 255};
constexpr number_range kTypes{INT32_MIN, INT32_MAX};
constexpr number_range kPortsOfCard{1, FICON_PMAP_PORTS_PER_LC};
constexpr number_range kVsans{1, kHighestVsan};
constexpr number_range kChannels{1, 0xFFFFFF};
constexpr number_range kIndexes{0, FICON_PMAP_PORT_ENTRIES - 1};
constexpr number_range kTableNumbers{0, 0xFFFF};         // what an entry of a table can hold
constexpr number_range kAddressNumbers{0, kNumbers - 1}; // what a table has entries for
constexpr number_range kCounters{1, UINT32_MAX};
constexpr number_range kHostWords{INT32_MIN, INT32_MAX}; // what a record holds of a host time
constexpr number_range kFlags{0, UINT32_MAX};
constexpr number_range kTags{0, 0xFFFF};

constexpr std::string_view kNow = "now";
constexpr std::string_view kHostTimeExpected = "a time in UTC such as \"2015-01-05T09:07:03.9Z\", or \"now\"";
constexpr std::string_view kPortsExpected = "a port such as \"fc1/5\" or a run of ports such as \"fc1/1-48\"";

// Ports that stand beside each other on one card.
struct port_run {
  unsigned slot = 0;
  unsigned first = 0;
  unsigned last = 0;

  unsigned count() const { return last - first + 1; }
};

std::string port_name(unsigned slot, unsigned port) {
  return interface_name(fc_port_index(slot, port));
}

// "fc1/5" or "fc1/1-48".
std::optional<port_run> parse_port_run(std::string_view text) {
  const size_t dash = text.find('-');
  auto index = parse_interface_name(text.substr(0, dash));
  auto port = index && text.starts_with("fc") ? fc_port_of(*index) : std::nullopt;
  if (!port) return std::nullopt;
  if (dash == std::string_view::npos) return port_run{port->slot, port->port, port->port};
  auto last = parse_number_run(text.substr(dash + 1));
  if (!last || last->first != last->last || last->last < port->port || last->last > 256) return std::nullopt;
  return port_run{port->slot, port->port, static_cast<unsigned>(last->last)};
}

class chassis_reader {
 public:
  chassis_reader(const std::string& file, std::vector<card_place>* card_places)
      : problems_(file), card_places_(card_places) {}

  chassis_description read(const toml::table& file);
  const problem_list& problems() const { return problems_; }

 private:
  using entry_reader = void (chassis_reader::*)(table_reader&);

  void read_entries(table_reader& file, const char* key, entry_reader read_entry);
  void read_chassis(const toml::node* chassis);
  void read_slots(table_reader& chassis);
  void read_supervisors(table_reader& chassis);
  void read_supervisor(const toml::node& value);
  void read_records(table_reader& chassis);
  void read_line_card(table_reader& card);
  bool slot_takes_card(const toml::node& where, unsigned slot);
  void read_vsan(table_reader& vsan);
  void read_port_channel(table_reader& channel);
  void read_member(const toml::node& value, logical_interface& channel);
  void read_interface(table_reader& interface);
  void add_logical(const logical_interface& interface, const toml::node& where);
  void read_port(table_reader& port);
  bool read_port_place(table_reader& port, unsigned& first, unsigned& count);
  bool read_port_interface(table_reader& port, unsigned& first, unsigned& count);
  bool read_port_index(table_reader& port, unsigned& first, unsigned& count);
  std::optional<unsigned> counted_number(table_reader& port, const char* key, unsigned count);
  bool read_port_vsans(table_reader& port, ficon_pmap_port_entry& entry);
  std::optional<unsigned> read_current_vsan(table_reader& port, unsigned by_default);
  void claim_indexes(const toml::node& where, unsigned first, unsigned count);
  std::string index_name(unsigned index) const;
  void read_binding(table_reader& binding);
  std::optional<uint32_t> read_bound_interface(table_reader& binding);
  std::optional<uint32_t> read_interface_name(table_reader& table, std::string_view expected);
  bool interface_is_there(const toml::node& where, uint32_t if_index);
  void read_address(table_reader& address);
  void read_time_reference(table_reader& reference);
  std::optional<ficon_host_time> read_host_time(table_reader& reference);
  std::optional<ficon_host_time> read_clock_time(table_reader& reference);
  std::optional<ficon_host_time> read_host_words(table_reader& reference);
  std::optional<uint64_t> read_tod(table_reader& reference, const ficon_host_time& host);
  instant now();
  void read_node(table_reader& node);
  std::optional<uint32_t> read_node_interface(table_reader& node);
  uint32_t read_codepage(table_reader& node);
  void read_node_text(table_reader& table, const node_text& field, node_descriptor& node);
  void derive_addresses();
  std::optional<port_run> ports_of(const toml::node& value, std::string_view what);
  bool ports_are_there(const toml::node& where, const port_run& ports);

  problem_list problems_;
  std::vector<card_place>* card_places_;
  chassis_description chassis_;
  bool slots_known_ = false;       // the number of slots is right
  bool supervisors_known_ = false; // and the slots that hold supervisors
  std::map<unsigned, place> cards_;
  std::set<unsigned> doubtful_cards_; // in their slots, but with a number of ports that is wrong
  std::map<uint32_t, place> members_;
  std::map<uint32_t, place> logical_;
  std::array<std::optional<place>, FICON_PMAP_PORT_ENTRIES> described_;
  std::array<std::optional<place>, kNumbers> bound_;
  std::array<std::optional<place>, kNumbers> addressed_;
  std::map<uint16_t, place> timed_;
  std::map<uint32_t, place> nodes_;
  std::optional<instant> now_;
};

std::string in_line(const place& where) {
  return "in line " + std::to_string(where.line);
}

chassis_description chassis_reader::read(const toml::table& file) {
  table_reader tables(file, "the file", problems_);
  tables.allow_only({"chassis", "line_card", "vsan", "port_channel", "interface", "port", "binding", "address",
                     "time_reference", "node"});
  read_chassis(tables.find("chassis"));
  read_entries(tables, "line_card", &chassis_reader::read_line_card);
  read_entries(tables, "vsan", &chassis_reader::read_vsan);
  read_entries(tables, "port_channel", &chassis_reader::read_port_channel);
  read_entries(tables, "interface", &chassis_reader::read_interface);
  read_entries(tables, "port", &chassis_reader::read_port);
  read_entries(tables, "binding", &chassis_reader::read_binding);
  read_entries(tables, "address", &chassis_reader::read_address);
  read_entries(tables, "time_reference", &chassis_reader::read_time_reference);
  read_entries(tables, "node", &chassis_reader::read_node);
  if (!tables.has("address")) derive_addresses();
  auto by_slot = [](const line_card& a, const line_card& b) { return a.slot < b.slot; };
  auto by_index = [](const logical_interface& a, const logical_interface& b) { return a.if_index < b.if_index; };
  std::sort(chassis_.line_cards.begin(), chassis_.line_cards.end(), by_slot);
  std::sort(chassis_.interfaces.begin(), chassis_.interfaces.end(), by_index);
  return std::move(chassis_);
}

void chassis_reader::read_entries(table_reader& file, const char* key, entry_reader read_entry) {
  const std::string title = "[[" + std::string(key) + "]]";
  const toml::array* entries = file.array(key, "one or more tables that begin with " + title);
  if (entries == nullptr) return;
  for (const toml::node& entry : *entries) {
    if (!entry.is_table()) {
      problems_.add(entry, std::string(key) + " holds " + shown(entry) + "; expected are tables that begin with " + title);
      continue;
    }
    table_reader table(*entry.as_table(), title, problems_);
    (this->*read_entry)(table);
  }
}

void chassis_reader::read_chassis(const toml::node* chassis) {
  if (chassis == nullptr) {
    problems_.add(place(), "there is no [chassis]; expected is a table that begins with [chassis]");
    return;
  }
  if (!chassis->is_table()) {
    problems_.add(*chassis, "chassis is " + shown(*chassis) + "; expected is a table that begins with [chassis]");
    return;
  }
  table_reader table(*chassis->as_table(), "[chassis]", problems_);
  table.allow_only({"name", "slots", "type", "supervisors", "platform_record", "change_counter", "port_vsan_array"});
  chassis_.name = table.text("name").value_or("");
  read_slots(table);
  if (slots_known_) read_supervisors(table);
  chassis_.type = static_cast<int32_t>(table.required_number("type", kTypes).value_or(0));
  read_records(table);
}

void chassis_reader::read_slots(table_reader& chassis) {
  auto slots = chassis.required_number("slots", kSlots);
  if (!slots) return;
  slots_known_ = true;
  chassis_.platform_record[2] = static_cast<uint8_t>(*slots);
}

void chassis_reader::read_supervisors(table_reader& chassis) {
  constexpr std::string_view expected = "a list of slots such as [5, 6], or [] for none";
  const auto supervisors = chassis.array("supervisors", expected);
  supervisors_known_ = supervisors != nullptr || (!chassis.has("supervisors") && chassis_.slots() <= 2);
  if (!chassis.has("supervisors") && chassis_.slots() > 2) chassis.missing("supervisors", expected);
  if (supervisors == nullptr) return;
  for (const toml::node& slot : *supervisors) read_supervisor(slot);
  std::sort(chassis_.supervisors.begin(), chassis_.supervisors.end());
}

void chassis_reader::read_supervisor(const toml::node& value) {
  auto slot = number_in(value, "a supervisor's slot", {1, chassis_.slots()}, problems_);
  supervisors_known_ = supervisors_known_ && slot.has_value();
  if (!slot) return;
  const auto number = static_cast<unsigned>(*slot);
  if (std::find(chassis_.supervisors.begin(), chassis_.supervisors.end(), number) != chassis_.supervisors.end())
    problems_.add(value, "slot " + std::to_string(number) + " stands twice in supervisors; expected is every slot once");
  else
    chassis_.supervisors.push_back(number);
}

void chassis_reader::read_records(table_reader& chassis) {
  if (auto record = chassis.bytes("platform_record", chassis_.platform_record.size())) {
    if (slots_known_ && (*record)[2] != chassis_.slots())
      problems_.add(*chassis.find("platform_record"), "byte 2 of platform_record is " + std::to_string((*record)[2]) +
                                                          "; it is the number of slots, which is " +
                                                          std::to_string(chassis_.slots()));
    std::copy(record->begin(), record->end(), chassis_.platform_record.begin());
  }
  if (auto bytes = chassis.bytes("port_vsan_array", chassis_.map.vsan_array.size()))
    std::copy(bytes->begin(), bytes->end(), chassis_.map.vsan_array.begin());
  chassis_.change_counter = static_cast<uint32_t>(chassis.number("change_counter", kCounters).value_or(1));
}

void chassis_reader::read_line_card(table_reader& table) {
  table.allow_only({"slot", "ports", "name"});
  const number_range slots{1, slots_known_ ? chassis_.slots() : kSlots.highest};
  auto slot = table.required_number("slot", slots);
  auto ports = table.required_number("ports", kPortsOfCard);
  std::string name = table.text("name").value_or("");
  if (!slot) return;
  const auto number = static_cast<unsigned>(*slot);
  if (!slot_takes_card(*table.find("slot"), number)) return;
  if (!ports) doubtful_cards_.insert(number);
  const place where = place_of(*table.find("slot"));
  cards_.emplace(number, where);
  chassis_.line_cards.push_back({number, static_cast<unsigned>(ports.value_or(0)), std::move(name)});
  if (card_places_ != nullptr) card_places_->push_back({number, where.line, where.column});
}

bool chassis_reader::slot_takes_card(const toml::node& where, unsigned slot) {
  const auto& supervisors = chassis_.supervisors;
  if (std::find(supervisors.begin(), supervisors.end(), slot) != supervisors.end()) {
    problems_.add(where, "slot " + std::to_string(slot) + " holds a supervisor; a line card needs a slot without one");
    return false;
  }
  auto first = cards_.find(slot);
  if (first == cards_.end()) return true;
  problems_.add(where, "slot " + std::to_string(slot) + " has two line cards; the first one stands " +
                           in_line(first->second) + ", and a slot takes one");
  return false;
}

void chassis_reader::read_vsan(table_reader& vsan) {
  vsan.allow_only({"number", "name"});
  auto number = vsan.required_number("number", kVsans);
  std::string name = vsan.text("name").value_or("");
  if (!number) return;
  if (!chassis_.vsans.emplace(static_cast<uint16_t>(*number), std::move(name)).second)
    problems_.add(*vsan.find("number"), "VSAN " + std::to_string(*number) + " is described twice; expected is once");
}

std::optional<port_run> chassis_reader::ports_of(const toml::node& value, std::string_view what) {
  auto text = value.value_exact<std::string>();
  auto ports = text ? parse_port_run(*text) : std::nullopt;
  if (!ports)
    problems_.add(value, std::string(what) + " is " + shown(value) + "; expected is " + std::string(kPortsExpected));
  return ports;
}

// What is not known, because what describes it is wrong, counts as not there but is no further problem.
bool chassis_reader::ports_are_there(const toml::node& where, const port_run& ports) {
  const std::string slot = "slot " + std::to_string(ports.slot);
  if (!slots_known_ || !supervisors_known_ || doubtful_cards_.count(ports.slot) != 0) return false;
  const line_card* card = card_in_slot(chassis_, ports.slot);
  if (ports.slot > chassis_.slots()) {
    problems_.add(where, "there is no " + slot + "; the chassis has slots 1 to " + std::to_string(chassis_.slots()));
  } else if (!line_card_number(chassis_, ports.slot)) {
    problems_.add(where, slot + " holds a supervisor, which has no ports; expected is the slot of a line card");
  } else if (card == nullptr) {
    problems_.add(where, slot + " has no line card; describe it with [[line_card]]");
  } else if (ports.last > card->ports) {
    problems_.add(where, "the line card in " + slot + " has no port " +
                             std::to_string(std::max(ports.first, card->ports + 1)) + "; its ports are 1 to " +
                             std::to_string(card->ports));
  } else {
    return true;
  }
  return false;
}

void chassis_reader::read_port_channel(table_reader& table) {
  table.allow_only({"number", "members"});
  auto number = table.required_number("number", kChannels);
  logical_interface channel;
  channel.if_index = logical_index(IF_TYPE_PORT_CHANNEL, static_cast<uint32_t>(number.value_or(0)));
  if (const toml::array* members = table.array("members", "a list of ports such as [\"fc1/1\", \"fc2/1-4\"]"))
    for (const toml::node& member : *members) read_member(member, channel);
  std::sort(channel.members.begin(), channel.members.end());
  if (number) add_logical(channel, *table.find("number"));
}

void chassis_reader::read_member(const toml::node& value, logical_interface& channel) {
  auto ports = ports_of(value, "a member");
  if (!ports || !ports_are_there(value, *ports)) return;
  for (unsigned port = ports->first; port <= ports->last; ++port) {
    const uint32_t if_index = fc_port_index(ports->slot, port);
    auto [first, added] = members_.emplace(if_index, place_of(value));
    if (added) {
      channel.members.push_back(if_index);
      continue;
    }
    problems_.add(value, interface_name(if_index) + " is a member twice; it became one " + in_line(first->second) +
                             ", and a port belongs to one port-channel");
    return;
  }
}

void chassis_reader::read_interface(table_reader& table) {
  table.allow_only({"name"});
  constexpr std::string_view expected = "a logical interface such as \"fcip3\" or \"mgmt0\"";
  if (!table.has("name")) table.missing("name", expected);
  auto name = table.text("name");
  if (!name) return;
  const toml::node& where = *table.find("name");
  const uint32_t if_index = parse_interface_name(*name).value_or(0);
  const uint8_t type = interface_type(if_index);
  if (type == 0)
    problems_.add(where, "name is " + quoted(*name) + "; expected is " + std::string(expected));
  else if (type == IF_TYPE_FC_PORT)
    problems_.add(where, *name + " is a physical port; its line card is described with [[line_card]]");
  else if (type == IF_TYPE_PORT_CHANNEL)
    problems_.add(where, *name + " is a port-channel; it is described with [[port_channel]]");
  else
    add_logical({if_index, {}}, where);
}

void chassis_reader::add_logical(const logical_interface& interface, const toml::node& where) {
  auto [first, added] = logical_.emplace(interface.if_index, place_of(where));
  if (added)
    chassis_.interfaces.push_back(interface);
  else
    problems_.add(where,
                  interface_name(interface.if_index) + " is described twice; the first time " + in_line(first->second));
}

void chassis_reader::read_port(table_reader& table) {
  table.allow_only({"interface", "index", "pn", "pa", "vsans", "vsan"});
  unsigned first = 0;
  unsigned count = 1;
  const bool placed = read_port_place(table, first, count);
  auto pn = counted_number(table, "pn", count);
  auto pa = counted_number(table, "pa", count);
  ficon_pmap_port_entry entry{FICON_PMAP_NO_NUMBER, FICON_PMAP_NO_NUMBER, {}};
  const bool bound = read_port_vsans(table, entry);
  auto vsan = read_current_vsan(table, entry.vsans[0]);
  if (!placed || !bound || !vsan) return;
  for (unsigned i = 0; i < count; ++i) {
    if (pn) entry.pn = static_cast<uint16_t>(*pn + i);
    if (pa) entry.pa = static_cast<uint16_t>(*pa + i);
    chassis_.map.port_to_pn[first + i] = entry;
    chassis_.map.port_to_vsan[first + i] = static_cast<uint16_t>(*vsan);
  }
}

bool chassis_reader::read_port_place(table_reader& port, unsigned& first, unsigned& count) {
  const bool by_interface = port.has("interface");
  const bool by_index = port.has("index");
  if (by_interface && by_index)
    problems_.add(*port.find("index"), "[[port]] has both interface and index; expected is one of them");
  if (!by_interface && !by_index) port.missing("interface", std::string(kPortsExpected) + ", or an index");
  if (by_interface == by_index) return false;
  if (!(by_interface ? read_port_interface(port, first, count) : read_port_index(port, first, count))) return false;
  claim_indexes(*port.find(by_interface ? "interface" : "index"), first, count);
  return true;
}

bool chassis_reader::read_port_interface(table_reader& port, unsigned& first, unsigned& count) {
  const toml::node& where = *port.find("interface");
  auto ports = ports_of(where, "interface");
  if (!ports) return false;
  count = ports->count();
  if (!ports_are_there(where, *ports)) return false;
  auto begin = port_map_index(chassis_, ports->slot, ports->first);
  if (begin && port_map_index(chassis_, ports->slot, ports->last)) {
    first = *begin;
    return true;
  }
  const unsigned line_card = *line_card_number(chassis_, ports->slot);
  const unsigned before = line_card * FICON_PMAP_PORTS_PER_LC;
  const std::string room = before >= FICON_PMAP_PHYS_ENTRIES
                               ? "none of this card's ports"
                               : "ports 1 to " + std::to_string(FICON_PMAP_PHYS_ENTRIES - before) + " of this card";
  problems_.add(where, port_name(ports->slot, ports->last) +
                           " is beyond the port map, whose physical ports have indexes 0 to " +
                           std::to_string(FICON_PMAP_PHYS_ENTRIES - 1) + " (line card " + std::to_string(line_card) +
                           " x 254 + port); it has room for " + room);
  return false;
}

bool chassis_reader::read_port_index(table_reader& port, unsigned& first, unsigned& count) {
  const toml::node& where = *port.find("index");
  auto text = where.value_exact<std::string>();
  auto number = where.value_exact<int64_t>();
  auto run = text ? parse_number_run(*text) : number ? std::optional(number_run{*number, *number}) : std::nullopt;
  if (!run || run->last < run->first) {
    problems_.add(where,
                  "index is " + shown(where) + "; expected is a number or a run such as \"1024-1037\", " + kIndexes.text());
    return false;
  }
  if (!kIndexes.holds(run->first) || !kIndexes.holds(run->last)) {
    problems_.add(where, "index is " + shown(where) + "; allowed are " + kIndexes.text());
    return false;
  }
  first = static_cast<unsigned>(run->first);
  count = static_cast<unsigned>(run->last - run->first + 1);
  return true;
}

// A port map index as people know it.
std::string chassis_reader::index_name(unsigned index) const {
  const std::string number = "index " + std::to_string(index);
  auto port = port_at_index(chassis_, index);
  return port ? interface_name(*port) + " (" + number + ")" : number;
}

void chassis_reader::claim_indexes(const toml::node& where, unsigned first, unsigned count) {
  for (unsigned index = first; index < first + count; ++index) {
    if (described_[index]) {
      problems_.add(where, index_name(index) + " is described twice; the first time " + in_line(*described_[index]));
      return;
    }
    described_[index] = place_of(where);
  }
}

std::optional<unsigned> chassis_reader::counted_number(table_reader& port, const char* key, unsigned count) {
  auto number = port.number(key, kTableNumbers);
  if (!number) return std::nullopt;
  if (*number + count - 1 <= kTableNumbers.highest) return static_cast<unsigned>(*number);
  problems_.add(*port.find(key), std::string(key) + " counts from " + std::to_string(*number) + " over " +
                                     std::to_string(count) + " ports; the highest number is " +
                                     std::to_string(kTableNumbers.highest));
  return std::nullopt;
}

bool chassis_reader::read_port_vsans(table_reader& port, ficon_pmap_port_entry& entry) {
  if (!port.has("vsans")) return true;
  const toml::array* vsans = port.array("vsans", "a list of VSANs such as [10, 20]");
  if (vsans == nullptr) return false;
  if (vsans->size() > FICON_PMAP_VSAN_SLOTS) {
    problems_.add(*vsans, "vsans has " + std::to_string(vsans->size()) + " VSANs; a port is bound to at most " +
                              std::to_string(FICON_PMAP_VSAN_SLOTS));
    return false;
  }
  bool all_good = true;
  for (size_t i = 0; i < vsans->size(); ++i) {
    auto vsan = number_in(*vsans->get(i), "a VSAN", kVsans, problems_);
    all_good = all_good && vsan;
    entry.vsans[i] = static_cast<uint16_t>(vsan.value_or(0));
  }
  return all_good;
}

std::optional<unsigned> chassis_reader::read_current_vsan(table_reader& port, unsigned by_default) {
  const toml::node* value = port.find("vsan");
  if (value == nullptr) return by_default;
  if (value->value_exact<std::string>() == "none") return 0;
  if (value->is_string()) {
    problems_.add(*value, "vsan is " + shown(*value) + "; expected is a number, " + kVsans.text() + ", or \"none\"");
    return std::nullopt;
  }
  auto vsan = number_in(*value, "vsan", kVsans, problems_);
  return vsan ? std::optional(static_cast<unsigned>(*vsan)) : std::nullopt;
}

void chassis_reader::read_binding(table_reader& table) {
  table.allow_only({"pn", "interface"});
  auto pn = table.required_number("pn", kAddressNumbers);
  auto if_index = read_bound_interface(table);
  if (!pn) return;
  auto& first = bound_[static_cast<size_t>(*pn)];
  if (first) {
    problems_.add(*table.find("pn"), "port number " + std::to_string(*pn) + " is bound twice; the first time " +
                                         in_line(*first) + ", and a number answers for one interface");
    return;
  }
  first = place_of(*table.find("pn"));
  chassis_.map.pn_to_if[static_cast<size_t>(*pn)] = if_index.value_or(0);
}

// Names stand for interfaces that are described; an index in hexadecimal is taken as it is, since the table can hold any.
std::optional<uint32_t> chassis_reader::read_bound_interface(table_reader& binding) {
  auto if_index = read_interface_name(binding, "an interface such as \"port-channel5\", \"fcip3\" or \"fc1/5\"");
  if (!if_index) return std::nullopt;
  const toml::node& where = *binding.find("interface");
  if (!where.value_exact<std::string>()->starts_with("0x")) interface_is_there(where, *if_index);
  return if_index;
}

std::optional<uint32_t> chassis_reader::read_interface_name(table_reader& table, std::string_view expected) {
  if (!table.has("interface")) table.missing("interface", expected);
  auto name = table.text("interface");
  if (!name) return std::nullopt;
  auto if_index = parse_interface_name(*name);
  if (!if_index)
    problems_.add(*table.find("interface"), "interface is " + quoted(*name) + "; expected is " + std::string(expected));
  return if_index;
}

bool chassis_reader::interface_is_there(const toml::node& where, uint32_t if_index) {
  if (auto port = fc_port_of(if_index)) return ports_are_there(where, {port->slot, port->port, port->port});
  if (logical_.count(if_index) != 0) return true;
  const bool channel = interface_type(if_index) == IF_TYPE_PORT_CHANNEL;
  problems_.add(where, "there is no " + interface_name(if_index) + "; describe it with " +
                           (channel ? "[[port_channel]]" : "[[interface]]"));
  return false;
}

void chassis_reader::read_address(table_reader& table) {
  table.allow_only({"pa", "pn"});
  if (!table.has("pa")) table.missing("pa", "a number or a run such as \"0x20-0x2F\", " + kAddressNumbers.text());
  auto pn = table.required_number("pn", kTableNumbers);
  const toml::node* where = table.find("pa");
  if (where == nullptr) return;
  auto text = where->value_exact<std::string>();
  auto number = where->value_exact<int64_t>();
  auto run = text ? parse_number_run(*text) : number ? std::optional(number_run{*number, *number}) : std::nullopt;
  if (!run || run->last < run->first || !kAddressNumbers.holds(run->first) || !kAddressNumbers.holds(run->last)) {
    problems_.add(*where, "pa is " + shown(*where) + "; expected is a number or a run such as \"0x20-0x2F\", " +
                              kAddressNumbers.text());
    return;
  }
  for (int64_t pa = run->first; pa <= run->last; ++pa) {
    auto& first = addressed_[static_cast<size_t>(pa)];
    if (first) {
      problems_.add(*where,
                    "port address " + std::to_string(pa) + " is described twice; the first time " + in_line(*first));
      return;
    }
    first = place_of(*where);
    if (!pn) continue;
    const int64_t counted = *pn + pa - run->first;
    if (counted > kTableNumbers.highest) {
      problems_.add(*table.find("pn"),
                    "pn counts from " + std::to_string(*pn) + " over " + std::to_string(run->last - run->first + 1) +
                        " port addresses; the highest number is " + std::to_string(kTableNumbers.highest));
      return;
    }
    chassis_.map.pa_to_pn[static_cast<size_t>(pa)] = static_cast<uint16_t>(counted);
  }
}

void chassis_reader::read_time_reference(table_reader& table) {
  table.allow_only({"vsan", "host_time", "host_seconds", "host_microseconds", "tod"});
  auto vsan = table.required_number("vsan", kVsans);
  auto host = read_host_time(table);
  auto tod = read_tod(table, host.value_or(ficon_host_time{}));
  if (!vsan) return;
  const auto number = static_cast<uint16_t>(*vsan);
  const toml::node& where = *table.find("vsan");
  auto [first, added] = timed_.emplace(number, place_of(where));
  if (!added)
    problems_.add(where, "VSAN " + std::to_string(number) + " has two time references; the first one stands " +
                             in_line(first->second) + ", and a VSAN has one");
  else if (host && tod)
    chassis_.times.emplace(number, time_reference{*host, *tod});
}

std::optional<ficon_host_time> chassis_reader::read_host_time(table_reader& table) {
  const bool by_clock = table.has("host_time");
  const bool by_words = table.has("host_seconds");
  const toml::node* words = table.find(by_words ? "host_seconds" : "host_microseconds");
  if (by_clock && words != nullptr) {
    problems_.add(*words, "[[time_reference]] has both host_time and " +
                              std::string(by_words ? "host_seconds" : "host_microseconds") + "; expected is one of them");
    return std::nullopt;
  }
  if (by_clock) return read_clock_time(table);
  if (words != nullptr) return read_host_words(table);
  table.missing("host_time", kHostTimeExpected);
  return std::nullopt;
}

std::optional<ficon_host_time> chassis_reader::read_clock_time(table_reader& table) {
  auto text = table.text("host_time");
  if (!text) return std::nullopt;
  const toml::node& where = *table.find("host_time");
  auto at = *text == kNow ? now() : parse_utc(*text);
  if (!at) {
    problems_.add(where, "host_time is " + shown(where) + "; expected is " + std::string(kHostTimeExpected));
    return std::nullopt;
  }
  if (auto host = host_time_of(*at)) return host;
  problems_.add(where, "host_time is " + shown(where) +
                           "; the 32 bits of a host's time hold 1901-12-13T20:45:52Z to 2038-01-19T03:14:07Z");
  return std::nullopt;
}

// A record's two words as they are, for what no clock says: microseconds beyond a second.
std::optional<ficon_host_time> chassis_reader::read_host_words(table_reader& table) {
  auto seconds = table.required_number("host_seconds", kHostWords);
  auto microseconds = table.has("host_microseconds") ? table.number("host_microseconds", kHostWords) : 0;
  if (!seconds || !microseconds) return std::nullopt;
  return ficon_host_time{static_cast<int32_t>(*seconds), static_cast<int32_t>(*microseconds)};
}

// Without a value of its own, the TOD clock says the same as the host's clock.
std::optional<uint64_t> chassis_reader::read_tod(table_reader& table, const ficon_host_time& host) {
  if (!table.has("tod")) return tod_of(instant_of(host));
  auto text = table.text("tod");
  if (!text) return std::nullopt;
  if (*text == kNow) return tod_of(now());
  auto tod = parse_tod(*text);
  if (!tod)
    problems_.add(*table.find("tod"), "tod is " + shown(*table.find("tod")) +
                                          "; expected are 4 to 16 hexadecimal digits such as \"CE4F44C4E976\", or "
                                          "\"now\"");
  return tod;
}

// Every "now" of a file is the same moment.
instant chassis_reader::now() {
  if (!now_) now_ = current_instant();
  return *now_;
}

void chassis_reader::read_node(table_reader& table) {
  table.allow_only({"interface", "codepage", "flags", "type", "model", "manufacturer", "plant", "sequence", "tag"});
  auto if_index = read_node_interface(table);
  node_descriptor node;
  node.codepage = read_codepage(table);
  node.flags = static_cast<uint32_t>(table.number("flags", kFlags).value_or(0));
  for (const node_text& field : kNodeTexts) read_node_text(table, field, node);
  node.tag = static_cast<uint16_t>(table.number("tag", kTags).value_or(0));
  if (!if_index) return;
  const toml::node& where = *table.find("interface");
  auto [first, added] = nodes_.emplace(*if_index, place_of(where));
  if (!added)
    problems_.add(where, interface_name(*if_index) + " has two nodes; the first one stands " + in_line(first->second) +
                             ", and an interface has one device behind it");
  chassis_.nodes.emplace(*if_index, std::move(node));
}

std::optional<uint32_t> chassis_reader::read_node_interface(table_reader& table) {
  auto if_index = read_interface_name(table, "an interface such as \"fc1/5\", \"port-channel5\" or \"fcip3\"");
  if (!if_index || !interface_is_there(*table.find("interface"), *if_index)) return std::nullopt;
  return if_index;
}

uint32_t chassis_reader::read_codepage(table_reader& table) {
  const toml::node* value = table.find("codepage");
  if (value == nullptr) return kUsualCodepage;
  auto number = value->value_exact<int64_t>();
  if (number && is_codepage(*number)) return static_cast<uint32_t>(*number);
  std::string known;
  for (const code_page& page : kCodePages) known += (known.empty() ? "" : ", ") + std::to_string(page.number);
  problems_.add(*value, "codepage is " + shown(*value) + "; expected is one of " + known);
  return kUsualCodepage;
}

void chassis_reader::read_node_text(table_reader& table, const node_text& field, node_descriptor& node) {
  auto text = table.text(field.name);
  if (!text) return;
  if (auto whole = padded(field, *text))
    node.*field.text = *whole;
  else
    problems_.add(*table.find(field.name), std::string(field.name) + " is " + quoted(*text) + "; expected are 1 to " +
                                               std::to_string(field.length) + " upper-case letters or digits");
}

void chassis_reader::derive_addresses() {
  chassis_.map.pa_to_pn = addresses_of_ports(chassis_.map);
}

// The position of a syntax error, and what the parser says about it.
[[noreturn]] void refuse_syntax(const toml::parse_error& error, const std::string& name) {
  const place where = place_of(error.source());
  throw chassis_file_error({{name, where.line, where.column, "not TOML: " + std::string(error.description())}});
}

[[noreturn]] void refuse_unreadable(const std::string& path, int error) {
  throw chassis_file_error({{path, 0, 0, "cannot be read: " + std::generic_category().message(error)}});
}

} // namespace

chassis_description parse_chassis_text(std::string_view text, const std::string& name, std::vector<card_place>* places) {
  toml::table file;
  try {
    file = toml::parse(text, name);
  } catch (const toml::parse_error& error) {
    refuse_syntax(error, name);
  }
  chassis_reader reader(name, places);
  chassis_description chassis = reader.read(file);
  if (!reader.problems().empty()) throw chassis_file_error(reader.problems().in_file_order());
  return chassis;
}

chassis_description read_chassis_file(const std::string& path, std::vector<card_place>* places) {
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  if (!file) refuse_unreadable(path, errno != 0 ? errno : EIO);
  if (file.peek() != std::ifstream::traits_type::eof()) text << file.rdbuf();
  if (file.bad() || text.bad() || (errno == EISDIR)) refuse_unreadable(path, errno != 0 ? errno : EIO);
  return parse_chassis_text(text.view(), path, places);
}

} // namespace vswitch
