#include "store/lmdb/lmdb_environment.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <map>
#include <new>
#include <utility>

#include "vswitch/switch_error.h"

namespace vswitch {

namespace {

// A switch takes some 150 KiB; the rest is room for the pages that a stopped reader pins. Addresses only: the file is as
// large as what was written.
constexpr size_t kMapBytes = size_t{256} << 20;
constexpr unsigned kReaders = 1022;
constexpr mode_t kFileMode = 0664;
constexpr char kInMemory[] = "switch in memory"; // as messages call it

using file_identity = std::pair<dev_t, ino_t>;

// What this process holds open. LMDB must not open a folder twice in a process, since closing the one would drop the locks
// of the other.
struct held_environments {
  unsigned forks = 0;
  std::map<file_identity, std::weak_ptr<lmdb_environment>> by_data_file;
};

held_environments& held() {
  alignas(held_environments) static std::byte storage[sizeof(held_environments)];
  static held_environments* const instance = [] {
    auto* made = new (storage) held_environments; // never destroyed: an unload hook may come after all destructors
    pthread_atfork(nullptr, nullptr, [] { ++held().forks; });
    return made;
  }();
  return *instance;
}

[[noreturn]] void fail(const std::string& place, const std::string& what, int error) {
  throw switch_error(place + ": " + what + ": " + mdb_strerror(error));
}

// A file in memory without a name.
descriptor make_anonymous_file() {
  descriptor file(memfd_create("switch", MFD_CLOEXEC));
  if (!file.open()) fail(kInMemory, "no file in memory", errno);
  return file;
}

std::optional<file_identity> identity_of(const std::string& file) {
  struct stat status {};
  if (stat(file.c_str(), &status) != 0) return std::nullopt;
  return file_identity{status.st_dev, status.st_ino};
}

std::shared_ptr<lmdb_environment> already_open(const std::string& data_file) {
  auto identity = identity_of(data_file);
  if (!identity) return nullptr;
  auto found = held().by_data_file.find(*identity);
  auto environment = found == held().by_data_file.end() ? nullptr : found->second.lock();
  return environment && !environment->inherited() ? environment : nullptr;
}

} // namespace

lmdb_environment::lmdb_environment(std::string place) : place_(std::move(place)), forks_(held().forks) {
  if (int error = mdb_env_create(&handle_)) fail(place_, "no database environment", error);
}

void lmdb_environment::open(const char* path, unsigned flags) {
  mdb_env_set_mapsize(handle_, kMapBytes);
  mdb_env_set_maxdbs(handle_, kDatabases);
  mdb_env_set_maxreaders(handle_, kReaders);
  // Without MDB_NOTLS a reader's slot would belong to a thread.
  if (int error = mdb_env_open(handle_, path, flags | MDB_NOTLS, kFileMode)) fail(place_, "cannot be opened", error);
  require_all_pages();
  int dead = 0;
  mdb_reader_check(handle_, &dead); // readers that died in the middle of a look-up would pin old pages for ever
}

// A file that was cut short, as by a copy that did not end, would end the process at the first page that is not there.
void lmdb_environment::require_all_pages() {
  MDB_envinfo info;
  MDB_stat pages;
  mdb_filehandle_t file = -1;
  struct stat status {};
  if (mdb_env_info(handle_, &info) || mdb_env_stat(handle_, &pages) || mdb_env_get_fd(handle_, &file)) return;
  if (fstat(file, &status) != 0) return;
  const auto held = static_cast<uint64_t>(status.st_size);
  const uint64_t expected = (uint64_t{info.me_last_pgno} + 1) * pages.ms_psize;
  if (held == 0 || held >= expected) return;
  throw switch_error(place_ + ": is damaged: " + kDataFile + " has " + std::to_string(held) + " bytes, expected are " +
                     std::to_string(expected) + "; copy it anew, or make the switch again in another folder");
}

lmdb_environment::~lmdb_environment() {
  if (inherited()) return; // closing would free the parent's reader slots
  if (reader_ != nullptr) mdb_txn_abort(reader_);
  mdb_env_close(handle_);
}

std::shared_ptr<lmdb_environment> lmdb_environment::open_folder(const std::string& folder) {
  const std::string data_file = folder + "/" + kDataFile;
  if (auto environment = already_open(data_file)) return environment;
  std::shared_ptr<lmdb_environment> environment(new lmdb_environment(folder));
  environment->open(folder.c_str(), 0);
  if (auto identity = identity_of(data_file)) held().by_data_file[*identity] = environment;
  return environment;
}

// Nobody else can open the file, so nothing is locked and nothing is made durable.
std::shared_ptr<lmdb_environment> lmdb_environment::open_file(const descriptor& file) {
  std::shared_ptr<lmdb_environment> environment(new lmdb_environment(kInMemory));
  const std::string path = "/proc/self/fd/" + std::to_string(file.number());
  environment->open(path.c_str(), MDB_NOSUBDIR | MDB_NOLOCK | MDB_NOSYNC);
  return environment;
}

std::shared_ptr<lmdb_environment> lmdb_environment::open_memory() {
  return open_file(make_anonymous_file());
}

std::shared_ptr<lmdb_environment> lmdb_environment::copy_in_memory(const lmdb_environment& other) {
  for (;;) {
    const descriptor file = make_anonymous_file();
    const size_t before = other.last_transaction();
    if (int error = mdb_env_copyfd(other.handle_, file.number())) fail(other.place_, "cannot be copied", error);
    // Nothing keeps the parent from writing meanwhile, and a page may be used again after two of its transactions.
    if (other.last_transaction() == before) return open_file(file);
  }
}

bool lmdb_environment::inherited() const noexcept {
  return forks_ != held().forks;
}

bool lmdb_environment::has_open(const std::string& file) const noexcept {
  mdb_filehandle_t own = -1;
  struct stat status {};
  if (mdb_env_get_fd(handle_, &own) || fstat(own, &status) != 0) return false;
  return identity_of(file) == file_identity{status.st_dev, status.st_ino};
}

size_t lmdb_environment::last_transaction() const noexcept {
  MDB_envinfo info;
  mdb_env_info(handle_, &info);
  return info.me_last_txnid;
}

MDB_txn* lmdb_environment::renew_reader() noexcept {
  if (reader_ != nullptr) return mdb_txn_renew(reader_) == 0 ? reader_ : nullptr;
  int error = mdb_txn_begin(handle_, nullptr, MDB_RDONLY, &reader_);
  if (error == MDB_READERS_FULL) {
    int dead = 0;
    mdb_reader_check(handle_, &dead);
    error = mdb_txn_begin(handle_, nullptr, MDB_RDONLY, &reader_);
  }
  if (error) reader_ = nullptr;
  return reader_;
}

lmdb_transaction::lmdb_transaction(lmdb_environment& environment, kind what) : environment_(environment) {
  int dead = 0;
  if (what == kind::write) mdb_reader_check(environment.handle(), &dead);
  const unsigned flags = what == kind::read ? unsigned{MDB_RDONLY} : 0u;
  if (int error = mdb_txn_begin(environment.handle(), nullptr, flags, &handle_))
    fail(environment.place(), what == kind::read ? "cannot be read" : "cannot be changed", error);
}

lmdb_transaction::~lmdb_transaction() {
  if (handle_ != nullptr) mdb_txn_abort(handle_);
}

void lmdb_transaction::commit() {
  if (int error = mdb_txn_commit(std::exchange(handle_, nullptr))) fail(environment_.place(), "cannot be changed", error);
}

} // namespace vswitch
