#include "store/lmdb/switch_records.h"

#include <cstring>
#include <span>
#include <string_view>

#include "vswitch/packed_fields.h"
#include "vswitch/switch_error.h"

namespace vswitch {

namespace {

constexpr uint32_t kFormat = 1;

[[noreturn]] void damaged(const std::string& what) {
  throw switch_error("the switch's database is damaged: " + what);
}

void check(int error, const char* doing) {
  if (error) throw switch_error(std::string("the switch's database: ") + doing + ": " + mdb_strerror(error));
}

MDB_val as_value(const void* data, size_t size) {
  return {size, const_cast<void*>(data)};
}
MDB_val as_value(std::string_view text) {
  return as_value(text.data(), text.size());
}

void put(MDB_txn* transaction, MDB_dbi where, MDB_val key, MDB_val value) {
  check(mdb_put(transaction, where, &key, &value, 0), "writing a record");
}

// A value of exactly this size.
void get(MDB_txn* transaction, MDB_dbi where, MDB_val key, void* value, size_t size, const char* what) {
  MDB_val found;
  if (mdb_get(transaction, where, &key, &found) != 0 || found.mv_size != size) damaged(what);
  std::memcpy(value, found.mv_data, size);
}

std::string_view text_of(const MDB_val& value) {
  return {static_cast<const char*>(value.mv_data), value.mv_size};
}

std::vector<uint32_t> words_of(const MDB_val& value) {
  if (value.mv_size % sizeof(uint32_t) != 0) damaged("a list of numbers is cut");
  std::vector<uint32_t> words(value.mv_size / sizeof(uint32_t));
  if (!words.empty()) std::memcpy(words.data(), value.mv_data, value.mv_size);
  return words;
}

MDB_val get_any(MDB_txn* transaction, MDB_dbi where, std::string_view key) {
  MDB_val name = as_value(key);
  MDB_val found;
  if (mdb_get(transaction, where, &name, &found) != 0) damaged(std::string(key));
  return found;
}

// Calls handle(number, value) for every record of a database whose keys are numbers, in ascending order.
template <typename handler>
void for_each_numbered(MDB_txn* transaction, MDB_dbi where, handler handle) {
  MDB_cursor* cursor = nullptr;
  check(mdb_cursor_open(transaction, where, &cursor), "reading records");
  struct closer {
    MDB_cursor* cursor;
    ~closer() { mdb_cursor_close(cursor); }
  } close_at_end{cursor};
  MDB_val key;
  MDB_val value;
  while (mdb_cursor_get(cursor, &key, &value, MDB_NEXT) == 0) {
    if (key.mv_size != sizeof(uint32_t)) damaged("a key is not a number");
    handle(load_field<uint32_t>(key.mv_data), value);
  }
}

databases open_all(MDB_txn* transaction, unsigned flags) {
  auto open = [&](const char* name, unsigned kind) {
    MDB_dbi handle = 0;
    check(mdb_dbi_open(transaction, name, flags | kind, &handle), name);
    return handle;
  };
  return {open("chassis", 0),
          open("line-cards", MDB_INTEGERKEY),
          open("interfaces", MDB_INTEGERKEY),
          open("vsans", MDB_INTEGERKEY),
          open("table-1", 0),
          open("table-2", 0)};
}

void put_element(MDB_txn* transaction, const databases& where, uint32_t element, const void* value, size_t size) {
  std::vector<std::byte> padded(kElementPadding + size);
  std::memcpy(padded.data() + kElementPadding, value, size);
  put(transaction, where.port_map, as_value(&element, sizeof element), as_value(padded.data(), padded.size()));
}

void get_element(MDB_txn* transaction, const databases& where, uint32_t element, void* value, size_t size) {
  std::vector<std::byte> padded(kElementPadding + size);
  get(transaction, where.port_map, as_value(&element, sizeof element), padded.data(), padded.size(),
      "an element of the port map");
  std::memcpy(value, padded.data() + kElementPadding, size);
}

void put_line_card(MDB_txn* transaction, const databases& where, const line_card& card) {
  const uint32_t slot = card.slot;
  std::string value(sizeof(uint32_t), '\0');
  store_field(value.data(), 0, uint32_t{card.ports});
  value += card.name;
  put(transaction, where.line_cards, as_value(&slot, sizeof slot), as_value(value));
}

line_card line_card_from(uint32_t slot, const MDB_val& value) {
  if (value.mv_size < sizeof(uint32_t)) damaged("a line card is cut");
  const auto ports = load_field<uint32_t>(value.mv_data);
  return {slot, ports, std::string(text_of(value).substr(sizeof(uint32_t)))};
}

// What clients read of a record; the rest stays zero.
time_reference reference_from(const MDB_val& value) {
  if (value.mv_size != sizeof(ficon_vsan_tstmp_rec)) damaged("a time stamp's reference");
  const auto record = load_field<ficon_vsan_tstmp_rec>(value.mv_data);
  return {{record.ref_host_sec, record.ref_host_usec}, record.ref_tod};
}

// One value for all nodes, not a database of their own: processes of earlier versions that have the folder open know the other
// databases alone.
struct node_record {
  uint32_t if_index;
  uint32_t codepage;
  ficon_node_descriptor descriptor;
};
static_assert(sizeof(node_record) == 40);

void write_nodes(MDB_txn* transaction, const databases& where, const chassis_description& chassis) {
  std::vector<node_record> records;
  for (const auto& [if_index, node] : chassis.nodes) records.push_back({if_index, node.codepage, ascii_descriptor(node)});
  put(transaction, where.chassis, as_value("nodes"), as_value(records.data(), records.size() * sizeof(node_record)));
}

void read_nodes(MDB_txn* transaction, const databases& where, chassis_description& chassis) {
  MDB_val key = as_value("nodes");
  MDB_val found;
  const int error = mdb_get(transaction, where.chassis, &key, &found);
  if (error == MDB_NOTFOUND) return;
  check(error, "reading a record");
  if (found.mv_size % sizeof(node_record) != 0) damaged("nodes");
  std::vector<node_record> records(found.mv_size / sizeof(node_record));
  if (!records.empty()) std::memcpy(records.data(), found.mv_data, found.mv_size);
  for (const auto& record : records) chassis.nodes.emplace(record.if_index, node_of(record.codepage, record.descriptor));
}

void write_chassis(MDB_txn* transaction, const databases& where, const chassis_description& chassis) {
  const std::vector<uint32_t> supervisors(chassis.supervisors.begin(), chassis.supervisors.end());
  put(transaction, where.chassis, as_value("format"), as_value(&kFormat, sizeof kFormat));
  put(transaction, where.chassis, as_value("name"), as_value(chassis.name));
  put(transaction, where.chassis, as_value("platform-record"),
      as_value(chassis.platform_record.data(), chassis.platform_record.size()));
  put(transaction, where.chassis, as_value("type"), as_value(&chassis.type, sizeof chassis.type));
  put(transaction, where.chassis, as_value("supervisors"),
      as_value(supervisors.data(), supervisors.size() * sizeof(uint32_t)));
  write_nodes(transaction, where, chassis);
}

void read_chassis(MDB_txn* transaction, const databases& where, chassis_description& chassis) {
  chassis.name = text_of(get_any(transaction, where.chassis, "name"));
  get(transaction, where.chassis, as_value("platform-record"), chassis.platform_record.data(),
      chassis.platform_record.size(), "platform-record");
  get(transaction, where.chassis, as_value("type"), &chassis.type, sizeof chassis.type, "type");
  for (uint32_t slot : words_of(get_any(transaction, where.chassis, "supervisors"))) chassis.supervisors.push_back(slot);
  read_nodes(transaction, where, chassis);
}

} // namespace

content content_of(MDB_txn* transaction) {
  MDB_dbi main = 0;
  MDB_stat statistics;
  check(mdb_dbi_open(transaction, nullptr, 0, &main), "reading its index");
  check(mdb_stat(transaction, main, &statistics), "reading its index");
  if (statistics.ms_entries == 0) return content::nothing;
  MDB_val name = as_value("chassis");
  MDB_val found;
  return mdb_get(transaction, main, &name, &found) == 0 ? content::a_switch : content::something_else;
}

databases open_databases(MDB_txn* transaction) {
  databases where = open_all(transaction, 0);
  uint32_t format = 0;
  get(transaction, where.chassis, as_value("format"), &format, sizeof format, "format");
  if (format != kFormat)
    throw switch_error("the switch is stored in format " + std::to_string(format) + "; this program reads format " +
                       std::to_string(kFormat));
  return where;
}

databases make_databases(MDB_txn* transaction) {
  return open_all(transaction, MDB_CREATE);
}

chassis_description read_switch(MDB_txn* transaction, const databases& where) {
  chassis_description chassis;
  read_chassis(transaction, where, chassis);
  for_each_numbered(transaction, where.line_cards, [&](uint32_t slot, const MDB_val& value) {
    chassis.line_cards.push_back(line_card_from(slot, value));
  });
  for_each_numbered(transaction, where.interfaces, [&](uint32_t if_index, const MDB_val& value) {
    chassis.interfaces.push_back({if_index, words_of(value)});
  });
  for_each_numbered(transaction, where.vsans, [&](uint32_t number, const MDB_val& value) {
    chassis.vsans.emplace(static_cast<uint16_t>(number), text_of(value));
  });
  for_each_numbered(transaction, where.time_stamps, [&](uint32_t vsan, const MDB_val& value) {
    chassis.times.emplace(static_cast<uint16_t>(vsan), reference_from(value));
  });
  chassis.map = read_map(transaction, where);
  chassis.change_counter = read_change_counter(transaction, where);
  return chassis;
}

void write_switch(MDB_txn* transaction, const databases& where, const chassis_description& chassis) {
  for (MDB_dbi database : {where.line_cards, where.interfaces, where.vsans, where.time_stamps, where.port_map})
    check(mdb_drop(transaction, database, 0), "emptying it");
  write_chassis(transaction, where, chassis);
  for (const auto& card : chassis.line_cards) put_line_card(transaction, where, card);
  for (const auto& interface : chassis.interfaces)
    put(transaction, where.interfaces, as_value(&interface.if_index, sizeof interface.if_index),
        as_value(interface.members.data(), interface.members.size() * sizeof(uint32_t)));
  for (const auto& [vsan, name] : chassis.vsans) {
    const uint32_t number = vsan;
    put(transaction, where.vsans, as_value(&number, sizeof number), as_value(name));
  }
  for (const auto& [vsan, reference] : chassis.times) write_time_reference(transaction, where, vsan, reference);
  write_map(transaction, where, chassis.map);
  write_change_counter(transaction, where, chassis.change_counter);
}

uint64_t read_generation(MDB_txn* transaction, const databases& where) {
  uint64_t generation = 0;
  get(transaction, where.chassis, as_value("generation"), &generation, sizeof generation, "generation");
  return generation;
}

void write_generation(MDB_txn* transaction, const databases& where, uint64_t generation) {
  put(transaction, where.chassis, as_value("generation"), as_value(&generation, sizeof generation));
}

port_map read_map(MDB_txn* transaction, const databases& where) {
  port_map map;
  get_element(transaction, where, FICON_PMAP_ELEM_PAPN, map.pa_to_pn.data(), sizeof map.pa_to_pn);
  get_element(transaction, where, FICON_PMAP_ELEM_PNIF, map.pn_to_if.data(), sizeof map.pn_to_if);
  get_element(transaction, where, FICON_PMAP_ELEM_PORTPN, map.port_to_pn.data(), sizeof map.port_to_pn);
  get_element(transaction, where, FICON_PMAP_ELEM_VSAN_ARRAY, map.vsan_array.data(), sizeof map.vsan_array);
  get_element(transaction, where, FICON_PMAP_ELEM_PORTVSAN, map.port_to_vsan.data(), sizeof map.port_to_vsan);
  return map;
}

void write_map(MDB_txn* transaction, const databases& where, const port_map& map) {
  put_element(transaction, where, FICON_PMAP_ELEM_PAPN, map.pa_to_pn.data(), sizeof map.pa_to_pn);
  put_element(transaction, where, FICON_PMAP_ELEM_PNIF, map.pn_to_if.data(), sizeof map.pn_to_if);
  put_element(transaction, where, FICON_PMAP_ELEM_PORTPN, map.port_to_pn.data(), sizeof map.port_to_pn);
  put_element(transaction, where, FICON_PMAP_ELEM_VSAN_ARRAY, map.vsan_array.data(), sizeof map.vsan_array);
  put_element(transaction, where, FICON_PMAP_ELEM_PORTVSAN, map.port_to_vsan.data(), sizeof map.port_to_vsan);
}

std::optional<time_reference> read_time_reference(MDB_txn* transaction, const databases& where, uint32_t vsan) {
  MDB_val key = as_value(&vsan, sizeof vsan);
  MDB_val found;
  const int error = mdb_get(transaction, where.time_stamps, &key, &found);
  if (error == MDB_NOTFOUND) return std::nullopt;
  check(error, "reading a record");
  return reference_from(found);
}

void write_time_reference(MDB_txn* transaction, const databases& where, uint32_t vsan,
                          const std::optional<time_reference>& reference) {
  MDB_val key = as_value(&vsan, sizeof vsan);
  if (!reference) {
    const int error = mdb_del(transaction, where.time_stamps, &key, nullptr);
    if (error != MDB_NOTFOUND) check(error, "removing a record");
    return;
  }
  ficon_vsan_tstmp_rec record = {};
  record.ref_host_sec = reference->host.seconds;
  record.ref_host_usec = reference->host.microseconds;
  record.ref_tod = reference->tod;
  put(transaction, where.time_stamps, key, as_value(&record, sizeof record));
}

uint32_t read_change_counter(MDB_txn* transaction, const databases& where) {
  uint32_t counter = 0;
  get_element(transaction, where, FICON_PMAP_ELEM_CHANGE_COUNTER, &counter, sizeof counter);
  return counter;
}

void write_change_counter(MDB_txn* transaction, const databases& where, uint32_t counter) {
  put_element(transaction, where, FICON_PMAP_ELEM_CHANGE_COUNTER, &counter, sizeof counter);
}

} // namespace vswitch
