// Answers to questions: the port map entry of an interface, the enabled VSANs, the state of an interface in a VSAN. The
// first byte of an input tells which outputs are wanted, the others are the payload.
#include <cstddef>
#include <cstdlib>

#include <libchnsw.h>

#include "fuzz_input.h"

namespace {

using fuzz::require;

template <typename output>
output* wanted(output& place, bool is_wanted) {
  return is_wanted ? &place : nullptr;
}

void check_port_map(fuzz::received& received, uint8_t outputs) {
  struct {
    uint32_t if_index;
    uint16_t number_a;
    uint16_t number_b;
  } found, expected;
  fuzz::make_untouched(found);
  fuzz::make_untouched(expected);
  const uint32_t status = ficon_parse_get_portmap(received.message(), wanted(found.if_index, outputs & 1),
                                                  wanted(found.number_a, outputs & 2), wanted(found.number_b, outputs & 4));
  const auto place = fuzz::first_value(received, FICON_TLV_PORTMAP);
  uint32_t expected_status = fuzz::status_without_value(received);
  if (place) {
    const auto at = [&](size_t field) { return place->offset + field; };
    expected_status = received.at<uint32_t>(at(offsetof(ficon_portmap_req, result)));
    if (outputs & 1) {
      expected.if_index = fuzz::from_wire(received.at<uint32_t>(at(offsetof(ficon_portmap_req, if_index))));
    }
    if (outputs & 2) expected.number_a = received.at<uint16_t>(at(offsetof(ficon_portmap_req, number_a)));
    if (outputs & 4) expected.number_b = received.at<uint16_t>(at(offsetof(ficon_portmap_req, number_b)));
    fuzz::count_success();
  }
  require(status == expected_status, "the result is the answer's, or that there is none");
  require(std::memcmp(&found, &expected, sizeof found) == 0, "the outputs that are wanted are the answer's fields");
}

void check_refused_list(fuzz::received& received) {
  void* list = &received;
  fuzz::refuse_allocations(true);
  const uint32_t status = ficon_parse_get_enabled_vsans(received.message(), &list);
  fuzz::refuse_allocations(false);
  require(status == FICON_RC_NO_MEMORY && list == &received, "a refused allocation leaves the output alone");
}

void check_enabled_vsans(fuzz::received& received) {
  const auto place = fuzz::first_value(received, FICON_TLV_ENABLED_VSANS);
  void* list = &received;
  const uint32_t status = ficon_parse_get_enabled_vsans(received.message(), &list);
  require(ficon_parse_get_enabled_vsans(received.message(), nullptr) == status, "an unwanted list has the same status");
  if (!place) {
    require(status == fuzz::status_without_value(received) && list == &received, "no list, no success, no output");
    return;
  }
  require(status == 0, "a list that is there is found");
  require(std::memcmp(list, received.bytes() + place->offset, place->length) == 0, "the list is the value's bytes");
  std::free(list);
  check_refused_list(received);
  fuzz::count_success();
}

void check_if_vsan(fuzz::received& received) {
  ficon_ifvsan_query found;
  fuzz::make_untouched(found);
  const uint32_t status = ficon_parse_query_ifvsan(received.message(), &found);
  require(ficon_parse_query_ifvsan(received.message(), nullptr) == FICON_RC_INVALID_ARG, "the record is required");
  if (received.size() < sizeof found) {
    require(status == fuzz::status_without_value(received) && fuzz::is_untouched(found), "a short answer is none");
    return;
  }
  auto expected = received.at<ficon_ifvsan_query>(0);
  expected.if_index = fuzz::from_wire(expected.if_index);
  require(status == expected.result, "the result is the answer's");
  require(std::memcmp(&found, &expected, sizeof found) == 0, "the record is the answer");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::input input(data, size);
  const uint8_t outputs = input.take_byte();
  auto payload = input.take_rest();
  if (!fuzz::prepare_array(payload)) return 0;
  fuzz::received received(payload);
  for (int times = 0; times < 2; ++times) {
    check_port_map(received, outputs);
    check_enabled_vsans(received);
    check_if_vsan(received);
  }
  return 0;
}
