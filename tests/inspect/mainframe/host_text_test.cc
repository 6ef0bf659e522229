// Texts of hosts and of the switch: which characters there are, and which are substituted.
#include "inspect/mainframe/host_text.h"

#include <gmock/gmock.h>

#include "inspect/mainframe/code_page.h"
#include "inspect_test.h"

namespace inspect {
namespace {

using inspect_test::complaint;
using testing::ElementsAre;

TEST(KnownCodepages, AreThoseWithAName) {
  EXPECT_THAT(known_codepages(), ElementsAre(1u, 37u, 273u, 275u, 280u, 281u, 284u, 285u, 297u, 500u));
  EXPECT_TRUE(is_known_codepage(500));
  EXPECT_FALSE(is_known_codepage(0));
  EXPECT_FALSE(is_known_codepage(501));
}

TEST(Latin1OfUtf8, ReachesAsFarAsIso8859) {
  EXPECT_EQ(latin1_of_utf8("a\x7F\xC2\x80\xC3\xBF", "text"), "a\x7F\x80\xFF");
  const std::string expected = ": the switch's text is ISO 8859-1, which does not have it";
  EXPECT_EQ(complaint([] { latin1_of_utf8("ü\xC4\x80", "name"); }),
            "name \"ü\xC4\x80\", character 2" + expected); // U+0100
  EXPECT_EQ(complaint([] { latin1_of_utf8("a€", "text"); }), "text \"a€\", character 2" + expected);
}

TEST(Latin1OfUtf8, RefusesHalfACharacter) {
  EXPECT_NE(complaint([] { latin1_of_utf8("\xC3", "text"); }), "(nothing is wrong)");
  EXPECT_NE(complaint([] { latin1_of_utf8("\xC3z", "text"); }), "(nothing is wrong)");
  EXPECT_NE(complaint([] { latin1_of_utf8("\x80", "text"); }), "(nothing is wrong)");
}

TEST(ToHost, ConvertsWhatIsLongerThanOneCall) {
  EXPECT_EQ(to_host(37, std::string(100, 'A') + "B"), std::string(100, '\xC1') + "\xC2");
  EXPECT_EQ(from_host(37, std::string(200, '\xC1') + "\xC2"), std::string(200, 'A') + "B");
  EXPECT_EQ(to_host(37, ""), "");
}

TEST(CodePage, KnowsWhatTheSwitchDoesNotHave) {
  const code_page page = code_page_of(285);
  EXPECT_EQ(page.latin1[0xC1], 'A');
  EXPECT_EQ(page.latin1[0xA1], std::nullopt);
  EXPECT_EQ(page.latin1[0x3F], '\x1A'); // the host's own SUB
  EXPECT_EQ(page.characters(), 255u);
}

TEST(CodePage, OfPlainTextHasEverything) {
  const code_page page = code_page_of(1);
  EXPECT_EQ(page.latin1[0x1A], '\x1A');
  EXPECT_EQ(page.characters(), 256u);
}

TEST(ConvertedText, CountsWhatWasSubstitutedAndNotASubstituteItself) {
  const converted_text to = text_to_host(275, "{A\x1A");
  EXPECT_EQ(to.host, "\x3F\xC1\x3F");
  EXPECT_EQ(to.substituted, 1u);
  const converted_text from = text_from_host(285, "\xA1\x3F\xC1");
  EXPECT_EQ(from.latin1,
            "\x1A\x1A"
            "A");
  EXPECT_EQ(from.substituted, 1u);
  EXPECT_EQ(text_to_host(1, "?\x1A").substituted, 0u);
}

TEST(ParseCodepages, TakesThoseThatTheLibraryKnows) {
  EXPECT_THAT(parse_codepages({"500,37"}), ElementsAre(500u, 37u));
  EXPECT_EQ(parse_codepages({"all"}).size(), 10u);
  EXPECT_EQ(complaint([] { parse_codepages({"38"}); }),
            "the library knows no code page 38; it knows 1, 37, 273, 275, 280, 281, 284, 285, 297, 500");
}

} // namespace
} // namespace inspect
