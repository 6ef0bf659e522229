// VSAN install. The whole input is the payload, whose count is cut to what the payload and the zeros behind it hold: the
// library trusts its sender in that.
#include <cstddef>
#include <cstdlib>

#include <libchnsw.h>

#include "fuzz_input.h"

namespace {

using fuzz::require;

constexpr size_t kCountOffset = offsetof(ficon_vsan_install_msg, count);
constexpr size_t kIndexesOffset = sizeof(ficon_vsan_install_msg);

uint32_t count_of(const std::vector<uint8_t>& payload) {
  uint32_t count = 0;
  std::memcpy(&count, payload.data() + kCountOffset, sizeof count);
  return count;
}

void cut_count(std::vector<uint8_t>& payload) {
  const auto room = static_cast<uint32_t>((payload.size() + MSGQ_SLACK - kIndexesOffset) / sizeof(uint32_t));
  const uint32_t count = count_of(payload) % (room + 1);
  std::memcpy(payload.data() + kCountOffset, &count, sizeof count);
}

struct outputs {
  uint32_t count;
  uint32_t install_byte0;
  uint32_t* if_indexes;
  int32_t single_vsan;
  int32_t vsan;
  vsan_block vsans;
};

uint32_t parse(fuzz::received& received, outputs& found, uint32_t** if_indexes) {
  return ficon_parse_vsan_install(received.message(), &found.count, if_indexes, &found.install_byte0, &found.single_vsan,
                                  &found.vsan, &found.vsans);
}

// The VSAN when there is exactly one, bit by bit; -1 otherwise.
int32_t only_vsan(const vsan_block& vsans) {
  int32_t only = -1;
  for (int32_t vsan = 0; vsan < 4096; ++vsan) {
    if ((vsans.bitmap[vsan / 8] & (0x80 >> vsan % 8)) == 0) continue;
    if (only != -1) return -1;
    only = vsan;
  }
  return only;
}

void check_indexes(const fuzz::received& received, const outputs& found) {
  for (uint32_t n = 0; n < found.count; ++n) {
    require(found.if_indexes[n] == fuzz::from_wire(received.at<uint32_t>(kIndexesOffset + n * sizeof(uint32_t))),
            "the indexes are the message's");
  }
}

void check_message(fuzz::received& received) {
  outputs found;
  fuzz::make_untouched(found);
  require(parse(received, found, &found.if_indexes) == 0, "a message is parsed");
  require(found.count == received.at<uint32_t>(kCountOffset), "the count is the message's");
  require(found.install_byte0 == received.at<uint8_t>(0), "install_byte0 is the message's");
  const auto vsans = received.at<vsan_block>(offsetof(ficon_vsan_install_msg, vsans));
  require(std::memcmp(&found.vsans, &vsans, sizeof vsans) == 0, "the set is the message's");
  const int32_t only = only_vsan(vsans);
  require(found.single_vsan == (only == -1 ? 0 : 1), "one VSAN is told apart from none and several");
  require(found.vsan == (only == -1 ? 0 : only), "the one VSAN is the set's");
  check_indexes(received, found);
  std::free(found.if_indexes);
}

// Count and install_byte0 are written before anything is tested, nothing else is.
void require_first_outputs_only(const fuzz::received& received, const outputs& found) {
  outputs expected;
  fuzz::make_untouched(expected);
  expected.count = received.at<uint32_t>(kCountOffset);
  expected.install_byte0 = received.at<uint8_t>(0);
  expected.if_indexes = found.if_indexes;
  require(std::memcmp(&found, &expected, sizeof found) == 0, "a failure writes two outputs");
}

void check_failures(fuzz::received& received) {
  outputs found;
  fuzz::make_untouched(found);
  uint32_t* const untouched = found.if_indexes;
  require(parse(received, found, nullptr) == FICON_RC_INVALID_ARG, "the array's address is required");
  require(found.if_indexes == untouched, "what was not handed over stays");
  require_first_outputs_only(received, found);

  fuzz::refuse_allocations(true);
  fuzz::make_untouched(found);
  require(parse(received, found, &found.if_indexes) == FICON_RC_NO_MEMORY, "a refused allocation is told");
  require(found.if_indexes == nullptr, "a refused array is none");
  require_first_outputs_only(received, found);
  fuzz::refuse_allocations(false);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < kIndexesOffset) return 0; // the count must be in the payload to be cut
  std::vector<uint8_t> payload(data, data + size);
  cut_count(payload);
  fuzz::received received(std::move(payload));
  check_message(received);
  check_message(received);
  check_failures(received);
  fuzz::count_success();
  return 0;
}
