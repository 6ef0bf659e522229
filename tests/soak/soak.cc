// library_soak CALLS: makes that many calls of every operation, with valid and invalid input, and fails when memory in use
// grows. Run by scripts/soak, which sees to a C library that counts what is in use exactly.
#include <libchnsw.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "port_map_comparison.h"
#include "programmable_platform.h"

namespace {

using chnsw_test::the_platform;

// ---- what the platform granted and nobody has released ----

// A plain array, since free() runs before constructors and after destructors. What does not fit is leaked anyway.
const void* outstanding[4096];
size_t outstanding_count;

void grant(const void* address) {
  if (outstanding_count < std::size(outstanding)) outstanding[outstanding_count++] = address;
}

void release(const void* address) {
  const void** const end = outstanding + outstanding_count;
  const void** const found = std::find(outstanding, end, address);
  if (found == end) return;
  *found = end[-1];
  --outstanding_count;
}

} // namespace

extern "C" {

void __libc_free(void* address);

void free(void* address) noexcept {
  if (address != nullptr && outstanding_count != 0) release(address);
  __libc_free(address);
}

} // extern "C"

namespace {

// ---- input ----

class input {
 public:
  explicit input(uint64_t seed) : numbers_(seed) {}

  uint32_t below(uint32_t bound) { return static_cast<uint32_t>(numbers_() >> 16) % bound; }
  bool one_in(uint32_t times) { return below(times) == 0; }
  uint32_t word() { return static_cast<uint32_t>(numbers_()); }
  uint64_t long_word() { return numbers_(); }
  uint16_t half_word() { return static_cast<uint16_t>(numbers_()); }
  std::vector<uint8_t> bytes(size_t count) {
    std::vector<uint8_t> made(count);
    for (uint8_t& byte : made) byte = static_cast<uint8_t>(numbers_() >> 24);
    return made;
  }
  template <class Value, size_t kCount>
  Value one_of(const Value (&values)[kCount]) {
    return values[below(kCount)];
  }

 private:
  std::mt19937_64 numbers_;
};

constexpr uint32_t kCodePages[] = {FICON_CODEPAGE_ASCII, 37, 273, 275, 280, 281, 284, 285, 297, 500, 0, 38, 65535};

// Makes calls, and forgets what the platform wrote down of each.
class caller {
 public:
  explicit caller(uint64_t seed) : input_(seed) {}

  uint64_t round();

 private:
  template <class Operation, class... Arguments>
  auto call(Operation* operation, Arguments... arguments) {
    ++calls_;
    const auto result = operation(arguments...);
    the_platform().forget_calls();
    return result;
  }
  template <class... Parameters, class... Arguments>
  void call(void (*operation)(Parameters...), Arguments... arguments) {
    ++calls_;
    operation(arguments...);
    the_platform().forget_calls();
  }
  template <class Value>
  Value* perhaps(Value& place) {
    return input_.one_in(8) ? nullptr : &place;
  }

  void port_map();
  void frame();
  void code_pages();
  void time_of_day();
  void disturb_messages();
  msgq_message values_of(uint16_t type, size_t size);
  msgq_message flat(size_t size);
  void notices();
  void queries();
  void rnid();
  void swap();
  void install();

  input input_;
  uint64_t calls_ = 0;
};

uint64_t caller::round() {
  calls_ = 0;
  port_map();
  for (int times = 0; times < 4; ++times) {
    the_platform().reset();
    frame();
    code_pages();
    time_of_day();
    disturb_messages();
    notices();
    queries();
    rnid();
    swap();
    install();
  }
  the_platform().reset();
  std::free(libchnsw_pinfo);
  libchnsw_pinfo = nullptr;
  return calls_;
}

// All operations of the port map; that it does what it should is seen to in passing.
void caller::port_map() {
  const auto bytes = chnsw_test::bytes_of_seed(input_.long_word(), 160);
  chnsw_test::compared what;
  if (!chnsw_test::compare_port_map(bytes, &what).empty()) {
    throw std::runtime_error("the library does not do what its model does\n" +
                             chnsw_test::compare_port_map(chnsw_test::shrunk(bytes)));
  }
  calls_ += what.calls;
}

void caller::frame() {
  constexpr const char* kNames[] = {"LIBCHNSW_MEM_pnif", "libchnsw_mem_PAPN", "LIBCHNSW_MEM_TYPES_MAX", "", "other"};
  call(__libchnsw_mem_type_t_find, static_cast<int32_t>(input_.below(10)) - 2);
  call(__libchnsw_mem_type_t_str2enum, input_.one_of(kNames));
  if (input_.one_in(4)) the_platform().refuse_type(LIBCHNSW_MEM_portpn);
  if (input_.one_in(4)) the_platform().info_answer = {-1, 5};
  ficon_platform_info info;
  call(ficon_get_platform_info, &info);
  the_platform().reset();
}

void caller::code_pages() {
  convert_fnptr = input_.one_in(64) ? nullptr : platform_convert;
  call(ficon_get_convert_fn_ptr);
  call(ficon_get_codepage_name, input_.one_of(kCodePages));
  the_platform().convert_result = input_.one_in(4) ? 0 : 1;
  auto text = input_.bytes(128);
  const auto length = static_cast<int32_t>(input_.below(110)) - 4;
  call(convert_codepage, input_.below(3), input_.one_of(kCodePages), reinterpret_cast<char*>(text.data()), length);
  auto descriptor = input_.bytes(FICON_RNID_DESCRIPTOR_BYTES);
  call(ficon_format_rnid, input_.one_of(kCodePages), static_cast<void*>(descriptor.data()));
}

void caller::time_of_day() {
  const uint32_t vsan = input_.below(4);
  if (!input_.one_in(4))
    the_platform().set_element(FICON_ELEMDB_TABLE_TSTMP, vsan, input_.bytes(input_.below(2) * 20 + 20));
  const char* text = nullptr;
  const char** const out = perhaps(text);
  const auto format = static_cast<int32_t>(input_.below(4)) - 1;
  const ficon_host_time reference = {static_cast<int32_t>(input_.word()), static_cast<int32_t>(input_.below(1000000))};
  const ficon_host_time now = {static_cast<int32_t>(input_.word()), static_cast<int32_t>(input_.below(1000000))};
  call(ficon_get_TOD_format, input_.long_word(), out, format);
  call(ficon_get_TOD, input_.long_word(), out);
  call(ficon_cmi_compute_host_tstmp, &reference, input_.long_word());
  call(ficon_cmi_compute_host_tstmp_given_time, &reference, input_.long_word(), &now);
  call(ficon_cmi_get_vsan_tstmp, vsan, out, format);
  call(ficon_cmi_get_vsan_tstmp_given_time, vsan, out, format, &now);
}

// ---- messages ----

void caller::disturb_messages() {
  if (input_.one_in(4)) the_platform().send_answer = {-1, 11};
  if (input_.one_in(8)) the_platform().tlv_add_status = 28;
  if (input_.one_in(8)) the_platform().refuse_type(input_.one_in(2) ? LIBCHNSW_MEM_vsaninstall : LIBCHNSW_MEM_ifindex);
  if (input_.one_in(8)) the_platform().refuse_type(LIBCHNSW_MEM_vsanlist);
}

// A payload of some values, of which one is of the type unless chance will not have it, and as long as it should be or not.
msgq_message caller::values_of(uint16_t type, size_t size) {
  if (input_.one_in(16)) return msgq_message::without_payload();
  std::vector<chnsw_test::tlv> values;
  for (uint32_t count = input_.below(4); count != 0; --count) {
    constexpr uint16_t kTypes[] = {FICON_TLV_ENABLE,
                                   FICON_TLV_PORTMAP,
                                   FICON_TLV_UPDOWN,
                                   FICON_TLV_RNID,
                                   FICON_TLV_ENABLED_VSANS,
                                   FICON_TLV_VSAN_STATE_CHANGE,
                                   0,
                                   77};
    values.push_back({input_.one_of(kTypes), input_.bytes(input_.below(140))});
  }
  if (!input_.one_in(8)) values.push_back({type, input_.bytes(input_.one_in(4) ? input_.below(140) : size)});
  return msgq_message(chnsw_test::tlv_array(values), input_.below(4));
}

msgq_message caller::flat(size_t size) {
  return msgq_message(input_.bytes(input_.one_in(4) ? input_.below(600) : size), input_.below(4));
}

void caller::notices() {
  ficon_vsan_state_change change;
  msgq_message changed = values_of(FICON_TLV_VSAN_STATE_CHANGE, sizeof change);
  call(ficon_parse_vsan_state_change_payload, perhaps(changed), perhaps(change));
  ficon_updown_notice updown;
  msgq_message up_or_down = values_of(FICON_TLV_UPDOWN, 6);
  call(ficon_parse_updown_payload, perhaps(up_or_down), perhaps(updown));
  ficon_enable_notice enable;
  msgq_message enabled = values_of(FICON_TLV_ENABLE, 5);
  call(ficon_parse_enable_payload, perhaps(enabled), perhaps(enable));
}

msgq* some_handle() {
  static char place;
  return reinterpret_cast<msgq*>(&place);
}

void caller::queries() {
  ficon_cmi_hdr header;
  call(ficon_init_cmi_hdr, perhaps(header), input_.word(), "a client", input_.one_in(4) ? nullptr : "a question", 18u);
  call(ficon_send_get_portmap_nonblock, input_.one_in(8) ? nullptr : some_handle(), "a client", "a question", input_.word(),
       static_cast<uint8_t>(input_.below(3)), input_.word(), input_.half_word(), input_.half_word(), uintptr_t{5});
  uint32_t if_index;
  uint16_t number_a;
  uint16_t number_b;
  msgq_message entry = values_of(FICON_TLV_PORTMAP, sizeof(ficon_portmap_req));
  call(ficon_parse_get_portmap, perhaps(entry), perhaps(if_index), perhaps(number_a), perhaps(number_b));

  call(ficon_send_get_enabled_vsans, some_handle(), uintptr_t{6});
  void* list = nullptr;
  msgq_message vsans = values_of(FICON_TLV_ENABLED_VSANS, sizeof(vsan_block));
  call(ficon_parse_get_enabled_vsans, perhaps(vsans), perhaps(list));
  std::free(list);

  ficon_ifvsan_query query = {0, 0, input_.word(), input_.word(), input_.word()};
  const ficon_ifvsan_query& asked = query;
  call(ficon_send_query_ifvsan_state, some_handle(), perhaps(asked), uintptr_t{7});
  msgq_message state = flat(sizeof query);
  call(ficon_parse_query_ifvsan, perhaps(state), perhaps(query));
}

void caller::rnid() {
  call(ficon_send_get_rnid_nonblock, input_.one_in(8) ? nullptr : some_handle(), input_.word(), input_.half_word(),
       input_.word(), input_.below(4), input_.word(), uintptr_t{8});
  uint32_t if_index;
  uint16_t port;
  uint32_t word8;
  uint32_t codepage;
  uint32_t format;
  uint32_t word24;
  std::array<uint8_t, FICON_RNID_DESCRIPTOR_BYTES> descriptor;
  auto* const wanted = input_.one_in(8) ? nullptr : static_cast<void*>(descriptor.data());
  msgq_message answer = values_of(FICON_TLV_RNID, sizeof(ficon_rnid_rec));
  call(ficon_parse_get_rnid, perhaps(answer), perhaps(if_index), perhaps(port), perhaps(word8), perhaps(codepage),
       perhaps(format), perhaps(word24), wanted);
  call(ficon_parse_rnid_notification, perhaps(answer), perhaps(if_index), perhaps(port), perhaps(word8), perhaps(format),
       perhaps(word24), wanted);
}

void caller::swap() {
  uint32_t word0;
  uint32_t a;
  uint32_t b;
  vsan_block vsans;
  msgq_message request = flat(input_.one_in(2) ? 12 : sizeof(ficon_if_swap_req));
  for (const auto parse : {ficon_if_swap_chk_lock_parse, ficon_if_swap_do_swap_parse, ficon_if_swap_unlock_parse}) {
    call(parse, &request, perhaps(word0), perhaps(a), perhaps(b));
  }
  for (const auto parse : {ficon_if_swap_chk_lock_parse_with_vsan, ficon_if_swap_do_swap_parse_with_vsan,
                           ficon_if_swap_unlock_parse_with_vsan}) {
    call(parse, &request, perhaps(word0), perhaps(a), perhaps(b), perhaps(vsans));
  }
  for (const auto respond :
       {ficon_if_swap_chk_lock_send_resp, ficon_if_swap_do_swap_send_resp, ficon_if_swap_unlock_send_resp}) {
    call(respond, some_handle(), &request, input_.word(), input_.word(), input_.word(), input_.below(3));
  }
  const ficon_if_swap_resp response = {};
  call(ficon_if_swap_chk_lock_send_resp_with_reasoncode, some_handle(), &request, &response);
}

void caller::install() {
  const std::vector<uint32_t> if_indexes(input_.below(64) + 1, input_.word());
  vsan_block vsans = {FICON_VSAN_BITMAP_BYTES, {}};
  for (uint32_t count = input_.below(4); count != 0; --count) vsans.bitmap[input_.below(512)] = 0x80 >> input_.below(8);
  const auto single_vsan = static_cast<int32_t>(input_.below(2));
  const vsan_block& set = vsans;
  call(ficon_send_vsan_install, some_handle(), static_cast<uint32_t>(if_indexes.size()),
       input_.one_in(8) ? nullptr : if_indexes.data(), static_cast<uint8_t>(input_.below(3)), single_vsan,
       static_cast<int32_t>(input_.below(4096)), single_vsan != 0 ? perhaps(set) : &set);

  // As it was sent, or with a count that reaches into the zeros behind it.
  const auto in_message = static_cast<uint32_t>(if_indexes.size() + (input_.one_in(4) ? input_.below(200) : 0));
  std::vector<uint8_t> payload(sizeof(ficon_vsan_install_msg) + if_indexes.size() * sizeof if_indexes[0]);
  payload[0] = 1;
  std::memcpy(payload.data() + 1, &vsans, sizeof vsans);
  std::memcpy(payload.data() + 1 + sizeof vsans, &in_message, sizeof in_message);
  msgq_message message(payload, input_.below(4));
  uint32_t count = 0;
  uint32_t* found = nullptr;
  uint32_t byte0;
  int32_t single;
  int32_t vsan;
  vsan_block installed;
  call(ficon_parse_vsan_install, &message, &count, perhaps(found), &byte0, &single, &vsan, &installed);
  std::free(found);
}

// ---- the soak ----

// What is there once and for all: a buffer of standard output, and what the converter remembers of each code page.
void warm_up() {
  fputs("warm", stdout);
  convert_fnptr = nullptr;
  for (const uint32_t page : kCodePages) {
    for (const uint32_t mode : {CHAR_CONVERT_TO_HOST, CHAR_CONVERT_FROM_HOST}) {
      char text[] = "text";
      convert_codepage(mode, page, text, 4);
    }
  }
}

struct memory_in_use {
  size_t heap;    // bytes
  size_t granted; // allocations of the platform
};

memory_in_use in_use() {
  return {mallinfo2().uordblks, outstanding_count};
}

int soak(uint64_t wanted) {
  constexpr uint64_t kSeed = 1;
  FILE* const terminal = stdout;
  FILE* const nowhere = fopen("/dev/null", "w");
  if (nowhere == nullptr) throw std::runtime_error("cannot open /dev/null");
  stdout = nowhere; // for what the library prints
  chnsw_test::watch_allocations(grant);

  caller rounds(kSeed);
  uint64_t made = 0;
  warm_up();
  while (made < std::max<uint64_t>(wanted / 100, 2000)) made += rounds.round();
  fprintf(terminal, "seed %llu\n", static_cast<unsigned long long>(kSeed)); // and terminal gets its buffer
  const memory_in_use warm = in_use();
  const auto tell = [&](const memory_in_use& memory) {
    fprintf(terminal, "%12llu calls  %9zu bytes in use  %zu allocations of the platform",
            static_cast<unsigned long long>(made), memory.heap, memory.granted);
  };
  tell(warm);
  fputs("  (warm)\n", terminal);

  bool grew = warm.granted != 0;
  const auto begin = std::chrono::steady_clock::now();
  const uint64_t made_before = made;
  for (uint64_t tenth = 1; tenth <= 10; ++tenth) {
    while (made < made_before + wanted * tenth / 10) {
      made += rounds.round();
      const memory_in_use now = in_use();
      grew = grew || now.heap > warm.heap || now.granted > warm.granted;
    }
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
    tell(in_use());
    fprintf(terminal, "  %.0f calls a second\n", static_cast<double>(made - made_before) / passed.count());
    fflush(terminal);
  }
  stdout = terminal;
  fclose(nowhere);
  if (grew) fprintf(stderr, "memory in use grows\n");
  return grew ? 1 : 0;
}

} // namespace

int main(int argc, char** argv) try {
  char* end = nullptr;
  const unsigned long long calls = argc == 2 ? strtoull(argv[1], &end, 10) : 0;
  if (calls == 0 || *end != '\0') {
    fprintf(stderr, "usage: library_soak CALLS\n");
    return 2;
  }
  return soak(calls);
} catch (const std::exception& error) {
  fprintf(stderr, "%s\n", error.what());
  return 1;
}
