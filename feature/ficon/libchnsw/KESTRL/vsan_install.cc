// VSAN install: writing the message and reading it.
#include <platform/if_index.h>

#include <bit>
#include <cerrno>
#include <cstdlib>

#include "message_framing.h"
#include "report.h"

using namespace chnsw;

static_assert(sizeof(vsan_block) == 516);
static_assert(offsetof(vsan_block, bytes) == 0);
static_assert(offsetof(vsan_block, bitmap) == 4);

static_assert(sizeof(ficon_vsan_install_msg) == 521);
static_assert(offsetof(ficon_vsan_install_msg, install_byte0) == 0);
static_assert(offsetof(ficon_vsan_install_msg, vsans) == 1);
static_assert(offsetof(ficon_vsan_install_msg, count) == 517);

namespace {

constexpr int kMessageLine = 713;
constexpr int kIndexesLine = 768;
constexpr size_t kBitmapOffset = offsetof(ficon_vsan_install_msg, vsans) + offsetof(vsan_block, bitmap);

size_t index_offset(uint32_t n) {
  return sizeof(ficon_vsan_install_msg) + size_t{n} * sizeof(uint32_t);
}

uint64_t indexes_size(uint32_t count) {
  return uint64_t{count} * sizeof(uint32_t);
}

// Oddity: a VSAN outside 0 to 4095 is not refused; its bit lands outside the bitmap.
void set_bit(char* message, int32_t vsan) {
  char* byte = message + kBitmapOffset + vsan / 8;
  *byte = static_cast<char>(*byte | 0x80 >> (vsan & 7));
}

uint32_t big_endian_word(const uint8_t* bytes) {
  return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

constexpr size_t kStep = 64;

bool step_is_empty(const uint8_t* bytes) {
  const auto word = [bytes](size_t n) { return load<uint64_t>(bytes, n * sizeof(uint64_t)); };
  return (word(0) | word(1) | word(2) | word(3) | word(4) | word(5) | word(6) | word(7)) == 0;
}

// The one VSAN of a set; -1 when there are none or several. Most of a set is empty, and passed in large steps.
int32_t only_vsan(const vsan_block& vsans) {
  int32_t found = -1;
  for (size_t step = 0; step < sizeof vsans.bitmap; step += kStep) {
    if (step_is_empty(vsans.bitmap + step)) continue;
    for (size_t offset = step; offset < step + kStep; offset += sizeof(uint32_t)) {
      const uint32_t bits = big_endian_word(vsans.bitmap + offset);
      if (bits == 0) continue;
      if (found != -1 || !std::has_single_bit(bits)) return -1;
      found = static_cast<int32_t>(offset * 8) + std::countl_zero(bits);
    }
  }
  return found;
}

} // namespace

// Oddity: the set is tested for NULL only when it is not read. Oddity: indexes go out through ntoh_if_index, as the manager
// expects them here. Oddity: a failed send gives errno, not the transport's error.
uint32_t ficon_send_vsan_install(msgq* handle, uint32_t count, const uint32_t* if_indexes, uint8_t install_byte0,
                                 int32_t single_vsan, int32_t vsan, const vsan_block* vsans) {
  if (if_indexes == nullptr) return FICON_RC_INVALID_ARG;
  if (single_vsan != 0 && vsans == nullptr) return FICON_RC_INVALID_ARG;

  const uint64_t size = sizeof(ficon_vsan_install_msg) + indexes_size(count);
  char* message = static_cast<char*>(allocate_tracked(LIBCHNSW_MEM_vsaninstall, size, kMessageLine));
  if (message == nullptr) return FICON_RC_NO_MEMORY;

  store<uint32_t>(message, offsetof(ficon_vsan_install_msg, vsans), FICON_VSAN_BITMAP_BYTES);
  if (single_vsan != 0) {
    std::memset(message + kBitmapOffset, 0, FICON_VSAN_BITMAP_BYTES);
    set_bit(message, vsan);
  } else {
    std::memcpy(message + kBitmapOffset, vsans->bitmap, sizeof vsans->bitmap);
  }
  store(message, offsetof(ficon_vsan_install_msg, count), count);
  store(message, offsetof(ficon_vsan_install_msg, install_byte0), install_byte0);
  for (uint32_t n = 0; n < count; ++n) store(message, index_offset(n), ntoh_if_index(if_indexes[n]));

  const int32_t sent = send_to_manager(handle, FICON_OP_VSAN_INSTALL, message, static_cast<uint32_t>(size), 0);
  const int why_not = errno; // before free() can change it
  std::free(message);
  return sent == -1 ? static_cast<uint32_t>(why_not) : 0;
}

// Oddity: neither the message nor its length is tested, and two outputs are written before the one test there is: the
// manager reads only what ficon_send_vsan_install wrote.
uint32_t ficon_parse_vsan_install(msgq_message* message, uint32_t* count, uint32_t** if_indexes, uint32_t* install_byte0,
                                  int32_t* single_vsan, int32_t* vsan, vsan_block* vsans) {
  const void* payload = msgq_payload_get(message);
  const uint32_t byte0 = load<uint8_t>(payload, offsetof(ficon_vsan_install_msg, install_byte0));
  const uint32_t indexes = load<uint32_t>(payload, offsetof(ficon_vsan_install_msg, count));
  *install_byte0 = byte0;
  *count = indexes;
  if (if_indexes == nullptr) return FICON_RC_INVALID_ARG;

  auto* array = static_cast<uint32_t*>(allocate_tracked(LIBCHNSW_MEM_ifindex, indexes_size(indexes), kIndexesLine));
  *if_indexes = array;
  if (array == nullptr) return FICON_RC_NO_MEMORY;
  for (uint32_t n = 0; n < indexes; ++n) array[n] = ntoh_if_index(load<uint32_t>(payload, index_offset(n)));

  std::memcpy(vsans, static_cast<const char*>(payload) + offsetof(ficon_vsan_install_msg, vsans), sizeof *vsans);
  *install_byte0 = byte0;
  const int32_t only = only_vsan(*vsans);
  *single_vsan = only == -1 ? 0 : 1;
  *vsan = only == -1 ? 0 : only;
  return 0;
}
