// Who may change a switch's folder: every process, or its manager alone. Both are locks on a file in the folder, a shared one and
// an exclusive one, which the system drops with the process. What is thrown does not name the folder; callers do.
#ifndef VSWITCH_STORE_LMDB_MANAGER_LOCK_H
#define VSWITCH_STORE_LMDB_MANAGER_LOCK_H

#include <sys/types.h>

#include <string>

#include "vswitch/descriptor.h"
#include "vswitch/switch_store.h"

namespace vswitch {

inline constexpr const char* kManagerLockFile = "manager.lock";

// Keeps a manager from starting for as long as a change takes.
class change_lock {
 public:
  // Throws switch_error at once when a manager serves the folder.
  explicit change_lock(const std::string& folder);

 private:
  descriptor file_;
};

// Makes this process the folder's manager; from then on no other process changes the switch.
class manager_lock final : public manager_role {
 public:
  // Waits for changes that are under way; throws switch_error at once when another manager serves the folder.
  explicit manager_lock(const std::string& folder);
  ~manager_lock() override;

 private:
  descriptor file_;
  pid_t owner_;
};

} // namespace vswitch

#endif
