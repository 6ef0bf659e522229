// The manager's messages: built and parsed by the library, and by libmnl, protobuf-lite and nanopb with the same fields;
// what a parser takes beside a walk over one attribute, and what converting a text takes beside looking its bytes up.
#include <benchmark/benchmark.h>
#include <platform/char_convert.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <libchnsw.h>

#include "libmnl_walk.h"
#include "look_up.h"
#include "message_forms.h"
#include "quiet_transport.h"
#include "ratio.h"

namespace {

using bench::fields;

// Faster, as far as this can be told apart from a ratio of 1.
constexpr double kFaster = 0.95;
constexpr double kParseAgainstWalk = 1.1;
constexpr double kConversionAgainstLookUp = 1.5;

constexpr int kTimes = 64; // of one run

struct message_library {
  const char* name;
  const bench::message_forms& forms;
  double bar = kFaster;
};
const message_library kOthers[] = {{"libmnl", bench::kLibmnlForms},
                                   {"nanopb", bench::kNanopbForms},
                                   {"pb-lite", bench::kProtobufForms},
                                   {"pb-lite kept", bench::kKeptProtobufForms, 0}};

// What every message is built from.
const fields& example() {
  static const fields all = [] {
    static uint32_t if_indexes[bench::kInterfaces];
    for (uint32_t n = 0; n < bench::kInterfaces; ++n) if_indexes[n] = 0x01000100 + (n << 8);
    fields given;
    given.text1 = "port map of the operator's console";
    given.text2 = "asked for by the control unit port";
    given.code = 7;
    given.if_index = 0x01020300;
    given.if_index_b = 0x01020400;
    given.result = FICON_RC_NO_IF;
    given.state = 3;
    given.word_a = 1000;
    given.word_b = 2000;
    given.codepage = 500;
    given.format = 1;
    given.number_a = 35;
    given.number_b = 36;
    given.byte_a = 1;
    given.byte_b = 2;
    std::memcpy(given.node, "\0\0\0\1......................................", sizeof given.node);
    given.vsans.bytes = FICON_VSAN_BITMAP_BYTES;
    given.vsans.bitmap[1] = 0x20; // VSAN 10
    given.if_indexes = if_indexes;
    given.count = bench::kInterfaces;
    return given;
  }();
  return all;
}

// ---- received messages ----

struct received_message {
  alignas(uint64_t) char bytes[2048 + MSGQ_SLACK] = {};
  msgq_message message = {bytes, 0};
};

// The message as this library builds it. It stays for good.
msgq_message* received(const bench::message_form& form) {
  static std::deque<received_message> all;
  received_message& kept = all.emplace_back();
  form.build(example());
  kept.message.size = bench::last_sent().size;
  std::memcpy(kept.bytes, bench::last_sent().payload, kept.message.size);
  return &kept.message;
}

void release(const fields& found) {
  std::free(found.if_indexes);
  std::free(found.list);
}

bool same_lists(const fields& one, const fields& other) {
  if ((one.list == nullptr) != (other.list == nullptr) || one.count != other.count) return false;
  return (one.list == nullptr || std::memcmp(one.list, other.list, sizeof one.vsans) == 0) &&
         (one.count == 0 || std::memcmp(one.if_indexes, other.if_indexes, one.count * sizeof(uint32_t)) == 0);
}

bool same_fields(const fields& one, const fields& other) {
  return one.if_index == other.if_index && one.if_index_b == other.if_index_b && one.result == other.result &&
         one.state == other.state && one.word_a == other.word_a && one.word_b == other.word_b &&
         one.codepage == other.codepage && one.format == other.format && one.number_a == other.number_a &&
         one.number_b == other.number_b && one.byte_a == other.byte_a && one.byte_b == other.byte_b &&
         std::memcmp(one.node, other.node, sizeof one.node) == 0 &&
         std::memcmp(&one.vsans, &other.vsans, sizeof one.vsans) == 0 && same_lists(one, other);
}

fields parsed(const bench::message_form& form) {
  fields found;
  form.parse(received(form), found);
  return found;
}

// A form that did less would make the library look slow, one that did more would make it look fast.
void require_same_fields(bench::message_kind kind) {
  const fields found = parsed(bench::kLibraryForms[kind]);
  if (found.if_index == 0 && found.list == nullptr && found.count == 0) {
    throw std::runtime_error("the library finds no message " + std::to_string(kind));
  }
  for (const message_library& other : kOthers) {
    const fields others = parsed(other.forms[kind]);
    if (!same_fields(found, others)) {
      throw std::runtime_error(std::string(other.name) + " finds other fields in message " + std::to_string(kind));
    }
    release(others);
  }
  release(found);
}

// ---- what is measured ----

std::function<void()> building(const bench::message_form& form) {
  return [build = form.build] {
    const fields& given = example();
    for (int i = 0; i < kTimes; ++i) {
      build(given);
      benchmark::ClobberMemory();
    }
  };
}

std::function<void()> parsing(const bench::message_form& form) {
  return [parse = form.parse, message = received(form)] {
    fields found;
    benchmark::DoNotOptimize(&found);
    for (int i = 0; i < kTimes; ++i) {
      parse(message, found);
      benchmark::ClobberMemory();
    }
  };
}

// The same for parsers that hand out lists.
std::function<void()> parsing_lists(const bench::message_form& form) {
  return [parse = form.parse, message = received(form)] {
    fields found;
    benchmark::DoNotOptimize(&found);
    for (int i = 0; i < kTimes; ++i) {
      parse(message, found);
      benchmark::ClobberMemory();
      release(found);
    }
  };
}

using measured_form = std::function<void()> (*)(const bench::message_form&);

void add(const std::string& name, bench::message_kind kind, measured_form form,
         std::vector<bench::baseline> baselines = {}) {
  for (const message_library& other : kOthers) baselines.push_back({other.name, form(other.forms[kind]), other.bar});
  bench::add_ratio(
      name, form(bench::kLibraryForms[kind]), std::move(baselines), [kind] { require_same_fields(kind); }, kTimes);
}

// ---- a walk over one attribute ----

nlmsghdr* message_with_one_attribute() {
  alignas(nlmsghdr) static char buffer[64];
  nlmsghdr* header = mnl_nlmsg_put_header(buffer);
  mnl_attr_put_u32(header, 1, 1);
  return header;
}

void walk_one_attribute() {
  static const nlmsghdr* header = message_with_one_attribute();
  for (int i = 0; i < kTimes; ++i) {
    bench::for_each_attribute(header, [](uint16_t type, const nlattr* attribute) {
      if (type == 1) benchmark::DoNotOptimize(mnl_attr_get_payload(attribute));
    });
    benchmark::ClobberMemory();
  }
}

// ---- conversion ----

constexpr uint32_t kCodepage = 500;
constexpr int32_t kTextBytes = 12; // the longest text of a node descriptor
using host_text = char[kTextBytes];

host_text texts[kTimes];

void set_texts() {
  for (host_text& text : texts) std::memcpy(text, "\xF0\xF1\xF2\xF3\xC1\xC2\xC3\xC4\xC5\xC6\xC7\xC8", kTextBytes);
}

void convert_with_library() {
  for (host_text& text : texts) convert_codepage(CHAR_CONVERT_FROM_HOST, kCodepage, text, kTextBytes);
  benchmark::ClobberMemory();
}

bench::byte_table look_up_table;

void fill_look_up_table() {
  for (int byte = 0; byte < 256; ++byte) {
    char converted = static_cast<char>(byte);
    if (convert_codepage(CHAR_CONVERT_FROM_HOST, kCodepage, &converted, 1) != 0) {
      throw std::runtime_error("libchar_convert.so does not convert");
    }
    look_up_table[byte] = static_cast<unsigned char>(converted);
  }
}

void convert_by_look_ups() {
  for (host_text& text : texts) bench::look_up(look_up_table, text, kTextBytes);
  benchmark::ClobberMemory();
}

void require_same_texts() {
  fill_look_up_table();
  for (void (*convert)() : {convert_with_library, convert_by_look_ups}) {
    set_texts();
    convert();
    for (const host_text& text : texts) {
      if (std::memcmp(text, "0123ABCDEFGH", kTextBytes) != 0) throw std::runtime_error("a text becomes something else");
    }
  }
}

void add_messages() {
  using namespace bench;
  const std::vector<baseline> walk = {{"libmnl walk", walk_one_attribute, kParseAgainstWalk}};
  add("build port map request", kPortMapRequest, building);
  add("build VSAN state query", kIfVsanQuery, building);
  add("build RNID request", kRnidRequest, building);
  add("build VSAN install, 16 interfaces", kVsanInstall, building);
  add("build swap response", kSwapResponse, building);
  add("parse port map answer", kPortMapAnswer, parsing, walk);
  add("parse enabled VSANs", kEnabledVsansAnswer, parsing_lists);
  add("parse VSAN state answer", kIfVsanAnswer, parsing, walk);
  add("parse RNID answer", kRnidAnswer, parsing, walk);
  add("parse VSAN install, 16 interfaces", kVsanInstall, parsing_lists);
  add("parse swap request", kSwapRequest, parsing, walk);
  add("parse swap request with VSANs", kSwapRequestWithVsans, parsing);
  add("parse VSAN state change", kVsanStateChange, parsing, walk);
  add("parse port up or down", kUpdownNotice, parsing, walk);
  add("parse port enabled or disabled", kEnableNotice, parsing, walk);
}

} // namespace

int main(int argc, char** argv) try {
  add_messages();
  bench::add_ratio("convert a text of 12 bytes", convert_with_library,
                   {{"look-up loop", convert_by_look_ups, kConversionAgainstLookUp}}, require_same_texts, kTimes);
  return bench::run_benchmarks(argc, argv);
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
  return 3;
}
