/* Event history and debug output: where a process leaves its reports and traces. */
#ifndef PLATFORM_EVTRC_H
#define PLATFORM_EVTRC_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __GNUC__
#pragma GCC visibility push(default)
#endif

/* Whether records of this subtype are kept in event history id. Returns 0 when they are; any other value: filtered. */
int evtrc_hist_event_subtype_check(uint32_t id, uint32_t subtype);

/* Appends length bytes at record to event history id. Returns 0 on success. */
int evtrc_hist_event(uint32_t id, uint32_t length, const void* record);

/* Whether debug output of a flag is switched on. a and b narrow the question (0 = not narrowed); level is the level of
 * the text. Returns non-zero when the text is to be printed. */
int evtrc_chk_int(int flag, int a, int b, int level);

/* Prints one text of a module to the debug output. zero is always 0. */
#ifdef __GNUC__
__attribute__((format(printf, 4, 5)))
#endif
void dbgout(int level, const char* module, int zero, const char* format, ...);

/* The name under which this process prints. */
extern const char evtrc_dbg_modname[];

#ifdef __GNUC__
#pragma GCC visibility pop
#endif

#ifdef __cplusplus
}
#endif

#endif
