// Notices: what is copied of them, and what is left alone.
#include "message_test.h"

namespace {

using namespace chnsw_test;

// Room for a record, and what stands in it afterwards, its padding included.
template <class Notice>
struct room {
  alignas(uint32_t) uint8_t bytes_here[16];
  room() { memset(bytes_here, kUntouched8, sizeof bytes_here); }
  Notice* notice() { return object_at<Notice>(bytes_here, 0); }
  bytes get() const { return bytes(bytes_here, bytes_here + 16); }
};

class VsanStateChange : public MessageTest {};
class UpdownNotice : public MessageTest {};
class EnableNotice : public MessageTest {};

TEST_F(VsanStateChange, TwoWordsAreCopiedAsTheyStand) {
  msgq_message message = tlv_message(24, record(8).u32(0, 0x01000307).u32(4, 0x05060708));
  auto notice = untouched<ficon_vsan_state_change>();
  EXPECT_EQ(ficon_parse_vsan_state_change_payload(&message, &notice), 0u);
  EXPECT_EQ(bytes_of(notice), record(8).u32(0, 0x01000307).u32(4, 0x05060708).get());
  EXPECT_EQ(platform.count("ntoh_if_index"), 0);
}

TEST_F(VsanStateChange, NeedNotBeWanted) {
  msgq_message message = tlv_message(24, bytes(8, 0xFF));
  EXPECT_EQ(ficon_parse_vsan_state_change_payload(&message, nullptr), 0u);
}

TEST_F(VsanStateChange, NothingBehindTheTwoWordsIsCopied) {
  msgq_message message = tlv_message(24, bytes(64, 0x11));
  room<ficon_vsan_state_change> here;
  EXPECT_EQ(ficon_parse_vsan_state_change_payload(&message, here.notice()), 0u);
  EXPECT_EQ(here.get(), record(16, 0xEE).u32(0, 0x11111111).u32(4, 0x11111111).get());
}

// A record that overlaps the value by a word: the second word is read where the first has been stored by then.
TEST_F(VsanStateChange, WordsAreCopiedInTheirOrder) {
  msgq_message message = tlv_message(24, record(12).u32(0, 0x11).u32(4, 0x22), 1); // the value stands at 8 bytes
  auto* notice = object_at<ficon_vsan_state_change>(message.payload(), 7 + 4);
  EXPECT_EQ(ficon_parse_vsan_state_change_payload(&message, notice), 0u);
  EXPECT_EQ(notice->word0, 0x11u);
  EXPECT_EQ(notice->word1, 0x11u);
}

TEST_F(UpdownNotice, AWordAsItStandsAndTwoBytesAreCopied) {
  msgq_message message = tlv_message(10, record(6).u32(0, 0x01000307).u8(4, 0x44).u8(5, 0x55));
  auto notice = untouched<ficon_updown_notice>();
  EXPECT_EQ(ficon_parse_updown_payload(&message, &notice), 0u);
  EXPECT_EQ(notice.word0, 0x01000307u);
  EXPECT_EQ(notice.byte4, 0x44);
  EXPECT_EQ(notice.byte5, 0x55);
  EXPECT_EQ(platform.count("ntoh_if_index"), 0);
}

TEST_F(UpdownNotice, NeedNotBeWanted) {
  msgq_message message = tlv_message(10, bytes(6, 0xFF));
  EXPECT_EQ(ficon_parse_updown_payload(&message, nullptr), 0u);
}

TEST_F(UpdownNotice, BytesBehindTheSixAreNotWritten) {
  msgq_message message = tlv_message(10, bytes(64, 0x11));
  room<ficon_updown_notice> here;
  EXPECT_EQ(ficon_parse_updown_payload(&message, here.notice()), 0u);
  EXPECT_EQ(here.get(), record(16, 0xEE).u32(0, 0x11111111).u8(4, 0x11).u8(5, 0x11).get());
}

// A record one byte behind the value, which stands at 7 bytes: each byte is read where the field before it has been stored
// by then.
TEST_F(UpdownNotice, FieldsAreCopiedInTheirOrder) {
  msgq_message message = tlv_message(10, record(9).u32(0, 0x11111111).u8(4, 0x44).u8(5, 0x55), 0);
  auto* notice = object_at<ficon_updown_notice>(message.payload(), 7 + 1);
  EXPECT_EQ(ficon_parse_updown_payload(&message, notice), 0u);
  EXPECT_EQ(notice->word0, 0x11111111u);
  EXPECT_EQ(notice->byte4, 0x11);
  EXPECT_EQ(notice->byte5, 0x11);
}

TEST_F(UpdownNotice, IsNoEnableNotice) {
  msgq_message message = tlv_message(10, bytes(6, 0x11));
  room<ficon_enable_notice> here;
  EXPECT_EQ(ficon_parse_enable_payload(&message, here.notice()), 0x40850003u);
  EXPECT_EQ(here.get(), bytes(16, 0xEE));
}

TEST_F(EnableNotice, AWordAsItStandsAndAByteAreCopied) {
  msgq_message message = tlv_message(1, record(5).u32(0, 0x01000307).u8(4, 0x44));
  auto notice = untouched<ficon_enable_notice>();
  EXPECT_EQ(ficon_parse_enable_payload(&message, &notice), 0u);
  EXPECT_EQ(notice.word0, 0x01000307u);
  EXPECT_EQ(notice.byte4, 0x44);
  EXPECT_EQ(platform.count("ntoh_if_index"), 0);
}

TEST_F(EnableNotice, NeedNotBeWanted) {
  msgq_message message = tlv_message(1, bytes(5, 0xFF));
  EXPECT_EQ(ficon_parse_enable_payload(&message, nullptr), 0u);
}

TEST_F(EnableNotice, BytesBehindTheFiveAreNotWritten) {
  msgq_message message = tlv_message(1, bytes(64, 0x11));
  room<ficon_enable_notice> here;
  EXPECT_EQ(ficon_parse_enable_payload(&message, here.notice()), 0u);
  EXPECT_EQ(here.get(), record(16, 0xEE).u32(0, 0x11111111).u8(4, 0x11).get());
}

// A record one word behind the value: the byte is read where the word has been stored by then.
TEST_F(EnableNotice, WordIsCopiedBeforeTheByte) {
  msgq_message message = tlv_message(1, record(12).u32(0, 0x11111111).u8(4, 0x44), 1); // the value stands at 8 bytes
  auto* notice = object_at<ficon_enable_notice>(message.payload(), 7 + 4);
  EXPECT_EQ(ficon_parse_enable_payload(&message, notice), 0u);
  EXPECT_EQ(notice->word0, 0x11111111u);
  EXPECT_EQ(notice->byte4, 0x11);
}

TEST_F(EnableNotice, IsFoundBehindANoticeOfAnotherKind) {
  msgq_message message(tlv_array({{10, bytes(6, 0x11)}, {1, bytes(5, 0x22)}, {24, bytes(8, 0x33)}}));
  ficon_enable_notice enable{};
  ficon_updown_notice updown{};
  ficon_vsan_state_change change{};
  EXPECT_EQ(ficon_parse_enable_payload(&message, &enable), 0u);
  EXPECT_EQ(ficon_parse_updown_payload(&message, &updown), 0u);
  EXPECT_EQ(ficon_parse_vsan_state_change_payload(&message, &change), 0u);
  EXPECT_EQ(enable.word0, 0x22222222u);
  EXPECT_EQ(updown.word0, 0x11111111u);
  EXPECT_EQ(change.word0, 0x33333333u);
}

} // namespace
