// Notices as listeners get them.
#include <gmock/gmock.h>
#include <notices.h>
#include <platform/if_index.h>
#include <platform/tlv_aligned_array.h>
#include <vswitch/vswitch.h>

#include <cstring>

#include "manager_test.h"

namespace {

using namespace vswitch;
using namespace manager_test;
using testing::ElementsAreArray;

class Notices : public testing::Test {
 protected:
  uint32_t make(const notify_order& order) { return make_notice(chassis_, order, ficon_get_convert_fn_ptr(), made_); }
  // The one value of the notice.
  std::vector<uint8_t> value(uint16_t expected_type) const {
    EXPECT_EQ(tlv_aligned_array_get_num_tlvs(made_.payload.data(), 1), 1);
    const auto found = tlv_value(made_.payload, expected_type);
    std::vector<uint8_t> bytes(found.size());
    if (!bytes.empty()) std::memcpy(bytes.data(), found.data(), found.size());
    return bytes;
  }
  static std::vector<uint8_t> bytes_of(uint32_t word, std::vector<uint8_t> behind) {
    std::vector<uint8_t> bytes(4);
    std::memcpy(bytes.data(), &word, 4);
    bytes.insert(bytes.end(), behind.begin(), behind.end());
    return bytes;
  }

  const chassis_description chassis_ = full_switch();
  notice made_;
};

TEST_F(Notices, VsanStateChangeIsTwoWords) {
  EXPECT_EQ(make({0x56530001, 10, 0, 1, 0, {}}), 0u);
  EXPECT_EQ(made_.opcode, 0x56530001u);
  EXPECT_THAT(value(24), ElementsAreArray(bytes_of(10, bytes_of(1, {}))));
}

TEST_F(Notices, VsansReachFrom1To4095) {
  EXPECT_EQ(make({0x56530001, 1, 0, 1, 0, {}}), 0u);
  EXPECT_EQ(make({0x56530001, 4095, 0, 0, 0, {}}), 0u);
  EXPECT_EQ(make({0x56530001, 0, 0, 1, 0, {}}), 0x40850003u);
  EXPECT_EQ(make({0x56530001, 4096, 0, 1, 0, {}}), 0x40850003u);
}

TEST_F(Notices, UpDownIsTheInterfaceAsClientsHaveItWithStateAndReason) {
  EXPECT_EQ(make({0x56530002, 0, hton_if_index(kFc1_2), 1, 7, {}}), 0u);
  EXPECT_EQ(made_.opcode, 0x56530002u);
  EXPECT_THAT(value(10), ElementsAreArray(bytes_of(kFc1_2, {1, 7})));
}

TEST_F(Notices, EnableIsTheInterfaceAsClientsHaveItWithState) {
  EXPECT_EQ(make({0x56530003, 0, hton_if_index(kFcip3), 1, 7, {}}), 0u);
  EXPECT_EQ(made_.opcode, 0x56530003u);
  EXPECT_THAT(value(1), ElementsAreArray(bytes_of(kFcip3, {1})));
}

TEST_F(Notices, RnidNotificationIsTheRecordWithTheDescriptor) {
  EXPECT_EQ(make({0x56530004, 0, hton_if_index(kFc1_2), 0, 0, {}}), 0u);
  EXPECT_EQ(made_.opcode, 0x56530004u);
  const auto record = tlv_record<ficon_rnid_rec>(made_.payload, 15).value();
  EXPECT_EQ(record.if_index, hton_if_index(kFc1_2));
  EXPECT_EQ(record.rnid_size, 512);
  EXPECT_EQ(record.codepage, 1u);
  EXPECT_EQ(record.rnid_format, 2u);
  EXPECT_EQ(record.result, 0u);
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

TEST_F(Notices, RnidNotificationNeedsADevice) {
  EXPECT_EQ(make({0x56530004, 0, hton_if_index(kFc1_9), 0, 0, {}}), 0x4085000Au);
  EXPECT_EQ(make({0x56530004, 0, hton_if_index(kFc1_49), 0, 0, {}}), 0x4085004Au);
  EXPECT_EQ(make_notice(chassis_, {0x56530004, 0, hton_if_index(kFc1_1), 0, 0, {}}, nullptr, made_), 0x40850020u);
}

TEST_F(Notices, OfInterfacesNeedThem) {
  EXPECT_EQ(make({0x56530002, 0, hton_if_index(kFc1_49), 1, 0, {}}), 0x4085004Au);
  EXPECT_EQ(make({0x56530003, 0, hton_if_index(0x0A000063), 1, 0, {}}), 0x4085004Au);
  EXPECT_EQ(make({0x56530003, 0, 0, 1, 0, {}}), 0x4085004Au);
}

TEST_F(Notices, AnythingElseIsNoNotice) {
  for (uint32_t opcode : {0u, 0x56530000u, 0x56530005u, 0x56530011u, 0x56530021u, 7858u})
    EXPECT_EQ(make({opcode, 10, hton_if_index(kFc1_1), 1, 0, {}}), 0x40850003u) << opcode;
}

} // namespace
