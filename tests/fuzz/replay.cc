// Calls a target with every file of a folder.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz_target.h"

namespace {

namespace fs = std::filesystem;

// The bytes are in a block of their own, as a fuzzer hands them over. Returns whether they got as far as they could.
bool replay(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::vector<char> bytes((std::istreambuf_iterator<char>(stream)), {});
  const std::vector<uint8_t> data(bytes.begin(), bytes.end());
  std::fprintf(stderr, "%s\n", file.filename().c_str()); // if it ends the process
  const unsigned successes = fuzz::successes();
  LLVMFuzzerTestOneInput(data.data(), data.size());
  return fuzz::successes() > successes;
}

} // namespace

// Seeds of which none is good, or every one, have lost their meaning.
int main(int argc, char** argv) try {
  if (argc != 2) return 2;
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(argv[1])) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  const auto good = static_cast<size_t>(std::count_if(files.begin(), files.end(), replay));
  std::fprintf(stderr, "%zu seeds, %zu of them good\n", files.size(), good);
  return good == 0 || good == files.size() ? 1 : 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
