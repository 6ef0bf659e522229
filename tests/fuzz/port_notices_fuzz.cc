// The three notices.
#include <libchnsw.h>

#include "fuzz_input.h"

namespace {

using fuzz::require;

// The first used bytes of the record are the value's first, the others stay what they were.
template <typename record>
void check(fuzz::received& received, uint32_t (*parse)(msgq_message*, record*), uint16_t type, size_t used) {
  const auto place = fuzz::first_value(received, type);
  record notice;
  fuzz::make_untouched(notice);
  const uint32_t status = parse(received.message(), &notice);
  require(parse(received.message(), nullptr) == status, "a notice that is not wanted has the same status");
  if (!place) {
    require(status == fuzz::status_without_value(received), "no notice, no success");
    require(fuzz::is_untouched(notice), "a failure leaves the record alone");
    return;
  }
  require(status == 0, "a notice that is there is found");
  record expected;
  fuzz::make_untouched(expected);
  std::memcpy(static_cast<void*>(&expected), received.bytes() + place->offset, used);
  require(std::memcmp(&notice, &expected, sizeof notice) == 0, "the record is the value's first bytes and nothing else");
  fuzz::count_success();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<uint8_t> payload(data, data + size);
  if (!fuzz::prepare_array(payload)) return 0;
  fuzz::received received(payload);
  for (int times = 0; times < 2; ++times) {
    check(received, ficon_parse_vsan_state_change_payload, FICON_TLV_VSAN_STATE_CHANGE, 8);
    check(received, ficon_parse_updown_payload, FICON_TLV_UPDOWN, 6);
    check(received, ficon_parse_enable_payload, FICON_TLV_ENABLE, 5);
  }
  return 0;
}
