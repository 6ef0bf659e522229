// Which store holds a switch, by what the switch is called. This is the one place that knows every kind of store.
#include <sys/stat.h>

#include "store/lmdb/lmdb_store.h"
#include "vswitch/switch_store.h"

namespace vswitch {

void switch_store::create(const std::string& name, const chassis_description& chassis) {
  create_in_folder(name, chassis);
}

std::unique_ptr<switch_store> switch_store::open(const std::string& name) {
  return open_folder(name);
}

std::unique_ptr<switch_store> switch_store::in_memory(const chassis_description& chassis) {
  return make_in_memory(chassis);
}

bool switch_store::names_switch(const std::string& name) {
  struct stat status {};
  return stat(name.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

} // namespace vswitch
