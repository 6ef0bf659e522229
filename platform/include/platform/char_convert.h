/* Character conversion: the shared object "libchar_convert.so", which is loaded at run time, and its entry "convert". */
#ifndef PLATFORM_CHAR_CONVERT_H
#define PLATFORM_CHAR_CONVERT_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What mode selects. */
enum {
  CHAR_CONVERT_TO_HOST = 0,  /* the switch's text into the host's code page */
  CHAR_CONVERT_FROM_HOST = 1 /* the host's code page into the switch's text, ISO 8859-1 */
};

/* The type of "convert". Each byte of the input becomes one of the output.
 * input, input_length: what to convert.
 * mode: CHAR_CONVERT_TO_HOST or CHAR_CONVERT_FROM_HOST.
 * output: in and out, where to write; moved behind what was written.
 * counter: in and out, grows by the bytes that were written.
 * output_space: in and out, the room at *output; shrinks by them.
 * codepage: EBCDIC code page of the host by its registered number (CCSID); 1 is ASCII.
 * Returns non-zero when all of it was converted, 0 when not. */
typedef int (*ficon_convert_fn)(const char* input, int32_t input_length, uint32_t mode, char** output, uint32_t* counter,
                                uint32_t* output_space, uint32_t codepage);

#ifdef __cplusplus
}
#endif

#endif
