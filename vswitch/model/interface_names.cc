// Interface indexes and their names.
#include "vswitch/interface_index.h"

#include <array>
#include <charconv>
#include <cstdio>

namespace vswitch {

namespace {

constexpr uint32_t kLogicalNumbers = 0x01000000; // 24 bits

struct named_type {
  std::string_view prefix;
  uint8_t type;
};
constexpr std::array kLogicalNames = {named_type{"port-channel", IF_TYPE_PORT_CHANNEL}, named_type{"fcip", IF_TYPE_FCIP},
                                      named_type{"mgmt", kManagementPort}};

// Takes a decimal number off the front of text; none when there is none, or when it does not fit.
std::optional<uint32_t> take_number(std::string_view& text) {
  uint32_t number = 0;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc()) return std::nullopt;
  text.remove_prefix(static_cast<size_t>(end - text.data()));
  return number;
}

std::optional<uint32_t> parse_fc_port(std::string_view text) {
  auto slot = take_number(text);
  if (!slot || *slot < 1 || *slot > 256 || !text.starts_with('/')) return std::nullopt;
  text.remove_prefix(1);
  auto port = take_number(text);
  if (!port || *port < 1 || *port > 256 || !text.empty()) return std::nullopt;
  return fc_port_index(*slot, *port);
}

std::optional<uint32_t> parse_logical(uint8_t type, std::string_view text) {
  auto number = take_number(text);
  if (!number || *number >= kLogicalNumbers || !text.empty()) return std::nullopt;
  return logical_index(type, *number);
}

std::optional<uint32_t> parse_hexadecimal(std::string_view text) {
  uint32_t index = 0;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), index, 16);
  if (text.size() != 8 || error != std::errc() || end != text.data() + text.size() || index == 0) return std::nullopt;
  return index;
}

} // namespace

uint32_t fc_port_index(unsigned slot, unsigned port) {
  return uint32_t{IF_TYPE_FC_PORT} << 24 | ((slot - 1) & 0xFF) << 16 | ((port - 1) & 0xFF) << 8;
}

uint32_t logical_index(uint8_t type, uint32_t number) {
  return uint32_t{type} << 24 | (number & (kLogicalNumbers - 1));
}

uint8_t interface_type(uint32_t if_index) {
  return static_cast<uint8_t>(if_index >> 24);
}

std::optional<fc_port> fc_port_of(uint32_t if_index) {
  if (interface_type(if_index) != IF_TYPE_FC_PORT || (if_index & 0xFF) != 0) return std::nullopt;
  return fc_port{(if_index >> 16 & 0xFF) + 1, (if_index >> 8 & 0xFF) + 1};
}

uint32_t logical_number(uint32_t if_index) {
  return if_index & (kLogicalNumbers - 1);
}

std::string interface_name(uint32_t if_index) {
  if (auto port = fc_port_of(if_index)) return "fc" + std::to_string(port->slot) + "/" + std::to_string(port->port);
  for (const auto& name : kLogicalNames)
    if (interface_type(if_index) == name.type) return std::string(name.prefix) + std::to_string(logical_number(if_index));
  char text[11];
  std::snprintf(text, sizeof text, "0x%08X", if_index);
  return text;
}

std::optional<uint32_t> parse_interface_name(std::string_view name) {
  for (const auto& candidate : kLogicalNames)
    if (name.starts_with(candidate.prefix)) return parse_logical(candidate.type, name.substr(candidate.prefix.size()));
  if (name.starts_with("0x")) return parse_hexadecimal(name.substr(2));
  if (name.starts_with("fc")) return parse_fc_port(name.substr(2));
  return std::nullopt;
}

} // namespace vswitch
