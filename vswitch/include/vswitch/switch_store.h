// A virtual switch's state: shared by many processes under a name, or of one process alone. Services, manager and tools know it
// by this interface; how a switch is stored is the store's own (store/lmdb: in a folder).
#ifndef VSWITCH_SWITCH_STORE_H
#define VSWITCH_SWITCH_STORE_H

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "vswitch/chassis_description.h"
#include "vswitch/switch_error.h"

namespace vswitch {

// What has become of an opened switch. A process that has it open can still read the one that was there.
enum class switch_presence { in_place, removed, made_anew };

// Kept by the switch's manager. As long as it is, nobody else changes the switch.
class manager_role {
 public:
  virtual ~manager_role() = default;
  manager_role(const manager_role&) = delete;
  manager_role& operator=(const manager_role&) = delete;

 protected:
  manager_role() = default;
};

class switch_store {
 public:
  // Makes this switch under a name, or replaces the switch that has it, whole or not at all: other processes see the old one
  // or the new one. The change counter never goes back under a name: when the described one is not above the counter that was
  // there, that counter stays for an equal map and moves for another one. Refuses what holds something else, or has a manager.
  // Throws switch_error.
  static void create(const std::string& name, const chassis_description& chassis);

  // Opens the switch of a name, for reading and for changes. Throws switch_error.
  static std::unique_ptr<switch_store> open(const std::string& name);

  // A switch of this process alone that leaves nothing behind. Throws switch_error.
  static std::unique_ptr<switch_store> in_memory(const chassis_description& chassis);

  // Whether open() is for this name; what else a person names is a chassis file.
  static bool names_switch(const std::string& name);

  virtual ~switch_store() = default;

  // What messages call the switch; empty for one of this process alone.
  virtual const std::string& name() const noexcept = 0;

  // Where processes exchange messages about this switch, as the message transport opens it; empty: nowhere.
  virtual const std::string& message_place() const noexcept = 0;

  // Copies at most size bytes of an element of the element database to value, without an allocation. Returns whether the
  // element is there.
  virtual bool look_up(uint32_t table, std::span<const std::byte> key, void* value, size_t size) noexcept = 0;

  // Makes this process the switch's manager for as long as the role is kept: changes through this store only, and no other
  // manager. Waits for changes that are under way. nullptr for a switch of this process alone. Throws switch_error.
  virtual std::shared_ptr<manager_role> serve() = 0;

  // Always in place for a switch of this process alone.
  virtual switch_presence presence() = 0;

  // The whole switch as of one moment. Throws switch_error.
  virtual chassis_description describe() = 0;

  // Moves when the switch was replaced as a whole; changes of its map leave it. Cheap enough for every service call. 0 when
  // it cannot be read.
  virtual uint64_t generation() noexcept = 0;

  // Changes are refused at once while a manager serves the switch, unless through its own store.

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
