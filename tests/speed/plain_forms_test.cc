// The plain forms that the benchmarks compare with answer like the library, whatever the port map holds. A plain form that
// did less would make the library look slow, one that did more would make it look fast.
#include "plain_forms.h"

#include <cstdint>
#include <optional>
#include <random>
#include <vector>

#include "library_test.h"

namespace chnsw_test {
namespace {

constexpr int32_t kPorts = 254;
constexpr uint32_t kVsans = 4; // VSANs 0 to 3, where 0 is an empty slot

// Few numbers on many ports, so that none, one and several carry a number; most slots empty.
class RandomPortMap : public LibraryTest {
 protected:
  RandomPortMap() {
    platform.set_chassis(6, 34);
    know_ports(kPorts);
  }

  void fill(unsigned seed) {
    random_.seed(seed);
    for (size_t index = 0; index < map.port_to_pn.size(); ++index) {
      ficon_pmap_port_entry& entry = map.port_to_pn[index];
      entry = {number(), number(), {}};
      for (uint16_t& slot : entry.vsans) slot = below(8) == 0 ? static_cast<uint16_t>(below(kVsans)) : uint16_t{0};
      map.port_to_vsan[index] = static_cast<uint16_t>(below(kVsans));
    }
    for (size_t pn = 0; pn < map.pn_to_if.size(); ++pn) map.pn_to_if[pn] = below(10) == 0 ? fcip_interface(7) : 0;
    map.install();
    cache_map(static_cast<int32_t>(below(2)));
  }

  // Mostly numbers that nothing is searched by.
  uint16_t number() { return static_cast<uint16_t>(below(8) == 0 ? below(300) : 400 + below(100)); }
  uint32_t below(uint32_t bound) { return std::uniform_int_distribution<uint32_t>(0, bound - 1)(random_); }

  // No VSAN, then each VSAN.
  static std::vector<std::optional<uint32_t>> vsan_choices() { return {std::nullopt, 0, 1, 2, 3, 0x10001}; }
  static const uint32_t* address_of(const std::optional<uint32_t>& vsan) { return vsan ? &*vsan : nullptr; }

  std::mt19937 random_;
};

constexpr int32_t kLowest = -1;
constexpr int32_t kHighest = 260;
constexpr unsigned kMaps = 6;

template <typename result>
struct outcome {
  uint32_t status;
  result value;
  uint32_t flag;
  bool operator==(const outcome&) const = default;
};

template <typename result>
void PrintTo(const outcome<result>& outcome, std::ostream* stream) {
  *stream << std::hex << "status 0x" << outcome.status << ", value 0x" << outcome.value << ", flag " << outcome.flag;
}

template <typename result, typename form>
outcome<result> outcome_of(form call) {
  outcome<result> outcome = {0, static_cast<result>(kUntouched32), kUntouched32};
  outcome.status = call(&outcome.value, &outcome.flag);
  return outcome;
}

TEST_F(RandomPortMap, PaToPnAnswersLikeThePlainForm) {
  for (unsigned seed = 0; seed < kMaps; ++seed) {
    fill(seed);
    for (const auto& vsan : vsan_choices()) {
      for (int32_t pa = kLowest; pa <= kHighest; ++pa) {
        EXPECT_EQ(outcome_of<uint16_t>([&](uint16_t* pn, uint32_t* flag) {
                    return ficon_pmap_get_pa_to_pn_withpvsan(pa, address_of(vsan), pn, flag, 1);
                  }),
                  outcome_of<uint16_t>(
                      [&](uint16_t* pn, uint32_t* flag) { return plain::pa_to_pn_fast(pa, address_of(vsan), pn, flag); }))
            << "PA " << pa << " of map " << seed;
      }
    }
  }
}

TEST_F(RandomPortMap, PnToPaAnswersLikeThePlainForm) {
  for (unsigned seed = 0; seed < kMaps; ++seed) {
    fill(seed);
    for (const auto& vsan : vsan_choices()) {
      for (int32_t pn = kLowest; pn <= kHighest; ++pn) {
        EXPECT_EQ(outcome_of<uint16_t>([&](uint16_t* pa, uint32_t* flag) {
                    return ficon_pmap_get_pn_to_pa_withpvsan(pn, address_of(vsan), pa, flag, 1);
                  }),
                  outcome_of<uint16_t>(
                      [&](uint16_t* pa, uint32_t* flag) { return plain::pn_to_pa_fast(pn, address_of(vsan), pa, flag); }))
            << "PN " << pn << " of map " << seed;
      }
    }
  }
}

TEST_F(RandomPortMap, PnToInterfaceAnswersLikeThePlainForm) {
  for (unsigned seed = 0; seed < kMaps; ++seed) {
    fill(seed);
    for (uint32_t port = 0; port < 254; port += 5) platform.interface(physical_interface(1, port)).channel = 3;
    for (const auto& vsan : vsan_choices()) {
      for (int32_t pn = 0; pn <= kHighest; ++pn) {
        EXPECT_EQ(outcome_of<uint32_t>([&](uint32_t* if_index, uint32_t* flag) {
                    return ficon_pmap_get_pn_to_if_withpvsan(pn, address_of(vsan), if_index, flag, 1);
                  }),
                  outcome_of<uint32_t>([&](uint32_t* if_index, uint32_t* flag) {
                    return plain::pn_to_if_fast(pn, address_of(vsan), if_index, flag);
                  }))
            << "PN " << pn << " of map " << seed;
      }
    }
  }
}

TEST_F(RandomPortMap, PortsOfAVsanAreThoseOfThePlainForm) {
  struct ports {
    uint16_t* pns = nullptr;
    uint16_t* pas = nullptr;
    uint32_t* if_indexes = nullptr;
    uint32_t* bound = nullptr;
    uint32_t count = 0;
    ~ports() {
      for (void* array :
           {static_cast<void*>(pns), static_cast<void*>(pas), static_cast<void*>(if_indexes), static_cast<void*>(bound)}) {
        std::free(array);
      }
    }
  };
  fill(1);
  platform.interface(physical_interface(0, 3)).channel = 3;
  platform.interface(physical_interface(0, 4)).lag_status = 5;
  platform.interface(physical_interface(0, 5)).portidx_status = 6;
  for (uint32_t vsan = 0; vsan < kVsans; ++vsan) {
    ports library;
    ports plain;
    EXPECT_EQ(
        ficon_pmap_get_info_in_vsan(vsan, &library.pns, &library.pas, &library.if_indexes, &library.bound, &library.count),
        plain::info_in_vsan(vsan, &plain.pns, &plain.pas, &plain.if_indexes, &plain.bound, &plain.count));
    ASSERT_EQ(library.count, plain.count);
    EXPECT_GT(library.count, 100u);
    EXPECT_TRUE(std::equal(library.pns, library.pns + library.count, plain.pns));
    EXPECT_TRUE(std::equal(library.pas, library.pas + library.count, plain.pas));
    EXPECT_TRUE(std::equal(library.if_indexes, library.if_indexes + library.count, plain.if_indexes));
    EXPECT_TRUE(std::equal(library.bound, library.bound + library.count, plain.bound));
  }
}

// What an interface's index is asked of: ports of every slot, and of none; members of a port-channel, ports whose port-channel
// cannot be told, an interface with a number of its own, and such that FICON does not know.
std::vector<uint32_t> interfaces_of(programmable_platform& platform) {
  std::vector<uint32_t> interfaces = {fcip_interface(7), fcip_interface(8), port_channel_interface(7), 0x02000001};
  for (uint32_t slot = 0; slot < 19; ++slot) {
    for (uint32_t port = 0; port < 5; ++port) interfaces.push_back(physical_interface(slot, port));
    platform.interface(physical_interface(slot, 1)).channel = 3;
    platform.interface(physical_interface(slot, 2)).lag_status = 5;
    platform.interface(physical_interface(slot, 3)).slot_status = 6;
    platform.interface(physical_interface(slot, 4)).port_status = 7;
  }
  interfaces.push_back(physical_interface(1, 6));
  platform.interface(physical_interface(1, 6)).type_status = 8;
  return interfaces;
}

TEST_F(RandomPortMap, InterfaceToIndexAnswersLikeThePlainForm) {
  using form = int32_t (*)(uint32_t, uint32_t*, const uint32_t*, const ficon_pmap_port_entry*, int32_t);
  struct outcome {
    int32_t status;
    uint32_t index = kUntouched32;
    std::vector<std::string> calls;
    std::vector<std::string> errors;
    std::vector<std::string> traces;
    bool operator==(const outcome&) const = default;
  };
  const auto ask = [&](form call, uint32_t if_index, int32_t skip_lag_check) {
    platform.forget_calls();
    outcome outcome;
    outcome.status = call(if_index, &outcome.index, ficon_pmap_pn_to_logif, ficon_pmap_port_to_pn, skip_lag_check);
    outcome.calls = platform.all_calls();
    outcome.errors = platform.errors();
    outcome.traces = platform.traces();
    return outcome;
  };
  constexpr struct {
    int slots;
    int32_t type;
  } kChassis[] = {{2, 9}, {6, 34}, {6, 5}, {9, 32}, {10, 32}, {13, 38}, {18, 38}, {25, 1}};
  const std::vector<uint32_t> interfaces = interfaces_of(platform);
  fill(2);
  for (const auto& chassis : kChassis) {
    make_library_fresh();
    know_ports(kPorts);
    cache_map();
    platform.set_chassis(chassis.slots, chassis.type);
    ficon_platform_info info;
    ASSERT_EQ(ficon_get_platform_info(&info), 0);
    for (const uint32_t if_index : interfaces) {
      for (const int32_t skip_lag_check : {0, 1}) {
        EXPECT_TRUE(ask(ficon_pmap_get_if_to_index_with2pmaps, if_index, skip_lag_check) ==
                    ask(plain::if_to_index, if_index, skip_lag_check))
            << "interface " << std::hex << if_index << " of a chassis with " << chassis.slots << " slots";
      }
    }
  }
}

TEST_F(RandomPortMap, NextInterfaceIsThatOfThePlainForm) {
  for (unsigned seed = 0; seed < kMaps; ++seed) {
    fill(seed);
    // Neighbours must be numbered for the walk to get anywhere.
    for (size_t index = 0; index < 40; ++index) map.port_to_pn[index] = make_entry(1, 1, {1});
    map.install();
    for (uint32_t port = 0; port < 60; ++port) {
      uint32_t next = 0;
      uint32_t plain_next = 0;
      EXPECT_EQ(ficon_pmap_get_next_if(physical_interface(0, port), &next),
                plain::next_if(physical_interface(0, port), &plain_next));
      EXPECT_EQ(next, plain_next);
    }
  }
}

TEST_F(RandomPortMap, DefaultNumberingIsThatOfThePlainForm) {
  std::vector<uint16_t> pa_to_pn(256);
  for (unsigned seed = 0; seed < kMaps; ++seed) {
    fill(seed);
    for (uint16_t& pn : pa_to_pn) pn = static_cast<uint16_t>(below(40) == 0 ? 512 : below(256));
    std::vector<ficon_pmap_port_entry> library(1280);
    std::vector<ficon_pmap_port_entry> plain(1280);
    EXPECT_EQ(ficon_port_to_pn_init(1280, library.data(), 256, pa_to_pn.data()), 240);
    EXPECT_EQ(plain::port_to_pn_init({4, 48, 254, 240}, 1280, plain.data(), 256, pa_to_pn.data()), 240);
    EXPECT_EQ(library, plain);
  }
}

} // namespace
} // namespace chnsw_test
