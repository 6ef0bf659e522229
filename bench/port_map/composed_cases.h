// The operations that go through several others of the library's own on their way to an answer, each beside a plain form that
// asks the platform's services itself.
#ifndef BENCH_PORT_MAP_COMPOSED_CASES_H
#define BENCH_PORT_MAP_COMPOSED_CASES_H

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

struct composed_answer {
  uint32_t status;
  uint32_t value; // an index, or the number of ports reported

  bool operator==(const composed_answer&) const = default;
};

struct composed_case {
  std::string name;
  composed_answer (*library)();
  composed_answer (*plain)();
  double bar; // of the time that the plain form takes
};

// Fetches the tables first. Throws std::runtime_error when the two forms of a case do not answer alike, or not as they should.
std::vector<composed_case> composed_cases();

} // namespace bench

#endif
