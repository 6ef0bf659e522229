// The virtual switch's TLV arrays: whatever a payload holds, its values lie inside it and the walk comes to an end; and a
// value that is added is found behind all others. The first byte of an input is the length of that value, the others are
// the payload.
#include "vswitch/tlv_array.h"

#include <platform/tlv_aligned_array.h>

#include <algorithm>

#include "fuzz_input.h"

namespace {

using fuzz::require;

struct value {
  uint16_t type;
  std::vector<uint8_t> bytes;
  bool operator==(const value&) const = default;
};

struct walk {
  std::vector<value> values;
  uint32_t end = vswitch::kTlvHeaderBytes; // where it came to
  bool operator==(const walk&) const = default;
};

walk walk_over(const uint8_t* array, size_t size) {
  walk walked;
  uint16_t type = 0;
  uint16_t length = 0;
  void* place = nullptr;
  uint32_t cursor = 0;
  while (tlv_aligned_array_get_next_tlv(array, &type, &length, &place, 1, &cursor) == 0) {
    require(cursor > walked.end, "the cursor moves on");
    walked.end = cursor;
    const auto* bytes = static_cast<const uint8_t*>(place);
    require(bytes >= array && length <= size && bytes <= array + size - length, "a value lies inside its array");
    walked.values.push_back({type, {bytes, bytes + length}});
  }
  return walked;
}

void check_walk(const fuzz::received& received) {
  const uint8_t* array = received.bytes();
  const uint32_t size = tlv_aligned_array_size_get(array, 1);
  require(size <= received.size(), "an array is inside its payload");
  const int count = tlv_aligned_array_get_num_tlvs(array, 1);
  const walk walked = walk_over(array, received.size());
  require(walk_over(array, received.size()) == walked, "a second walk finds the same");
  require(size != 0 || (walked.values.empty() && count == 0), "what is no array has no values");
  if (size != 0 && walked.end == size && walked.values.size() == static_cast<size_t>(count)) fuzz::count_success();
}

// Into a block of exactly the capacity.
void check_adding(const fuzz::received& received, uint8_t length, size_t room) {
  const size_t capacity = received.size() + room;
  const std::unique_ptr<uint8_t[]> array(new uint8_t[capacity]());
  std::copy_n(received.bytes(), received.size(), array.get());
  const std::vector<uint8_t> before(array.get(), array.get() + capacity);
  const uint32_t size = tlv_aligned_array_size_get(received.bytes(), 1);
  const value added = {7, std::vector<uint8_t>(length, 0x5A)};

  const int status =
      tlv_aligned_array_add_tlv(array.get(), static_cast<uint32_t>(capacity), added.type, length, added.bytes.data(), 1);
  if (status != 0) {
    require(std::equal(before.begin(), before.end(), array.get()), "what cannot be added leaves the array alone");
    return;
  }
  const uint32_t grown = tlv_aligned_array_size_get(array.get(), 1);
  require(grown <= capacity && grown >= size + 4 + length, "an array grows by what was added");
  walk walked = walk_over(received.bytes(), received.size());
  const walk now = walk_over(array.get(), capacity);
  if (size != 0 && walked.end != size) return; // what comes behind damage is not found
  walked.values.push_back(added);
  require(now.values == walked.values && now.end == grown, "a value that was added is the last");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::input input(data, size);
  const uint8_t length = input.take_byte();
  const auto payload = input.take_rest();
  if (!vswitch::tlv_services_stay_inside(payload.data(), static_cast<uint32_t>(payload.size()))) return 0;
  const fuzz::received received(payload);
  check_walk(received);
  if (payload.size() >= vswitch::kTlvHeaderBytes) {
    check_adding(received, length, 4u + (length + 3u) / 4 * 4);
    check_adding(received, length, 3u + (length + 3u) / 4 * 4);
    check_adding(received, length, 300);
  }
  return 0;
}
