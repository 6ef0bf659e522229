// The port map beside its model: a switch, its changes and calls, in steps of 16 bytes (port_map_comparison.h).
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "fuzz_target.h"
#include "port_map_comparison.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::vector<uint8_t> bytes(data, data + size);
  chnsw_test::compared what;
  if (!chnsw_test::compare_port_map(bytes, &what).empty()) {
    std::fputs(chnsw_test::compare_port_map(chnsw_test::shrunk(bytes)).c_str(), stderr);
    fuzz::require(false, "the library does what its model does");
  }
  if (what.calls != 0) fuzz::count_success();
  return 0;
}
