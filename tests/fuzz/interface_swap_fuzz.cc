// Requests of the swap steps. The first byte of an input tells which outputs are wanted, the others are the payload.
#include <cstddef>

#include <libchnsw.h>

#include "fuzz_input.h"

namespace {

using fuzz::require;

using plain_parser = uint32_t (*)(msgq_message*, uint32_t*, uint32_t*, uint32_t*);
using parser_with_vsans = uint32_t (*)(msgq_message*, uint32_t*, uint32_t*, uint32_t*, vsan_block*);

template <typename output>
output* wanted_output(output& place, int is_wanted) {
  return is_wanted != 0 ? &place : nullptr;
}

ficon_if_swap_req expected_outputs(const fuzz::received& received, int wanted) {
  ficon_if_swap_req expected;
  fuzz::make_untouched(expected);
  if (wanted & 1) expected.swap_word0 = received.at<uint32_t>(0);
  if (wanted & 2) expected.if_index_a = fuzz::from_wire(received.at<uint32_t>(4));
  if (wanted & 4) expected.if_index_b = fuzz::from_wire(received.at<uint32_t>(8));
  if (wanted & 8) expected.vsans = received.at<vsan_block>(12);
  return expected;
}

void require_outputs(const fuzz::received& received, int wanted, const ficon_if_swap_req& found) {
  const ficon_if_swap_req expected = expected_outputs(received, wanted);
  require(std::memcmp(&found, &expected, sizeof found) == 0, "the outputs that are wanted are the request's fields");
}

void check(fuzz::received& received, int wanted, plain_parser parse) {
  ficon_if_swap_req found;
  fuzz::make_untouched(found);
  require(parse(received.message(), wanted_output(found.swap_word0, wanted & 1),
                wanted_output(found.if_index_a, wanted & 2), wanted_output(found.if_index_b, wanted & 4)) == 0,
          "a parser always succeeds");
  require_outputs(received, wanted & 7, found);
}

void check(fuzz::received& received, int wanted, parser_with_vsans parse) {
  ficon_if_swap_req found;
  fuzz::make_untouched(found);
  require(
      parse(received.message(), wanted_output(found.swap_word0, wanted & 1), wanted_output(found.if_index_a, wanted & 2),
            wanted_output(found.if_index_b, wanted & 4), wanted_output(found.vsans, wanted & 8)) == 0,
      "a parser always succeeds");
  require_outputs(received, wanted, found);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::input input(data, size);
  int wanted = input.take_byte();
  fuzz::received received(input.take_rest());
  if (received.size() == 0) wanted = 0; // nothing may be wanted of a message without a payload
  for (plain_parser parse : {ficon_if_swap_chk_lock_parse, ficon_if_swap_do_swap_parse, ficon_if_swap_unlock_parse}) {
    check(received, wanted, parse);
  }
  for (parser_with_vsans parse : {ficon_if_swap_chk_lock_parse_with_vsan, ficon_if_swap_do_swap_parse_with_vsan,
                                  ficon_if_swap_unlock_parse_with_vsan}) {
    check(received, wanted, parse);
  }
  if (received.size() >= offsetof(ficon_if_swap_req, vsans)) fuzz::count_success();
  return 0;
}
