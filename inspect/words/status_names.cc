// The names of the statuses that the library and the platform's services answer.
#include "inspect/words/status_names.h"

#include <fmt/format.h>

#include "libchnsw.h"
#include "platform/lagmap.h"
#include "platform/portidx.h"
#include "vswitch/interface_index.h"
#include "vswitch/service_status.h"

namespace inspect {

namespace {

struct named_status {
  uint32_t code;
  std::string_view name;
};

constexpr named_status kStatusNames[] = {
    {0, "OK"},
    {FICON_RC_NO_MEMORY, "FICON_RC_NO_MEMORY"},
    {FICON_RC_NOT_FC_PORT, "FICON_RC_NOT_FC_PORT"},
    {FICON_RC_BASE, "FICON_RC_BASE"},
    {FICON_RC_INVALID_ARG, "FICON_RC_INVALID_ARG"},
    {FICON_RC_NO_PAYLOAD, "FICON_RC_NO_PAYLOAD"},
    {FICON_RC_PLATFORM, "FICON_RC_PLATFORM"},
    {FICON_RC_PA_RANGE, "FICON_RC_PA_RANGE"},
    {FICON_RC_PN_RANGE, "FICON_RC_PN_RANGE"},
    {FICON_RC_LAG_MEMBER, "FICON_RC_LAG_MEMBER"},
    {FICON_RC_CONVERT, "FICON_RC_CONVERT"},
    {FICON_RC_NOT_ASSOCIATED, "FICON_RC_NOT_ASSOCIATED"},
    {FICON_RC_NO_IF, "FICON_RC_NO_IF"},
    {FICON_RC_MULTI_IF, "FICON_RC_MULTI_IF"},
    {FICON_PORTIDX_NO_PORT, "FICON_PORTIDX_NO_PORT"},
    {FICON_LAGMAP_NOT_MEMBER, "FICON_LAGMAP_NOT_MEMBER"},
    // Of this platform's own services.
    {vswitch::kIfIndexUnknown, "IF_INDEX_UNKNOWN"},
    {vswitch::kIfIndexNotPhysical, "IF_INDEX_NOT_PHYSICAL"},
    {vswitch::kIfIndexNoSuchSlot, "IF_INDEX_NO_SUCH_SLOT"},
    {vswitch::kLagmapUnknownPort, "LAGMAP_UNKNOWN_PORT"},
};

} // namespace

std::string_view status_name(uint32_t code) {
  for (const auto& known : kStatusNames)
    if (known.code == code) return known.name;
  return "platform status";
}

std::string status_text(uint32_t code) {
  return code == 0 ? "OK 0" : fmt::format("{} 0x{:08X}", status_name(code), code);
}

} // namespace inspect
