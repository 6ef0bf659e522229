/* The fixture of the library's tests: every test starts from a library as it is right after loading, with an empty port map
 * behind it. */
#ifndef TESTS_SUPPORT_LIBRARY_TEST_H
#define TESTS_SUPPORT_LIBRARY_TEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "libchnsw.h"
#include "programmable_platform.h"

namespace chnsw_test {

// What outputs hold before a call; a test that finds them afterwards knows that nothing was written.
inline constexpr uint8_t kUntouched8 = 0xEE;
inline constexpr uint16_t kUntouched16 = 0xEEEE;
inline constexpr uint32_t kUntouched32 = 0xEEEEEEEE;
inline constexpr ficon_pmap_port_entry kUntouchedEntry = {
    0xEEEE, 0xEEEE, {0xEEEE, 0xEEEE, 0xEEEE, 0xEEEE, 0xEEEE, 0xEEEE, 0xEEEE, 0xEEEE}};

// The path that warnings of the library name.
inline constexpr char kWarningPath[] = "feature/ficon/libchnsw/KESTRL/libchnsw.cc";
// The whole warning line of a refused allocation.
std::string allocation_warning(int source_line, uint32_t size);

// What a call printed on standard output, the library's buffered text included.
std::string output_of(const std::function<void()>& call);

// A port map in the making. Every change is in the platform's element database at once.
class port_map {
 public:
  explicit port_map(programmable_platform& platform);

  // Entry of a port map index, and the VSAN that the port is in now.
  port_map& entry(size_t index, uint16_t pn, uint16_t pa, std::initializer_list<uint16_t> vsans, uint16_t current_vsan = 0);
  // Only the VSAN that the port is in now.
  port_map& current_vsan(size_t index, uint16_t vsan);
  // Interface that answers for a port number.
  port_map& bind(size_t pn, uint32_t if_index);
  // Port number of a port address, in the address-to-number table.
  port_map& address(size_t pa, uint16_t pn);
  // All tables into the database, the empty ones too.
  port_map& install();

  std::array<ficon_pmap_port_entry, 1280> port_to_pn;
  std::array<uint16_t, 1280> port_to_vsan{};
  std::array<uint16_t, 512> pa_to_pn{};
  std::array<uint32_t, 512> pn_to_if{};

 private:
  programmable_platform& platform_;
};

// Returns an entry from its parts, empty slots added.
ficon_pmap_port_entry make_entry(uint16_t pn, uint16_t pa, std::initializer_list<uint16_t> vsans = {});

class LibraryTest : public ::testing::Test {
 protected:
  LibraryTest();
  ~LibraryTest() override;

  // Sets MAX_FICON_PORTS, as ficon_get_max_ficon_ports does.
  static void know_ports(int32_t ports = 254) { MAX_FICON_PORTS = ports; }
  // Puts the map into the cached tables, as ficon_pmap_prepare_fastpath does, without the library's help.
  void cache_map(int32_t got_vsan_port = 1);

  programmable_platform& platform = the_platform();
  port_map map{platform};
};

// Frees the cached tables and puts every exported variable back to what it is after loading.
void make_library_fresh();

} // namespace chnsw_test

inline bool operator==(const ficon_pmap_port_entry& a, const ficon_pmap_port_entry& b) {
  return a.pn == b.pn && a.pa == b.pa && std::equal(a.vsans, a.vsans + 8, b.vsans);
}
void PrintTo(const ficon_pmap_port_entry& entry, std::ostream* stream);

#endif
