// The library beside its model over fixed seeds, and that these are worth something.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libchnsw.h>

#include <map>
#include <set>
#include <string>

#include "port_map_comparison.h"

namespace chnsw_test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsSupersetOf;
using ::testing::Key;

constexpr uint64_t kSeeds = 1500;
constexpr size_t kSteps = 160;

// Stands for every status of a service that is passed through.
constexpr uint32_t kOfService = 100;
constexpr uint32_t kServiceMax = 355;

// The seeds up to the first one that differs.
struct all_seeds {
  all_seeds() {
    for (uint64_t seed = 1; seed <= kSeeds && difference.empty(); ++seed) {
      const auto bytes = bytes_of_seed(seed, kSteps);
      if (compare_port_map(bytes, &what).empty()) continue;
      difference = "seed " + std::to_string(seed) + "\n" + compare_port_map(shrunk(bytes));
    }
  }
  compared what;
  std::string difference;
};

const all_seeds& seeds() {
  static const all_seeds compared_once;
  return compared_once;
}

std::set<uint32_t> statuses_of(const std::string& operation) {
  std::set<uint32_t> found;
  const auto& of_all = seeds().what.status_of;
  const auto counted = of_all.find(operation);
  if (counted == of_all.end()) return found;
  for (const auto& [status, times] : counted->second) {
    found.insert(status >= kOfService && status <= kServiceMax ? kOfService : status);
  }
  return found;
}

TEST(PortMapModel, AgreesWithTheLibraryAfterEveryCall) {
  EXPECT_EQ(seeds().difference, "");
}

TEST(PortMapModel, FewCallsOfTheSeedsAreUndefined) {
  EXPECT_GE(seeds().what.calls, 90000u);
  EXPECT_LE(seeds().what.undefined, seeds().what.calls / 10);
}

// ---- every status of every operation, and no other ----

using statuses = std::set<uint32_t>;

constexpr uint32_t kOk = 0;
constexpr uint32_t kNoMemory = 1;
constexpr uint32_t kNotFcPort = 11;

void expect_statuses(const std::map<std::string, statuses>& expected) {
  for (const auto& [operation, those] : expected) EXPECT_EQ(statuses_of(operation), those) << operation;
}

TEST(PortMapModel, SeedsReachEveryStatusOfTheTables) {
  const statuses fetch = {kOk, kNoMemory};
  const statuses sized_fetch = {kOk, kNoMemory, FICON_RC_PLATFORM};
  expect_statuses({
      {"ficon_get_platform_info", {kOk, kNoMemory, kOfService}},
      {"ficon_get_pmap_portvsan", fetch},
      {"ficon_get_pmap_portpn", fetch},
      {"ficon_get_pmap_papn", sized_fetch},
      {"ficon_get_pmap_pnif", sized_fetch},
      {"ficon_cmi_get_pmap_change_counter", {kOk}},
      {"ficon_pmap_prepare_fastpath", sized_fetch},
      {"ficon_pmap_get_pn_logif", sized_fetch},
      {"ficon_pmap_get_info_in_vsan", fetch},
  });
}

TEST(PortMapModel, SeedsReachEveryStatusOfAddressAndNumber) {
  const statuses pa_to_pn_fast = {kOk, FICON_RC_INVALID_ARG, FICON_RC_PLATFORM, FICON_RC_PA_RANGE, FICON_RC_MULTI_IF};
  const statuses pn_to_pa_fast = {kOk, FICON_RC_INVALID_ARG, FICON_RC_PLATFORM, FICON_RC_PN_RANGE, FICON_RC_MULTI_IF};
  statuses pa_to_pn = pa_to_pn_fast;
  pa_to_pn.insert(kNoMemory);
  statuses pn_to_pa = pn_to_pa_fast;
  pn_to_pa.insert(kNoMemory);
  expect_statuses({
      {"ficon_pmap_get_pa_to_pn_withpvsan", pa_to_pn},
      {"ficon_pmap_get_pa_to_pn", pa_to_pn},
      {"ficon_pmap_get_pa_vsan_to_pn", pa_to_pn},
      {"ficon_pmap_get_pa_to_pn_fast", pa_to_pn_fast},
      {"ficon_pmap_get_pa_vsan_to_pn_fast", pa_to_pn_fast},
      {"ficon_pmap_get_pn_to_pa_withpvsan", pn_to_pa},
      {"ficon_pmap_get_pn_to_pa", pn_to_pa},
      {"ficon_pmap_get_pn_vsan_to_pa", pn_to_pa},
      {"ficon_pmap_get_pn_to_pa_fast", pn_to_pa_fast},
      {"ficon_pmap_get_pn_vsan_to_pa_fast", pn_to_pa_fast},
  });
}

TEST(PortMapModel, SeedsReachEveryStatusOfNumbering) {
  const statuses slot = {kOk, FICON_RC_INVALID_ARG, FICON_RC_PLATFORM};
  expect_statuses({
      {"ficon_get_default_pn", {kOk, FICON_RC_BASE, FICON_RC_INVALID_ARG, FICON_RC_PLATFORM}},
      {"ficonm_platform_slot_to_lc_b0", slot},
      {"ficonm_platform_lc_to_slot_b0", slot},
      {"ficonm_platform_slot_to_pnpa_index_withpmap", slot},
      {"ficonm_platform_slot_to_pnpa_index", slot},
      {"ficonm_platform_slot_to_pnpa", slot},
  });
}

TEST(PortMapModel, SeedsReachEveryStatusOfNumberToInterface) {
  const statuses pn_to_if_fast = {kOk, FICON_RC_INVALID_ARG, FICON_RC_PN_RANGE, FICON_RC_NO_IF, FICON_RC_MULTI_IF};
  statuses pn_to_if = pn_to_if_fast;
  pn_to_if.insert({kNoMemory, FICON_RC_PLATFORM});
  const statuses index_to_if = {kOk, kNoMemory, kOfService, FICON_RC_INVALID_ARG, FICON_RC_PLATFORM};
  expect_statuses({
      {"ficon_pmap_get_pn_to_if_withpvsan", pn_to_if},
      {"ficon_pmap_get_pn_vsan_to_if_fast", pn_to_if_fast},
      {"ficon_pmap_get_pn_to_if_fast", pn_to_if_fast},
      {"ficon_pmap_get_pn_vsan_to_if", pn_to_if},
      {"ficon_pmap_get_pn_to_if", pn_to_if},
      {"ficon_pmap_get_index_to_if_withpmap", index_to_if},
      {"ficon_pmap_get_index_to_if", index_to_if},
      {"ficon_pmap_get_index_to_phyif",
       {kOk, kOfService, FICON_RC_INVALID_ARG, FICON_RC_PLATFORM, FICON_RC_NO_IF, FICON_RC_LAG_MEMBER}},
      {"ficon_pmap_get_pn_to_phyif_withpvsan", pn_to_if},
      {"ficon_pmap_get_pn_to_phyif", pn_to_if},
      {"ficon_pmap_get_pn_vsan_to_phyif", pn_to_if},
  });
}

TEST(PortMapModel, SeedsReachEveryStatusOfAddressToInterface) {
  const statuses pa_to_if_fast = {kOk,
                                  FICON_RC_INVALID_ARG,
                                  FICON_RC_PLATFORM,
                                  FICON_RC_PA_RANGE,
                                  FICON_RC_PN_RANGE,
                                  FICON_RC_NO_IF,
                                  FICON_RC_MULTI_IF};
  statuses pa_to_if = pa_to_if_fast;
  pa_to_if.insert(kNoMemory);
  expect_statuses({
      {"ficon_pmap_get_pa_to_if", pa_to_if},
      {"ficon_pmap_get_pa_vsan_to_if", pa_to_if},
      {"ficon_pmap_get_pa_to_if_fast", pa_to_if_fast},
      {"ficon_pmap_get_pa_vsan_to_if_fast", pa_to_if_fast},
      {"ficon_pmap_get_pa_to_phyif", pa_to_if},
      {"ficon_pmap_get_pa_vsan_to_phyif", pa_to_if},
  });
}

TEST(PortMapModel, SeedsReachEveryStatusOfInterfaceToNumber) {
  const statuses if_to_number = {kOk,
                                 kNoMemory,
                                 kNotFcPort,
                                 kOfService,
                                 FICON_RC_INVALID_ARG,
                                 FICON_RC_PLATFORM,
                                 FICON_RC_NOT_ASSOCIATED,
                                 FICON_RC_LAG_MEMBER};
  expect_statuses({
      {"ficon_pmap_get_if_to_pnpa_index_with2pmaps", if_to_number},
      {"ficon_pmap_get_if_to_pnpa_index_withpmap", if_to_number},
      {"ficon_pmap_get_if_to_pnpa_withpmap", if_to_number},
      {"ficon_pmap_get_if_to_pn_withpmap", if_to_number},
      {"ficon_pmap_get_if_to_pn", if_to_number},
      {"ficon_pmap_get_if_to_pa", if_to_number},
      {"ficon_pmap_get_if_to_index", if_to_number},
      {"ficon_pmap_get_if_to_index_with2pmaps", if_to_number},
      {"ficon_pmap_get_next_if", if_to_number},
      {"ficon_pmap_get_last_if", if_to_number},
      {"ficon_if_to_slot_port_logic", {kOk, kNotFcPort, kOfService}},
  });
}

// ---- what else the seeds reach ----

TEST(PortMapModel, SeedsReachEveryNumberThatAnOperationAnswers) {
  constexpr uint32_t kMinus1 = 0xFFFFFFFF;
  constexpr uint32_t kMinus2 = 0xFFFFFFFE;
  constexpr uint32_t kMinus3 = 0xFFFFFFFD;
  const auto& status_of = seeds().what.status_of;
  const std::map<std::string, std::set<uint32_t>> expected = {
      {"ficon_cmi_get_max_portnumber", {0, 33, 47, 53, 77, 141, 237, 253, kMinus1, kMinus2}},
      {"ficon_get_max_ficon_ports", {0, 1, 34, 48, 54, 78, 142, 238, 254, kMinus1}},
      {"ficon_port_to_pn_init", {0, 20, 34, 40, 64, 128, 224, 240, kMinus1, kMinus2, kMinus3}},
      {"ficon_port_to_pn_is_default", {0, 1, kMinus1, kMinus2}},
      {"ficonm_platform_slot_to_pn", {1, 2, 512}},
  };
  for (const auto& [operation, numbers] : expected) {
    const auto counted = status_of.find(operation);
    ASSERT_NE(counted, status_of.end()) << operation;
    for (const uint32_t number : numbers) EXPECT_THAT(counted->second, Contains(Key(number))) << operation;
  }
}

// The three searches decide alike. Only a fast form gets as far as several ports without the port-to-VSAN table.
TEST(PortMapModel, SeedsReachEveryDecisionOfTheSearches) {
  EXPECT_THAT(
      seeds().what.decided,
      ElementsAre("PA: none bound", "PA: none counts", "PA: none in the VSAN", "PA: one bound", "PA: one counts",
                  "PA: one in the VSAN", "PA: several bound", "PA: several in the VSAN, none bound",
                  "PA: several in the VSAN, one bound", "PA: several in the VSAN, several bound",
                  "PA: several, no VSAN given", "PN to interface: bound to one", "PN to interface: none bound",
                  "PN to interface: none counts", "PN to interface: none in the VSAN", "PN to interface: one bound",
                  "PN to interface: one counts", "PN to interface: one in the VSAN", "PN to interface: several bound",
                  "PN to interface: several in the VSAN, none bound", "PN to interface: several in the VSAN, one bound",
                  "PN to interface: several in the VSAN, several bound", "PN to interface: several, no VSAN given",
                  "PN to port: bound to an interface", "PN to port: none counts", "PN to port: none in the VSAN",
                  "PN to port: one counts", "PN to port: one in the VSAN", "PN to port: several in the VSAN, none bound",
                  "PN to port: several in the VSAN, one bound", "PN to port: several in the VSAN, several bound",
                  "PN to port: several, no VSAN given", "PN to port: without a port", "PN: none bound", "PN: none counts",
                  "PN: none in the VSAN", "PN: one bound", "PN: one counts", "PN: one in the VSAN", "PN: several bound",
                  "PN: several in the VSAN, none bound", "PN: several in the VSAN, one bound",
                  "PN: several in the VSAN, several bound", "PN: several, no VSAN given"));
}

TEST(PortMapModel, SeedsReachEveryReportAndTrace) {
  EXPECT_THAT(
      seeds().what.texts,
      IsSupersetOf({
          "get_platform_info failed, errno = ?",
          "hwinv_get_chassis_type failed, errno = ?",
          "ficon_pmap_get_pa_to_pn_withpvsan(?) pn(?) pa(?) (?) vsans(? ? ? ? ? ? ? ?)\n",
          "ficon_pmap_get_pa_to_pn_withpvsan(?): Count(?) Bound(?) Bound PN(?) Vsan(?) In Vsan(?) gvp(?) vsan_pn(?)\n",
          "ficon_port_to_pn_init(?): Num Slots: ? Chassis Type: ?\n",
          "ficon_pmap_get_index_to_if_withpmap(?):failed to get pmap_pnif ?\n",
          "Failed to compute ifindex for index ?(?)\n",
          "portidx lookup failed for IfIndex ? with err (?)\n",
          "Index :? is a portthats part of port-channel\n",
          "lagmap_get_port failed: if_index:?\n",
          "Port Number:? is associated with a port thats part of port-channel\n",
          "ficon_pmap_get_pn_to_if_withpvsan(?) pn(?) inst if(?) vsans(? ? ? ? ? ? ? ?)\n",
          "ficon_pmap_get_pn_to_if_withpvsan(?): Count(?) Bound(?) Bound If(?) Vsan(?) In Vsan(?) gvp(?) vsan_if(?)\n",
          "ficon_pmap_get_if_to_pnpa_index_with?pmaps(?):failed to get pmap_pnif ?\n",
          "ficon_pmap_get_if_to_pnpa_index_with?pmaps(?):failed to get pmap_portpn ?\n",
          "failed to get if type for if_index:? (?)\n",
          "if_index ? not fc port. type = ?\n",
          "Failed to get slot for if_index ? (?)\n",
          "Failed to get port for if_index ? (?)\n",
          "if_index ? is a port thats part of port-channel\n",
          "lagmap_get_port failed: if_index:?,rc:?\n",
          "Invalid slot number for linecard ? (?)\n",
          "if_index:?, slot:?base?, port:?base?, port-number:?\n",
          "Found ifindex in pn to logif map for : ?\n ",
          "if_index:? not reserved\n",
          "if_index:? not associated\n",
          "ficon_pmap_get_pn_to_phyif_withpvsan(?):failed to get pmap_portpn ?\n",
          "ficon_pmap_get_pn_to_phyif_withpvsan(?):failed to get pmap_pnif ?\n",
          "ficon_pmap_get_pn_logif(?):failed to get pmap_pnif ?\n",
          "ficon_pmap_get_info_in_vsan(?):failed to get pmap_portvsan (?)\n",
          "ficon_pmap_get_info_in_vsan(?):failed to get pmap_portpn (?)\n",
      }));
}

TEST(PortMapModel, SeedsRefuseEveryAllocation) {
  EXPECT_THAT(seeds().what.warnings,
              ElementsAre("[1420]", "[1453]", "[1491]", "[1530]", "[3665]", "[3669]", "[3673]", "[3677]", "[81]"));
}

} // namespace
} // namespace chnsw_test
