// The translations, a row each.
#include "inspect/port_map/translation.h"

#include "inspect/enum_rows.h"
#include "libchnsw.h"

namespace inspect {

namespace {

constexpr translation_rules kRules[] = {
    {translation::pa_to_pn, "PA to PN", "ficon_pmap_get_pa_to_pn_withpvsan", "address", "port number", true, false, true,
     FICON_PMAP_PORT_ENTRIES, FICON_RC_PA_RANGE, FICON_RC_PLATFORM},
    {translation::pn_to_pa, "PN to PA", "ficon_pmap_get_pn_to_pa_withpvsan", "number", "port address", false, false, false,
     FICON_PMAP_PORT_ENTRIES, FICON_RC_PN_RANGE, FICON_RC_PLATFORM},
    {translation::pn_to_if, "PN to interface", "ficon_pmap_get_pn_to_if_withpvsan", "number", "interface", false, true,
     true, FICON_PMAP_PORT_ENTRIES, FICON_RC_PN_RANGE, FICON_RC_NO_IF},
    {translation::pn_to_phyif, "PN to physical interface", "ficon_pmap_get_pn_to_phyif_withpvsan", "number",
     "physical interface", false, true, false, FICON_PMAP_PHYS_ENTRIES, FICON_RC_PN_RANGE, FICON_RC_NO_IF},
};
static_assert(has_row_for_each(kRules, &translation_rules::what, translation::pn_to_phyif));

} // namespace

const translation_rules& rules_of(translation what) {
  return kRules[static_cast<size_t>(what)];
}

} // namespace inspect
