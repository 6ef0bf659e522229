// The code pages that a host may announce, and what the C library calls them.
#ifndef VSWITCH_CODE_PAGES_H
#define VSWITCH_CODE_PAGES_H

#include <libchnsw.h>

#include <array>
#include <cstdint>

namespace vswitch {

struct code_page {
  uint32_t number;
  const char* iconv_name;
};

inline constexpr const char* kSwitchText = "ISO-8859-1"; // what the switch's own text is
inline constexpr std::array<code_page, 10> kCodePages = {{
    {FICON_CODEPAGE_ASCII, kSwitchText},
    {37, "IBM037"},
    {273, "IBM273"},
    {275, "IBM275"},
    {280, "IBM280"},
    {281, "IBM281"},
    {284, "IBM284"},
    {285, "IBM285"},
    {297, "IBM297"},
    {500, "IBM500"},
}};

} // namespace vswitch

#endif
