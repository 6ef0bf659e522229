// The services that parsers ask for. Any other is left out: a parser that asks for one ends the process.
#include "fuzz_input.h"

#include <arpa/inet.h>
#include <platform/evtrc.h>
#include <platform/if_index.h>
#include <platform/memacct.h>

#include <cstdlib>

#include <libchnsw.h>

#include "vswitch/tlv_array.h"

namespace {

bool refusing;

// Of the virtual switch's arrays.
constexpr size_t kSizeOffset = 4;
constexpr size_t kCountOffset = 8;
constexpr size_t kFirstValue = 12;
constexpr size_t kPrefix = 4;

} // namespace

void fuzz::refuse_allocations(bool refuse) {
  refusing = refuse;
}

// ---- input ----

uint8_t fuzz::input::take_byte() {
  if (size_ == 0) return 0;
  --size_;
  return *data_++;
}

uint32_t fuzz::input::take_word() {
  uint32_t word = 0;
  for (int n = 0; n < 4; ++n) word = word << 8 | take_byte();
  return word;
}

fuzz::received::received(std::vector<uint8_t> payload)
    : sent_(std::move(payload)), bytes_(new uint8_t[sent_.size() + MSGQ_SLACK]()) {
  if (!sent_.empty()) std::memcpy(bytes_.get(), sent_.data(), sent_.size());
  message_ = {sent_.empty() ? nullptr : bytes_.get(), static_cast<uint32_t>(sent_.size())};
}

fuzz::received::~received() {
  sent_.resize(sent_.size() + MSGQ_SLACK);
  require(std::memcmp(sent_.data(), bytes_.get(), sent_.size()) == 0, "no parser writes into a payload");
}

// ---- what a parser has to find ----

bool fuzz::prepare_array(std::vector<uint8_t>& payload) {
  if (!vswitch::tlv_services_stay_inside(payload.data(), static_cast<uint32_t>(payload.size()))) return false;
  uint32_t magic = 0;
  if (payload.size() >= kFirstValue) std::memcpy(&magic, payload.data(), sizeof magic);
  if (magic != vswitch::kTlvMagic) return true;
  uint16_t count = 0;
  std::memcpy(&count, payload.data() + kCountOffset, sizeof count);
  count &= 0xFF;
  std::memcpy(payload.data() + kCountOffset, &count, sizeof count);
  return true;
}

std::optional<fuzz::value_place> fuzz::first_value(const received& message, uint16_t type) {
  if (message.size() == 0 || message.at<uint32_t>(0) != vswitch::kTlvMagic) return std::nullopt;
  const size_t size = message.at<uint32_t>(kSizeOffset);
  size_t place = kFirstValue;
  for (unsigned left = message.at<uint16_t>(kCountOffset); left != 0 && place + kPrefix <= size; --left) {
    const value_place value = {place + kPrefix, message.at<uint16_t>(place + 2)};
    if (value.offset + value.length > size) return std::nullopt;
    if (message.at<uint16_t>(place) == type) return value;
    place = value.offset + (value.length + 3u) / 4 * 4;
  }
  return std::nullopt;
}

uint32_t fuzz::status_without_value(const received& message) {
  return message.size() == 0 ? FICON_RC_NO_PAYLOAD : FICON_RC_INVALID_ARG;
}

uint32_t fuzz::from_wire(uint32_t if_index) {
  return ntohl(if_index);
}

// ---- services ----

void* msgq_payload_get(msgq_message* message) {
  return message->payload;
}

uint32_t msgq_payload_size(msgq_message* message) {
  return message->size;
}

uint32_t hton_if_index(uint32_t if_index) {
  return htonl(if_index);
}

uint32_t ntoh_if_index(uint32_t if_index) {
  return ntohl(if_index);
}

int memacct_init(const char*, uint32_t, const char* const*, uint32_t) {
  return 0;
}

void* memacct_alloc(uint32_t, uint32_t, uint32_t size) {
  return refusing ? nullptr : std::malloc(size);
}

void memacct_uninit(uint32_t) {}

extern "C" const char evtrc_dbg_modname[] = "fuzz";
