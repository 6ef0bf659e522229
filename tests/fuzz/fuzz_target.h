// What every fuzz target has: the function that is called with an input, and what it tells.
//
// It ends the process when something is not as it should be; a build without a fuzzer calls it with the seeds.
#ifndef TESTS_FUZZ_FUZZ_TARGET_H
#define TESTS_FUZZ_FUZZ_TARGET_H

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace fuzz {

// Ends the process, with a line that tells why, unless what is promised holds.
void require(bool holds, const char* promise);

// Counts an input that got as far as it could. Seeds of which none does have lost their meaning.
void count_success();
unsigned successes();

} // namespace fuzz

#endif
