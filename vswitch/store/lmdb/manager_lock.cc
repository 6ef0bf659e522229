#include "store/lmdb/manager_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace vswitch {

namespace {

constexpr mode_t kFileMode = 0664;
constexpr useconds_t kRetryMicroseconds = 1000;

[[noreturn]] void fail(const char* what) {
  throw switch_error(std::string(what) + ": " + std::strerror(errno));
}

// For a lock reading is enough; a manager also writes its number.
descriptor open_lock_file(const std::string& folder, int access) {
  descriptor file(open((folder + "/" + kManagerLockFile).c_str(), access | O_CREAT | O_CLOEXEC, kFileMode));
  if (!file.open()) fail("cannot be locked");
  return file;
}

// Returns false when another process holds it. Throws for any other failure.
bool try_lock(const descriptor& file, int kind) {
  if (flock(file.number(), kind | LOCK_NB) == 0) return true;
  if (errno != EWOULDBLOCK) fail("cannot be locked");
  return false;
}

// "(process 4711) ", or nothing as long as the manager has not said.
std::string process_of_manager(const descriptor& file) {
  char digits[16] = {};
  if (pread(file.number(), digits, sizeof digits - 1, 0) <= 0) return "";
  const long process = std::strtol(digits, nullptr, 10);
  return process > 0 ? "(process " + std::to_string(process) + ") " : "";
}

void require_lock(const descriptor& file) {
  if (try_lock(file, LOCK_SH)) return;
  throw switch_error("a manager " + process_of_manager(file) +
                     "serves this switch and alone may change it; have the manager do it, or end the manager first");
}

// A lock that is not free and can be shared is held for a change, and soon given up.
void require_lock_alone(const descriptor& file) {
  while (!try_lock(file, LOCK_EX)) {
    if (!try_lock(file, LOCK_SH))
      throw switch_error("a manager " + process_of_manager(file) +
                         "serves this switch already, and a switch has one; end that one first");
    flock(file.number(), LOCK_UN);
    usleep(kRetryMicroseconds);
  }
}

// Without the number messages are shorter, and nothing else is.
void write_number(const descriptor& file, const std::string& number) {
  if (ftruncate(file.number(), 0) != 0 || pwrite(file.number(), number.data(), number.size(), 0) < 0) return;
}

} // namespace

change_lock::change_lock(const std::string& folder) : file_(open_lock_file(folder, O_RDONLY)) {
  require_lock(file_);
}

manager_lock::manager_lock(const std::string& folder) : file_(open_lock_file(folder, O_RDWR)), owner_(getpid()) {
  require_lock_alone(file_);
  write_number(file_, std::to_string(owner_) + "\n");
}

// A child that was forked has the same lock: it closes its descriptor, and the manager keeps the lock.
manager_lock::~manager_lock() {
  if (getpid() == owner_) write_number(file_, "");
}

} // namespace vswitch
