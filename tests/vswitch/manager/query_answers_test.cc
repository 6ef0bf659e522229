// What is answered to who asks: every field, and every payload that is not what it should be.
#include <gmock/gmock.h>
#include <platform/if_index.h>
#include <query_answers.h>
#include <vswitch/manager/manager_protocol.h>
#include <vswitch/vswitch.h>

#include <cstring>

#include "manager_test.h"

namespace {

using namespace vswitch;
using namespace manager_test;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr uint32_t kInvalidArg = 0x40850003;

class QueryAnswers : public testing::Test {
 protected:
  QueryAnswers() : chassis_(full_switch()) { use_switch(switch_store::in_memory(chassis_)); }
  ~QueryAnswers() override { use_switch(nullptr); }

  // The value of a TLV answer, as its record.
  template <typename record>
  static record value_of(const answer& given, uint16_t type) {
    auto found = tlv_record<record>(given.payload, type);
    EXPECT_TRUE(found) << given.payload.size() << " bytes";
    return found.value_or(record{});
  }
  static void expect_refusal(const answer& given) {
    EXPECT_EQ(given.result, kInvalidArg);
    const auto* bytes = reinterpret_cast<const unsigned char*>(given.payload.data());
    const uint32_t result = kInvalidArg;
    EXPECT_EQ(given.payload.size(), 4u);
    EXPECT_EQ(std::memcmp(bytes, &result, 4), 0);
  }

  static ficon_portmap_req port_map_request(uint32_t if_index, uint8_t selector = 0) {
    ficon_portmap_req request = {};
    request.header.code = 17;
    request.header.kind = 18;
    std::memcpy(request.header.text1, "nightly", 7);
    request.if_index = hton_if_index(if_index);
    request.number_a = 77;
    request.number_b = 78;
    request.selector = selector;
    return request;
  }
  answer ask_port_map(const ficon_portmap_req& request) const {
    return answer_port_map(chassis_, tlv_array({{9, &request, sizeof request}}));
  }
  void expect_numbers(uint32_t if_index, uint32_t result, uint16_t pn, uint16_t pa) const {
    const answer given = ask_port_map(port_map_request(if_index));
    const auto record = value_of<ficon_portmap_req>(given, 9);
    EXPECT_EQ(record.result, result) << std::hex << if_index;
    EXPECT_EQ(given.result, result);
    EXPECT_EQ(record.if_index, hton_if_index(if_index));
    EXPECT_EQ(uint16_t{record.number_a}, pn) << std::hex << if_index;
    EXPECT_EQ(uint16_t{record.number_b}, pa) << std::hex << if_index;
  }

  ficon_ifvsan_query ask_state(uint32_t if_index, uint32_t vsan) const {
    const ficon_ifvsan_query query = {0x11111111, 0x22222222, vsan, hton_if_index(if_index), 0xCAFE};
    return flat_record<ficon_ifvsan_query>(answer_ifvsan_state(chassis_, flat_payload(query)).payload).value();
  }
  void expect_state(uint32_t if_index, uint32_t vsan, uint32_t result, uint32_t state) const {
    const auto given = ask_state(if_index, vsan);
    EXPECT_EQ(given.result, result) << std::hex << if_index << " " << vsan;
    EXPECT_EQ(given.state, state) << std::hex << if_index << " " << vsan;
    EXPECT_EQ(given.arg_a, vsan);
    EXPECT_EQ(given.arg_b, 0xCAFEu);
    EXPECT_EQ(given.if_index, hton_if_index(if_index));
  }

  static ficon_rnid_rec rnid_request(uint32_t if_index) {
    ficon_rnid_rec request = {};
    request.if_index = hton_if_index(if_index);
    request.rnid_port = 5;
    request.rnid_size = 512;
    request.rnid_word8 = 0x08080808;
    request.codepage = 99;
    request.rnid_format = 2;
    request.rnid_word24 = 0x24242424;
    std::memset(request.descriptor, 0xEE, sizeof request.descriptor);
    return request;
  }
  ficon_rnid_rec ask_rnid(uint32_t if_index, ficon_convert_fn convert = ficon_get_convert_fn_ptr()) const {
    const auto request = rnid_request(if_index);
    return value_of<ficon_rnid_rec>(answer_rnid(chassis_, tlv_array({{15, &request, sizeof request}}), convert), 15);
  }

  chassis_description chassis_;
};

// ---- Port map ----

TEST_F(QueryAnswers, PortMapOfPortsAndLogicalInterfaces) {
  expect_numbers(kFc1_1, 0, 0, 0x20);
  expect_numbers(kFc1_2, 0, 1, 0x21);
  expect_numbers(kFcip3, 0, 240, 0xF0);
  expect_numbers(kPortChannel5, 0, 241, 0xF1);
}

TEST_F(QueryAnswers, PortMapOfAPortWithoutNumbersIsNoNumbers) {
  expect_numbers(kFc1_9, 0, 512, 512);
}

TEST_F(QueryAnswers, PortMapOfAMemberOfAPortChannelIsTheLibrarysStatus) {
  expect_numbers(kFc1_3, 0x4085001A, 512, 512);
}

TEST_F(QueryAnswers, PortMapOfALogicalInterfaceWithoutANumberIsTheLibrarysStatus) {
  expect_numbers(kFcip4, 0x4085003E, 512, 512);
}

TEST_F(QueryAnswers, PortMapOfALogicalInterfaceWhoseNumberNoEntryCarriesHasNoNumbers) {
  chassis_.map.pn_to_if[200] = kFcip4;
  use_switch(switch_store::in_memory(chassis_));
  expect_numbers(kFcip4, 0x4085003E, 512, 512);
}

TEST_F(QueryAnswers, PortMapOfAnotherTypeIsTheLibrarysStatus) {
  expect_numbers(kManagement0, 11, 512, 512);
  expect_numbers(0x0A000063, 0x40480002, 512, 512); // fcip99
  expect_numbers(0, 0x40480002, 512, 512);
}

TEST_F(QueryAnswers, PortMapOfAPortThatIsNotThereIsNoInterface) {
  expect_numbers(kFc1_49, 0x4085004A, 512, 512);
  expect_numbers(0x01FF0000, 0x4085004A, 512, 512); // slot 256
  expect_numbers(0x0100FF00, 0x4085004A, 512, 512); // port 256
}

TEST_F(QueryAnswers, PortMapEndsBeforeThePortsThatDoNotFit) {
  expect_numbers(0x01060700, 0, 512, 512); // fc7/8, index 1023
  expect_numbers(kFc7_9, 0x4085004A, 512, 512);
}

TEST_F(QueryAnswers, PortMapKnowsOneSelector) {
  const auto record = value_of<ficon_portmap_req>(ask_port_map(port_map_request(kFc1_1, 1)), 9);
  EXPECT_EQ(record.result, kInvalidArg);
  EXPECT_EQ(uint16_t{record.number_a}, 512);
  EXPECT_EQ(uint16_t{record.number_b}, 512);
}

TEST_F(QueryAnswers, PortMapAnswerKeepsTheHeader) {
  const auto record = value_of<ficon_portmap_req>(ask_port_map(port_map_request(kFc1_1)), 9);
  EXPECT_EQ(record.header.code, 17u);
  EXPECT_EQ(record.header.kind, 18u);
  EXPECT_STREQ(record.header.text1, "nightly");
}

TEST_F(QueryAnswers, PortMapTellsTheLogCodeAndTexts) {
  auto request = port_map_request(kFc1_1);
  std::memset(request.header.text1, 'a', sizeof request.header.text1); // no NUL
  std::memcpy(request.header.text2, "b\n\"\x7F", 4);
  EXPECT_EQ(ask_port_map(request).what,
            "port map of fc1/1, code 17, \"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa\", \"b???\"");
}

TEST_F(QueryAnswers, PortMapRequestThatIsNotOneIsRefused) {
  const ficon_portmap_req request = {};
  expect_refusal(answer_port_map(chassis_, {}));
  expect_refusal(answer_port_map(chassis_, flat_payload(request)));
  expect_refusal(answer_port_map(chassis_, tlv_array({{10, &request, sizeof request}})));
  expect_refusal(answer_port_map(chassis_, tlv_array({{9, &request, 129}})));
  const char longer[131] = {};
  expect_refusal(answer_port_map(chassis_, tlv_array({{9, longer, sizeof longer}})));
}

TEST_F(QueryAnswers, FirstValueOfTheTypeCounts) {
  const auto first = port_map_request(kFc1_1);
  const auto second = port_map_request(kFc1_2);
  const auto given =
      answer_port_map(chassis_, tlv_array({{15, &second, 60}, {9, &first, sizeof first}, {9, &second, sizeof second}}));
  EXPECT_EQ(value_of<ficon_portmap_req>(given, 9).if_index, hton_if_index(kFc1_1));
}

TEST_F(QueryAnswers, EveryTruncationIsRefused) {
  const auto request = port_map_request(kFc1_1);
  const auto whole = tlv_array({{9, &request, sizeof request}});
  for (size_t size = 0; size < whole.size(); ++size)
    expect_refusal(answer_port_map(chassis_, payload_bytes(whole.begin(), whole.begin() + static_cast<long>(size))));
}

// ---- Enabled VSANs ----

TEST_F(QueryAnswers, EnabledVsansAreThoseThatEntriesAreBoundTo) {
  const auto list = value_of<vsan_block>(answer_enabled_vsans({}), 16);
  EXPECT_EQ(list.bytes, 512u);
  uint8_t expected[512] = {};
  expected[1] = 0x20; // 10
  expected[2] = 0x08; // 20
  expected[3] = 0x02; // 30
  EXPECT_THAT(list.bitmap, ElementsAreArray(expected));
}

TEST_F(QueryAnswers, EnabledVsansReachFrom1To4095) {
  chassis_.map = port_map();
  chassis_.map.port_to_pn[1279].vsans[7] = 4095;
  chassis_.map.port_to_pn[0].vsans[0] = 1;
  chassis_.map.port_to_pn[1].vsans[0] = 4096; // a table can hold it
  use_switch(switch_store::in_memory(chassis_));
  const auto list = value_of<vsan_block>(answer_enabled_vsans({}), 16);
  uint8_t expected[512] = {};
  expected[0] = 0x40;
  expected[511] = 0x01;
  EXPECT_THAT(list.bitmap, ElementsAreArray(expected));
}

TEST_F(QueryAnswers, PortsThatAreInAVsanDoNotEnableIt) {
  chassis_.map.port_to_vsan[9] = 99;
  use_switch(switch_store::in_memory(chassis_));
  EXPECT_EQ(value_of<vsan_block>(answer_enabled_vsans({}), 16).bitmap[12], 0);
}

TEST_F(QueryAnswers, EnabledVsansAreAskedForWithoutAPayload) {
  expect_refusal(answer_enabled_vsans(payload_bytes(1)));
}

// ---- VSAN state ----

TEST_F(QueryAnswers, VsanStateTellsMembersAndBoundEntriesApart) {
  expect_state(kFc1_1, 10, 0, 3);
  expect_state(kFc1_1, 20, 0, 0);
  chassis_.map.port_to_vsan[0] = 20;
  use_switch(switch_store::in_memory(chassis_));
  expect_state(kFc1_1, 10, 0, 2);
  expect_state(kFc1_1, 20, 0, 1);
}

TEST_F(QueryAnswers, VsanStateOfALogicalInterfaceIsThatOfItsNumbersEntry) {
  expect_state(kPortChannel5, 30, 0, 2);
  expect_state(kPortChannel5, 20, 0, 0);
}

TEST_F(QueryAnswers, VsanStateOfAMemberOfAPortChannelIsThatOfItsPort) {
  expect_state(kFc1_3, 10, 0, 3);
}

TEST_F(QueryAnswers, VsanZeroIsNobodys) {
  expect_state(kFc1_9, 0, 0, 0);
}

TEST_F(QueryAnswers, VsanNumbersEndWith4095) {
  expect_state(kFc1_1, 4095, 0, 0);
  expect_state(kFc1_1, 4096, kInvalidArg, 0);
  expect_state(kFc1_1, 0xFFFFFFFF, kInvalidArg, 0);
}

TEST_F(QueryAnswers, VsanStateNeedsAPlaceInThePortMap) {
  for (uint32_t nowhere : {kFc1_49, kFc7_9, kFcip4, kManagement0, 0x0A000063u, 0u})
    expect_state(nowhere, 10, 0x4085004A, 0);
}

TEST_F(QueryAnswers, VsanStateOfAnythingBut20BytesIsRefused) {
  const ficon_ifvsan_query query = {0, 0, 10, hton_if_index(kFc1_1), 0};
  auto bytes = flat_payload(query);
  bytes.push_back(std::byte{});
  expect_refusal(answer_ifvsan_state(chassis_, bytes));
  for (size_t size = 0; size < 20; ++size)
    expect_refusal(answer_ifvsan_state(chassis_, payload_bytes(bytes.begin(), bytes.begin() + static_cast<long>(size))));
}

// ---- RNID ----

TEST_F(QueryAnswers, RnidCarriesTheDescriptorInTheHostsCodePage) {
  const auto record = ask_rnid(kFc1_1);
  EXPECT_EQ(record.result, 0u);
  EXPECT_EQ(record.codepage, 37u);
  EXPECT_THAT(record.descriptor, ElementsAre(0x10, 0x20, 0x03, 0x04,                   // flags
                                             0xF0, 0xF0, 0xF8, 0xF4, 0xF0, 0xF1,       // 008401
                                             0xC3, 0xF0, 0xF2,                         // C02
                                             0xC1, 0xC3, 0xD4,                         // ACM
                                             0xF0, 0xF7,                               // 07
                                             0xF0, 0xF0, 0xF0, 0xF0, 0xF0, 0xF0, 0xF0, // 0000000
                                             0xF1, 0xF2, 0xF3, 0xF4, 0xF5,             // 12345
                                             0x12, 0x34));
}

TEST_F(QueryAnswers, RnidOfAnAsciiHost) {
  const auto record = ask_rnid(kFc1_2);
  EXPECT_EQ(record.codepage, 1u);
  EXPECT_EQ(std::memcmp(record.descriptor,
                        "\0\0\0\0"
                        "005570"
                        "900"
                        "ACM"
                        "12"
                        "0000000ABC19"
                        "\0\x31",
                        32),
            0);
}

TEST_F(QueryAnswers, RnidBringsBackWhatItDoesNotKnow) {
  const auto record = ask_rnid(kFc1_1);
  EXPECT_EQ(record.if_index, hton_if_index(kFc1_1));
  EXPECT_EQ(record.rnid_port, 5);
  EXPECT_EQ(record.rnid_size, 512);
  EXPECT_EQ(record.rnid_word8, 0x08080808u);
  EXPECT_EQ(record.rnid_format, 2u);
  EXPECT_EQ(record.rnid_word24, 0x24242424u);
}

TEST_F(QueryAnswers, RnidOfAnInterfaceWithoutADeviceHasNoDescriptor) {
  for (uint32_t without : {kFc1_9, kFcip3, kManagement0}) {
    const auto record = ask_rnid(without);
    EXPECT_EQ(record.result, 0x4085000Au);
    EXPECT_EQ(record.codepage, 0u);
    EXPECT_THAT(record.descriptor, Each(0));
  }
}

TEST_F(QueryAnswers, RnidOfAnInterfaceThatIsNotThereHasNoDescriptor) {
  for (uint32_t nowhere : {kFc1_49, 0x0A000063u, 0u}) {
    const auto record = ask_rnid(nowhere);
    EXPECT_EQ(record.result, 0x4085004Au);
    EXPECT_THAT(record.descriptor, Each(0));
  }
}

TEST_F(QueryAnswers, RnidWithoutAConverterHasNoDescriptor) {
  const auto record = ask_rnid(kFc1_1, nullptr);
  EXPECT_EQ(record.result, 0x40850020u);
  EXPECT_EQ(record.codepage, 0u);
  EXPECT_THAT(record.descriptor, Each(0));
}

TEST_F(QueryAnswers, RnidRequestThatIsNotOneIsRefused) {
  const auto request = rnid_request(kFc1_1);
  expect_refusal(answer_rnid(chassis_, {}, nullptr));
  expect_refusal(answer_rnid(chassis_, flat_payload(request), nullptr));
  expect_refusal(answer_rnid(chassis_, tlv_array({{15, &request, 59}}), nullptr));
  expect_refusal(answer_rnid(chassis_, tlv_array({{9, &request, 60}}), nullptr));
}

} // namespace
