// Who may change a switch's folder: anybody, or its manager alone. A lock on a file in the folder, which ends with the process
// that holds it however that dies. What is thrown does not name the folder; callers do.
#ifndef VSWITCH_MANAGER_LOCK_H
#define VSWITCH_MANAGER_LOCK_H

#include <sys/types.h>

#include <string>

namespace vswitch {

inline constexpr const char* kManagerLockFile = "manager.lock";

// Keeps a manager from starting for as long as a change takes.
class change_lock {
 public:
  // Throws switch_error at once when a manager serves the folder.
  explicit change_lock(const std::string& folder);
  ~change_lock();
  change_lock(const change_lock&) = delete;
  change_lock& operator=(const change_lock&) = delete;

 private:
  int file_;
};

// Makes this process the folder's manager, from whose start on nobody else changes the switch.
class manager_lock {
 public:
  // Waits for changes that are under way; throws switch_error at once when another manager serves the folder.
  explicit manager_lock(const std::string& folder);
  ~manager_lock();
  manager_lock(const manager_lock&) = delete;
  manager_lock& operator=(const manager_lock&) = delete;

 private:
  int file_;
  pid_t owner_;
};

} // namespace vswitch

#endif
