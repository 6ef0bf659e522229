// Every fast translation, each asked for a number that no port carries, one port in the middle, or several: the library's
// form and the plain one.
#ifndef BENCH_PORT_MAP_FAST_CASES_H
#define BENCH_PORT_MAP_FAST_CASES_H

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

struct answer {
  uint32_t status;
  uint32_t value;

  bool operator==(const answer&) const = default;
};

enum class carriers { none, one, several };

struct fast_case {
  std::string name; // "PA to PN in a VSAN, no match"
  answer (*library)(int32_t number);
  answer (*plain)(int32_t number);
  int32_t number;
  carriers carried_by;
  int walks; // over the table; an address turned into an interface takes two once its number is found
};

// Fetches the tables first. Throws std::runtime_error when the two forms of a case do not answer alike.
std::vector<fast_case> fast_cases();

} // namespace bench

#endif
