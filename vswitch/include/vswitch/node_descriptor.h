// What identifies a device to a mainframe: its node descriptor, as people write it and as the device sends it.
#ifndef VSWITCH_NODE_DESCRIPTOR_H
#define VSWITCH_NODE_DESCRIPTOR_H

#include <libchnsw.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vswitch/code_pages.h"

namespace vswitch {

inline constexpr uint32_t kUsualCodepage = 37;

bool is_codepage(int64_t number); // one of kCodePages

// Texts are ASCII here, of upper-case letters and digits: those stand at the same place in every EBCDIC code page. Each has its
// whole length, so that equal descriptors compare as equal.
struct node_descriptor {
  uint32_t codepage = kUsualCodepage; // of the host that the device belongs to; one of kCodePages
  uint32_t flags = 0;                 // flags and node parameters, from the highest byte on; 0: valid, no more
  std::string type = std::string(6, '0');
  std::string model = std::string(3, '0');
  std::string manufacturer = std::string(3, ' ');
  std::string plant = std::string(2, ' ');
  std::string sequence = std::string(12, '0');
  uint16_t tag = 0;

  bool operator==(const node_descriptor&) const = default;
};

// Numbers are right-justified with zeros before them, codes left-justified with blanks behind them.
enum class node_padding { zeros_before, blanks_behind };

// The texts in the order of the descriptor, by their names.
struct node_text {
  const char* name;
  std::string node_descriptor::*text;
  size_t length;
  node_padding padding;
};
inline constexpr std::array<node_text, 5> kNodeTexts = {{
    {"type", &node_descriptor::type, 6, node_padding::zeros_before},
    {"model", &node_descriptor::model, 3, node_padding::zeros_before},
    {"manufacturer", &node_descriptor::manufacturer, 3, node_padding::blanks_behind},
    {"plant", &node_descriptor::plant, 2, node_padding::blanks_behind},
    {"sequence", &node_descriptor::sequence, 12, node_padding::zeros_before},
}};

// A text of 1 to its length of upper-case letters and digits, filled to its length; none when it is something else.
std::optional<std::string> padded(const node_text& field, std::string_view text);

// A text without the blanks behind it; empty when there is nothing else.
std::string without_blanks(std::string_view text);

// The 32 bytes with texts in ASCII, and back.
ficon_node_descriptor ascii_descriptor(const node_descriptor& node);
node_descriptor node_of(uint32_t codepage, const ficon_node_descriptor& ascii);

// The 32 bytes as the device sends them, in the host's code page. None without a converter (nullptr), or when it fails.
std::optional<ficon_node_descriptor> host_descriptor(const node_descriptor& node, ficon_convert_fn convert);

} // namespace vswitch

#endif
