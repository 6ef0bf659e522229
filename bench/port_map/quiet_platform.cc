// A platform that does as little as a platform can, so that only the library is measured: it holds the example map, every
// port is there and in no port-channel, nobody watches traces.
#include <platform/elemdb.h>
#include <platform/evtrc.h>
#include <platform/hwinv.h>
#include <platform/if_index.h>
#include <platform/lagmap.h>
#include <platform/memacct.h>
#include <platform/platform_info.h>
#include <platform/portidx.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "example_map.h"

namespace {

// The example map, and kLargeVsan in it: of each line card every third port, from where it carries no numbers and meets none of
// those that do.
struct quiet_map : bench::example_map {
  quiet_map() {
    constexpr int kFirstPort = 62;
    constexpr int kPortsOfCard = bench::kLargeVsanPorts / bench::kLineCards;
    for (int card = 0; card < bench::kLineCards; ++card) {
      for (int nth = 0; nth < kPortsOfCard; ++nth) {
        const auto index = static_cast<size_t>(card * bench::kPortsPerLineCard + kFirstPort + 3 * nth);
        port_to_pn[index].vsans[0] = bench::kLargeVsan;
        port_to_vsan[index] = bench::kLargeVsan;
      }
    }
  }
};

const quiet_map& map() {
  static const quiet_map instance;
  return instance;
}

constexpr int kNotThere = 1;

template <typename table>
int copy(const table& element, const elemdb_request& request) {
  std::memcpy(request.value, element.data(), std::min(sizeof element, size_t{request.value_length}));
  return 0;
}

} // namespace

int elemdb_lookup_element(elemdb_request* request) {
  uint32_t key = 0;
  std::memcpy(&key, request->key, sizeof key);
  switch (key) {
    case FICON_PMAP_ELEM_PAPN:
      return copy(map().pa_to_pn, *request);
    case FICON_PMAP_ELEM_PNIF:
      return copy(map().pn_to_if, *request);
    case FICON_PMAP_ELEM_PORTPN:
      return copy(map().port_to_pn, *request);
    case FICON_PMAP_ELEM_PORTVSAN:
      return copy(map().port_to_vsan, *request);
    default:
      return kNotThere;
  }
}

int get_platform_info(ficon_platform_info* info) {
  *info = {};
  info->num_slots = bench::kSlots;
  return 0;
}

int hwinv_get_chassis_type(int32_t* chassis_type) {
  *chassis_type = bench::kChassisType;
  return 0;
}

int if_index_get_type(uint32_t, uint8_t* type) {
  *type = IF_TYPE_FC_PORT;
  return 0;
}

int if_index_get_slot(uint32_t if_index, uint8_t* slot) {
  *slot = static_cast<uint8_t>(if_index >> 8);
  return 0;
}

int if_index_get_port(uint32_t if_index, uint8_t* port) {
  *port = static_cast<uint8_t>(if_index);
  return 0;
}

int if_index_phy_fc_port_init(uint32_t* if_index, uint8_t slot, uint8_t port, int) {
  *if_index = uint32_t{IF_TYPE_FC_PORT} << 24 | uint32_t{slot} << 8 | port;
  return 0;
}

uint32_t hton_if_index(uint32_t if_index) {
  return if_index;
}

uint32_t ntoh_if_index(uint32_t if_index) {
  return if_index;
}

int portidx_port_by_if_index(uint32_t if_index, uint16_t* port_index) {
  *port_index = static_cast<uint16_t>(if_index);
  return 0;
}

int lagmap_get_port(lagmap_port_query*) {
  return static_cast<int>(FICON_LAGMAP_NOT_MEMBER);
}

int memacct_init(const char*, uint32_t, const char* const*, uint32_t) {
  return 0;
}

// Large blocks at the beginning of a page, as the virtual switch allocates.
void* memacct_alloc(uint32_t, uint32_t, uint32_t size) {
  constexpr uint32_t kPage = 4096;
  return size < kPage ? std::malloc(size) : std::aligned_alloc(kPage, (size + kPage - 1) / kPage * kPage);
}

void memacct_uninit(uint32_t) {}

int evtrc_hist_event_subtype_check(uint32_t, uint32_t) {
  return 1;
}

int evtrc_hist_event(uint32_t, uint32_t, const void*) {
  return 0;
}

int evtrc_chk_int(int, int, int, int) {
  return 0;
}

void dbgout(int, const char*, int, const char*, ...) {}

extern "C" const char evtrc_dbg_modname[] = "bench";
