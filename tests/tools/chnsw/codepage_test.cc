// codepage: the pages, one page as a picture, and text in both directions.
#include "tool_test.h"

namespace chnsw_test {
namespace {

using testing::HasSubstr;

class Codepage : public tool_test {};

TEST_F(Codepage, PagesWithTheLibrarysNames) {
  auto result = run({"codepage"});
  EXPECT_EQ(result.out,
            "CODE PAGE  NAME                CHARACTERS  4A 4F 5A 5B 5F 7B 7C A1 C0 D0 E0\n"
            "        1  ascii                      256  J  O  Z  [  _  {  |  ¡  À  Ð  à\n"
            "       37  us-canada                  256  ¢  |  !  $  ¬  #  @  ~  {  }  \\\n"
            "      273  germany                    256  Ä  !  Ü  $  ^  #  §  ß  ä  ü  Ö\n"
            "      275  brazil                     160  É  !  $  Ç  ^  Õ  Ã  ~  õ  é  \\\n"
            "      280  italy                      256  °  !  é  $  ^  £  §  ì  à  è  ç\n"
            "      281  japan                      159  £  |  !  ¥  ¬  #  @  -  {  }  $\n"
            "      284  spain-latinamerica         256  [  |  ]  $  ¬  Ñ  @  ¨  {  }  \\\n"
            "      285  uk                         255  $  |  !  £  ¬  #  @  -  {  }  \\\n"
            "      297  france                     256  °  !  §  $  ^  £  à  ¨  é  è  ç\n"
            "      500  international-5            256  [  !  ]  $  ^  #  @  ~  {  }  \\\n");
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, 0);
}

TEST_F(Codepage, NeedsNoSwitchAndListsAsData) {
  auto rows = parse_json(run({"codepage", "--format", "json"}).out);
  ASSERT_EQ(rows.size(), 10u);
  EXPECT_EQ(rows[2], (nlohmann::json{{"codepage", 273}, {"name", "germany"}, {"characters", 256}}));
}

TEST_F(Codepage, PictureOfAPage) {
  auto result = run({"codepage", "273"});
  EXPECT_THAT(result.out, testing::StartsWith("code page 273 germany\n\n"
                                              "      x0 x1 x2 x3 x4 x5 x6 x7 x8 x9 xA xB xC xD xE xF\n"
                                              "  0x  00 01 02 03 9C 09 86 7F 97 8D 8E 0B 0C 0D 0E 0F\n"));
  EXPECT_THAT(result.out, HasSubstr("\n  4x  20 A0  â  {  à  á  ã  å  ç  ñ  Ä  .  <  (  +  !\n"));
  EXPECT_THAT(result.out, HasSubstr("\n  Cx   ä  A  B  C  D  E  F  G  H  I AD  ô  ¦  ò  ó  õ\n"));
  EXPECT_EQ(result.status, 0);
}

TEST_F(Codepage, PictureTellsWhatIsNotThereFromADash) {
  EXPECT_THAT(run({"codepage", "281"}).out, HasSubstr("\n  6x   -  / -- -- -- -- -- -- -- --"));
}

TEST_F(Codepage, PlacesAsData) {
  auto rows = parse_json(run({"codepage", "37,285", "--format", "json"}).out);
  ASSERT_EQ(rows.size(), 512u);
  EXPECT_EQ(rows[0xC1]["text"], "A");
  EXPECT_EQ(rows[0x4A]["latin1_hex"], "0xA2");
  EXPECT_EQ(rows[0x4A]["text"], "\u00A2");
  EXPECT_EQ(rows[256 + 0x5B]["text"], "\u00A3");
  EXPECT_EQ(rows[256 + 0xA1]["latin1"], nullptr);
  EXPECT_EQ(rows[256 + 0xA1]["byte_hex"], "0xA1");
  EXPECT_EQ(rows[256 + 0xA1]["codepage"], 285);
}

TEST_F(Codepage, TextToHostInSeveralPages) {
  auto result = run({"codepage", "37,273", "--to-host", "ACM $[äö"});
  EXPECT_EQ(result.out,
            "CODE PAGE  TEXT      BYTES                    SUBSTITUTED\n"
            "       37  ACM $[äö  C1 C3 D4 40 5B BA 43 CC            0\n"
            "      273  ACM $[äö  C1 C3 D4 40 5B 63 C0 6A            0\n");
  EXPECT_EQ(result.status, 0);
}

TEST_F(Codepage, BytesFromHost) {
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"C6C9C3D6D54A"}, {"0xC6C9", "c3:d6", "D5,4A"}, {"C6 C9 C3 D6 D5 4A"}}) {
    std::vector<std::string> all = {"codepage", "37", "--from-host"};
    all.insert(all.end(), words.begin(), words.end());
    EXPECT_EQ(run(all).out,
              "CODE PAGE  TEXT    BYTES              SUBSTITUTED\n"
              "       37  FICON¢  C6 C9 C3 D6 D5 4A            0\n");
  }
}

TEST_F(Codepage, WhatAPageLacksIsCountedAndIsStatusOne) {
  auto to_host = run({"codepage", "275", "--to-host", "{é", "--format", "csv"});
  EXPECT_EQ(to_host.out, "codepage,name,text,bytes,substituted\n275,brazil,{é,3FD0,1\n");
  EXPECT_EQ(to_host.status, 1);
  auto from_host = run({"codepage", "285", "--from-host", "A13FC1"});
  EXPECT_EQ(from_host.out,
            "CODE PAGE  TEXT       BYTES     SUBSTITUTED\n"
            "      285  \\x1A\\x1AA  A1 3F C1            1\n"); // the host's own SUB is no substitute
  EXPECT_EQ(from_host.status, 1);
}

TEST_F(Codepage, LinesOfStandardInput) {
  auto result = shell("printf 'A\\n\\nB1\\n' | chnsw codepage 500 --to-host - --format csv");
  EXPECT_EQ(result.out,
            "codepage,name,text,bytes,substituted\n500,international-5,A,C1,0\n500,international-5,,,0\n"
            "500,international-5,B1,C2F1,0\n");
  EXPECT_EQ(shell("printf 'C1\\nF1' | chnsw codepage 500 --from-host - --format csv").out,
            "codepage,name,text,bytes,substituted\n500,international-5,A1,C1F1,0\n");
}

// The library takes at most 100 bytes a call.
TEST_F(Codepage, LongTextsAreConvertedWhole) {
  const std::string text = std::string(100, 'A') + std::string(100, 'B') + "C";
  auto row = parse_json(run({"codepage", "37", "--to-host", text, "--format", "json"}).out)[0];
  std::string bytes;
  for (int n = 0; n < 100; ++n) bytes += "C1";
  for (int n = 0; n < 100; ++n) bytes += "C2";
  EXPECT_EQ(row["bytes"], bytes + "C3");
  EXPECT_EQ(row["text"], text);
}

TEST_F(Codepage, PlainTextIsLeftAsItIs) {
  auto result = run({"codepage", "1", "--from-host", "411A3F", "--format", "csv"});
  EXPECT_EQ(result.out, "codepage,name,text,bytes,substituted\n1,ascii,A\x1A?,411A3F,0\n");
  EXPECT_EQ(result.status, 0);
}

TEST_F(Codepage, WrongUseSaysWhatWasExpected) {
  const struct {
    std::vector<std::string> words;
    const char* complaint;
  } rows[] = {
      {{"codepage", "38"}, "the library knows no code page 38; it knows 1, 37, 273, 275, 280, 281, 284, 285, 297, 500"},
      {{"codepage", "x"},
       "code page \"x\", character 1: \"x\" is not a number; expected a decimal number from 0 to 65535, "
       "as in 37 or 37,500"},
      {{"codepage", "--to-host", "A"}, "name the code page of the text, as in chnsw codepage 37"},
      {{"codepage", "37", "--to-host", "a€"},
       "text \"a€\", character 2: the switch's text is ISO 8859-1, which does not have it"},
      {{"codepage", "37", "--from-host", "C1 F"}, "\"F\" has an odd number of digits; a byte has two"},
      {{"codepage", "37", "--from-host", "C1G1"},
       "\"C1G1\" is not hexadecimal; expected bytes of two digits, as in 0001C1F1 or 00 01 C1 F1"},
  };
  for (const auto& row : rows) {
    auto result = run(row.words);
    EXPECT_EQ(result.err, std::string("chnsw: ") + row.complaint + "\n");
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.status, 2);
  }
  EXPECT_EQ(run({"codepage", "37", "--to-host", "A", "--from-host", "C1"}).status, 2);
}

} // namespace
} // namespace chnsw_test
