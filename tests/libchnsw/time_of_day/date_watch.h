// How many calendar dates the library has made and released, and one that it does not get. g_date_new_dmy() and g_date_free()
// of this process are defined here, and the library finds them before those of GLib, which do the work.
#ifndef TESTS_TIME_OF_DAY_DATE_WATCH_H
#define TESTS_TIME_OF_DAY_DATE_WATCH_H

namespace chnsw_test {

struct date_counts {
  int made = 0;
  int released = 0;
  bool refuse_next = false;
};

date_counts& the_dates();

} // namespace chnsw_test

#endif
