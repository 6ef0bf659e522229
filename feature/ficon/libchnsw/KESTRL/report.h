// How the library tells of trouble: error reports, debug traces and the warning of a refused allocation. Nothing else of
// the library knows how.
//
// Texts and line numbers are part of the contract: log parsers in the field match them. So a line number in a report is the
// constant that the field knows, not the line that the code happens to stand at; each stands beside its report.
#ifndef KESTRL_REPORT_H
#define KESTRL_REPORT_H

#include <cstdint>
#include <cstdio>
#include <cstring>

#include <libchnsw.h>
#include <platform/evtrc.h>

// Event history, when the subtype is kept there, and debug output, when its flag is on. A macro, and not a function,
// because each of the outputs evaluates the arguments afresh: a report that names errno shows what it was at that output.
#define FICON_LOG_RECORD(subtype_, ...)                                                      \
  do {                                                                                       \
    if (evtrc_hist_event_subtype_check(FICON_EVT_HIST_ID, subtype_) == 0) {                  \
      ficon_hist_record record_;                                                             \
      record_.subtype = subtype_;                                                            \
      std::snprintf(record_.text, sizeof record_.text, __VA_ARGS__);                         \
      /* what stands behind the text's end is not told */                                    \
      evtrc_hist_event(FICON_EVT_HIST_ID, chnsw::hist_record_length(record_), &record_);     \
    }                                                                                        \
    if (evtrc_chk_int(subtype_, 0, 0, 1) != 0) dbgout(1, evtrc_dbg_modname, 0, __VA_ARGS__); \
  } while (0)

// A debug trace. It never reaches standard output.
#define ficon_log_debug(...) FICON_LOG_RECORD(FICON_EVT_DEBUG, __VA_ARGS__)

// An error report. Oddity: its third output is a line on standard output, not on standard error; clients collect it there.
#define ficon_log_error(...)                         \
  do {                                               \
    FICON_LOG_RECORD(FICON_EVT_ERROR, __VA_ARGS__);  \
    std::fprintf(stdout, "FICON_ERR: " __VA_ARGS__); \
  } while (0)

namespace chnsw {

inline uint32_t hist_record_length(const ficon_hist_record& record) {
  return static_cast<uint32_t>(sizeof record.subtype + std::strlen(record.text) + 1);
}

// The path that the warning names, whatever file the allocation stands in today.
inline constexpr char kSourcePath[] = "feature/ficon/libchnsw/KESTRL/libchnsw.cc";

// Allocates size bytes under one of the library's memory types, to be released with free(). A refused allocation, or a size
// that the accounting cannot express, gives nullptr after the warning with its line.
void* allocate_tracked(uint32_t memory_type, uint64_t size, int line);

} // namespace chnsw

#endif
