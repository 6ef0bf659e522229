// libchar_convert.so: text of mainframe hosts, over the C library's iconv. A page's two tables are filled when it is first
// asked for; from then on a byte is one look-up.
#include <platform/char_convert.h>

#include <iconv.h>
#include <pthread.h>

#include <atomic>
#include <cstddef>
#include <cstring>

#include "vswitch/code_pages.h"

using namespace vswitch;

namespace {

constexpr uint8_t kHostSubstitute = 0x3F;   // SUB of EBCDIC
constexpr uint8_t kSwitchSubstitute = 0x1A; // SUB of ISO 8859-1
constexpr size_t kModes = 2;

using byte_table = uint8_t[256];
byte_table tables[kCodePages.size()][kModes];
std::atomic<bool>
    is_filled[kCodePages.size()]; // apart from the tables, so that the search for a page reads few cache lines

pthread_mutex_t filling = PTHREAD_MUTEX_INITIALIZER;

// Byte by byte, so that one which the other side lacks leaves the others alone.
bool fill(byte_table& table, const char* to, const char* from, uint8_t substitute) {
  const iconv_t converter = iconv_open(to, from);
  if (converter == reinterpret_cast<iconv_t>(-1)) return false; // NOLINT(performance-no-int-to-ptr): what iconv says
  for (unsigned byte = 0; byte < sizeof table; ++byte) {
    char source = static_cast<char>(byte);
    char converted = 0;
    char* input = &source;
    char* output = &converted;
    size_t input_left = 1;
    size_t output_left = 1;
    const size_t irreversible = iconv(converter, &input, &input_left, &output, &output_left);
    table[byte] = irreversible == 0 && output_left == 0 ? static_cast<uint8_t>(converted) : substitute;
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
  }
  iconv_close(converter);
  return true;
}

[[gnu::noinline]] bool fill(size_t place) {
  const code_page& page = kCodePages[place];
  pthread_mutex_lock(&filling);
  const bool filled = is_filled[place].load(std::memory_order_relaxed) ||
                      (fill(tables[place][CHAR_CONVERT_TO_HOST], page.iconv_name, kSwitchText, kHostSubstitute) &&
                       fill(tables[place][CHAR_CONVERT_FROM_HOST], kSwitchText, page.iconv_name, kSwitchSubstitute));
  is_filled[place].store(filled, std::memory_order_release);
  pthread_mutex_unlock(&filling);
  return filled;
}

// Where the page lies that was asked for last: nearly all callers ask for the one page of their host.
std::atomic<size_t> last_place;

bool is_at(size_t place, uint32_t codepage) {
  return kCodePages[place].number == codepage && is_filled[place].load(std::memory_order_acquire);
}

// Bytes go out in words: who reads them in words next would have to wait for single bytes.
inline void look_up(const byte_table& table, const char* input, size_t length, char* output) {
  const auto converted = [&table, input](size_t n) { return table[static_cast<uint8_t>(input[n])]; };
  size_t n = 0;
  for (; n + 4 <= length; n += 4) {
    const uint8_t word[] = {converted(n), converted(n + 1), converted(n + 2), converted(n + 3)};
    std::memcpy(output + n, word, sizeof word);
  }
  for (; n < length; ++n) output[n] = static_cast<char>(converted(n));
}

// "convert" for the page at a place.
inline int convert_at(size_t place, const char* input, int32_t input_length, uint32_t mode, char** output,
                      uint32_t* counter, uint32_t* output_space) {
  if (input == nullptr || output == nullptr || *output == nullptr || counter == nullptr || output_space == nullptr)
    return 0;
  const auto length = static_cast<uint32_t>(input_length);
  if (input_length < 0 || mode >= kModes || length > *output_space) return 0;
  look_up(tables[place][mode], input, length, *output);
  *output += length;
  *counter += length;
  *output_space -= length;
  return 1;
}

// Apart, so that the way of nearly all callers is short.
[[gnu::noinline]] int convert_by_another_page(const char* input, int32_t input_length, uint32_t mode, char** output,
                                              uint32_t* counter, uint32_t* output_space, uint32_t codepage) {
  for (size_t place = 0; place < kCodePages.size(); ++place) {
    if (kCodePages[place].number != codepage) continue;
    if (!is_at(place, codepage) && !fill(place)) return 0; // this machine's iconv does not know it
    last_place.store(place, std::memory_order_relaxed);
    return convert_at(place, input, input_length, mode, output, counter, output_space);
  }
  return 0;
}

} // namespace

extern "C" __attribute__((visibility("default"))) int convert(const char* input, int32_t input_length, uint32_t mode,
                                                              char** output, uint32_t* counter, uint32_t* output_space,
                                                              uint32_t codepage) {
  const size_t place = last_place.load(std::memory_order_relaxed);
  return is_at(place, codepage)
             ? convert_at(place, input, input_length, mode, output, counter, output_space)
             : convert_by_another_page(input, input_length, mode, output, counter, output_space, codepage);
}
