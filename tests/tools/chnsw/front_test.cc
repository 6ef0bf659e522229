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

TEST_F(Front, OneSlotIsNoPlural) {
  write("one.toml", "[chassis]\nslots = 1\ntype = 27\n");
  EXPECT_THAT(run({"-s", "one.toml", "front"}).out, testing::StartsWith("1 slot, type 27\n"));
}

TEST_F(Front, SvgNamesStandUnderThePortsAndLongOnesAreShortened) {
  std::string name(80, 'W');
  write("long.toml", campus_with("name = \"channels\"", "name = \"" + name + "\""));
  // Slot 1 begins at 50: its ports stand at 58 to 72.
  EXPECT_THAT(run({"-s", "long.toml", "front", "--svg", "-"}).out,
              HasSubstr("<text x=\"50\" y=\"84\">" + name.substr(0, 60) + "...<title>" + name + "</title></text>\n"));
}

TEST_F(Front, SvgGivesEveryVsanAColourOfItsOwn) {
  std::string file = "[chassis]\nslots = 1\ntype = 27\n\n[[line_card]]\nslot = 1\nports = 48\n";
  for (int port = 1; port <= 48; ++port)
    file += "\n[[port]]\ninterface = \"fc1/" + std::to_string(port) + "\"\nvsan = " + std::to_string(100 + port) + "\n";
  write("many.toml", file);
  auto result = run({"-s", "many.toml", "front", "--svg", "front.svg"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(
      shell("grep -A1 'x=\"18\".*rx=' front.svg | grep -B1 '>VSAN ' | grep -o 'fill=\"#[0-9a-f]*' | sort -u | wc -l").out,
      "48\n");
}

TEST_F(Front, SvgLegendExplainsEveryLookOfAPort) {
  auto svg = ask({"front", "--svg", "-"}).out;
  EXPECT_THAT(svg, testing::ContainsRegex("fill=\"#dddddd\" stroke=\"#888888\"/>\n *<text [^\n]*>grey: in no VSAN<"));
  EXPECT_THAT(svg,
              testing::ContainsRegex("fill=\"none\" stroke=\"#888888\"/>\n *<text [^\n]*>not filled: no place in the"));
  EXPECT_THAT(svg, testing::ContainsRegex("stroke=\"#000000\" [^\n]*/>\n *<text [^\n]*>black border: member of a port-"));
}

TEST_F(Front, SvgOfEveryExampleIsWellFormed) {
  for (const char* name : {"one-slot", "six-slot", "director-10", "director-13", "director-18"}) {
    ASSERT_EQ(
        run({"-s", std::string(CHNSW_SOURCE_DIR "/examples/") + name + ".toml", "front", "--svg", "front.svg"}).status, 0);
    EXPECT_EQ(shell("xmllint --noout front.svg").status, 0) << name;
  }
}

TEST_F(Front, PictureReplacesTheOldOneAndLeavesNoDraft) {
  ASSERT_EQ(shell("echo old >old.svg && chmod 640 old.svg && ln -s old.svg front.svg").status, 0);
  ASSERT_EQ(ask({"front", "--svg", "front.svg"}).status, 0);
  EXPECT_EQ(listing(), (std::vector<std::string>{"campus.toml", "front.svg", "old.svg"}));
  EXPECT_EQ(shell("readlink front.svg; stat -c %a old.svg; head -c 4 old.svg").out, "old.svg\n640\n<svg");
}

TEST_F(Front, PictureThatCannotBeWritten) {
  auto result = ask({"front", "--svg", "nowhere/front.svg"});
  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(result.err, "chnsw: the picture cannot be written to nowhere/front.svg: No such file or directory\n");
  EXPECT_EQ(ask({"front", "--svg", "."}).status, 3);
}

TEST_F(Front, DeviceIsWrittenToAndNotReplaced) {
  // A device of the test's own would need rights that a test does not have; a pipe is replaced just as easily.
  ASSERT_EQ(
      shell("mkfifo pipe && (cat pipe >read.svg & chnsw -s campus.toml front --svg pipe; wait) && test -p pipe").status, 0);
  EXPECT_THAT(read("read.svg"), testing::StartsWith("<svg "));
  EXPECT_THAT(read("read.svg"), testing::EndsWith("</svg>\n"));
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
