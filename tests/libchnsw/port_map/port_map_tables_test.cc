/* The cached tables: fetching them, the change counter, the preparation of the fast path, and the number of ports. */
#include <cerrno>
#include <climits>
#include <cstring>
#include <numeric>

#include "library_test.h"

namespace {

using chnsw_test::allocation_warning;
using chnsw_test::kUntouched32;
using chnsw_test::make_entry;
using chnsw_test::output_of;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsNull;
using ::testing::NotNull;
using ::testing::StartsWith;

template <class Value>
std::vector<uint8_t> bytes_of(const Value* table, size_t size) {
  std::vector<uint8_t> bytes(size);
  memcpy(bytes.data(), table, size);
  return bytes;
}

std::vector<uint8_t> counting_bytes(size_t size, uint8_t first) {
  std::vector<uint8_t> bytes(size);
  std::iota(bytes.begin(), bytes.end(), first);
  return bytes;
}

// ---- port to port number ----

class PortPnTable : public chnsw_test::LibraryTest {};

TEST_F(PortPnTable, FirstFetchAllocatesThenAsksForElementThree) {
  EXPECT_EQ(ficon_get_pmap_portpn(), 0);
  EXPECT_THAT(platform.all_calls(),
              ElementsAre("memacct_alloc(206, 5, 25600)", "elemdb_lookup_element(1, 2, 4, key 3, 25600)"));
}

TEST_F(PortPnTable, HoldsTheElement) {
  map.entry(0, 7, 8, {9, 10}).entry(1279, 1, 2, {3, 0, 0, 0, 0, 0, 0, 4});

  EXPECT_EQ(ficon_get_pmap_portpn(), 0);

  ASSERT_THAT(ficon_pmap_port_to_pn, NotNull());
  EXPECT_EQ(ficon_pmap_port_to_pn[0], make_entry(7, 8, {9, 10}));
  EXPECT_EQ(ficon_pmap_port_to_pn[1], make_entry(512, 512));
  EXPECT_EQ(ficon_pmap_port_to_pn[1279], make_entry(1, 2, {3, 0, 0, 0, 0, 0, 0, 4}));
}

TEST_F(PortPnTable, IsAllZerosWhenTheElementIsMissing) {
  EXPECT_EQ(ficon_get_pmap_portpn(), 0);
  ASSERT_THAT(ficon_pmap_port_to_pn, NotNull());
  EXPECT_THAT(bytes_of(ficon_pmap_port_to_pn, 25600), Each(0));
}

TEST_F(PortPnTable, LaterFetchRefillsTheSameBuffer) {
  map.entry(5, 1, 2, {3});
  ficon_get_pmap_portpn();
  const auto* buffer = ficon_pmap_port_to_pn;
  map.entry(5, 11, 12, {13});
  platform.forget_calls();

  EXPECT_EQ(ficon_get_pmap_portpn(), 0);

  EXPECT_THAT(platform.all_calls(), ElementsAre("elemdb_lookup_element(1, 2, 4, key 3, 25600)"));
  EXPECT_EQ(ficon_pmap_port_to_pn, buffer);
  EXPECT_EQ(ficon_pmap_port_to_pn[5], make_entry(11, 12, {13}));
}

TEST_F(PortPnTable, KeepsItsContentsWhenALaterFetchFails) {
  map.entry(5, 1, 2, {3});
  ficon_get_pmap_portpn();
  platform.fail_element(2, 3, -1);

  EXPECT_EQ(ficon_get_pmap_portpn(), 0);

  EXPECT_EQ(ficon_pmap_port_to_pn[5], make_entry(1, 2, {3}));
}

TEST_F(PortPnTable, IsNotClearedByALaterFetch) {
  map.entry(1, 21, 22, {23});
  ficon_get_pmap_portpn();
  const auto shorter = make_entry(31, 32, {33});
  platform.set_element(2, 3, &shorter, 1);

  EXPECT_EQ(ficon_get_pmap_portpn(), 0);

  EXPECT_EQ(ficon_pmap_port_to_pn[0], make_entry(31, 32, {33}));
  EXPECT_EQ(ficon_pmap_port_to_pn[1], make_entry(21, 22, {23}));
}

TEST_F(PortPnTable, StaysNullWhenItsAllocationIsRefused) {
  platform.refuse_allocation(1);

  EXPECT_EQ(ficon_get_pmap_portpn(), 1);

  EXPECT_THAT(ficon_pmap_port_to_pn, IsNull());
  EXPECT_THAT(platform.all_calls(), ElementsAre("memacct_alloc(206, 5, 25600)"));
}

TEST_F(PortPnTable, RefusedAllocationPrintsItsWarning) {
  platform.refuse_allocation(1);
  EXPECT_EQ(output_of([] { ficon_get_pmap_portpn(); }),
            "Warning! Malloc Failure in feature/ficon/libchnsw/KESTRL/libchnsw.cc[1453] for size 25600\n");
}

TEST_F(PortPnTable, AfterARefusedAllocationTheNextFetchTriesAgain) {
  platform.refuse_allocation(1);
  ficon_get_pmap_portpn();

  EXPECT_EQ(ficon_get_pmap_portpn(), 0);

  EXPECT_THAT(ficon_pmap_port_to_pn, NotNull());
}

// ---- port to VSAN ----

class PortVsanTable : public chnsw_test::LibraryTest {};

// Oddity: it is accounted under the type of the port-to-number table.
TEST_F(PortVsanTable, FirstFetchAsksForElementFourThenAllocatesThenAsksForElementFive) {
  EXPECT_EQ(ficon_get_pmap_portvsan(10), 0);
  EXPECT_THAT(platform.all_calls(), ElementsAre("elemdb_lookup_element(1, 2, 4, key 4, 32)", "memacct_alloc(206, 5, 2560)",
                                                "elemdb_lookup_element(1, 2, 4, key 5, 2560)"));
}

TEST_F(PortVsanTable, HoldsTheElement) {
  map.current_vsan(0, 10).current_vsan(1279, 4095);

  EXPECT_EQ(ficon_get_pmap_portvsan(10), 0);

  ASSERT_THAT(ficon_pmap_port_to_vsan, NotNull());
  EXPECT_EQ(ficon_pmap_port_to_vsan[0], 10);
  EXPECT_EQ(ficon_pmap_port_to_vsan[1], 0);
  EXPECT_EQ(ficon_pmap_port_to_vsan[1279], 4095);
}

TEST_F(PortVsanTable, IsAllZerosWhenTheElementIsMissing) {
  EXPECT_EQ(ficon_get_pmap_portvsan(10), 0);
  ASSERT_THAT(ficon_pmap_port_to_vsan, NotNull());
  EXPECT_THAT(bytes_of(ficon_pmap_port_to_vsan, 2560), Each(0));
}

TEST_F(PortVsanTable, LaterFetchAsksForBothElementsAgain) {
  map.current_vsan(3, 10);
  ficon_get_pmap_portvsan(10);
  const auto* buffer = ficon_pmap_port_to_vsan;
  map.current_vsan(3, 20);
  platform.forget_calls();

  EXPECT_EQ(ficon_get_pmap_portvsan(10), 0);

  EXPECT_THAT(platform.all_calls(),
              ElementsAre("elemdb_lookup_element(1, 2, 4, key 4, 32)", "elemdb_lookup_element(1, 2, 4, key 5, 2560)"));
  EXPECT_EQ(ficon_pmap_port_to_vsan, buffer);
  EXPECT_EQ(ficon_pmap_port_to_vsan[3], 20);
}

TEST_F(PortVsanTable, KeepsItsContentsWhenALaterFetchFails) {
  map.current_vsan(3, 10);
  ficon_get_pmap_portvsan(10);
  platform.fail_element(2, 5, -1);

  EXPECT_EQ(ficon_get_pmap_portvsan(10), 0);

  EXPECT_EQ(ficon_pmap_port_to_vsan[3], 10);
}

TEST_F(PortVsanTable, IsNotClearedByALaterFetch) {
  map.current_vsan(1, 77);
  ficon_get_pmap_portvsan(10);
  const uint16_t shorter = 88;
  platform.set_element(2, 5, &shorter, 1);

  EXPECT_EQ(ficon_get_pmap_portvsan(10), 0);

  EXPECT_EQ(ficon_pmap_port_to_vsan[0], 88);
  EXPECT_EQ(ficon_pmap_port_to_vsan[1], 77);
}

// Oddity: the argument is accepted and not used.
TEST_F(PortVsanTable, IsFetchedWholeWhateverVsanIsPassed) {
  map.current_vsan(0, 10).current_vsan(1, 20);
  for (const uint32_t vsan : {0u, 10u, 20u, 4096u, 0xFFFFFFFFu}) {
    platform.forget_calls();
    EXPECT_EQ(ficon_get_pmap_portvsan(vsan), 0);
    EXPECT_EQ(platform.count("elemdb_lookup_element(1, 2, 4, key 4, 32)"), 1);
    EXPECT_EQ(platform.count("elemdb_lookup_element(1, 2, 4, key 5, 2560)"), 1);
    EXPECT_EQ(ficon_pmap_port_to_vsan[0], 10);
    EXPECT_EQ(ficon_pmap_port_to_vsan[1], 20);
  }
}

TEST_F(PortVsanTable, ElementFourIsCopiedForClients) {
  platform.set_element(2, 4, counting_bytes(32, 100));
  ficon_get_pmap_portvsan(10);
  EXPECT_EQ(bytes_of(ficon_port_to_vsan_array, 32), counting_bytes(32, 100));
}

TEST_F(PortVsanTable, ElementFourIsCopiedOnEveryCall) {
  platform.set_element(2, 4, counting_bytes(32, 100));
  ficon_get_pmap_portvsan(10);
  platform.set_element(2, 4, counting_bytes(32, 1));
  ficon_get_pmap_portvsan(10);
  EXPECT_EQ(bytes_of(ficon_port_to_vsan_array, 32), counting_bytes(32, 1));
}

TEST_F(PortVsanTable, ElementFourIsCutAtThirtyTwoBytes) {
  platform.set_element(2, 4, counting_bytes(64, 100));
  ficon_get_pmap_portvsan(10);
  EXPECT_EQ(bytes_of(ficon_port_to_vsan_array, 32), counting_bytes(32, 100));
}

TEST_F(PortVsanTable, MissingElementFourLeavesTheCopyAsItWasAndIsNoFailure) {
  memset(ficon_port_to_vsan_array, 0x5A, 32);
  EXPECT_EQ(ficon_get_pmap_portvsan(10), 0);
  EXPECT_THAT(ficon_port_to_vsan_array, Each(0x5A));
}

TEST_F(PortVsanTable, RefusedAllocationComesAfterElementFourWasCopied) {
  platform.set_element(2, 4, counting_bytes(32, 100));
  platform.refuse_allocation(1);

  EXPECT_EQ(ficon_get_pmap_portvsan(10), 1);

  EXPECT_EQ(bytes_of(ficon_port_to_vsan_array, 32), counting_bytes(32, 100));
  EXPECT_THAT(ficon_pmap_port_to_vsan, IsNull());
  EXPECT_THAT(platform.all_calls(),
              ElementsAre("elemdb_lookup_element(1, 2, 4, key 4, 32)", "memacct_alloc(206, 5, 2560)"));
}

TEST_F(PortVsanTable, RefusedAllocationPrintsItsWarning) {
  platform.refuse_allocation(1);
  EXPECT_EQ(output_of([] { ficon_get_pmap_portvsan(10); }),
            "Warning! Malloc Failure in feature/ficon/libchnsw/KESTRL/libchnsw.cc[1420] for size 2560\n");
}

TEST_F(PortVsanTable, AfterARefusedAllocationTheNextFetchTriesAgain) {
  platform.refuse_allocation(1);
  ficon_get_pmap_portvsan(10);
  EXPECT_EQ(ficon_get_pmap_portvsan(10), 0);
  EXPECT_THAT(ficon_pmap_port_to_vsan, NotNull());
}

// ---- port address to port number ----

class PaPnTable : public chnsw_test::LibraryTest {};

TEST_F(PaPnTable, FirstFetchOfAFreshLibraryMakesThePortCountKnown) {
  EXPECT_EQ(ficon_get_pmap_papn(), 0);

  EXPECT_EQ(MAX_FICON_PORTS, 254);
  EXPECT_THAT(platform.all_calls(),
              ElementsAre("get_platform_info()", "hwinv_get_chassis_type(-1)", "memacct_alloc(206, 2, 508)",
                          "elemdb_lookup_element(1, 2, 4, key 1, 508)"));
}

TEST_F(PaPnTable, KnownPortCountGivesItsSize) {
  know_ports(78);
  EXPECT_EQ(ficon_get_pmap_papn(), 0);
  EXPECT_THAT(platform.all_calls(),
              ElementsAre("memacct_alloc(206, 2, 156)", "elemdb_lookup_element(1, 2, 4, key 1, 156)"));
}

TEST_F(PaPnTable, HoldsTheElement) {
  know_ports(78);
  map.address(0, 17).address(77, 18);

  EXPECT_EQ(ficon_get_pmap_papn(), 0);

  ASSERT_THAT(ficon_pmap_pa_to_pn, NotNull());
  EXPECT_EQ(ficon_pmap_pa_to_pn[0], 17);
  EXPECT_EQ(ficon_pmap_pa_to_pn[1], 0);
  EXPECT_EQ(ficon_pmap_pa_to_pn[77], 18);
}

TEST_F(PaPnTable, IsAllZerosWhenTheElementIsMissing) {
  know_ports(254);
  EXPECT_EQ(ficon_get_pmap_papn(), 0);
  ASSERT_THAT(ficon_pmap_pa_to_pn, NotNull());
  EXPECT_THAT(bytes_of(ficon_pmap_pa_to_pn, 508), Each(0));
}

TEST_F(PaPnTable, OfAnUnknownChassisHasOneEntry) {
  platform.set_chassis(3, 5);

  EXPECT_EQ(ficon_get_pmap_papn(), 0);

  EXPECT_EQ(MAX_FICON_PORTS, 1);
  EXPECT_EQ(platform.count("memacct_alloc(206, 2, 2)"), 1);
  EXPECT_EQ(platform.count("elemdb_lookup_element(1, 2, 4, key 1, 2)"), 1);
}

TEST_F(PaPnTable, LaterFetchRefillsTheSameBuffer) {
  know_ports(78);
  map.address(9, 1);
  ficon_get_pmap_papn();
  const auto* buffer = ficon_pmap_pa_to_pn;
  map.address(9, 2);
  platform.forget_calls();

  EXPECT_EQ(ficon_get_pmap_papn(), 0);

  EXPECT_THAT(platform.all_calls(), ElementsAre("elemdb_lookup_element(1, 2, 4, key 1, 156)"));
  EXPECT_EQ(ficon_pmap_pa_to_pn, buffer);
  EXPECT_EQ(ficon_pmap_pa_to_pn[9], 2);
}

TEST_F(PaPnTable, LaterFetchAsksForAsMuchAsThePortCountNowSays) {
  know_ports(78);
  ficon_get_pmap_papn();
  know_ports(10);
  platform.forget_calls();

  EXPECT_EQ(ficon_get_pmap_papn(), 0);

  EXPECT_THAT(platform.all_calls(), ElementsAre("elemdb_lookup_element(1, 2, 4, key 1, 20)"));
}

TEST_F(PaPnTable, KeepsItsContentsWhenALaterFetchFails) {
  know_ports(78);
  map.address(9, 1);
  ficon_get_pmap_papn();
  platform.fail_element(2, 1, -1);

  EXPECT_EQ(ficon_get_pmap_papn(), 0);

  EXPECT_EQ(ficon_pmap_pa_to_pn[9], 1);
}

TEST_F(PaPnTable, FailsWithNothingFetchedWhenThePlatformInformationIsUnavailable) {
  platform.info_answer = {-1, 5};

  EXPECT_EQ(ficon_get_pmap_papn(), 0x4085000A);

  EXPECT_THAT(platform.calls(), ElementsAre("get_platform_info()"));
  EXPECT_THAT(platform.errors(), ElementsAre("get_platform_info failed, errno = 5"));
  EXPECT_THAT(ficon_pmap_pa_to_pn, IsNull());
  EXPECT_EQ(MAX_FICON_PORTS, 0);
}

TEST_F(PaPnTable, FailsWithNothingFetchedWhenTheChassisTypeIsUnavailable) {
  platform.chassis_answer = {-1, 6};

  EXPECT_EQ(ficon_get_pmap_papn(), 0x4085000A);

  EXPECT_THAT(platform.calls(), ElementsAre("get_platform_info()", "hwinv_get_chassis_type(-1)"));
  EXPECT_THAT(platform.errors(), ElementsAre("hwinv_get_chassis_type failed, errno = 6"));
  EXPECT_THAT(ficon_pmap_pa_to_pn, IsNull());
  EXPECT_EQ(MAX_FICON_PORTS, -1);
}

TEST_F(PaPnTable, StaysNullWhenItsAllocationIsRefused) {
  know_ports(254);
  platform.refuse_allocation(1);

  EXPECT_EQ(ficon_get_pmap_papn(), 1);

  EXPECT_THAT(ficon_pmap_pa_to_pn, IsNull());
  EXPECT_THAT(platform.all_calls(), ElementsAre("memacct_alloc(206, 2, 508)"));
}

TEST_F(PaPnTable, RefusedAllocationPrintsItsWarning) {
  know_ports(254);
  platform.refuse_allocation(1);
  EXPECT_EQ(output_of([] { ficon_get_pmap_papn(); }),
            "Warning! Malloc Failure in feature/ficon/libchnsw/KESTRL/libchnsw.cc[1491] for size 508\n");
}

TEST_F(PaPnTable, AfterARefusedAllocationTheNextFetchTriesAgain) {
  know_ports(254);
  platform.refuse_allocation(1);
  ficon_get_pmap_papn();
  EXPECT_EQ(ficon_get_pmap_papn(), 0);
  EXPECT_THAT(ficon_pmap_pa_to_pn, NotNull());
}

// ---- port number to interface ----

class PnIfTable : public chnsw_test::LibraryTest {};

TEST_F(PnIfTable, FirstFetchOfAFreshLibraryMakesThePortCountKnown) {
  EXPECT_EQ(ficon_get_pmap_pnif(), 0);

  EXPECT_EQ(MAX_FICON_PORTS, 254);
  EXPECT_THAT(platform.all_calls(),
              ElementsAre("get_platform_info()", "hwinv_get_chassis_type(-1)", "memacct_alloc(206, 3, 1016)",
                          "elemdb_lookup_element(1, 2, 4, key 2, 1016)"));
}

TEST_F(PnIfTable, KnownPortCountGivesItsSize) {
  know_ports(78);
  EXPECT_EQ(ficon_get_pmap_pnif(), 0);
  EXPECT_THAT(platform.all_calls(),
              ElementsAre("memacct_alloc(206, 3, 312)", "elemdb_lookup_element(1, 2, 4, key 2, 312)"));
}

TEST_F(PnIfTable, HoldsTheElement) {
  know_ports(78);
  map.bind(0, 0x01000001).bind(77, 0x04000002);

  EXPECT_EQ(ficon_get_pmap_pnif(), 0);

  ASSERT_THAT(ficon_pmap_pn_to_logif, NotNull());
  EXPECT_EQ(ficon_pmap_pn_to_logif[0], 0x01000001u);
  EXPECT_EQ(ficon_pmap_pn_to_logif[1], 0u);
  EXPECT_EQ(ficon_pmap_pn_to_logif[77], 0x04000002u);
}

TEST_F(PnIfTable, IsAllZerosWhenTheElementIsMissing) {
  know_ports(254);
  EXPECT_EQ(ficon_get_pmap_pnif(), 0);
  ASSERT_THAT(ficon_pmap_pn_to_logif, NotNull());
  EXPECT_THAT(bytes_of(ficon_pmap_pn_to_logif, 1016), Each(0));
}

TEST_F(PnIfTable, OfAnUnknownChassisHasOneEntry) {
  platform.set_chassis(255, 38);

  EXPECT_EQ(ficon_get_pmap_pnif(), 0);

  EXPECT_EQ(MAX_FICON_PORTS, 1);
  EXPECT_EQ(platform.count("memacct_alloc(206, 3, 4)"), 1);
  EXPECT_EQ(platform.count("elemdb_lookup_element(1, 2, 4, key 2, 4)"), 1);
}

TEST_F(PnIfTable, LaterFetchRefillsTheSameBuffer) {
  know_ports(78);
  map.bind(9, 1);
  ficon_get_pmap_pnif();
  const auto* buffer = ficon_pmap_pn_to_logif;
  map.bind(9, 2);
  platform.forget_calls();

  EXPECT_EQ(ficon_get_pmap_pnif(), 0);

  EXPECT_THAT(platform.all_calls(), ElementsAre("elemdb_lookup_element(1, 2, 4, key 2, 312)"));
  EXPECT_EQ(ficon_pmap_pn_to_logif, buffer);
  EXPECT_EQ(ficon_pmap_pn_to_logif[9], 2u);
}

TEST_F(PnIfTable, LaterFetchAsksForAsMuchAsThePortCountNowSays) {
  know_ports(78);
  ficon_get_pmap_pnif();
  know_ports(10);
  platform.forget_calls();

  EXPECT_EQ(ficon_get_pmap_pnif(), 0);

  EXPECT_THAT(platform.all_calls(), ElementsAre("elemdb_lookup_element(1, 2, 4, key 2, 40)"));
}

TEST_F(PnIfTable, KeepsItsContentsWhenALaterFetchFails) {
  know_ports(78);
  map.bind(9, 1);
  ficon_get_pmap_pnif();
  platform.fail_element(2, 2, -1);

  EXPECT_EQ(ficon_get_pmap_pnif(), 0);

  EXPECT_EQ(ficon_pmap_pn_to_logif[9], 1u);
}

TEST_F(PnIfTable, FailsAndAsksThePlatformAgainNextTime) {
  platform.info_answer = {-1, 5};
  EXPECT_EQ(ficon_get_pmap_pnif(), 0x4085000A);
  EXPECT_THAT(platform.errors(), ElementsAre("get_platform_info failed, errno = 5"));
  EXPECT_THAT(platform.calls(), ElementsAre("get_platform_info()"));
  platform.info_answer = {};
  platform.forget_calls();

  EXPECT_EQ(ficon_get_pmap_pnif(), 0);

  EXPECT_EQ(platform.count("get_platform_info()"), 1);
  EXPECT_THAT(ficon_pmap_pn_to_logif, NotNull());
}

TEST_F(PnIfTable, FailsWithNothingFetchedWhenTheChassisTypeIsUnavailable) {
  platform.chassis_answer = {-1, 6};

  EXPECT_EQ(ficon_get_pmap_pnif(), 0x4085000A);

  EXPECT_THAT(platform.calls(), ElementsAre("get_platform_info()", "hwinv_get_chassis_type(-1)"));
  EXPECT_THAT(ficon_pmap_pn_to_logif, IsNull());
  EXPECT_EQ(MAX_FICON_PORTS, -1);
}

TEST_F(PnIfTable, StaysNullWhenItsAllocationIsRefused) {
  know_ports(254);
  platform.refuse_allocation(1);

  EXPECT_EQ(ficon_get_pmap_pnif(), 1);

  EXPECT_THAT(ficon_pmap_pn_to_logif, IsNull());
  EXPECT_THAT(platform.all_calls(), ElementsAre("memacct_alloc(206, 3, 1016)"));
}

TEST_F(PnIfTable, RefusedAllocationPrintsItsWarning) {
  know_ports(254);
  platform.refuse_allocation(1);
  EXPECT_EQ(output_of([] { ficon_get_pmap_pnif(); }),
            "Warning! Malloc Failure in feature/ficon/libchnsw/KESTRL/libchnsw.cc[1530] for size 1016\n");
}

TEST_F(PnIfTable, AfterARefusedAllocationTheNextFetchTriesAgain) {
  know_ports(254);
  platform.refuse_allocation(1);
  ficon_get_pmap_pnif();
  EXPECT_EQ(ficon_get_pmap_pnif(), 0);
  EXPECT_THAT(ficon_pmap_pn_to_logif, NotNull());
}

// 4 x 0x40000000 is 0 in 32 bits: it must not become an allocation of nothing.
TEST_F(PnIfTable, SizeBeyondThirtyTwoBitsIsAnAllocationFailure) {
  for (const int32_t ports : {0x40000000, 0x40000001, INT_MAX}) {
    know_ports(ports);
    int32_t status = 0;
    const std::string printed = output_of([&] { status = ficon_get_pmap_pnif(); });
    EXPECT_EQ(status, 1);
    EXPECT_THAT(printed,
                StartsWith("Warning! Malloc Failure in feature/ficon/libchnsw/KESTRL/libchnsw.cc[1530] for size "));
    EXPECT_THAT(ficon_pmap_pn_to_logif, IsNull());
  }
  EXPECT_THAT(platform.calls(), IsEmpty());
}

// ---- change counter ----

class ChangeCounter : public chnsw_test::LibraryTest {
 protected:
  uint32_t counter = kUntouched32;
};

TEST_F(ChangeCounter, IsElementSix) {
  const uint32_t stored = 0x89ABCDEF;
  platform.set_element(2, 6, &stored, 1);

  EXPECT_EQ(ficon_cmi_get_pmap_change_counter(&counter), 0);

  EXPECT_EQ(counter, 0x89ABCDEFu);
  EXPECT_THAT(platform.all_calls(), ElementsAre("elemdb_lookup_element(1, 2, 4, key 6, 4)"));
}

TEST_F(ChangeCounter, IsAskedForOnEveryCall) {
  for (const uint32_t stored : {7u, 8u, 0u, 0xFFFFFFFFu}) {
    platform.set_element(2, 6, &stored, 1);
    EXPECT_EQ(ficon_cmi_get_pmap_change_counter(&counter), 0);
    EXPECT_EQ(counter, stored);
  }
}

TEST_F(ChangeCounter, OfAFailingDatabaseIsZeroWithoutAFailure) {
  platform.fail_element(2, 6, -1);

  EXPECT_EQ(ficon_cmi_get_pmap_change_counter(&counter), 0);

  EXPECT_EQ(counter, 0u);
  EXPECT_THAT(platform.reporting_calls(), IsEmpty());
}

TEST_F(ChangeCounter, OfALookUpThatCopiesAndFailsIsZero) {
  const uint32_t stored = 7;
  platform.set_element(2, 6, &stored, 1);
  for (const int status : {5, -5}) {
    platform.fail_element(2, 6, status, true);

    EXPECT_EQ(ficon_cmi_get_pmap_change_counter(&counter), 0);

    EXPECT_EQ(counter, 0u);
  }
}

TEST_F(ChangeCounter, StartsAsZeroBeforeTheLookUp) {
  platform.set_element(2, 6, std::vector<uint8_t>{}); // found, but with no bytes in it

  EXPECT_EQ(ficon_cmi_get_pmap_change_counter(&counter), 0);

  EXPECT_EQ(counter, 0u);
}

// ---- preparation of the fast path ----

class PrepareFastpath : public chnsw_test::LibraryTest {
 protected:
  PrepareFastpath() {
    know_ports(254);
    fastpath_got_vsan_port = 7; // neither of the values that it is set to
  }
};

// Oddity: the address-to-number table is left out.
TEST_F(PrepareFastpath, FetchesInterfacesThenPortsThenVsans) {
  EXPECT_EQ(ficon_pmap_prepare_fastpath(10), 0);

  EXPECT_THAT(platform.all_calls(),
              ElementsAre("memacct_alloc(206, 3, 1016)", "elemdb_lookup_element(1, 2, 4, key 2, 1016)",
                          "memacct_alloc(206, 5, 25600)", "elemdb_lookup_element(1, 2, 4, key 3, 25600)",
                          "elemdb_lookup_element(1, 2, 4, key 4, 32)", "memacct_alloc(206, 5, 2560)",
                          "elemdb_lookup_element(1, 2, 4, key 5, 2560)"));
  EXPECT_THAT(ficon_pmap_pa_to_pn, IsNull());
}

TEST_F(PrepareFastpath, MarksThePortToVsanTableAsThere) {
  EXPECT_EQ(ficon_pmap_prepare_fastpath(10), 0);
  EXPECT_EQ(fastpath_got_vsan_port, 1);
}

TEST_F(PrepareFastpath, AgainFetchesFreshCopies) {
  map.entry(3, 1, 2, {10}, 10).bind(4, 0x04000001);
  ficon_pmap_prepare_fastpath(10);
  map.entry(3, 5, 6, {20}, 20).bind(4, 0x04000002);
  platform.forget_calls();

  EXPECT_EQ(ficon_pmap_prepare_fastpath(10), 0);

  EXPECT_THAT(platform.all_calls(),
              ElementsAre("elemdb_lookup_element(1, 2, 4, key 2, 1016)", "elemdb_lookup_element(1, 2, 4, key 3, 25600)",
                          "elemdb_lookup_element(1, 2, 4, key 4, 32)", "elemdb_lookup_element(1, 2, 4, key 5, 2560)"));
  EXPECT_EQ(ficon_pmap_pn_to_logif[4], 0x04000002u);
  EXPECT_EQ(ficon_pmap_port_to_pn[3], make_entry(5, 6, {20}));
  EXPECT_EQ(ficon_pmap_port_to_vsan[3], 20);
}

TEST_F(PrepareFastpath, MakesThePortCountKnownFirst) {
  MAX_FICON_PORTS = 0;
  EXPECT_EQ(ficon_pmap_prepare_fastpath(10), 0);
  EXPECT_EQ(MAX_FICON_PORTS, 254);
  EXPECT_EQ(platform.calls().at(0), "get_platform_info()");
}

TEST_F(PrepareFastpath, StopsAtOnceWhenTheInterfaceTableIsRefused) {
  platform.refuse_allocation(1);

  EXPECT_EQ(ficon_pmap_prepare_fastpath(10), 1);

  EXPECT_THAT(platform.all_calls(), ElementsAre("memacct_alloc(206, 3, 1016)"));
  EXPECT_THAT(ficon_pmap_port_to_pn, IsNull());
  EXPECT_EQ(fastpath_got_vsan_port, 7);
}

TEST_F(PrepareFastpath, StopsAtOnceWhenThePortCountIsUnknown) {
  MAX_FICON_PORTS = 0;
  platform.info_answer = {-1, 5};

  EXPECT_EQ(ficon_pmap_prepare_fastpath(10), 0x4085000A);

  EXPECT_THAT(platform.calls(), ElementsAre("get_platform_info()"));
  EXPECT_EQ(fastpath_got_vsan_port, 7);
}

TEST_F(PrepareFastpath, StopsWhenThePortTableIsRefused) {
  platform.refuse_allocation(2);

  EXPECT_EQ(ficon_pmap_prepare_fastpath(10), 1);

  EXPECT_THAT(platform.all_calls(),
              ElementsAre("memacct_alloc(206, 3, 1016)", "elemdb_lookup_element(1, 2, 4, key 2, 1016)",
                          "memacct_alloc(206, 5, 25600)"));
  EXPECT_EQ(fastpath_got_vsan_port, 7);
}

// The fetch of the port-to-VSAN table has no other failure than this one, so the lenient outcome for FICON_RC_PLATFORM
// cannot be provoked through the library.
TEST_F(PrepareFastpath, FailsAndLeavesTheMarkWhenTheVsanTableIsRefused) {
  platform.refuse_allocation(3);

  EXPECT_EQ(ficon_pmap_prepare_fastpath(10), 1);

  EXPECT_EQ(fastpath_got_vsan_port, 7);
  EXPECT_THAT(ficon_pmap_port_to_vsan, IsNull());
}

TEST_F(PrepareFastpath, MissingElementsAreNoFailure) {
  platform.fail_element(2, 2, -1);
  platform.fail_element(2, 3, -1);
  platform.fail_element(2, 4, -1);
  platform.fail_element(2, 5, -1);

  EXPECT_EQ(ficon_pmap_prepare_fastpath(10), 0);

  EXPECT_EQ(fastpath_got_vsan_port, 1);
}

// ---- highest port number ----

class MaxPortNumber : public chnsw_test::LibraryTest {};

constexpr int32_t kAnyType = INT_MIN;

struct max_port_number_row {
  int num_slots;
  int32_t chassis_type; // kAnyType: any that has no row of its own
  int32_t highest;
};

constexpr max_port_number_row kMaxPortNumbers[] = {
    {1, 5, 33},          {1, 15, 47},   {1, 27, 253},        {1, kAnyType, 53},  {2, kAnyType, 77},   {6, 34, 253},
    {6, kAnyType, 141},  {9, 32, 253},  {9, 38, 253},        {9, kAnyType, 237}, {10, 32, 253},       {10, 38, 253},
    {10, kAnyType, 237}, {13, 38, 253}, {13, kAnyType, 237}, {18, 38, 253},      {18, kAnyType, 237},
};

constexpr int32_t kTypes[] = {-1, 0,  1,  4,  5,  6,  14, 15, 16, 26, 27,  28,      31,
                              32, 33, 34, 35, 37, 38, 39, 40, 64, 99, 255, INT_MAX, INT_MIN + 1};

int32_t expected_max_port_number(int num_slots, int32_t chassis_type) {
  int32_t any = 0;
  for (const auto& row : kMaxPortNumbers) {
    if (row.num_slots != num_slots) continue;
    if (row.chassis_type == chassis_type) return row.highest;
    if (row.chassis_type == kAnyType) any = row.highest;
  }
  return any;
}

TEST_F(MaxPortNumber, IsThatOfEveryChassisRowAndZeroForEveryOtherSlotCount) {
  for (int num_slots = 0; num_slots <= 255; ++num_slots) {
    for (const int32_t type : kTypes) {
      platform.set_chassis(num_slots, type);
      platform.forget_calls();
      ASSERT_EQ(ficon_cmi_get_max_portnumber(), expected_max_port_number(num_slots, type))
          << num_slots << " slots, type " << type;
    }
  }
}

TEST_F(MaxPortNumber, AsksThePlatformForBothOnEveryCall) {
  ficon_cmi_get_max_portnumber();
  EXPECT_THAT(platform.all_calls(), ElementsAre("get_platform_info()", "hwinv_get_chassis_type(-1)"));
  platform.forget_calls();
  ficon_cmi_get_max_portnumber();
  EXPECT_THAT(platform.all_calls(), ElementsAre("get_platform_info()", "hwinv_get_chassis_type(-1)"));
}

TEST_F(MaxPortNumber, NeitherUsesNorFillsTheCachedPlatformRecord) {
  EXPECT_EQ(ficon_cmi_get_max_portnumber(), 253);
  EXPECT_THAT(libchnsw_pinfo, IsNull());

  ficon_platform_info cached;
  ficon_get_platform_info(&cached);
  platform.set_chassis(2, 5);
  EXPECT_EQ(ficon_cmi_get_max_portnumber(), 77);
  EXPECT_EQ(libchnsw_pinfo->num_slots, 10);
}

TEST_F(MaxPortNumber, DoesNotMakeThePortCountKnown) {
  ficon_cmi_get_max_portnumber();
  EXPECT_EQ(MAX_FICON_PORTS, 0);
}

TEST_F(MaxPortNumber, IsMinusOneWithAReportWhenThePlatformInformationIsUnavailable) {
  platform.info_answer = {3, 19};
  int32_t highest = 0;

  const std::string printed = output_of([&] { highest = ficon_cmi_get_max_portnumber(); });

  EXPECT_EQ(highest, -1);
  EXPECT_EQ(printed, "FICON_ERR: get_platform_info failed, errno = 19");
  EXPECT_THAT(platform.errors(), ElementsAre("get_platform_info failed, errno = 19"));
  EXPECT_THAT(platform.calls(), ElementsAre("get_platform_info()"));
}

TEST_F(MaxPortNumber, IsMinusTwoWithAReportWhenTheChassisTypeIsUnavailable) {
  platform.chassis_answer = {3, 19};
  int32_t highest = 0;

  const std::string printed = output_of([&] { highest = ficon_cmi_get_max_portnumber(); });

  EXPECT_EQ(highest, -2);
  EXPECT_EQ(printed, "FICON_ERR: hwinv_get_chassis_type failed, errno = 19");
  EXPECT_THAT(platform.errors(), ElementsAre("hwinv_get_chassis_type failed, errno = 19"));
  EXPECT_THAT(platform.calls(), ElementsAre("get_platform_info()", "hwinv_get_chassis_type(-1)"));
}

// Oddity: the texts have no line end, so two failures run together on standard output.
TEST_F(MaxPortNumber, FailuresRunTogetherOnOneLine) {
  platform.info_answer = {-1, 5};
  EXPECT_EQ(output_of([] {
              ficon_cmi_get_max_portnumber();
              ficon_cmi_get_max_portnumber();
            }),
            "FICON_ERR: get_platform_info failed, errno = 5FICON_ERR: get_platform_info failed, errno = 5");
}

TEST_F(MaxPortNumber, ChassisTypeReportReadsErrnoAfreshForEachOutput) {
  platform.chassis_answer = {-1, 19};
  platform.debug_flags = {102};
  platform.on_call = [](const std::string& call) {
    if (call.starts_with("evtrc_hist_event_subtype_check")) errno = 31;
    if (call.starts_with("evtrc_chk_int")) errno = 32;
    if (call.starts_with("dbgout")) errno = 33;
  };

  const std::string printed = output_of([] { ficon_cmi_get_max_portnumber(); });

  EXPECT_THAT(platform.errors(), ElementsAre("hwinv_get_chassis_type failed, errno = 31"));
  EXPECT_EQ(platform.debug_output().at(0).text, "hwinv_get_chassis_type failed, errno = 32");
  EXPECT_EQ(printed, "FICON_ERR: hwinv_get_chassis_type failed, errno = 33");
}

// ---- number of ports ----

class MaxFiconPorts : public chnsw_test::LibraryTest {};

TEST_F(MaxFiconPorts, IsOneMoreThanTheHighestPortNumber) {
  platform.set_chassis(18, 38);
  EXPECT_EQ(ficon_get_max_ficon_ports(), 254);
  EXPECT_EQ(MAX_FICON_PORTS, 254);
}

TEST_F(MaxFiconPorts, OfAnEighteenSlotChassisOfAnotherType) {
  platform.set_chassis(18, 37);
  EXPECT_EQ(ficon_get_max_ficon_ports(), 238);
  EXPECT_EQ(MAX_FICON_PORTS, 238);
}

TEST_F(MaxFiconPorts, OnceKnownIsNotAskedAgain) {
  ficon_get_max_ficon_ports();
  platform.set_chassis(2, 5);
  platform.forget_calls();

  EXPECT_EQ(ficon_get_max_ficon_ports(), 254);

  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

TEST_F(MaxFiconPorts, AnyPositiveValueCountsAsKnown) {
  MAX_FICON_PORTS = 1;
  EXPECT_EQ(ficon_get_max_ficon_ports(), 1);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

TEST_F(MaxFiconPorts, IsZeroWhileThePlatformInformationIsUnavailable) {
  platform.info_answer = {-1, 5};
  EXPECT_EQ(ficon_get_max_ficon_ports(), 0);
  EXPECT_EQ(MAX_FICON_PORTS, 0);

  platform.info_answer = {};
  EXPECT_EQ(ficon_get_max_ficon_ports(), 254);
}

TEST_F(MaxFiconPorts, IsMinusOneWhileTheChassisTypeIsUnavailable) {
  platform.chassis_answer = {-1, 5};
  EXPECT_EQ(ficon_get_max_ficon_ports(), -1);
  EXPECT_EQ(MAX_FICON_PORTS, -1);

  platform.chassis_answer = {};
  EXPECT_EQ(ficon_get_max_ficon_ports(), 254);
}

// Oddity: an unknown chassis has one port, and keeps it.
TEST_F(MaxFiconPorts, OfAnUnknownChassisIsOneForTheLifeOfTheLibrary) {
  platform.set_chassis(7, 0);
  EXPECT_EQ(ficon_get_max_ficon_ports(), 1);
  platform.set_chassis(10, 32);
  EXPECT_EQ(ficon_get_max_ficon_ports(), 1);
}

} // namespace
