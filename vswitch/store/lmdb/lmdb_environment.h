// LMDB environments as this process holds them: one for each folder however often it is opened, and never across a fork.
#ifndef VSWITCH_LMDB_ENVIRONMENT_H
#define VSWITCH_LMDB_ENVIRONMENT_H

#include <lmdb.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "store/lmdb/switch_records.h"
#include "vswitch/descriptor.h"

namespace vswitch {

inline constexpr const char* kDataFile = "data.mdb";
inline constexpr const char* kLockFile = "lock.mdb";

class lmdb_environment {
 public:
  // The environment in a folder, made when there is none. Throws switch_error.
  static std::shared_ptr<lmdb_environment> open_folder(const std::string& folder);

  // An environment over a file that no folder lists, gone when the process ends. Throws switch_error.
  static std::shared_ptr<lmdb_environment> open_memory();

  // An environment in memory with what another one holds now, for a process that inherited that one. Throws switch_error.
  static std::shared_ptr<lmdb_environment> copy_in_memory(const lmdb_environment& other);

  ~lmdb_environment();
  lmdb_environment(const lmdb_environment&) = delete;
  lmdb_environment& operator=(const lmdb_environment&) = delete;

  // Whether a fork lies between the opening and now: LMDB forbids this process to use or to close the environment.
  bool inherited() const noexcept;

  // Whether this file is the one that it has open.
  bool has_open(const std::string& file) const noexcept;

  // Moves with every transaction of any process.
  size_t last_transaction() const noexcept;

  // The one transaction that look-ups read in, as of now; nullptr when it cannot be had. Every renewal wants a reset.
  MDB_txn* renew_reader() noexcept;
  static void reset_reader(MDB_txn* reader) noexcept { mdb_txn_reset(reader); }

  MDB_env* handle() const { return handle_; }
  const std::string& place() const { return place_; }

  // The named databases, once a transaction that opened them was committed.
  std::optional<databases> opened;

 private:
  explicit lmdb_environment(std::string place);
  void open(const char* path, unsigned flags);
  void require_all_pages();
  static std::shared_ptr<lmdb_environment> open_file(const descriptor& file);

  std::string place_; // for messages
  MDB_env* handle_ = nullptr;
  MDB_txn* reader_ = nullptr;
  unsigned forks_; // of this process's line when it was opened
};

// One transaction, aborted unless committed.
class lmdb_transaction {
 public:
  enum class kind { read, write };

  lmdb_transaction(lmdb_environment& environment, kind what);
  ~lmdb_transaction();
  lmdb_transaction(const lmdb_transaction&) = delete;
  lmdb_transaction& operator=(const lmdb_transaction&) = delete;

  void commit();
  MDB_txn* handle() const { return handle_; }

 private:
  lmdb_environment& environment_;
  MDB_txn* handle_ = nullptr;
};

} // namespace vswitch

#endif
