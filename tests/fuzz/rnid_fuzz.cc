// RNID answers and notifications, and the conversion of node descriptors. An input: a byte that tells which outputs are
// wanted, a code page in four bytes, the first most significant, then the payload, whose first 32 bytes are also a
// descriptor to convert.
#include <algorithm>
#include <array>
#include <cstddef>

#include <libchnsw.h>

#include "fuzz_input.h"

namespace {

using fuzz::require;
using descriptor = std::array<uint8_t, FICON_RNID_DESCRIPTOR_BYTES>;

bool has_tables(uint32_t codepage) {
  constexpr uint32_t kPages[] = {FICON_CODEPAGE_ASCII, 37, 273, 275, 280, 281, 284, 285, 297, 500};
  return std::find(std::begin(kPages), std::end(kPages), codepage) != std::end(kPages);
}

// In a block of its own, so that a sanitizer sees what lies beyond.
descriptor converted(uint32_t codepage, const descriptor& sent) {
  const std::unique_ptr<descriptor> node(new descriptor(sent));
  const uint32_t status = ficon_format_rnid(codepage, node.get());
  require(status == (has_tables(codepage) ? 0 : FICON_RC_CONVERT), "known code pages are converted, others are not");
  if (status != 0) require(*node == sent, "what cannot be converted stays");
  require(std::equal(sent.begin(), sent.begin() + 4, node->begin()), "the flags are no text");
  require(std::equal(sent.begin() + 30, sent.end(), node->begin() + 30), "the tag is no text");
  return *node;
}

struct outputs {
  uint32_t if_index;
  uint32_t word8;
  uint32_t codepage;
  uint32_t format;
  uint32_t word24;
  uint16_t port;
  uint16_t none;
  descriptor node;
};

outputs expected_outputs(const fuzz::received& received, size_t offset, uint8_t wanted) {
  outputs expected;
  fuzz::make_untouched(expected);
  const auto record = received.at<ficon_rnid_rec>(offset);
  if (wanted & 1) expected.if_index = fuzz::from_wire(record.if_index);
  if (wanted & 2) expected.port = record.rnid_port;
  if (wanted & 4) expected.word8 = record.rnid_word8;
  if (wanted & 8) expected.codepage = record.codepage;
  if (wanted & 16) expected.format = record.rnid_format;
  if (wanted & 32) expected.word24 = record.rnid_word24;
  if (wanted & 64) {
    std::copy(std::begin(record.descriptor), std::end(record.descriptor), expected.node.begin());
    if (record.rnid_format == FICON_RNID_FORMAT_CONVERTED) expected.node = converted(record.codepage, expected.node);
  }
  return expected;
}

template <typename parser>
void check(fuzz::received& received, uint8_t wanted, parser parse) {
  outputs found;
  fuzz::make_untouched(found);
  const uint32_t status = parse(found);
  const auto place = fuzz::first_value(received, FICON_TLV_RNID);
  if (!place) {
    require(status == fuzz::status_without_value(received) && fuzz::is_untouched(found),
            "no answer, no success, no output");
    return;
  }
  require(status == received.at<ficon_rnid_rec>(place->offset).result, "the result is the answer's");
  const outputs expected = expected_outputs(received, place->offset, wanted);
  require(std::memcmp(&found, &expected, sizeof found) == 0, "the outputs that are wanted are the answer's fields");
  fuzz::count_success();
}

template <typename output>
output* wanted_output(output& place, int is_wanted) {
  return is_wanted != 0 ? &place : nullptr;
}

void check_answer(fuzz::received& received, uint8_t wanted) {
  check(received, wanted, [&](outputs& found) {
    return ficon_parse_get_rnid(received.message(), wanted_output(found.if_index, wanted & 1),
                                wanted_output(found.port, wanted & 2), wanted_output(found.word8, wanted & 4),
                                wanted_output(found.codepage, wanted & 8), wanted_output(found.format, wanted & 16),
                                wanted_output(found.word24, wanted & 32), wanted_output(found.node, wanted & 64));
  });
}

void check_notification(fuzz::received& received, uint8_t wanted) {
  wanted &= 0xF7; // there is no such output
  check(received, wanted, [&](outputs& found) {
    return ficon_parse_rnid_notification(received.message(), wanted_output(found.if_index, wanted & 1),
                                         wanted_output(found.port, wanted & 2), wanted_output(found.word8, wanted & 4),
                                         wanted_output(found.format, wanted & 16), wanted_output(found.word24, wanted & 32),
                                         wanted_output(found.node, wanted & 64));
  });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::input input(data, size);
  const uint8_t wanted = input.take_byte();
  const uint32_t codepage = input.take_word();
  auto payload = input.take_rest();
  if (!fuzz::prepare_array(payload)) return 0;

  descriptor node{};
  std::copy_n(payload.begin(), std::min(payload.size(), node.size()), node.begin());
  converted(codepage, node);

  fuzz::received received(payload);
  for (int times = 0; times < 2; ++times) {
    check_answer(received, wanted);
    check_notification(received, wanted);
  }
  return 0;
}
