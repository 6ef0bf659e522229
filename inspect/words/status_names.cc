// The statuses that the library and the platform's services answer, a row each.
#include "inspect/words/status_names.h"

#include <fmt/format.h>

#include <algorithm>

#include "libchnsw.h"
#include "platform/lagmap.h"
#include "platform/portidx.h"
#include "vswitch/interface_index.h"
#include "vswitch/service_status.h"

namespace inspect {

namespace {

constexpr known_status kStatuses[] = {
    {0, "OK", "The operation succeeded."},
    {FICON_RC_NO_MEMORY, "FICON_RC_NO_MEMORY", "A tracked allocation was refused."},
    {FICON_RC_NOT_FC_PORT, "FICON_RC_NOT_FC_PORT", "Not a Fibre Channel port, or not a physical one."},
    {FICON_RC_BASE, "FICON_RC_BASE", "The platform's information about the chassis is unavailable."},
    {FICON_RC_INVALID_ARG, "FICON_RC_INVALID_ARG",
     "A required address is missing, an argument is out of range, or a message lacks it."},
    {FICON_RC_NO_PAYLOAD, "FICON_RC_NO_PAYLOAD", "A received message has no payload."},
    {FICON_RC_PLATFORM, "FICON_RC_PLATFORM", "The platform failed, or nothing was found."},
    {FICON_RC_PA_RANGE, "FICON_RC_PA_RANGE", "The port address is beyond the highest of this chassis."},
    {FICON_RC_PN_RANGE, "FICON_RC_PN_RANGE", "The port number is beyond the highest of this chassis."},
    {FICON_RC_LAG_MEMBER, "FICON_RC_LAG_MEMBER", "The port is in a port-channel."},
    {FICON_RC_CONVERT, "FICON_RC_CONVERT", "Text conversion is not available, or it failed."},
    {FICON_RC_NOT_ASSOCIATED, "FICON_RC_NOT_ASSOCIATED", "The logical interface has no port number."},
    {FICON_RC_NO_IF, "FICON_RC_NO_IF", "No interface answers for the port number."},
    {FICON_RC_MULTI_IF, "FICON_RC_MULTI_IF", "More than one port or interface answers."},
    {FICON_PORTIDX_NO_PORT, "FICON_PORTIDX_NO_PORT", "There is no port behind this interface index."},
    {FICON_LAGMAP_NOT_MEMBER, "FICON_LAGMAP_NOT_MEMBER", "The port belongs to no port-channel."},
    // Of the virtual switch's own services.
    {vswitch::kIfIndexUnknown, "IF_INDEX_UNKNOWN", "The switch has no such interface."},
    {vswitch::kIfIndexNotPhysical, "IF_INDEX_NOT_PHYSICAL", "A logical interface has neither slot nor port."},
    {vswitch::kIfIndexNoSuchSlot, "IF_INDEX_NO_SUCH_SLOT", "The chassis has no such slot."},
    {vswitch::kLagmapUnknownPort, "LAGMAP_UNKNOWN_PORT", "Not a physical port, or no line card has it."},
};

constexpr known_status kUnknown = {0, "platform status", "A status of a service of the platform."};

const known_status& row_of(uint32_t code) {
  const auto* row =
      std::find_if(std::begin(kStatuses), std::end(kStatuses), [code](const auto& known) { return known.code == code; });
  return row == std::end(kStatuses) ? kUnknown : *row;
}

} // namespace

std::span<const known_status> known_statuses() {
  return kStatuses;
}

std::string_view status_name(uint32_t code) {
  return row_of(code).name;
}
std::string_view status_meaning(uint32_t code) {
  return row_of(code).meaning;
}

std::string status_text(uint32_t code) {
  return code == 0 ? "OK 0" : fmt::format("{} 0x{:08X}", status_name(code), code);
}

} // namespace inspect
