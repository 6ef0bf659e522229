// Reading chassis files. Every problem is collected before the file is refused; what depends on something that is already
// known to be wrong is not complained about a second time.
#include <algorithm>
#include <cerrno>
#include <fstream>
#include <sstream>
#include <system_error>
#include <utility>

#include "chassis_file/chassis_reading.h"

namespace vswitch {

std::string in_line(const place& where) {
  return "in line " + std::to_string(where.line);
}

namespace {

// Tables of which there may be several.
struct table_kind {
  const char* key;
  void (*read)(chassis_reading& reading, table_reader& table);
};
constexpr table_kind kTables[] = {
    {"line_card", read_line_card},
    {"vsan", read_vsan},
    {"port_channel", read_port_channel},
    {"interface", read_interface},
    {"port", read_port},
    {"binding", read_binding},
    {"address", read_address},
    {"time_reference", read_time_reference},
    {"node", read_node},
};

void read_tables_of(const table_kind& kind, chassis_reading& reading, table_reader& file) {
  const std::string title = "[[" + std::string(kind.key) + "]]";
  const toml::array* entries = file.array(kind.key, "one or more tables that begin with " + title);
  if (entries == nullptr) return;
  for (const toml::node& entry : *entries) {
    if (!entry.is_table()) {
      reading.problems.add(
          entry, std::string(kind.key) + " holds " + shown(entry) + "; expected are tables that begin with " + title);
      continue;
    }
    table_reader table(*entry.as_table(), title, reading.problems);
    kind.read(reading, table);
  }
}

void read_tables(chassis_reading& reading, const toml::table& content) {
  table_reader file(content, "the file", reading.problems);
  file.allow_only({"chassis", "line_card", "vsan", "port_channel", "interface", "port", "binding", "address",
                   "time_reference", "node"});
  read_chassis(reading, file.find("chassis"));
  for (const table_kind& kind : kTables) read_tables_of(kind, reading, file);
  chassis_description& chassis = reading.chassis;
  if (!file.has("address")) chassis.map.pa_to_pn = addresses_of_ports(chassis.map);
  auto by_slot = [](const line_card& a, const line_card& b) { return a.slot < b.slot; };
  auto by_index = [](const logical_interface& a, const logical_interface& b) { return a.if_index < b.if_index; };
  std::sort(chassis.line_cards.begin(), chassis.line_cards.end(), by_slot);
  std::sort(chassis.interfaces.begin(), chassis.interfaces.end(), by_index);
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
  chassis_reading reading(name, places);
  read_tables(reading, file);
  if (!reading.problems.empty()) throw chassis_file_error(reading.problems.in_file_order());
  return std::move(reading.chassis);
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
