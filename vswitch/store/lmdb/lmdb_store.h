// Switches in LMDB environments, one a folder. The folder holds, beside LMDB's own two files, the lock of a manager and what
// the local message link keeps there.
#ifndef VSWITCH_STORE_LMDB_STORE_H
#define VSWITCH_STORE_LMDB_STORE_H

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "store/lmdb/lmdb_environment.h"
#include "store/lmdb/manager_lock.h"
#include "vswitch/switch_store.h"

namespace vswitch {

// What create(), open() and in_memory() of switch_store promise, for a switch's folder.
void create_in_folder(const std::string& folder, const chassis_description& chassis);
std::unique_ptr<switch_store> open_folder(const std::string& folder);
std::unique_ptr<switch_store> make_in_memory(const chassis_description& chassis);

// A switch in an LMDB environment: that of a folder, or one in memory.
class lmdb_store final : public switch_store {
 public:
  lmdb_store(std::shared_ptr<lmdb_environment> environment, std::string folder)
      : environment_(std::move(environment)), folder_(std::move(folder)) {}

  const std::string& name() const noexcept override { return folder_; }
  const std::string& message_place() const noexcept override { return folder_; }
  bool look_up(uint32_t table, std::span<const std::byte> key, void* value, size_t size) noexcept override;
  chassis_description describe() override;
  uint64_t generation() noexcept override;
  std::shared_ptr<manager_role> serve() override;
  switch_presence presence() override;
  uint32_t change_map(const std::function<void(port_map&)>& change) override;
  std::optional<time_reference> set_time_reference(uint32_t vsan, const std::optional<time_reference>& reference) override;

 private:
  void keep_to_this_process();
  void lock_for_change(std::optional<change_lock>& lock) const;
  bool usable() noexcept;
  bool read_generation_now() noexcept;
  bool copy_remembered(size_t slot, void* value, size_t size) noexcept;
  bool copy_in_transaction(MDB_dbi database, std::span<const std::byte> key, size_t slot, void* value,
                           size_t size) noexcept;

  // Where an element lay as of a transaction.
  struct remembered_element {
    size_t transaction = 0;
    MDB_val value{};
  };

  std::shared_ptr<lmdb_environment> environment_;
  const std::string folder_;                                                      // absolute; empty: in memory
  std::weak_ptr<manager_role> served_;                                            // as long as this store is the manager's
  std::array<remembered_element, FICON_PMAP_ELEM_CHANGE_COUNTER + 1> remembered_; // by element of the port map
  size_t seen_transaction_ = 0;
  uint64_t seen_generation_ = 0;
};

} // namespace vswitch

#endif
