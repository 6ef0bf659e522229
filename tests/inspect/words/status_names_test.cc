// Names and meanings of statuses: a row for every constant that the headers declare.
#include "inspect/words/status_names.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>

namespace inspect_test {
namespace {

using inspect::known_statuses;
using inspect::status_meaning;
using inspect::status_name;
using inspect::status_text;

std::string text_of(const std::filesystem::path& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

void add_matches(const std::string& text, const char* pattern, std::map<std::string, uint32_t>& found) {
  const std::regex expression(pattern);
  for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match)
    found[(*match)[1]] = static_cast<uint32_t>(std::stoul((*match)[2], nullptr, 0));
}

// Name and number of each status that a header declares.
std::map<std::string, uint32_t> declared_statuses() {
  std::map<std::string, uint32_t> declared;
  add_matches(text_of(CHNSW_SOURCE_DIR "/feature/ficon/libchnsw/libchnsw.h"), R"((FICON_RC_\w+) = (\w+))", declared);
  for (const auto& header : std::filesystem::directory_iterator(CHNSW_SOURCE_DIR "/platform/include/platform"))
    add_matches(text_of(header.path()), R"(#define (\w+) (0x[0-9A-Fa-f]+)u? /\* status)", declared);
  return declared;
}

TEST(StatusNames, EveryDeclaredStatusHasARow) {
  const auto declared = declared_statuses();
  EXPECT_EQ(declared.size(), 15U); // 13 of the library, one each of port indexes and port-channels
  for (const auto& [name, code] : declared) EXPECT_EQ(status_name(code), name);
}

TEST(StatusNames, EveryRowIsASentenceOfItsOwn) {
  std::map<uint32_t, std::string_view> codes;
  for (const auto& row : known_statuses()) {
    EXPECT_TRUE(codes.emplace(row.code, row.name).second) << row.name;
    EXPECT_TRUE(std::isupper(static_cast<unsigned char>(row.meaning.front())) && row.meaning.back() == '.') << row.name;
    EXPECT_EQ(status_meaning(row.code), row.meaning);
  }
}

TEST(StatusNames, TextIsNameAndNumber) {
  EXPECT_EQ(status_text(0), "OK 0");
  EXPECT_EQ(status_text(0x4085004A), "FICON_RC_NO_IF 0x4085004A");
  EXPECT_EQ(status_text(0x40450001), "platform status 0x40450001");
  EXPECT_EQ(status_meaning(0x40450001), "A status of a service of the platform.");
  EXPECT_EQ(status_meaning(0x40850052), "More than one port or interface answers.");
}

} // namespace
} // namespace inspect_test
