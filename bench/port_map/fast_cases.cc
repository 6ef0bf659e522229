// The cases of the fast translations.
#include "fast_cases.h"

#include <stdexcept>

#include <libchnsw.h>

#include "example_map.h"
#include "plain_forms.h"

namespace {

using bench::answer;
using bench::carriers;

struct translation {
  const char* name;
  answer (*library)(int32_t number);
  answer (*plain)(int32_t number);
  bool is_chained; // goes on from the number that an address gives
};

// An operation of the library without and with a VSAN, and a plain form, as functions of the number alone.
template <typename result, uint32_t (*operation)(int32_t, result*)>
answer ask(int32_t number) {
  result value = 0;
  const uint32_t status = operation(number, &value);
  return {status, value};
}

template <typename result, uint32_t (*operation)(int32_t, uint32_t, result*)>
answer ask_in_vsan(int32_t number) {
  result value = 0;
  const uint32_t status = operation(number, bench::kVsan, &value);
  return {status, value};
}

template <typename result, uint32_t (*form)(int32_t, const uint32_t*, result*, uint32_t*), bool with_vsan>
answer ask_plain(int32_t number) {
  const uint32_t vsan = bench::kVsan;
  result value = 0;
  uint32_t flag = 0;
  const uint32_t status = form(number, with_vsan ? &vsan : nullptr, &value, &flag);
  return {status, value};
}

constexpr translation kTranslations[] = {
    {"PA to PN", ask<uint16_t, ficon_pmap_get_pa_to_pn_fast>, ask_plain<uint16_t, plain::pa_to_pn_fast, false>, false},
    {"PA to PN in a VSAN", ask_in_vsan<uint16_t, ficon_pmap_get_pa_vsan_to_pn_fast>,
     ask_plain<uint16_t, plain::pa_to_pn_fast, true>, false},
    {"PN to PA", ask<uint16_t, ficon_pmap_get_pn_to_pa_fast>, ask_plain<uint16_t, plain::pn_to_pa_fast, false>, false},
    {"PN to PA in a VSAN", ask_in_vsan<uint16_t, ficon_pmap_get_pn_vsan_to_pa_fast>,
     ask_plain<uint16_t, plain::pn_to_pa_fast, true>, false},
    {"PN to interface", ask<uint32_t, ficon_pmap_get_pn_to_if_fast>, ask_plain<uint32_t, plain::pn_to_if_fast, false>,
     false},
    {"PN to interface in a VSAN", ask_in_vsan<uint32_t, ficon_pmap_get_pn_vsan_to_if_fast>,
     ask_plain<uint32_t, plain::pn_to_if_fast, true>, false},
    {"PA to interface", ask<uint32_t, ficon_pmap_get_pa_to_if_fast>, ask_plain<uint32_t, plain::pa_to_if_fast, false>,
     true},
    {"PA to interface in a VSAN", ask_in_vsan<uint32_t, ficon_pmap_get_pa_vsan_to_if_fast>,
     ask_plain<uint32_t, plain::pa_to_if_fast, true>, true},
};

struct searched {
  const char* name;
  int32_t number;
  carriers carried_by;
};

constexpr searched kSearched[] = {
    {"no match", bench::kCarriedByNone, carriers::none},
    {"one match", bench::kCarriedByOne, carriers::one},
    {"several matches", bench::kCarriedBySeveral, carriers::several},
};

void require_like_answers(const bench::fast_case& tried) {
  if (tried.library(tried.number) != tried.plain(tried.number)) {
    throw std::runtime_error(tried.name + ": the library and the plain form answer differently");
  }
}

} // namespace

std::vector<bench::fast_case> bench::fast_cases() {
  if (ficon_get_max_ficon_ports() != kPorts) throw std::runtime_error("the chassis has another number of ports");
  if (ficon_pmap_prepare_fastpath(kVsan) != 0) throw std::runtime_error("the port map cannot be fetched");
  std::vector<fast_case> cases;
  for (const translation& translation : kTranslations) {
    for (const searched& searched : kSearched) {
      const answer given = translation.library(searched.number);
      // A chained translation whose address gives no number ends after the first walk.
      const bool ends_early = given.status == FICON_RC_PLATFORM || given.status == FICON_RC_MULTI_IF;
      cases.push_back({std::string(translation.name) + ", " + searched.name, translation.library, translation.plain,
                       searched.number, searched.carried_by, translation.is_chained && !ends_early ? 2 : 1});
      require_like_answers(cases.back());
    }
  }
  return cases;
}
