// How the model tells trouble: event history, debug output, standard output.
#include "port_map_model.h"

namespace chnsw_test {

void port_map_model::log(uint32_t subtype, const text_maker& text) {
  if (services_.evtrc_hist_event_subtype_check(subtype) == 0) {
    services_.evtrc_hist_event(subtype, text().substr(0, 511));
  }
  if (services_.evtrc_chk_int(static_cast<int>(subtype)) != 0) services_.dbgout(text());
}

void port_map_model::log_error(const text_maker& text) {
  log(102, text);
  services_.printed += "FICON_ERR: " + text();
}

void port_map_model::log_debug(const std::string& text) {
  log(103, [&] { return text; });
}

void port_map_model::malloc_warning(int line, uint32_t size) {
  services_.printed += text_of("Warning! Malloc Failure in feature/ficon/libchnsw/KESTRL/libchnsw.cc[%d] for size %d\n",
                               line, as_signed(size));
}

} // namespace chnsw_test
