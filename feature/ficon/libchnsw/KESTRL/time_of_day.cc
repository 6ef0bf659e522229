// Host time turned into TOD clock values, and TOD clock values into text.
#include <glib.h>
#include <sys/time.h>

#include <cstddef>
#include <cstdio>
#include <ctime>

#include <libchnsw.h>
#include <platform/elemdb.h>

static_assert(sizeof(ficon_host_time) == 8);
static_assert(offsetof(ficon_host_time, microseconds) == 4);
static_assert(sizeof(ficon_vsan_tstmp_rec) == 40);
static_assert(offsetof(ficon_vsan_tstmp_rec, ref_host_sec) == 12);
static_assert(offsetof(ficon_vsan_tstmp_rec, ref_host_usec) == 16);
static_assert(offsetof(ficon_vsan_tstmp_rec, ref_tod) == 24);

namespace {

constexpr uint64_t kTodEpochUsec = 2208988800000000; // 1900-01-01 to 1970-01-01
constexpr uint64_t kUsecPerSecond = 1000000;
constexpr uint64_t kSecondsPerDay = 86400;
constexpr unsigned kTodUsecShift = 12; // bit 51 of the TOD clock is a microsecond

constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr const char* kWeekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};

// The one text of the library, overwritten by every formatting call; callers get its address.
char formatted_text[50];

// One instant, split.
struct tod_fields {
  const char* weekday;
  const char* month;
  int day;
  int year;
  int hours;
  int minutes;
  int seconds;
  int microseconds;
};

// A day is counted from 1900-01-01.
void split_date(uint32_t day, tod_fields& fields) {
  GDate* date = g_date_new_dmy(1, G_DATE_JANUARY, 1900);
  std::tm broken_down = {};
  g_date_add_days(date, day);
  g_date_to_struct_tm(date, &broken_down);
  if (date != nullptr) g_date_free(date);
  fields.weekday = kWeekdays[broken_down.tm_wday];
  fields.month = kMonths[broken_down.tm_mon];
  fields.day = broken_down.tm_mday;
  fields.year = broken_down.tm_year + 1900;
}

tod_fields split(uint64_t tod) {
  const uint64_t microseconds = tod >> kTodUsecShift;
  const uint64_t seconds = microseconds / kUsecPerSecond;
  const int second_of_day = static_cast<int>(seconds % kSecondsPerDay);
  tod_fields fields = {};
  split_date(static_cast<uint32_t>(seconds / kSecondsPerDay), fields);
  fields.hours = second_of_day / 3600;
  fields.minutes = second_of_day % 3600 / 60;
  fields.seconds = second_of_day % 60;
  fields.microseconds = static_cast<int>(microseconds % kUsecPerSecond);
  return fields;
}

// Oddity: microseconds are not padded, 3 of them print as ".3". Clients that read the text expect it so.
void write_text(const tod_fields& at, int32_t format) {
  if (format == FICON_TOD_FMT_DAY_FIRST) {
    std::snprintf(formatted_text, sizeof formatted_text, "%3s %s %d %.2d:%.2d:%.2d.%d %d", at.weekday, at.month, at.day,
                  at.hours, at.minutes, at.seconds, at.microseconds, at.year);
  } else if (format == FICON_TOD_FMT_YEAR_FIRST) {
    std::snprintf(formatted_text, sizeof formatted_text, "%d %3s %s %d %.2d:%.2d:%.2d.%d", at.year, at.weekday, at.month,
                  at.day, at.hours, at.minutes, at.seconds, at.microseconds);
  }
}

uint64_t tod_without_reference(const ficon_host_time& now) {
  const uint64_t microseconds = static_cast<uint64_t>(int64_t{now.seconds}) * kUsecPerSecond +
                                static_cast<uint64_t>(int64_t{now.microseconds}) + kTodEpochUsec;
  return microseconds << kTodUsecShift;
}

// A difference in 32 bits, wrapping, widened with its sign.
uint64_t difference(int32_t later, int32_t earlier) {
  const uint32_t wrapped = static_cast<uint32_t>(later) - static_cast<uint32_t>(earlier);
  return static_cast<uint64_t>(int64_t{static_cast<int32_t>(wrapped)});
}

// Oddity: the microseconds are added unscaled, in units of 1/4096 microsecond. Clients' records were made so.
uint64_t tod_by_reference(const ficon_host_time& reference, uint64_t reference_tod, const ficon_host_time& now) {
  const uint64_t seconds = difference(now.seconds, reference.seconds);
  const uint64_t microseconds = difference(now.microseconds, reference.microseconds);
  return reference_tod + ((seconds * kUsecPerSecond) << kTodUsecShift) + microseconds;
}

uint64_t convert(const ficon_host_time& reference, uint64_t reference_tod, const ficon_host_time& now) {
  if (reference.seconds == 0 && reference.microseconds == 0) return tod_without_reference(now);
  return tod_by_reference(reference, reference_tod, now);
}

// A VSAN's reference. Returns 0 or FICON_RC_PLATFORM.
uint32_t read_reference(uint32_t vsan, ficon_host_time& reference, uint64_t& reference_tod) {
  ficon_vsan_tstmp_rec record = {};
  elemdb_request request = {1, FICON_ELEMDB_TABLE_TSTMP, sizeof vsan, &vsan, sizeof record, &record};
  if (elemdb_lookup_element(&request) != 0) return FICON_RC_PLATFORM;
  reference = {record.ref_host_sec, record.ref_host_usec};
  reference_tod = record.ref_tod;
  return 0;
}

} // namespace

// Oddity: with any other format the text stays what it was, and its address is handed out all the same.
void ficon_get_TOD_format(uint64_t tod, const char** text_out, int32_t format) {
  write_text(split(tod), format);
  if (text_out != nullptr) *text_out = formatted_text;
}

void ficon_get_TOD(uint64_t tod, const char** text_out) {
  ficon_get_TOD_format(tod, text_out, FICON_TOD_FMT_DAY_FIRST);
}

uint64_t ficon_cmi_compute_host_tstmp(const ficon_host_time* reference, uint64_t reference_tod) {
  const ficon_host_time read = *reference;
  timeval clock;
  if (gettimeofday(&clock, nullptr) != 0) return 0;
  const ficon_host_time now = {static_cast<int32_t>(clock.tv_sec), static_cast<int32_t>(clock.tv_usec)};
  return convert(read, reference_tod, now);
}

uint64_t ficon_cmi_compute_host_tstmp_given_time(const ficon_host_time* reference, uint64_t reference_tod,
                                                 const ficon_host_time* now) {
  return convert(*reference, reference_tod, *now);
}

uint32_t ficon_cmi_get_vsan_tstmp(uint32_t vsan, const char** text_out, int32_t format) {
  ficon_host_time reference;
  uint64_t reference_tod;
  const uint32_t status = read_reference(vsan, reference, reference_tod);
  if (status != 0) return status;
  ficon_get_TOD_format(ficon_cmi_compute_host_tstmp(&reference, reference_tod), text_out, format);
  return 0;
}

uint32_t ficon_cmi_get_vsan_tstmp_given_time(uint32_t vsan, const char** text_out, int32_t format,
                                             const ficon_host_time* now) {
  const ficon_host_time given = *now;
  ficon_host_time reference;
  uint64_t reference_tod;
  const uint32_t status = read_reference(vsan, reference, reference_tod);
  if (status != 0) return status;
  ficon_get_TOD_format(ficon_cmi_compute_host_tstmp_given_time(&reference, reference_tod, &given), text_out, format);
  return 0;
}
