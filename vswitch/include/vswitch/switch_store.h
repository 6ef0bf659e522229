// A virtual switch's state: one LMDB environment, in a folder that many processes share or in memory for one process alone.
#ifndef VSWITCH_SWITCH_STORE_H
#define VSWITCH_SWITCH_STORE_H

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>

#include "vswitch/chassis_description.h"
#include "vswitch/manager_lock.h"

namespace vswitch {

// In a switch's folder: what the transport of messages needs.
inline constexpr char kMessageFolder[] = "msgq";

// A folder that cannot be made, opened, read or changed: what, where and what to do.
class switch_error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What has become of an opened switch's folder. Who has it open can go on with the switch that was there.
enum class folder_state { in_place, removed, made_anew };

class switch_store {
 public:
  // Makes a folder into this switch, or replaces the switch that is in it, whole or not at all: other processes see the old
  // one or the new one. The change counter never goes back in a folder: when the described one is not above the counter
  // that was there, that counter stays for an equal map and moves for another one. Refuses a folder that holds something
  // else, or that a manager serves. Throws switch_error.
  static void create(const std::string& folder, const chassis_description& chassis);

  // Opens the switch in a folder, for reading and for changes. Throws switch_error.
  static std::unique_ptr<switch_store> open(const std::string& folder);

  // A switch of this process alone that leaves nothing behind. Throws switch_error.
  static std::unique_ptr<switch_store> in_memory(const chassis_description& chassis);

  virtual ~switch_store() = default;

  // The folder's absolute path; empty for a switch in memory.
  virtual const std::string& folder() const noexcept = 0;

  // Copies at most size bytes of an element of the element database to value, without an allocation. Returns whether the
  // element is there.
  virtual bool look_up(uint32_t table, std::span<const std::byte> key, void* value, size_t size) noexcept = 0;

  // Makes this process the switch's manager for as long as the lock is kept: changes through this store only, and no other
  // manager. Waits for changes that are under way. nullptr for a switch in memory, which is this process's anyway. Throws
  // switch_error.
  virtual std::shared_ptr<manager_lock> serve() = 0;

  // Always in place for a switch in memory.
  virtual folder_state state_of_folder() = 0;

  // The whole switch as of one moment. Throws switch_error.
  virtual chassis_description describe() = 0;

  // Moves when the switch was replaced as a whole; changes of its map leave it. Cheap enough for every service call. 0 when
  // it cannot be read.
  virtual uint64_t generation() noexcept = 0;

  // Changes are refused at once while a manager serves the folder, unless through its own store.

  // Reads the port map, lets change edit it, and writes it back with the change counter moved, all in one transaction; what
  // change throws leaves the old map. Returns the new change counter. Throws switch_error.
  virtual uint32_t change_map(const std::function<void(port_map&)>& change) = 0;

  // Sets the reference of a VSAN's time stamps, or takes it away, in one transaction; the change counter, which is the port
  // map's, stays. Returns the reference that was there. Throws switch_error.
  virtual std::optional<time_reference> set_time_reference(uint32_t vsan,
                                                           const std::optional<time_reference>& reference) = 0;
};

} // namespace vswitch

#endif
