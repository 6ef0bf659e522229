// Numbers as people write them: alone, as lists and as ranges.
#ifndef INSPECT_NUMBER_LISTS_H
#define INSPECT_NUMBER_LISTS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace inspect {

// One kind of number. Digits alone are read in its base; "0x" always makes them hexadecimal.
struct number_kind {
  std::string_view what;
  unsigned base;
  uint32_t lowest;
  uint32_t highest;
  std::string_view example;
};

inline constexpr number_kind kPortAddress = {"port address", 16, 0, 0xFFFF, "C0 or 10-1F,30"};
inline constexpr number_kind kPortNumber = {"port number", 10, 0, 65535, "12 or 0-47,240"};
inline constexpr number_kind kPortMapIndex = {"port map index", 10, 0, 65535, "254 or 0-47,1024"};
inline constexpr number_kind kVsan = {"VSAN", 10, 0, 4095, "10 or 10,20"};
inline constexpr number_kind kSlot = {"slot", 10, 1, 255, "3 or 1-4"};

// Every number of a list like {"10-1F,30", "C0"}, in the order given; "all" stands for all. Throws a question error that says
// which word, where in it, and what was expected.
std::vector<uint32_t> parse_numbers(const number_kind& kind, const std::vector<std::string>& words,
                                    const std::vector<uint32_t>& all);
uint32_t parse_number(const number_kind& kind, std::string_view word);

// 0, 1, ... below end.
std::vector<uint32_t> numbers_below(uint32_t end);

} // namespace inspect

#endif
