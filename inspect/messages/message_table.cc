#include "inspect/messages/message_table.h"

#include <fmt/format.h>

#include "inspect/error.h"
#include "inspect/words/nearest_word.h"
#include "inspect/words/printable_text.h"
#include "libchnsw.h"

namespace inspect {

namespace {

using enum field_form;

// Every field of every message, in the order of its record.

constexpr message_field kPortmap[] = {
    {"code", offsetof(ficon_portmap_req, header.code), 4, number, 0, "for the manager's log"},
    {"kind", offsetof(ficon_portmap_req, header.kind), 4, number, FICON_CMI_KIND_PORTMAP, "18 in every request"},
    {"reserved", offsetof(ficon_portmap_req, header.reserved), 4, number, 0, ""},
    {"text1", offsetof(ficon_portmap_req, header.text1), sizeof(ficon_cmi_hdr::text1), text, 0, "for the manager's log"},
    {"text2", offsetof(ficon_portmap_req, header.text2), sizeof(ficon_cmi_hdr::text2), text, 0, "for the manager's log"},
    {"if_index", offsetof(ficon_portmap_req, if_index), 4, interface_on_wire, 0, "the interface asked about"},
    {"result", offsetof(ficon_portmap_req, result), 4, status, 0, "of the answer"},
    {"number_a", offsetof(ficon_portmap_req, number_a), 2, number, 0, "answer: port number, 512 for none"},
    {"number_b", offsetof(ficon_portmap_req, number_b), 2, number, 0, "answer: port address, 512 for none"},
    {"selector", offsetof(ficon_portmap_req, selector), 1, number, 0, "what is asked for; 0"},
    {"zero", offsetof(ficon_portmap_req, zero), sizeof(ficon_portmap_req::zero), bytes, 0, ""},
};

constexpr message_field kEnabledVsans[] = {
    {"vsans.bytes", offsetof(vsan_block, bytes), 4, number, FICON_VSAN_BITMAP_BYTES, "length of the bitmap, 512"},
    {"vsans", offsetof(vsan_block, bitmap), FICON_VSAN_BITMAP_BYTES, vsan_set, 0, "the enabled VSANs"},
};

constexpr size_t kNodeOffset = offsetof(ficon_rnid_rec, descriptor);
constexpr message_field kRnid[] = {
    {"if_index", offsetof(ficon_rnid_rec, if_index), 4, interface_on_wire, 0, "the interface asked about"},
    {"rnid_port", offsetof(ficon_rnid_rec, rnid_port), 2, number, 0, "comes back as it was"},
    {"rnid_size", offsetof(ficon_rnid_rec, rnid_size), 2, number, FICON_RNID_SIZE, "512 in every request"},
    {"rnid_word8", offsetof(ficon_rnid_rec, rnid_word8), 4, number, 0, "comes back as it was"},
    {"codepage", offsetof(ficon_rnid_rec, codepage), 4, codepage, 0, "answer: code page of the descriptor's texts"},
    {"rnid_format", offsetof(ficon_rnid_rec, rnid_format), 4, number, 0, "2: have the texts converted by the parser"},
    {"result", offsetof(ficon_rnid_rec, result), 4, status, 0, "of the answer"},
    {"rnid_word24", offsetof(ficon_rnid_rec, rnid_word24), 4, number, 0, "comes back as it was"},
    {"node", kNodeOffset, FICON_RNID_DESCRIPTOR_BYTES, node, 0, "answer: the whole node descriptor"},
    {"node.flags", kNodeOffset + offsetof(ficon_node_descriptor, flags), 4, bytes, 0, "flags and node parameters"},
    {"node.type", kNodeOffset + offsetof(ficon_node_descriptor, type), 6, host_text, 0, "type number"},
    {"node.model", kNodeOffset + offsetof(ficon_node_descriptor, model), 3, host_text, 0, "model number"},
    {"node.manufacturer", kNodeOffset + offsetof(ficon_node_descriptor, manufacturer), 3, host_text, 0, ""},
    {"node.plant", kNodeOffset + offsetof(ficon_node_descriptor, plant), 2, host_text, 0, "plant of manufacture"},
    {"node.sequence", kNodeOffset + offsetof(ficon_node_descriptor, sequence), 12, host_text, 0, "sequence number"},
    {"node.tag", kNodeOffset + offsetof(ficon_node_descriptor, tag), 2, bytes, 0, ""},
};

constexpr message_field kIfvsan[] = {
    {"result", offsetof(ficon_ifvsan_query, result), 4, status, 0, "of the answer"},
    {"state", offsetof(ficon_ifvsan_query, state), 4, number, 0, "answer: 1 in the VSAN, 2 bound to it, 3 both"},
    {"arg_a", offsetof(ficon_ifvsan_query, arg_a), 4, number, 0, "the VSAN"},
    {"if_index", offsetof(ficon_ifvsan_query, if_index), 4, interface_on_wire, 0, "the interface asked about"},
    {"arg_b", offsetof(ficon_ifvsan_query, arg_b), 4, number, 0, "comes back as it was"},
};

constexpr size_t kInstallSetOffset = offsetof(ficon_vsan_install_msg, vsans);
constexpr message_field kInstall[] = {
    {"install_byte0", offsetof(ficon_vsan_install_msg, install_byte0), 1, number, 0, "1 install, 0 take out"},
    {"vsans.bytes", kInstallSetOffset + offsetof(vsan_block, bytes), 4, number, FICON_VSAN_BITMAP_BYTES,
     "length of the bitmap, 512"},
    {"vsans", kInstallSetOffset + offsetof(vsan_block, bitmap), FICON_VSAN_BITMAP_BYTES, vsan_set, 0, "the VSANs"},
    {"count", offsetof(ficon_vsan_install_msg, count), 4, count, 0, "of the interfaces"},
    {"interfaces", sizeof(ficon_vsan_install_msg), 0, interface_list, 0, "that it is for"},
};

constexpr size_t kSwapSetOffset = offsetof(ficon_if_swap_req, vsans);
constexpr message_field kSwapRequest[] = {
    {"swap_word0", offsetof(ficon_if_swap_req, swap_word0), 4, number, 0, "number of the swap"},
    {"if_index_a", offsetof(ficon_if_swap_req, if_index_a), 4, interface_on_wire, 0, "one interface"},
    {"if_index_b", offsetof(ficon_if_swap_req, if_index_b), 4, interface_on_wire, 0, "the other"},
    {"vsans.bytes", kSwapSetOffset + offsetof(vsan_block, bytes), 4, number, FICON_VSAN_BITMAP_BYTES,
     "length of the bitmap, 512; absent in the short form"},
    {"vsans", kSwapSetOffset + offsetof(vsan_block, bitmap), FICON_VSAN_BITMAP_BYTES, vsan_set, 0,
     "their VSANs; absent in the short form"},
};

constexpr message_field kSwapResponse[] = {
    {"swap_status", offsetof(ficon_if_swap_resp, swap_status), 4, status, 0, "0, or why not"},
    {"swap_word4", offsetof(ficon_if_swap_resp, swap_word4), 4, number, 0, "number of the swap"},
    {"if_index_a", offsetof(ficon_if_swap_resp, if_index_a), 4, interface_on_wire, 0, "one interface"},
    {"if_index_b", offsetof(ficon_if_swap_resp, if_index_b), 4, interface_on_wire, 0, "the other"},
    {"zero", offsetof(ficon_if_swap_resp, zero), sizeof(ficon_if_swap_resp::zero), bytes, 0,
     "zeros, or what a client puts there"},
};

constexpr message_field kVsanState[] = {
    {"word0", offsetof(ficon_vsan_state_change, word0), 4, number, 0, "the VSAN"},
    {"word1", offsetof(ficon_vsan_state_change, word1), 4, number, 0, "1 enabled, 0 not"},
};

constexpr message_field kUpDown[] = {
    {"word0", offsetof(ficon_updown_notice, word0), 4, interface_as_is, 0, "the interface"},
    {"byte4", offsetof(ficon_updown_notice, byte4), 1, number, 0, "1 up, 0 down"},
    {"byte5", offsetof(ficon_updown_notice, byte5), 1, number, 0, "reason"},
};

constexpr message_field kEnable[] = {
    {"word0", offsetof(ficon_enable_notice, word0), 4, interface_as_is, 0, "the interface"},
    {"byte4", offsetof(ficon_enable_notice, byte4), 1, number, 0, "1 enabled, 0 disabled"},
};

using enum message_framing;

static_assert(FICON_OP_GET_PORTMAP == 7858 && FICON_OP_GET_ENABLED_VSANS == 7859 && FICON_OP_GET_RNID == 7869);
static_assert(FICON_OP_VSAN_INSTALL == 7882 && FICON_OP_QUERY_IFVSAN_STATE == 7888 && FICON_OP_REPLY == 0);
constexpr std::string_view kReply = "0";
constexpr std::string_view kManagers = "the manager's"; // its own choice

constexpr message_kind kKinds[] = {
    {"portmap-request", "7858", tlv, FICON_TLV_PORTMAP, sizeof(ficon_portmap_req), sizeof(ficon_portmap_req), false,
     kPortmap, "asks for the port map entry of an interface"},
    {"portmap-answer", kReply, tlv, FICON_TLV_PORTMAP, sizeof(ficon_portmap_req), sizeof(ficon_portmap_req), false,
     kPortmap, "the port map entry of an interface"},
    {"enabled-vsans-request", "7859", none, 0, 0, 0, false, {}, "asks for the enabled VSANs"},
    {"enabled-vsans-answer", kReply, tlv, FICON_TLV_ENABLED_VSANS, sizeof(vsan_block), sizeof(vsan_block), true,
     kEnabledVsans, "the enabled VSANs"},
    {"rnid-request", "7869", tlv, FICON_TLV_RNID, sizeof(ficon_rnid_rec), sizeof(ficon_rnid_rec), false, kRnid,
     "asks who the device behind an interface is"},
    {"rnid-answer", kReply, tlv, FICON_TLV_RNID, sizeof(ficon_rnid_rec), sizeof(ficon_rnid_rec), false, kRnid,
     "who the device behind an interface is"},
    {"rnid-notification", kManagers, tlv, FICON_TLV_RNID, sizeof(ficon_rnid_rec), sizeof(ficon_rnid_rec), false, kRnid,
     "the same, unasked"},
    {"ifvsan-query", "7888", flat, 0, sizeof(ficon_ifvsan_query), sizeof(ficon_ifvsan_query), false, kIfvsan,
     "asks for the state of an interface in a VSAN"},
    {"ifvsan-answer", kReply, flat, 0, sizeof(ficon_ifvsan_query), sizeof(ficon_ifvsan_query), false, kIfvsan,
     "the state of an interface in a VSAN"},
    {"vsan-install", "7882", flat, 0, sizeof(ficon_vsan_install_msg), sizeof(ficon_vsan_install_msg), false, kInstall,
     "installs FICON in VSANs for interfaces"},
    {"swap-request", kManagers, flat, 0, sizeof(ficon_if_swap_req), kSwapSetOffset, false, kSwapRequest,
     "asks a client for a step of a swap: check and lock, do it, or unlock"},
    {"swap-response", kReply, flat, 0, sizeof(ficon_if_swap_resp), sizeof(ficon_if_swap_resp), false, kSwapResponse,
     "the client's answer to a step of a swap"},
    {"vsan-state-notice", kManagers, tlv, FICON_TLV_VSAN_STATE_CHANGE, 8, 8, false, kVsanState, "a VSAN's state changed"},
    {"updown-notice", kManagers, tlv, FICON_TLV_UPDOWN, 6, 6, false, kUpDown, "a port came up or went down"},
    {"enable-notice", kManagers, tlv, FICON_TLV_ENABLE, 5, 5, false, kEnable, "a port was enabled or disabled"},
};

template <typename named>
std::vector<std::string> all_names(std::span<const named> things) {
  std::vector<std::string> names;
  for (const auto& thing : things) names.emplace_back(thing.name);
  return names;
}

template <typename named>
const named* find(std::span<const named> things, std::string_view name) {
  for (const auto& thing : things)
    if (thing.name == name) return &thing;
  return nullptr;
}

} // namespace

bool is_number(field_form form) {
  switch (form) {
    case number:
    case field_form::status:
    case codepage:
    case interface_on_wire:
    case interface_as_is:
    case field_form::count:
      return true;
    default:
      return false;
  }
}

const message_field* field_of_form(const message_kind& kind, field_form form) {
  for (const auto& field : kind.fields)
    if (field.form == form) return &field;
  return nullptr;
}

byte_order order_of(const message_field& field, byte_order order) {
  const bool always_big = field.form == interface_on_wire || field.form == interface_list;
  return always_big ? byte_order::big : order;
}

std::span<const message_kind> message_kinds() {
  return kKinds;
}

const message_kind& find_message_kind(std::string_view name) {
  if (const auto* kind = find(message_kinds(), name)) return *kind;
  throw question_error(fmt::format("there is no message \"{}\"; {}", printable(name),
                                   suggestion(name, names_of(message_kinds()), "chnsw message lists them")));
}

const message_field& find_message_field(const message_kind& kind, std::string_view name) {
  if (const auto* field = find(kind.fields, name)) return *field;
  const auto names = names_of(kind.fields);
  throw question_error(fmt::format(
      "{} has no field \"{}\"; {}", kind.name, printable(name),
      names.empty() ? "it has no payload" : suggestion(name, names, fmt::format("it has {}", fmt::join(names, ", ")))));
}

std::vector<std::string> names_of(std::span<const message_kind> kinds) {
  return all_names(kinds);
}

std::vector<std::string> names_of(std::span<const message_field> fields) {
  return all_names(fields);
}

std::string_view form_text(field_form form) {
  switch (form) {
    case number:
      return "decimal number, 0x for hexadecimal";
    case field_form::status:
      return "status: OK, FICON_RC_NO_IF or a number";
    case codepage:
      return "code page like 37";
    case interface_on_wire:
      return "interface like fc3/5, or none; always big-endian";
    case interface_as_is:
      return "interface like fc3/5, or none";
    case text:
      return "text, ISO 8859-1";
    case host_text:
      return "text in the code page, or 0x and bytes";
    case node:
      return "TYPE-MODEL-MANUFACTURER-PLANT-SEQUENCE, or 0x and 32 bytes";
    case field_form::bytes:
      return "0x and bytes; zeros follow";
    case vsan_set:
      return "VSANs like 10,20-29, all or none";
    case field_form::count:
      return "counted, not given";
    case interface_list:
      return "interfaces like fc1/1-4,fc3/5, or none";
  }
  return "";
}

std::string framing_text(const message_kind& kind) {
  if (kind.framing == tlv) return fmt::format("TLV type {}", kind.tlv_type);
  return kind.framing == flat ? "flat" : "none";
}

} // namespace inspect
