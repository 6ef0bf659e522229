// The picture of the chassis front.
#include "tool_test.h"

namespace chnsw_test {
namespace {

using testing::HasSubstr;

class Front : public tool_test {};

TEST_F(Front, TextTellsVsansByLetters) {
  EXPECT_EQ(ask({"front"}).out,
            "campus: 6 slots, type 34\n"
            "\n"
            "slot  ports from 1\n"
            "   1  aaaaaaaa  channels\n"
            "   2  bbbb....\n"
            "   3  supervisor\n"
            "   4  supervisor\n"
            "   5  ##b.\n"
            "   6  -\n"
            "\n"
            "a VSAN 10 production\n"
            "b VSAN 20\n"
            ". in no VSAN  # member of a port-channel  x no place in the port map\n");
}

TEST_F(Front, ColourGoesByVsan) {
  auto result = ask({"--color", "always", "front"});
  EXPECT_THAT(result.out, HasSubstr("   2  \x1B[30;42mb\x1B[0m"));
  EXPECT_THAT(result.out, HasSubstr("\x1B[30;44ma\x1B[0m VSAN 10 production\n"));
}

TEST_F(Front, LongCardsAreFolded) {
  write("long.toml", "[chassis]\nslots = 1\ntype = 27\n\n[[line_card]]\nslot = 1\nports = 70\n");
  EXPECT_THAT(run({"-s", "long.toml", "front"}).out,
              HasSubstr("   1  ........ ........ ........ ........ ........ ........ ........ ........\n      ......\n"));
}

TEST_F(Front, SvgIsWellFormedAndNamesEveryPort) {
  write("named.toml", campus_with("name = \"channels\"", "name = \"<A> & \\\"B\\\" \\u0001\""));
  auto result = run({"-s", "named.toml", "front", "--svg", "-"});
  write("front.svg", result.out);
  auto lint = shell("xmllint --noout front.svg");
  EXPECT_EQ(lint.status, 0) << lint.err;
  EXPECT_THAT(result.out, HasSubstr("<title>fc2/3, index 256, PN 50, PA 02, VSAN 20</title>"));
  EXPECT_THAT(result.out, HasSubstr("<title>fc5/1, index 508, in no VSAN, port-channel1</title>"));
  EXPECT_THAT(result.out, HasSubstr("&lt;A&gt; &amp; &quot;B&quot; ?"));
}

TEST_F(Front, SvgOfEveryExampleIsWellFormed) {
  for (const char* name : {"one-slot", "six-slot", "director-10", "director-13", "director-18"}) {
    ASSERT_EQ(
        run({"-s", std::string(CHNSW_SOURCE_DIR "/examples/") + name + ".toml", "front", "--svg", "front.svg"}).status, 0);
    EXPECT_EQ(shell("xmllint --noout front.svg").status, 0) << name;
  }
}

TEST_F(Front, PictureThatCannotBeWrittenLeavesTheOldOne) {
  ASSERT_EQ(ask({"front", "--svg", "front.svg"}).status, 0);
  std::string before = read("front.svg");
  EXPECT_NE(before, "");
  write("front.svg.new", "somebody else's");
  auto result = ask({"front", "--svg", "front.svg"});
  EXPECT_EQ(result.status, 3);
  EXPECT_THAT(result.err, HasSubstr("chnsw: the picture cannot be written to front.svg: "));
  EXPECT_EQ(read("front.svg"), before);
  EXPECT_EQ(read("front.svg.new"), "somebody else's");
  EXPECT_EQ(ask({"front", "--svg", "nowhere/front.svg"}).status, 3);
}

TEST_F(Front, DataHasARowAPort) {
  auto rows = parse_json(ask({"front", "--format", "json"}).out);
  ASSERT_EQ(rows.size(), 23u); // 20 ports, two supervisors, an empty slot
  EXPECT_EQ(rows[10]["interface"], "fc2/3");
  EXPECT_EQ(rows[10]["port_vsan"], 20);
  EXPECT_EQ(rows[16]["holds"], "supervisor");
  EXPECT_EQ(rows[18]["port_channel"], 1);
}

} // namespace
} // namespace chnsw_test
