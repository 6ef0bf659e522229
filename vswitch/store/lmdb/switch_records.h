// How a switch lies in its database. Numbers are in the machine's byte order, texts without a NUL.
//
//   named database   key                    value
//   chassis          "format"               32-bit version of this layout
//                    "generation"           64-bit, moves when the switch is replaced as a whole
//                    "name"                 text
//                    "platform-record"      8 bytes
//                    "type"                 32-bit chassis type
//                    "supervisors"          32-bit slots, ascending
//                    "nodes"                of each device the 32-bit if_index, the 32-bit code page and 32 bytes of node
//                                           descriptor in ASCII; in folders of earlier versions missing, and no device
//   line-cards       32-bit slot            32-bit number of ports, then the name
//   interfaces       32-bit if_index        32-bit if_index of each member
//   vsans            32-bit VSAN            name
//   table-1          32-bit VSAN            40-byte time-stamp record; the element database's table 1
//   table-2          32-bit element         kElementPadding zero bytes, then the port map element; the element
//                                           database's table 2
#ifndef VSWITCH_SWITCH_RECORDS_H
#define VSWITCH_SWITCH_RECORDS_H

#include <lmdb.h>

#include <cstddef>
#include <cstdint>
#include <optional>

#include "vswitch/chassis_description.h"

namespace vswitch {

inline constexpr unsigned kDatabases = 6;

// A large value begins 16 bytes behind the beginning of a page. With these before it an element begins at a cache line, and
// so do the blocks of memory accounting that it is copied to: a translation that fetches 25,600 bytes then takes 1.7 times a
// memcpy of them, else 2.0 times (bench/port_map).
inline constexpr size_t kElementPadding = 48;

struct databases {
  MDB_dbi chassis;
  MDB_dbi line_cards;
  MDB_dbi interfaces;
  MDB_dbi vsans;
  MDB_dbi time_stamps;
  MDB_dbi port_map;
};

// What an environment holds.
enum class content { nothing, a_switch, something_else };
content content_of(MDB_txn* transaction);

// Opens the named databases of a switch, or makes them. Throws switch_error, also for a layout of another version.
databases open_databases(MDB_txn* transaction);
databases make_databases(MDB_txn* transaction);

// Each throws switch_error when a record is missing, damaged or cannot be written.
chassis_description read_switch(MDB_txn* transaction, const databases& where);
void write_switch(MDB_txn* transaction, const databases& where, const chassis_description& chassis); // in place of all

uint64_t read_generation(MDB_txn* transaction, const databases& where);
void write_generation(MDB_txn* transaction, const databases& where, uint64_t generation);

port_map read_map(MDB_txn* transaction, const databases& where);
void write_map(MDB_txn* transaction, const databases& where, const port_map& map);

// The reference of a VSAN's time stamps, none when it has no record; writing none takes the record away.
std::optional<time_reference> read_time_reference(MDB_txn* transaction, const databases& where, uint32_t vsan);
void write_time_reference(MDB_txn* transaction, const databases& where, uint32_t vsan,
                          const std::optional<time_reference>& reference);

uint32_t read_change_counter(MDB_txn* transaction, const databases& where);
void write_change_counter(MDB_txn* transaction, const databases& where, uint32_t counter);

// The counter after one more change: never 0, which clients take for a counter that could not be read.
constexpr uint32_t next_change_counter(uint32_t counter) {
  return counter + 1 == 0 ? 1 : counter + 1;
}

} // namespace vswitch

#endif
