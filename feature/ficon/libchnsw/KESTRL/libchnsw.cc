// The frame: load and unload, memory types, the platform record, refused allocations.
#include <libchnsw.h>

#include <strings.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>

#include <platform/memacct.h>

#include "report.h"

static_assert(sizeof(ficon_platform_info) == 8);
static_assert(offsetof(ficon_platform_info, num_slots) == 2);
static_assert(sizeof(ficon_hist_record) == 516);
static_assert(offsetof(ficon_hist_record, subtype) == 0);
static_assert(offsetof(ficon_hist_record, text) == 4);

namespace {

constexpr int kPlatformInfoLine = 81;

struct mem_type_row {
  int32_t id;
  const char* name;
};

// In the order of the ids; the row with the empty name ends it.
constexpr mem_type_row kMemTypes[] = {
    {LIBCHNSW_MEM_vsaninstall, "LIBCHNSW_MEM_vsaninstall"},
    {LIBCHNSW_MEM_ifindex, "LIBCHNSW_MEM_ifindex"},
    {LIBCHNSW_MEM_papn, "LIBCHNSW_MEM_papn"},
    {LIBCHNSW_MEM_pnif, "LIBCHNSW_MEM_pnif"},
    {LIBCHNSW_MEM_vsanlist, "LIBCHNSW_MEM_vsanlist"},
    {LIBCHNSW_MEM_portpn, "LIBCHNSW_MEM_portpn"},
    {LIBCHNSW_MEM_TYPES_MAX, "LIBCHNSW_MEM_TYPES_MAX"},
    {0, ""},
};

constexpr bool in_order_of_ids() {
  for (int32_t id = 0; id <= LIBCHNSW_MEM_TYPES_MAX; ++id) {
    if (kMemTypes[id].id != id) return false;
  }
  return true;
}
static_assert(in_order_of_ids());

bool is_end(const mem_type_row& row) {
  return row.name[0] == '\0';
}

template <typename type>
void release(type*& buffer) {
  if (buffer == nullptr) return;
  std::free(buffer);
  buffer = nullptr;
}

[[gnu::constructor]] void load() {
  // The accounting keeps the array, so it has to live as long as the library.
  static const char* names[LIBCHNSW_MEM_TYPES_MAX];
  for (int32_t id = 0; id < LIBCHNSW_MEM_TYPES_MAX; ++id) names[id] = __libchnsw_mem_type_t_find(id);
  memacct_init("libchnsw", LIBCHNSW_MEM_LIB_ID, names, LIBCHNSW_MEM_TYPES_MAX);
}

[[gnu::destructor]] void unload() {
  release(ficon_pmap_port_to_vsan);
  release(ficon_pmap_port_to_pn);
  release(ficon_pmap_pn_to_logif);
  release(ficon_pmap_pa_to_pn);
  release(libchnsw_pinfo);
  memacct_uninit(LIBCHNSW_MEM_LIB_ID);
}

} // namespace

const char* __libchnsw_mem_type_t_find(int32_t id) {
  if (id == 0) return kMemTypes[0].name;
  for (const mem_type_row* row = &kMemTypes[1]; !is_end(*row); ++row) {
    if (row->id == id) return row->name;
  }
  return nullptr;
}

// Oddity: an unknown name gives 0, the first type's id. Callers check names beforehand and rely on there being no error
// value.
int32_t __libchnsw_mem_type_t_str2enum(const char* name) {
  for (const mem_type_row* row = kMemTypes; !is_end(*row); ++row) {
    if (strcasecmp(name, row->name) == 0) return row->id;
  }
  return 0;
}

int32_t ficon_get_platform_info(ficon_platform_info* info) {
  if (libchnsw_pinfo != nullptr) {
    *info = *libchnsw_pinfo;
    return 0;
  }
  const int status = get_platform_info(info);
  if (status != 0) return status;

  // Oddity: accounted under the port-to-PN type; there is no type of its own.
  void* copy = chnsw::allocate_tracked(LIBCHNSW_MEM_portpn, sizeof *libchnsw_pinfo, kPlatformInfoLine);
  if (copy == nullptr) return FICON_RC_NO_MEMORY;
  libchnsw_pinfo = static_cast<ficon_platform_info*>(copy);
  *libchnsw_pinfo = *info;
  return 0;
}

void* chnsw::allocate_tracked(uint32_t memory_type, uint64_t size, int line) {
  void* buffer = size > UINT32_MAX ? nullptr : memacct_alloc(LIBCHNSW_MEM_LIB_ID, memory_type, static_cast<uint32_t>(size));
  if (buffer == nullptr) {
    std::printf("Warning! Malloc Failure in %s[%d] for size %d\n", kSourcePath, line, static_cast<int>(size));
  }
  return buffer;
}
