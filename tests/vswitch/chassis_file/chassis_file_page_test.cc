// docs/chassis-file.md: its files are read, and the messages that it shows are the messages that come.
#include <gmock/gmock.h>
#include <vswitch/chassis_file.h>

#include <sstream>

#include "test_switch.h"

namespace {

using namespace vswitch;

struct block {
  std::string language;
  std::string text;
};

std::vector<block> blocks_of_page() {
  std::vector<block> blocks;
  std::istringstream page(vswitch_test::text_of_file(CHNSW_DOCS "/chassis-file.md"));
  bool inside = false;
  for (std::string line; std::getline(page, line);) {
    if (line.rfind("```", 0) == 0) {
      inside = !inside;
      if (inside) blocks.push_back({line.substr(3), ""});
    } else if (inside) {
      blocks.back().text += line + "\n";
    }
  }
  return blocks;
}

// A file that is followed by messages is wrong in just that way; any other one is right.
TEST(ChassisFilePage, FilesAndMessagesAreWhatTheReaderSays) {
  const auto blocks = blocks_of_page();
  size_t right = 0;
  size_t wrong = 0;
  for (size_t i = 0; i < blocks.size(); ++i) {
    if (blocks[i].language != "toml") continue;
    const bool has_messages = i + 1 < blocks.size() && blocks[i + 1].language == "text";
    std::string messages;
    try {
      parse_chassis_text(blocks[i].text, "director.toml");
    } catch (const chassis_file_error& error) {
      messages = error.what() + std::string("\n");
    }
    EXPECT_EQ(messages, has_messages ? blocks[i + 1].text : "") << blocks[i].text;
    ++(has_messages ? wrong : right);
  }
  EXPECT_EQ(right, 3u);
  EXPECT_EQ(wrong, 1u);
}

// Every key that is allowed is on the page.
TEST(ChassisFilePage, NamesEveryTableAndKey) {
  const std::string page = vswitch_test::text_of_file(CHNSW_DOCS "/chassis-file.md");
  for (const char* word : {"[chassis]",
                           "[[line_card]]",
                           "[[vsan]]",
                           "[[port_channel]]",
                           "[[interface]]",
                           "[[port]]",
                           "[[binding]]",
                           "[[address]]",
                           "[[time_reference]]",
                           "host_time",
                           "host_seconds",
                           "host_microseconds",
                           "tod",
                           "[[node]]",
                           "codepage",
                           "flags",
                           "model",
                           "manufacturer",
                           "plant",
                           "sequence",
                           "tag",
                           "name",
                           "slots",
                           "type",
                           "supervisors",
                           "platform_record",
                           "change_counter",
                           "port_vsan_array",
                           "slot",
                           "ports",
                           "number",
                           "members",
                           "interface",
                           "index",
                           "pn",
                           "pa",
                           "vsans",
                           "vsan"})
    EXPECT_THAT(page, ::testing::HasSubstr("`" + std::string(word) + "`")) << word;
}

} // namespace
