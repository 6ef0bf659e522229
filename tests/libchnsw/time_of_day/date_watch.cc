#include "date_watch.h"

#include <dlfcn.h>

#include <cstdint>
#include <utility>

namespace chnsw_test {

date_counts& the_dates() {
  static date_counts counts;
  return counts;
}

} // namespace chnsw_test

extern "C" {

struct _GDate;

_GDate* g_date_new_dmy(uint8_t day, int month, uint16_t year) {
  if (std::exchange(chnsw_test::the_dates().refuse_next, false)) return nullptr;
  ++chnsw_test::the_dates().made;
  static const auto of_glib = reinterpret_cast<_GDate* (*)(uint8_t, int, uint16_t)>(dlsym(RTLD_NEXT, "g_date_new_dmy"));
  return of_glib(day, month, year);
}

void g_date_free(_GDate* date) {
  ++chnsw_test::the_dates().released;
  static const auto of_glib = reinterpret_cast<void (*)(_GDate*)>(dlsym(RTLD_NEXT, "g_date_free"));
  of_glib(date);
}
}
