// How many calendar dates the library has made and not released. g_date_new_dmy() and g_date_free() of this process are defined
// here, and the library finds them before those of GLib, which do the work.
#ifndef TESTS_TIME_OF_DAY_DATE_WATCH_H
#define TESTS_TIME_OF_DAY_DATE_WATCH_H

namespace chnsw_test {

struct date_counts {
  int made = 0;
  int released = 0;
};

date_counts& the_dates();

} // namespace chnsw_test

#endif
