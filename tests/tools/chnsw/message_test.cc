// message: literal bytes of every message as a switch writes them, both ways, and what is said about wrong ones.
#include "tool_test.h"

namespace chnsw_test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::string repeated(const std::string& text, int times) {
  std::string result;
  while (times-- > 0) result += text;
  return result;
}

class Message : public tool_test {
 protected:
  tool_result decode(std::vector<std::string> words) const { return message("decode", std::move(words)); }
  tool_result encode(std::vector<std::string> words) const { return message("encode", std::move(words)); }

  // The fields by their names: their texts.
  std::map<std::string, std::string> fields(std::vector<std::string> words) const {
    words.insert(words.end(), {"--format", "json"});
    auto result = decode(words);
    EXPECT_EQ(result.status, 0) << result.err;
    std::map<std::string, std::string> texts;
    for (const auto& row : parse_json(result.out))
      texts[row["field"]] = row["value"].is_null() ? "(none)" : row["value"].get<std::string>();
    return texts;
  }

  // The payload as one run of digits.
  std::string payload(std::vector<std::string> words) const {
    words.insert(words.end(), {"--format", "json"});
    auto result = encode(words);
    EXPECT_EQ(result.status, 0) << result.err;
    return parse_json(result.out)[0]["payload"];
  }

  void expect_complaint(const tool_result& result, const std::string& complaint) const {
    EXPECT_EQ(result.err, "chnsw: " + complaint + "\n");
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.status, 2);
  }

 private:
  tool_result message(const char* way, std::vector<std::string> words) const {
    words.insert(words.begin(), {"message", way});
    return run(words);
  }
};

// ---- The list ----

TEST_F(Message, AloneListsEveryKindWithItsFields) {
  auto all = run({"message"});
  EXPECT_EQ(all.out, run({"message", "list"}).out);
  EXPECT_THAT(all.out, HasSubstr("\nrnid-answer            0              TLV type 15      12       4  codepage           "
                                 "answer: code page of the descriptor's texts\n"));
  std::vector<std::string> kinds;
  for (const auto& row : parse_json(run({"message", "--format", "json"}).out))
    if (row["field"].is_null()) kinds.push_back(row["kind"]);
  EXPECT_THAT(kinds, ElementsAre("portmap-request", "portmap-answer", "enabled-vsans-request", "enabled-vsans-answer",
                                 "rnid-request", "rnid-answer", "rnid-notification", "ifvsan-query", "ifvsan-answer",
                                 "vsan-install", "swap-request", "swap-response", "vsan-state-notice", "updown-notice",
                                 "enable-notice"));
}

TEST_F(Message, ListOfOneKind) {
  EXPECT_EQ(run({"message", "list", "updown-notice"}).out,
            "KIND           OPCODE         PAYLOAD      OFFSET  LENGTH  FIELD  WHAT\n"
            "updown-notice  the manager's  TLV type 10       -       6  -      a port came up or went down\n"
            "updown-notice  the manager's  TLV type 10       0       4  word0  the interface\n"
            "updown-notice  the manager's  TLV type 10       4       1  byte4  1 up, 0 down\n"
            "updown-notice  the manager's  TLV type 10       5       1  byte5  reason\n");
}

// ---- A switch's bytes ----

const std::string kPortmapRecord =
    "00000007"
    "00000012"
    "00000000"
    "636C69656E74" +
    repeated("00", 34) + "FC" + repeated("00", 59) +
    "01020400"
    "4085004A"
    "0060"
    "FFFF"
    "01"
    "0000000000";

TEST_F(Message, Portmap) {
  EXPECT_EQ(payload({"portmap-request", "code=7", "text1=client", "text2=ü", "if_index=fc3/5", "result=FICON_RC_NO_IF",
                     "number_a=96", "number_b=0xFFFF", "selector=1", "--value"}),
            kPortmapRecord);
  auto all = fields({"portmap-answer", kPortmapRecord});
  EXPECT_EQ(all, (std::map<std::string, std::string>{{"code", "7"},
                                                     {"kind", "18"},
                                                     {"reserved", "0"},
                                                     {"text1", "client"},
                                                     {"text2", "ü"},
                                                     {"if_index", "fc3/5"},
                                                     {"result", "FICON_RC_NO_IF 0x4085004A"},
                                                     {"number_a", "96"},
                                                     {"number_b", "65535"},
                                                     {"selector", "1"},
                                                     {"zero", "zeros"}}));
}

TEST_F(Message, PortmapInItsArray) {
  const std::string array =
      "544C5641"
      "00000094"
      "0001"
      "0000"
      "0009"
      "0082" +
      kPortmapRecord + "0000";
  EXPECT_EQ(payload({"portmap-request", "code=7", "text1=client", "text2=ü", "if_index=fc3/5", "result=0x4085004A",
                     "number_a=96", "number_b=65535", "selector=1"}),
            array);
  EXPECT_EQ(fields({"portmap-request", array}), fields({"portmap-request", kPortmapRecord}));
}

TEST_F(Message, EnabledVsans) {
  EXPECT_EQ(payload({"enabled-vsans-request"}), "");
  EXPECT_EQ(decode({"enabled-vsans-request"}).err, "chnsw: enabled-vsans-request has no payload\n");
  const std::string set =
      "00000200"
      "4020"
      "78" +
      repeated("00", 508) + "01";
  EXPECT_EQ(payload({"enabled-vsans-answer", "vsans=1,10,17-20,4095", "--value"}), set);
  EXPECT_EQ(payload({"enabled-vsans-answer", "vsans=1,10,17-20,4095"}),
            "544C5641"
            "00000214"
            "0001"
            "0000"
            "0010"
            "0204" +
                set);
  EXPECT_EQ(fields({"enabled-vsans-answer", set})["vsans"], "1,10,17-20,4095");
  EXPECT_EQ(fields({"enabled-vsans-answer", set})["vsans.bytes"], "512");
}

TEST_F(Message, EnabledVsansOfAnyLengthAreBytes) {
  EXPECT_EQ(decode({"enabled-vsans-answer", "544C5641 00000014 0001 0000 0010 0003 00112200"}).out,
            "OFFSET  LENGTH  FIELD    VALUE     BYTES\n"
            "     0       3  (bytes)  0x001122  001122\n");
}

const char kRnidRecord[] =
    "01000000"
    "1234"
    "0200"
    "00000008"
    "00000111"
    "00000002"
    "00000000"
    "00000018"
    "10030405"
    "F0F0F8F4F0F1"
    "C3F0F2"
    "C1C3D4"
    "F8F3"
    "F0F0F0F0F0F0F0C1F1F2F3F4"
    "002A";

TEST_F(Message, Rnid) {
  auto result = decode({"rnid-notification", std::string("0x") + kRnidRecord});
  EXPECT_EQ(result.out,
            "OFFSET  LENGTH  FIELD              VALUE                           BYTES\n"
            "     0       4  if_index           fc1/1                           01000000\n"
            "     4       2  rnid_port          4660                            1234\n"
            "     6       2  rnid_size          512                             0200\n"
            "     8       4  rnid_word8         8                               00000008\n"
            "    12       4  codepage           273 germany                     00000111\n"
            "    16       4  rnid_format        2                               00000002\n"
            "    20       4  result             OK 0                            00000000\n"
            "    24       4  rnid_word24        24                              00000018\n"
            "    28      32  node               008401-C02-ACM-83-0000000A1234  10030405 F0F0F8F4 F0F1C3F0 F2C1C3D4 ...\n"
            "    28       4  node.flags         0x10030405                      10030405\n"
            "    32       6  node.type          008401                          F0F0F8F4 F0F1\n"
            "    38       3  node.model         C02                             C3F0F2\n"
            "    41       3  node.manufacturer  ACM                             C1C3D4\n"
            "    44       2  node.plant         83                              F8F3\n"
            "    46      12  node.sequence      0000000A1234                    F0F0F0F0 F0F0F0C1 F1F2F3F4\n"
            "    58       2  node.tag           0x002A                          002A\n");
  EXPECT_EQ(result.err, "");
  const std::vector<std::string> front = {"rnid-answer",           "if_index=fc1/1", "rnid_port=0x1234", "rnid_word8=8",
                                          "codepage=273",          "rnid_format=2",  "rnid_word24=24",   "--value",
                                          "node.flags=0x10030405", "node.tag=0x002A"};
  auto whole = front;
  whole.push_back("node=8401-C02-ACM-83-A1234");
  EXPECT_EQ(payload(whole), kRnidRecord);
  auto parts = front;
  parts.insert(parts.end(), {"node.sequence=A1234", "node.plant=83", "node.model=C02", "node.manufacturer=ACM",
                             "node.type=0xF0F0F8F4F0F1"});
  EXPECT_EQ(payload(parts), kRnidRecord);
}

TEST_F(Message, TextOfAnUnknownCodePageIsBytesAlone) {
  auto all = fields({"rnid-answer",
                     "01000000"
                     "0000"
                     "0200"
                     "00000000"
                     "00000026" +
                         repeated("00", 12) + repeated("C1", 32)});
  EXPECT_EQ(all["codepage"], "38 unrecognized");
  EXPECT_EQ(all["node"], "(none)");
  EXPECT_EQ(all["node.type"], "(none)");
}

TEST_F(Message, Ifvsan) {
  EXPECT_EQ(payload({"ifvsan-query", "arg_a=10", "if_index=port-channel5", "arg_b=0x01020304"}),
            "0000000000000000"
            "0000000A"
            "04000005"
            "01020304");
  EXPECT_EQ(decode({"ifvsan-answer", "00000000", "00000003", "0000000A", "01020400", "00000000"}).out,
            "OFFSET  LENGTH  FIELD     VALUE  BYTES\n"
            "     0       4  result    OK 0   00000000\n"
            "     4       4  state     3      00000003\n"
            "     8       4  arg_a     10     0000000A\n"
            "    12       4  if_index  fc3/5  01020400\n"
            "    16       4  arg_b     0      00000000\n");
}

TEST_F(Message, VsanInstall) {
  const std::string bytes =
      "01"
      "00000200"
      "0020" +
      repeated("00", 510) +
      "00000003"
      "01000000"
      "01000100"
      "04000001";
  EXPECT_EQ(payload({"vsan-install", "install_byte0=1", "vsans=10", "interfaces=fc1/1-2,port-channel1"}), bytes);
  auto all = fields({"vsan-install", bytes});
  EXPECT_EQ(all, (std::map<std::string, std::string>{{"install_byte0", "1"},
                                                     {"vsans.bytes", "512"},
                                                     {"vsans", "10"},
                                                     {"count", "3"},
                                                     {"interfaces", "fc1/1,fc1/2,port-channel1"}}));
}

TEST_F(Message, VsanInstallForNothing) {
  const std::string bytes =
      "00"
      "00000200" +
      repeated("00", 512) + "00000000";
  EXPECT_EQ(payload({"vsan-install", "vsans=none", "interfaces=none"}), bytes);
  EXPECT_EQ(fields({"vsan-install", bytes})["interfaces"], "none");
}

TEST_F(Message, SwapRequestInBothForms) {
  const std::string brief =
      "00000009"
      "01000000"
      "01010700";
  EXPECT_EQ(payload({"swap-request", "swap_word0=9", "if_index_a=fc1/1", "if_index_b=fc2/8"}), brief);
  EXPECT_EQ(payload({"swap-request", "swap_word0=9", "if_index_a=fc1/1", "if_index_b=fc2/8", "vsans=0"}),
            brief +
                "00000200"
                "80" +
                repeated("00", 511));
  EXPECT_EQ(fields({"swap-request", brief}),
            (std::map<std::string, std::string>{{"swap_word0", "9"}, {"if_index_a", "fc1/1"}, {"if_index_b", "fc2/8"}}));
  auto with_set = fields({"swap-request", brief + "00000200" + repeated("FF", 512)});
  EXPECT_EQ(with_set["vsans"], "0-4095");
  EXPECT_EQ(with_set.size(), 5u);
}

TEST_F(Message, SwapResponse) {
  const std::string bytes =
      "4085000A"
      "00000009"
      "01000000"
      "00000000"
      "DEAD" +
      repeated("00", 518);
  EXPECT_EQ(payload({"swap-response", "swap_status=FICON_RC_PLATFORM", "swap_word4=9", "if_index_a=fc1/1",
                     "if_index_b=none", "zero=0xDEAD"}),
            bytes);
  EXPECT_EQ(fields({"swap-response", bytes})["swap_status"], "FICON_RC_PLATFORM 0x4085000A");
  EXPECT_EQ(fields({"swap-response", bytes})["if_index_b"], "none");
}

TEST_F(Message, Notices) {
  EXPECT_EQ(payload({"vsan-state-notice", "word0=20", "word1=1"}),
            "544C5641"
            "00000018"
            "0001"
            "0000"
            "0018"
            "0008"
            "00000014"
            "00000001");
  EXPECT_EQ(payload({"updown-notice", "word0=fc2/3", "byte4=1", "byte5=7"}),
            "544C5641"
            "00000018"
            "0001"
            "0000"
            "000A"
            "0006"
            "01010200"
            "01"
            "07"
            "0000");
  EXPECT_EQ(payload({"enable-notice", "word0=fc2/3", "byte4=1"}),
            "544C5641"
            "00000018"
            "0001"
            "0000"
            "0001"
            "0005"
            "01010200"
            "01"
            "000000");
  EXPECT_EQ(fields({"updown-notice", "01010200 01 07"}),
            (std::map<std::string, std::string>{{"word0", "fc2/3"}, {"byte4", "1"}, {"byte5", "7"}}));
  EXPECT_EQ(fields({"vsan-state-notice", "00000014 00000001"})["word0"], "20");
}

// ---- Byte order ----

TEST_F(Message, LittleEndianLeavesInterfacesOnTheWireAlone) {
  EXPECT_EQ(payload({"ifvsan-query", "arg_a=10", "if_index=fc3/5", "--byte-order", "little"}),
            "0000000000000000"
            "0A000000"
            "01020400"
            "00000000");
  EXPECT_EQ(fields({"ifvsan-query", "0000000000000000 0A000000 01020400 00000000", "--byte-order", "little"})["arg_a"],
            "10");
}

TEST_F(Message, InterfaceOfANoticeIsInTheOrderOfTheRest) {
  EXPECT_EQ(payload({"enable-notice", "word0=fc2/3", "byte4=1", "--byte-order", "little", "--value"}), "0002010101");
  EXPECT_EQ(fields({"enable-notice", "0002010101", "--byte-order", "little"})["word0"], "fc2/3");
}

TEST_F(Message, ArrayTellsItsOwnOrder) {
  const std::string array = payload({"updown-notice", "word0=fc2/3", "byte5=7", "--byte-order", "little"});
  EXPECT_EQ(array,
            "41564C54"
            "18000000"
            "0100"
            "0000"
            "0A00"
            "0600"
            "00020101"
            "00"
            "07"
            "0000");
  EXPECT_EQ(fields({"updown-notice", array})["word0"], "fc2/3");
  expect_complaint(decode({"updown-notice", array, "--byte-order", "big"}),
                   "the TLV array is in little-endian order; leave --byte-order out, or say --byte-order little");
}

TEST_F(Message, OtherOrderIsSuspected) {
  const std::string record = payload({"rnid-request", "if_index=fc1/1", "--byte-order", "little", "--value"});
  auto result = decode({"rnid-request", record});
  EXPECT_EQ(result.err, "chnsw: rnid_size would be 512, as it always is, with --byte-order little\n");
  EXPECT_EQ(result.status, 0);
}

// ---- Framing ----

TEST_F(Message, ValueIsDecodedAloneThoughItBeginsLikeAnArray) {
  const std::string record =
      "544C5641"
      "00000001";
  expect_complaint(decode({"vsan-state-notice", record}), "4 bytes are missing: the TLV array ends within its header");
  EXPECT_EQ(fields({"vsan-state-notice", record, "--value"})["word0"], "1414288961");
}

TEST_F(Message, FirstValueOfTheTypeIsTaken) {
  EXPECT_EQ(fields({"enable-notice",
                    "544C5641 0000002C 0003 0000 0018 0001 FF000000 0001 0005 01000000 01 000000 0001 0005 "
                    "01000100 00 000000"})["word0"],
            "fc1/1");
}

TEST_F(Message, WrongArraysSayWhatIsWrong) {
  expect_complaint(decode({"enable-notice", "544C5641 00000014 0001 0000 0018 0001 FF000000"}),
                   "the TLV array holds no value of type 1; it holds type 24");
  expect_complaint(decode({"enable-notice", "544C5641 0000000C 0000 0000"}),
                   "the TLV array holds no value of type 1; it holds none");
  expect_complaint(decode({"enable-notice", "544C5641 00000015 0001 0000 0001 0005 01000000"}),
                   "1 byte is missing: the TLV array says to have 21 bytes, there are 20");
  expect_complaint(decode({"enable-notice", "544C5641 00000014 0001 0000 0001 0005 01000000"}),
                   "1 byte is missing: the TLV array ends within its value of type 1");
  expect_complaint(decode({"enable-notice", "544C5641 0000000E 0001 0000 0001"}),
                   "2 bytes are missing: the TLV array ends within a value's type and length");
}

TEST_F(Message, BytesBeyondARecordAreShown) {
  auto all = fields({"enable-notice", "01000000 01 ABCD"});
  EXPECT_EQ(all["(beyond)"], "0xABCD");
}

// ---- Too short ----

TEST_F(Message, TooShortRecordSaysHowMuchIsMissing) {
  expect_complaint(decode({"ifvsan-answer", repeated("00", 19)}),
                   "ifvsan-answer: 1 byte is missing: the record has 19 of 20 bytes, not all of arg_b at offset 16");
  expect_complaint(decode({"rnid-answer", repeated("00", 30)}),
                   "rnid-answer: 30 bytes are missing: the record has 30 of 60 bytes, not all of node at offset 28");
  expect_complaint(decode({"swap-request", repeated("00", 11)}),
                   "swap-request: 1 byte is missing: the record has 11 of 12 bytes, not all of if_index_b at offset 8");
  expect_complaint(
      decode({"swap-request", repeated("00", 13)}),
      "swap-request: 515 bytes are missing: the record has 13 of 528 bytes, not all of vsans.bytes at offset 12");
  expect_complaint(
      decode({"vsan-install", "01 00000200" + repeated("00", 512) + "00000002 01000000"}),
      "vsan-install: 4 bytes are missing: the record has 525 of 529 bytes, not all of interfaces at offset 521");
  expect_complaint(decode({"ifvsan-answer"}),
                   "ifvsan-answer: 20 bytes are missing: the record has 0 of 20 bytes, not all of result at offset 0");
  expect_complaint(decode({"enabled-vsans-request", "00"}),
                   "enabled-vsans-request has no payload; expected no bytes and not 1");
}

TEST_F(Message, CountInTheOtherOrderIsSuspected) {
  const std::string bytes = payload({"vsan-install", "interfaces=fc1/1", "--byte-order", "little"});
  EXPECT_THAT(decode({"vsan-install", bytes}).err,
              HasSubstr("not all of interfaces at offset 521; vsans.bytes would be 512, as it always is, with --byte-order "
                        "little\n"));
}

// Every length of every message is either told to be too short or decoded.
TEST_F(Message, EveryTruncationIsTold) {
  for (const auto& [kind, bytes] : {std::pair{"rnid-answer", std::string(kRnidRecord)},
                                    {"updown-notice", "544C56410000001800010000000A00060101020001070000"}}) {
    for (size_t digits = 8; digits < bytes.size(); digits += 2) {
      auto result = decode({kind, bytes.substr(0, digits)});
      EXPECT_EQ(result.status, 2) << kind << " " << digits;
      EXPECT_THAT(result.err, HasSubstr("missing: the "));
    }
  }
}

// ---- What is given to be encoded ----

TEST_F(Message, WrongFieldsSayWhichAndWhatWasExpected) {
  const struct {
    std::vector<std::string> words;
    const char* complaint;
  } rows[] = {
      {{"rnid-anwser"}, "there is no message \"rnid-anwser\"; did you mean \"rnid-answer\"?"},
      {{"something"}, "there is no message \"something\"; chnsw message lists them"},
      {{"ifvsan-query", "if_indx=fc1/1"}, "ifvsan-query has no field \"if_indx\"; did you mean \"if_index\"?"},
      {{"ifvsan-query", "colour=red"},
       "ifvsan-query has no field \"colour\"; it has result, state, arg_a, if_index, arg_b"},
      {{"enabled-vsans-request", "vsans=1"}, "enabled-vsans-request has no field \"vsans\"; it has no payload"},
      {{"ifvsan-query", "arg_a"}, "field \"arg_a\" has no value; expected arg_a=VALUE"},
      {{"ifvsan-query", "arg_a=1", "arg_a=2"}, "field \"arg_a\" is given twice"},
      {{"ifvsan-query", "if_index=fc3"},
       "if_index of ifvsan-query: interface \"fc3\", character 1: \"fc3\" is not an interface; expected a name like fc3/5, "
       "fc3/1-48, port-channel5, fcip3 or mgmt0, or an index like 0x01020400"},
      {{"portmap-request", "number_a=65536"},
       "number_a of portmap-request: number \"65536\", character 1: 65536 is out of range; expected a decimal number from "
       "0 to "
       "65535, as in 12 or 0xC"},
      {{"portmap-request", "selector=256"},
       "selector of portmap-request: number \"256\", character 1: 256 is out of range; expected a decimal number from 0 to "
       "255, as in 12 or 0xC"},
      {{"portmap-request", "text1=" + std::string(41, 'x')},
       "text1 of portmap-request: \"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\"; expected up to 40 characters"},
      {{"portmap-request", "zero=12"}, "zero of portmap-request: \"12\"; expected 0x and up to 5 bytes"},
      {{"vsan-install", "vsans=4096"},
       "vsans of vsan-install: VSAN \"4096\", character 1: 4096 is out of range; expected a decimal number from 0 to 4095, "
       "as "
       "in 10 or 10,20"},
      {{"vsan-install", "count=1"}, "count of vsan-install: the interfaces are counted; give them alone"},
      {{"rnid-answer", "node.type=1"},
       "node.type of rnid-answer: \"1\"; expected codepage=37 or another code page to write it in; chnsw codepage lists "
       "them"},
      {{"rnid-answer", "codepage=37", "node.type=1234567"},
       "node.type of rnid-answer: \"1234567\"; expected a type of 1 to 6 upper-case letters and digits"},
      {{"rnid-answer", "codepage=37", "node.plant=0xF8"}, "node.plant of rnid-answer: \"0xF8\"; expected 0x and 2 bytes"},
      {{"rnid-answer", "codepage=37", "node=1-2-3-4"},
       "node of rnid-answer: \"1-2-3-4\"; expected TYPE-MODEL-MANUFACTURER-PLANT-SEQUENCE, or 0x and 32 bytes"},
  };
  for (const auto& row : rows) expect_complaint(encode(row.words), row.complaint);
}

TEST_F(Message, FullTextHasNoNul) {
  const std::string text(40, 'x');
  const std::string record = payload({"portmap-request", "text1=" + text, "--value"});
  EXPECT_EQ(record.substr(24, 80), repeated("78", 40));
  EXPECT_EQ(fields({"portmap-request", record})["text1"], text);
}

TEST_F(Message, UnknownWordIsAnsweredWithWhatIsAllowed) {
  auto result = run({"message", "foo"});
  EXPECT_EQ(result.err, "chnsw: message is followed by one of: list, decode, encode; see chnsw message --help\n");
  EXPECT_EQ(result.status, 2);
}

// ---- How bytes are written down ----

TEST_F(Message, EncodedLinesCanBeDecoded) {
  auto result = shell(
      "chnsw message encode vsan-install vsans=1-4094 interfaces=fc1/1-8 | chnsw message decode vsan-install - "
      "--format csv");
  EXPECT_EQ(result.status, 0);
  auto rows = parse_csv(result.out);
  ASSERT_EQ(rows.size(), 6u);
  EXPECT_EQ(rows[0], (std::vector<std::string>{"offset", "length", "field", "value", "number", "number_hex", "bytes"}));
  EXPECT_EQ(rows[3][3], "1-4094");
  EXPECT_EQ(rows[5][3], "fc1/1,fc1/2,fc1/3,fc1/4,fc1/5,fc1/6,fc1/7,fc1/8");
  EXPECT_EQ(encode({"ifvsan-query", "arg_a=10", "if_index=fc3/5"}).out, "00000000 00000000 0000000A 01020400 00000000\n");
}

// As hexdump -C prints it, and as other widespread tools do.
TEST_F(Message, DumpsAreUnderstood) {
  write("bars",
        "00000000  00 00 00 00 00 00 00 03  00 00 00 0a 01 02 04 00  |................|\n"
        "00000010  00 00 00 7c                                       |...||\n"
        "00000014\n");
  write("colons",
        "00000000: 0000 0000 0000 0003 0000 000a 0102 0400  ................\n"
        "00000010: 0000 007c                                face\n");
  write("od", "000000 00 00 00 00 00 00 00 03 00 00 00 0a 01 02 04 00\n000010 00 00 00 7c\n000014\n");
  write("packet", "\t0x0000:  0000 0000 0000 0003 0000 000a 0102 0400  ................\n\t0x0010:  0000 007c  ...|\n");
  for (const char* dump : {"bars", "colons", "od", "packet"}) {
    auto result = shell(std::string("chnsw message decode ifvsan-answer - --format json < ") + dump);
    ASSERT_EQ(result.status, 0) << result.err;
    auto rows = parse_json(result.out);
    EXPECT_EQ(rows[3]["value"], "fc3/5");
    EXPECT_EQ(rows[3]["number_hex"], "0x01020400");
    EXPECT_EQ(rows[4]["number"], 124);
    EXPECT_EQ(rows[4]["bytes"], "0000007C");
  }
}

// Six digits before bytes of two are an offset only where a dump begins, at 0.
TEST_F(Message, LongWordsAreBytes) {
  write("bytes", "010203 04\n05\n");
  auto result = shell("chnsw message decode enable-notice - --format json < bytes");
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(parse_json(result.out)[0]["bytes"], "01020304");
}

TEST_F(Message, RepeatedLinesOfADumpAreFilledIn) {
  write("dump",
        "00000000  00 00 00 09 01 00 00 00  01 01 07 00 00 00 02 00  |................|\n"
        "00000010  80 00 00 00 00 00 00 00  00 00 00 00 00 00 00 00  |................|\n"
        "00000020  00 00 00 00 00 00 00 00  00 00 00 00 00 00 00 00  |................|\n"
        "*\n"
        "00000200  00 00 00 00 00 00 00 00  00 00 00 00 00 00 00 01  |................|\n"
        "00000210\n");
  auto result = shell("chnsw message decode swap-request - --format json < dump");
  ASSERT_EQ(result.status, 0) << result.err;
  auto rows = parse_json(result.out);
  ASSERT_EQ(rows.size(), 5u);
  EXPECT_EQ(rows[4]["value"], "0,4095");
}

TEST_F(Message, WrongDumpsSayWhichLine) {
  write("gap", "00000000  00 01  |..|\n00000010  02 03  |..|\n");
  EXPECT_EQ(shell("chnsw message decode enable-notice - < gap").err,
            "chnsw: line 2: the offset is 0x10, but 0x2 is the next one\n");
  write("open", "0000: 0001 0203 0405 0607 0809 0a0b 0c0d 0e0f\n*\n");
  EXPECT_EQ(shell("chnsw message decode enable-notice - < open").err,
            "chnsw: the dump ends before it says how often \"*\" stands\n");
  EXPECT_EQ(shell("printf '00 01\\n0x2\\n' | chnsw message decode enable-notice -").err,
            "chnsw: line 2: \"0x2\" has an odd number of digits; a byte has two\n");
  EXPECT_EQ(shell("printf '00 01\\nxyz' | chnsw message decode enable-notice -").err,
            "chnsw: line 2: \"xyz\" is not hexadecimal; expected bytes of two digits, as in 0001C1F1 or 00 01 C1 F1\n");
  EXPECT_EQ(shell("chnsw message decode enable-notice - < .").status, 3);
}

TEST_F(Message, EveryFormatIsOneValidDocument) {
  EXPECT_EQ(parse_json(run({"message", "decode", "updown-notice", "010102000107", "--format", "json"}).out).size(), 3u);
  EXPECT_EQ(parse_json_lines(run({"message", "decode", "updown-notice", "010102000107", "--format", "jsonl"}).out).size(),
            3u);
  EXPECT_EQ(run({"message", "encode", "updown-notice", "--value", "--format", "csv"}).out,
            "kind,opcode,framing,byte_order,length,payload\nupdown-notice,the manager's,flat,big,6,000000000000\n");
}

} // namespace
} // namespace chnsw_test
