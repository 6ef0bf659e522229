// Reports and traces of the port map operations: each goes where the platform wants it, and only there.
#include <ostream>

#include "port_map_test.h"

namespace {

using namespace chnsw_test;
using ::testing::Contains;
using ::testing::Field;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr uint32_t kPort5 = 0x1000205;    // slot 2, port 5: index 513
constexpr uint32_t kChannel1 = 0x4000001; // type 4

enum class kind { error, trace };

struct report {
  const char* name;
  kind what;
  const char* text;
  void (*provoke)(programmable_platform& platform, port_map& map);
};

void PrintTo(const report& report, std::ostream* stream) {
  *stream << report.name;
}

// ---- the operations, as each is called here ----

void index_to_interface() {
  uint32_t if_index = 0;
  ficon_pmap_get_index_to_phyif(513, &if_index);
}

void interface_to_number(uint32_t if_index) {
  ficon_pmap_port_entry entry = {};
  uint32_t index = 0;
  ficon_pmap_get_if_to_pnpa_index_with2pmaps(if_index, &entry, &index, nullptr, nullptr, 0);
}

void number_to_interface(port_map& map) {
  map.entry(513, 7, 0x20, {10});
  uint32_t if_index = 0;
  ficon_pmap_get_pn_to_if(7, &if_index);
}

void address_to_number(port_map& map) {
  map.entry(513, 7, 0x20, {10});
  uint16_t pn = 0;
  ficon_pmap_get_pa_to_pn(0x20, &pn);
}

void vsan_ports() {
  uint16_t* pns = nullptr;
  uint16_t* pas = nullptr;
  uint32_t* if_indexes = nullptr;
  uint32_t* bound = nullptr;
  uint32_t count = 0;
  ficon_pmap_get_info_in_vsan(10, &pns, &pas, &if_indexes, &bound, &count);
}

const report kReports[] = {
    {"PlatformInfo", kind::error, "get_platform_info failed, errno = 5",
     [](auto& platform, auto&) {
       platform.info_answer = {-1, 5};
       ficon_cmi_get_max_portnumber();
     }},
    {"ChassisType", kind::error, "hwinv_get_chassis_type failed, errno = 19",
     [](auto& platform, auto&) {
       platform.chassis_answer = {-1, 19};
       ficon_cmi_get_max_portnumber();
     }},
    {"DefaultNumbering", kind::trace, "Num Slots: 10 Chassis Type: 32\n",
     [](auto&, auto& map) { ficon_port_to_pn_init(1280, map.port_to_pn.data(), 0, nullptr); }},

    {"Address", kind::trace, "ficon_pmap_get_pa_to_pn_withpvsan(1861) pn(7) pa(32) (513) vsans(10 0 0 0 0 0 0 0)\n",
     [](auto&, auto& map) { address_to_number(map); }},
    {"AddressSearch", kind::trace,
     "ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(1) Bound(0) Bound PN(32) Vsan(0) In Vsan(0) gvp(0) vsan_pn(32)\n",
     [](auto&, auto& map) { address_to_number(map); }},

    {"BuiltInterface", kind::error, "Failed to compute ifindex for index 513(0x4d)\n",
     [](auto& platform, auto&) {
       platform.fail_port_init(2, 5, 77);
       index_to_interface();
     }},
    {"PortIndex", kind::trace, "portidx lookup failed for IfIndex 1000205 with err (78)\n",
     [](auto& platform, auto&) {
       platform.interface(kPort5).portidx_status = 78;
       index_to_interface();
     }},
    {"MemberByIndex", kind::trace, "Index :513 is a portthats part of port-channel\n",
     [](auto& platform, auto&) {
       platform.interface(kPort5).channel = 9;
       index_to_interface();
     }},
    {"PortChannelByIndex", kind::error, "lagmap_get_port failed: if_index:0x1000205\n",
     [](auto& platform, auto&) {
       platform.interface(kPort5).lag_status = 79;
       index_to_interface();
     }},

    {"Number", kind::trace, "ficon_pmap_get_pn_to_if_withpvsan(2254) pn(7) inst if(0x1000205) vsans(10 0 0 0 0 0 0 0)\n",
     [](auto&, auto& map) { number_to_interface(map); }},
    {"NumberSearch", kind::trace,
     "ficon_pmap_get_pn_to_if_withpvsan(2286): Count(1) Bound(0) Bound If(0) Vsan(0) In Vsan(0) gvp(0) vsan_if(0)\n",
     [](auto&, auto& map) { number_to_interface(map); }},
    {"MemberByNumber", kind::trace, "Port Number:7 is associated with a port thats part of port-channel\n",
     [](auto& platform, auto& map) {
       platform.interface(kPort5).channel = 9;
       number_to_interface(map);
     }},
    {"PortChannelByNumber", kind::error, "lagmap_get_port failed: if_index:0x1000205\n",
     [](auto& platform, auto& map) {
       platform.interface(kPort5).lag_status = 79;
       number_to_interface(map);
     }},

    {"NumbersOfInterfaces", kind::error, "ficon_pmap_get_if_to_pnpa_index_with2pmaps(2884):failed to get pmap_pnif 1\n",
     [](auto& platform, auto&) {
       platform.refuse_type(3);
       interface_to_number(kPort5);
     }},
    {"NumbersOfPorts", kind::error, "ficon_pmap_get_if_to_pnpa_index_with2pmaps(2894):failed to get pmap_portpn 1\n",
     [](auto& platform, auto&) {
       platform.refuse_type(5);
       interface_to_number(kPort5);
     }},
    {"Type", kind::error, "failed to get if type for if_index:0x1000205 (77)\n",
     [](auto& platform, auto&) {
       platform.interface(kPort5).type_status = 77;
       interface_to_number(kPort5);
     }},
    {"OtherType", kind::error, "if_index 0x1000205 not fc port. type = 2\n",
     [](auto& platform, auto&) {
       platform.interface(kPort5).type = uint8_t{2};
       interface_to_number(kPort5);
     }},
    {"Slot", kind::error, "Failed to get slot for if_index 0x1000205 (78)\n",
     [](auto& platform, auto&) {
       platform.interface(kPort5).slot_status = 78;
       interface_to_number(kPort5);
     }},
    {"Port", kind::error, "Failed to get port for if_index 0x1000205 (79)\n",
     [](auto& platform, auto&) {
       platform.interface(kPort5).port_status = 79;
       interface_to_number(kPort5);
     }},
    {"SupervisorSlot", kind::error, "Invalid slot number for linecard 4 (1082458115)\n",
     [](auto&, auto&) { interface_to_number(physical_interface(4, 0)); }},
    {"PhysicalPort", kind::trace, "if_index:0x1000205, slot:3base1, port:6base1, port-number:7\n",
     [](auto&, auto& map) {
       map.entry(513, 7, 0x20, {10});
       interface_to_number(kPort5);
     }},
    {"MemberByInterface", kind::error, "if_index 0x1000205 is a port thats part of port-channel\n",
     [](auto& platform, auto&) {
       platform.interface(kPort5).channel = 9;
       interface_to_number(kPort5);
     }},
    {"PortChannelByInterface", kind::error, "lagmap_get_port failed: if_index:0x1000205,rc:79\n",
     [](auto& platform, auto&) {
       platform.interface(kPort5).lag_status = 79;
       interface_to_number(kPort5);
     }},
    {"BoundInterface", kind::trace, "Found ifindex in pn to logif map for : 0x4000001\n ",
     [](auto&, auto& map) {
       map.bind(7, kChannel1);
       interface_to_number(kChannel1);
     }},
    {"NotReserved", kind::trace, "if_index:0x4000001 not reserved\n",
     [](auto&, auto& map) {
       map.bind(7, kChannel1);
       interface_to_number(kChannel1);
     }},
    {"NotAssociated", kind::trace, "if_index:0x4000001 not associated\n",
     [](auto&, auto&) { interface_to_number(kChannel1); }},

    {"BoundNumbers", kind::error, "ficon_pmap_get_pn_logif(3607):failed to get pmap_pnif 1\n",
     [](auto& platform, auto&) {
       platform.refuse_type(3);
       ficon_pmap_get_pn_logif(nullptr, nullptr, nullptr);
     }},
    {"VsansOfAVsansPorts", kind::error, "ficon_pmap_get_info_in_vsan(3637):failed to get pmap_portvsan (0x1)\n",
     [](auto& platform, auto&) {
       platform.refuse_allocation(1);
       vsan_ports();
     }},
    {"NumbersOfAVsansPorts", kind::error, "ficon_pmap_get_info_in_vsan(3644):failed to get pmap_portpn (0x1)\n",
     [](auto& platform, auto&) {
       platform.refuse_allocation(2);
       vsan_ports();
     }},
};

class EveryReport : public PortMapTest, public ::testing::WithParamInterface<report> {
 protected:
  EveryReport() {
    platform.filtered_subtypes = {102, 103};
    platform.debug_flags = {};
  }

  std::string provoke() {
    return output_of([&] { GetParam().provoke(platform, map); });
  }
};

TEST_P(EveryReport, GoesToTheDebugOutputEvenWhenFiltered) {
  platform.debug_flags = {102, 103};

  provoke();

  EXPECT_THAT(platform.debug_output(), Contains(Field(&debug_text::text, HasSubstr(GetParam().text))));
  EXPECT_THAT(platform.history(), IsEmpty());
}

TEST_P(EveryReport, ReachesStandardOutputAtMostWhenFilteredAndDebuggingIsOff) {
  const std::string printed = provoke();

  if (GetParam().what == kind::error) {
    EXPECT_THAT(printed, HasSubstr(std::string("FICON_ERR: ") + GetParam().text));
  } else {
    EXPECT_THAT(printed, Not(HasSubstr(GetParam().text)));
  }
  EXPECT_THAT(platform.debug_output(), IsEmpty());
  EXPECT_THAT(platform.history(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(PortMap, EveryReport, ::testing::ValuesIn(kReports),
                         [](const auto& tested) { return std::string(tested.param.name); });

} // namespace
