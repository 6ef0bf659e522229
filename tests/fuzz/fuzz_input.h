// What the targets of parsers share: messages whose every byte is known, and the services that parsers ask for.
#ifndef TESTS_FUZZ_FUZZ_INPUT_H
#define TESTS_FUZZ_FUZZ_INPUT_H

#include <platform/msgq.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <vector>

#include "fuzz_target.h"

// Exactly the payload and the zeros that follow one, so that a sanitizer sees every byte beyond.
struct msgq_message {
  uint8_t* payload; // nullptr when there is none
  uint32_t size;
};

namespace fuzz {

// From now on the library's allocations are refused, or granted.
void refuse_allocations(bool refuse);

// Takes the input apart.
class input {
 public:
  input(const uint8_t* data, size_t size) : data_(data), size_(size) {}
  uint8_t take_byte();
  uint32_t take_word();
  std::vector<uint8_t> take_rest() const { return {data_, data_ + size_}; }

 private:
  const uint8_t* data_;
  size_t size_;
};

// A received message. Nothing but its parsers' outputs may have changed when it goes.
class received {
 public:
  explicit received(std::vector<uint8_t> payload);
  ~received();
  received(const received&) = delete;
  received& operator=(const received&) = delete;

  msgq_message* message() { return &message_; }
  const uint8_t* bytes() const { return bytes_.get(); }
  size_t size() const { return sent_.size(); }

  // Of the payload or of the zeros behind it.
  template <typename field>
  field at(size_t offset) const {
    require(offset + sizeof(field) <= sent_.size() + MSGQ_SLACK, "a target looks at the slack only");
    field value;
    std::memcpy(&value, bytes_.get() + offset, sizeof value);
    return value;
  }

 private:
  std::vector<uint8_t> sent_;
  std::unique_ptr<uint8_t[]> bytes_;
  msgq_message message_;
};

// A record of which no byte is what a parser would write. Filled and compared with its padding, so it is not to be copied.
template <typename record>
void make_untouched(record& place) {
  std::memset(static_cast<void*>(&place), 0xA5, sizeof place);
}
template <typename record>
bool is_untouched(const record& place) {
  record pattern;
  make_untouched(pattern);
  return std::memcmp(&place, &pattern, sizeof place) == 0;
}

// Whether the transport would hand a payload out, since the TLV services stay inside it. The number of values of an array
// is cut to a byte: walking on behind the last value tens of thousands of times takes long and tells nothing new.
bool prepare_array(std::vector<uint8_t>& payload);

// Where the first value of a type lies in a payload that is a TLV array, found by its layout and not by the services.
struct value_place {
  size_t offset;
  uint16_t length;
};
std::optional<value_place> first_value(const received& message, uint16_t type);

// What a TLV parser has to return for the message when it finds no value.
uint32_t status_without_value(const received& message);

// An interface index as it travels.
uint32_t from_wire(uint32_t if_index);

} // namespace fuzz

#endif
