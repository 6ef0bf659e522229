// Making a folder into a switch, and replacing the switch that is in it.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <optional>
#include <utility>

#include "messages/local/message_folder.h"
#include "store/lmdb/lmdb_store.h"
#include "store/lmdb/named_failures.h"
#include "store/lmdb/switch_records.h"

namespace vswitch {

namespace {

namespace fs = std::filesystem;
using kind = lmdb_transaction::kind;

// What a replacement carries over from the switch that it replaces.
struct predecessor {
  uint64_t generation = 0;
  uint32_t change_counter = 0;
  std::optional<port_map> map;
};

predecessor read_predecessor(MDB_txn* transaction) {
  databases where = open_databases(transaction);
  return {read_generation(transaction, where), read_change_counter(transaction, where), read_map(transaction, where)};
}

uint32_t counter_of_successor(const predecessor& before, const chassis_description& chassis) {
  if (!before.map || chassis.change_counter > before.change_counter) return chassis.change_counter;
  return *before.map == chassis.map ? before.change_counter : next_change_counter(before.change_counter);
}

// One transaction over everything: until it is committed the folder holds what it held before.
void write_whole(lmdb_environment& environment, const chassis_description& chassis) {
  lmdb_transaction transaction(environment, kind::write);
  const content before = content_of(transaction.handle());
  if (before == content::something_else) throw switch_error("holds a database of something else; name another folder");
  predecessor replaced;
  if (before == content::a_switch) replaced = read_predecessor(transaction.handle());
  databases where = make_databases(transaction.handle());
  write_switch(transaction.handle(), where, chassis);
  write_generation(transaction.handle(), where, replaced.generation + 1);
  write_change_counter(transaction.handle(), where, counter_of_successor(replaced, chassis));
  transaction.commit();
  environment.opened = where;
}

bool belongs_to_switch(const fs::path& name) {
  return name == kLockFile || name == kManagerLockFile || name == kMessageFolder;
}

// A folder can become a switch when it is empty, is one already, or was left by a creation that did not come to its end.
void require_room_for_switch(const std::string& folder) {
  if (!fs::is_directory(folder)) throw switch_error("is not a folder; name a folder that is empty or does not exist");
  if (fs::exists(fs::path(folder) / kDataFile)) return;
  for (const auto& entry : fs::directory_iterator(folder))
    if (!belongs_to_switch(entry.path().filename()))
      throw switch_error("is not empty and is not a switch (it holds " + entry.path().filename().string() +
                         "); name a folder that is empty or does not exist");
}

} // namespace

void create_in_folder(const std::string& folder, const chassis_description& chassis) {
  const bool made = mkdir(folder.c_str(), 0777) == 0;
  if (!made && errno != EEXIST) throw switch_error(folder + ": cannot be made: " + std::strerror(errno));
  try {
    naming(folder, [&] {
      require_room_for_switch(folder);
      auto environment = lmdb_environment::open_folder(folder);
      const change_lock lock(folder);
      write_whole(*environment, chassis);
    });
  } catch (const switch_error&) {
    if (made) rmdir(folder.c_str()); // goes only if nothing was made in it
    throw;
  }
}

std::unique_ptr<switch_store> make_in_memory(const chassis_description& chassis) {
  auto environment = lmdb_environment::open_memory();
  write_whole(*environment, chassis);
  return std::make_unique<lmdb_store>(std::move(environment), std::string());
}

} // namespace vswitch
