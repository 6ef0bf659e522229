// How many instructions an operation takes beside its plain form, as callgrind counts them: the same number at every run, on a
// busy machine too.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>

#include "composed_cases.h"
#include "fast_cases.h"

namespace {

namespace fs = std::filesystem;

// Of the plain loop's instructions, when no port or one port carries the number.
constexpr double kBar = 0.36;

class temporary_folder {
 public:
  temporary_folder() : path_((fs::temp_directory_path() / "chnsw-count-XXXXXX").string()) {
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error(path_ + " cannot be made");
  }
  ~temporary_folder() {
    std::error_code left_behind;
    fs::remove_all(path_, left_behind);
  }
  temporary_folder(const temporary_folder&) = delete;
  temporary_folder& operator=(const temporary_folder&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

// What follows a label at the beginning of one of the file's lines; empty when no line has it.
std::string value_of(const fs::path& file, const std::string& label) {
  std::ifstream lines(file);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(label)) return line.substr(label.size());
  }
  return "";
}

// Instructions by what they were counted for. Symbols are bound first, so that the dynamic linker is not counted.
std::map<std::string, uint64_t> count_instructions() {
  const temporary_folder folder;
  const std::string command = "LD_BIND_NOW=1 valgrind --tool=callgrind --callgrind-out-file=" + folder.path() +
                              "/counts " CHNSW_COUNTED " >" + folder.path() + "/log 2>&1";
  if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
  std::map<std::string, uint64_t> counts;
  for (const auto& file : fs::directory_iterator(folder.path())) {
    const std::string name = value_of(file.path(), "desc: Trigger: Client Request: ");
    if (!name.empty()) counts[name] = std::stoull(value_of(file.path(), "summary: "));
  }
  return counts;
}

TEST(InstructionCount, NoOrOneMatchTakesAtMostThirtySixHundredthsOfAPlainLoop) {
  const auto counts = count_instructions();
  int compared = 0;
  for (const bench::fast_case& counted : bench::fast_cases()) {
    if (counted.carried_by == bench::carriers::several) continue;
    const auto library = static_cast<double>(counts.at(counted.name + ", library"));
    const auto plain = static_cast<double>(counts.at(counted.name + ", plain"));
    // Every walk looks at 1280 entries, with an instruction each at the very least.
    EXPECT_GT(library, 1280) << counted.name;
    EXPECT_LE(library, kBar * plain) << counted.name;
    ++compared;
  }
  EXPECT_EQ(compared, 16);
}

TEST(InstructionCount, GoingThroughOtherOperationsTakesNoMoreThanAPlainForm) {
  const auto counts = count_instructions();
  const auto cases = bench::composed_cases();
  for (const bench::composed_case& counted : cases) {
    const uint64_t library = counts.at(counted.name + ", library");
    // Every one asks four services at the very least.
    EXPECT_GT(library, 50u) << counted.name;
    EXPECT_LE(library, counts.at(counted.name + ", plain")) << counted.name;
  }
  EXPECT_EQ(cases.size(), 3u);
}

} // namespace
