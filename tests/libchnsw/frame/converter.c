/* A "libchar_convert.so" whose entry is the programmable platform's converter, in the process that loads it. */
#include <platform/char_convert.h>

int convert(const char* input, int32_t input_length, uint32_t mode, char** output, uint32_t* counter,
            uint32_t* output_space, uint32_t codepage);
int platform_convert(const char* input, int32_t input_length, uint32_t mode, char** output, uint32_t* counter,
                     uint32_t* output_space, uint32_t codepage);
void function_that_nobody_has(void);
void never_called(void);

int convert(const char* input, int32_t input_length, uint32_t mode, char** output, uint32_t* counter,
            uint32_t* output_space, uint32_t codepage) {
  return platform_convert(input, input_length, mode, output, counter, output_space, codepage);
}

/* An object with this in it can only be loaded lazily. */
void never_called(void) {
  function_that_nobody_has();
}
