/* The library's port map beside its model: a switch, changes of it and calls, all drawn from bytes, and after every call a
 * look at everything that a client or the platform can tell: result, outputs, calls of services, texts, exported variables.
 *
 * Not drawn, because nobody promises anything:
 * - fast forms, and a slot's port without a table, before the tables were fetched;
 * - a negative port number where it is an index, and a bound, a number or MAX_FICON_PORTS beyond the table that is read;
 * - a port of a line card whose entries lie behind the cached table's 1280;
 * - NULL for an address that is not tested;
 * - arrays of default numbers that do not reach as far as their layout;
 * - MAX_FICON_PORTS changed after a table of that size was allocated.
 * The model knows the first three itself: it throws, and the library is not asked. */
#ifndef TESTS_PORT_MAP_MODEL_PORT_MAP_COMPARISON_H
#define TESTS_PORT_MAP_MODEL_PORT_MAP_COMPARISON_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace chnsw_test {

// What was compared, to know that it was something.
struct compared {
  unsigned calls = 0;
  unsigned undefined = 0;                                        // calls not made
  std::map<std::string, std::map<uint32_t, unsigned>> status_of; // operation -> status -> how often
  std::set<std::string> decided;                                 // by searches among several ports
  std::set<std::string> texts;                                   // of reports and traces, "?" for every number
  std::set<std::string> warnings;                                // of refused allocations, as "[1420]"
};

// The bytes are read in steps of this many; the first step tells what switch it is, every other is a change or a call. Any
// bytes will do, and steps can be left out.
inline constexpr size_t kStepBytes = 16;

// Begins with a library as it is right after loading, and leaves it so. Returns what happened up to the first difference,
// or nothing when there is none.
std::string compare_port_map(const std::vector<uint8_t>& bytes, compared* what = nullptr);

// Leaves out steps as long as there is still a difference. Returns the bytes that are left.
std::vector<uint8_t> shrunk(std::vector<uint8_t> bytes);

// A crowded map and calls, the same on every machine.
std::vector<uint8_t> bytes_of_seed(uint64_t seed, size_t steps);

} // namespace chnsw_test

#endif
