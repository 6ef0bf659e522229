// The same messages as netlink messages of libmnl, an attribute a field, in the form that it handles fastest: attributes
// are put without a look at the room, and none is validated.
#include <libmnl/libmnl.h>

#include <cstdlib>
#include <cstring>

#include "libmnl_walk.h"
#include "message_forms.h"
#include "quiet_transport.h"

namespace {

using bench::fields;

enum attribute : uint16_t {
  kCode = 1,
  kKind,
  kText1,
  kText2,
  kIfIndex,
  kIfIndexB,
  kResult,
  kState,
  kWordA,
  kWordB,
  kCodepage,
  kFormat,
  kSize,
  kNumberA,
  kNumberB,
  kByteA,
  kByteB,
  kNode,
  kVsans,
  kIfIndexes,
  kList
};

// A message on its way out.
class outgoing {
 public:
  outgoing() : header_(mnl_nlmsg_put_header(buffer_)) {}
  void put(attribute type, uint32_t value) { mnl_attr_put_u32(header_, type, value); }
  void put(attribute type, uint16_t value) { mnl_attr_put_u16(header_, type, value); }
  void put(attribute type, uint8_t value) { mnl_attr_put_u8(header_, type, value); }
  void put(attribute type, const void* value, size_t size) { mnl_attr_put(header_, type, size, value); }
  void put_nested(attribute list, attribute type, const uint32_t* values, uint32_t count) {
    nlattr* nest = mnl_attr_nest_start(header_, list);
    for (uint32_t n = 0; n < count; ++n) put(type, values[n]);
    mnl_attr_nest_end(header_, nest);
  }
  void send(uint16_t opcode) {
    header_->nlmsg_type = opcode;
    msgq_send(bench::open_end(), nullptr, opcode, header_, header_->nlmsg_len, 0, nullptr, 0);
  }

 private:
  alignas(nlmsghdr) char buffer_[1024];
  nlmsghdr* header_;
};

const nlmsghdr* header_of(msgq_message* message) {
  return static_cast<const nlmsghdr*>(msgq_payload_get(message));
}

void build_port_map_request(const fields& given) {
  outgoing message;
  message.put(kCode, given.code);
  message.put(kKind, uint32_t{FICON_CMI_KIND_PORTMAP});
  message.put(kText1, given.text1, std::strlen(given.text1));
  message.put(kText2, given.text2, std::strlen(given.text2));
  message.put(kIfIndex, given.if_index);
  message.put(kNumberA, given.number_a);
  message.put(kNumberB, given.number_b);
  message.put(kByteA, given.byte_a);
  message.send(FICON_OP_GET_PORTMAP);
}
void build_port_map_answer(const fields& given) {
  outgoing message;
  message.put(kIfIndex, given.if_index);
  message.put(kResult, given.result);
  message.put(kNumberA, given.number_a);
  message.put(kNumberB, given.number_b);
  message.send(0);
}
void parse_port_map(msgq_message* message, fields& found) {
  bench::for_each_attribute(header_of(message), [&found](uint16_t type, const nlattr* attribute) {
    switch (type) {
      case kIfIndex:
        found.if_index = mnl_attr_get_u32(attribute);
        break;
      case kResult:
        found.result = mnl_attr_get_u32(attribute);
        break;
      case kNumberA:
        found.number_a = mnl_attr_get_u16(attribute);
        break;
      case kNumberB:
        found.number_b = mnl_attr_get_u16(attribute);
        break;
      default:
        break;
    }
  });
}

void build_enabled_vsans(const fields& given) {
  outgoing message;
  message.put(kList, &given.vsans, sizeof given.vsans);
  message.send(0);
}
void parse_enabled_vsans(msgq_message* message, fields& found) {
  bench::for_each_attribute(header_of(message), [&found](uint16_t type, const nlattr* attribute) {
    if (type == kList) {
      found.list = bench::copy_of(mnl_attr_get_payload(attribute), mnl_attr_get_payload_len(attribute));
    }
  });
}

void build_if_vsan_query(const fields& given) {
  outgoing message;
  message.put(kWordA, given.word_a);
  message.put(kIfIndex, given.if_index);
  message.put(kWordB, given.word_b);
  message.send(FICON_OP_QUERY_IFVSAN_STATE);
}
void build_if_vsan_answer(const fields& given) {
  outgoing message;
  message.put(kResult, given.result);
  message.put(kState, given.state);
  message.put(kWordA, given.word_a);
  message.put(kIfIndex, given.if_index);
  message.put(kWordB, given.word_b);
  message.send(0);
}
void parse_if_vsan(msgq_message* message, fields& found) {
  bench::for_each_attribute(header_of(message), [&found](uint16_t type, const nlattr* attribute) {
    switch (type) {
      case kResult:
        found.result = mnl_attr_get_u32(attribute);
        break;
      case kState:
        found.state = mnl_attr_get_u32(attribute);
        break;
      case kWordA:
        found.word_a = mnl_attr_get_u32(attribute);
        break;
      case kIfIndex:
        found.if_index = mnl_attr_get_u32(attribute);
        break;
      case kWordB:
        found.word_b = mnl_attr_get_u32(attribute);
        break;
      default:
        break;
    }
  });
}

void build_rnid_request(const fields& given) {
  outgoing message;
  message.put(kIfIndex, given.if_index);
  message.put(kNumberA, given.number_a);
  message.put(kSize, uint16_t{FICON_RNID_SIZE});
  message.put(kWordA, given.word_a);
  message.put(kFormat, given.format);
  message.put(kWordB, given.word_b);
  message.send(FICON_OP_GET_RNID);
}
void build_rnid_answer(const fields& given) {
  outgoing message;
  message.put(kIfIndex, given.if_index);
  message.put(kNumberA, given.number_a);
  message.put(kWordA, given.word_a);
  message.put(kCodepage, given.codepage);
  message.put(kFormat, given.format);
  message.put(kResult, given.result);
  message.put(kWordB, given.word_b);
  message.put(kNode, given.node, sizeof given.node);
  message.send(0);
}
void parse_rnid(msgq_message* message, fields& found) {
  bench::for_each_attribute(header_of(message), [&found](uint16_t type, const nlattr* attribute) {
    switch (type) {
      case kIfIndex:
        found.if_index = mnl_attr_get_u32(attribute);
        break;
      case kNumberA:
        found.number_a = mnl_attr_get_u16(attribute);
        break;
      case kWordA:
        found.word_a = mnl_attr_get_u32(attribute);
        break;
      case kCodepage:
        found.codepage = mnl_attr_get_u32(attribute);
        break;
      case kFormat:
        found.format = mnl_attr_get_u32(attribute);
        break;
      case kResult:
        found.result = mnl_attr_get_u32(attribute);
        break;
      case kWordB:
        found.word_b = mnl_attr_get_u32(attribute);
        break;
      case kNode:
        std::memcpy(found.node, mnl_attr_get_payload(attribute), sizeof found.node);
        break;
      default:
        break;
    }
  });
}

void build_vsan_install(const fields& given) {
  outgoing message;
  message.put(kByteA, given.byte_a);
  message.put(kVsans, &given.vsans, sizeof given.vsans);
  message.put_nested(kIfIndexes, kIfIndex, given.if_indexes, given.count);
  message.send(FICON_OP_VSAN_INSTALL);
}
// The nest's length tells how many there are.
void parse_if_indexes(const nlattr* nest, fields& found) {
  constexpr uint32_t kAttributeBytes = sizeof(nlattr) + sizeof(uint32_t);
  const uint32_t count = mnl_attr_get_payload_len(nest) / kAttributeBytes;
  found.if_indexes = static_cast<uint32_t*>(std::malloc(count * sizeof(uint32_t)));
  found.count = 0;
  bench::for_each_attribute(nest, [&found](uint16_t type, const nlattr* attribute) {
    if (type == kIfIndex) found.if_indexes[found.count++] = mnl_attr_get_u32(attribute);
  });
}
void parse_vsan_install(msgq_message* message, fields& found) {
  bench::for_each_attribute(header_of(message), [&found](uint16_t type, const nlattr* attribute) {
    switch (type) {
      case kByteA:
        found.byte_a = mnl_attr_get_u8(attribute);
        break;
      case kVsans:
        std::memcpy(&found.vsans, mnl_attr_get_payload(attribute), sizeof found.vsans);
        break;
      case kIfIndexes:
        parse_if_indexes(attribute, found);
        break;
      default:
        break;
    }
  });
}

void put_swap_request(outgoing& message, const fields& given) {
  message.put(kWordA, given.word_a);
  message.put(kIfIndex, given.if_index);
  message.put(kIfIndexB, given.if_index_b);
}
void build_swap_request(const fields& given) {
  outgoing message;
  put_swap_request(message, given);
  message.send(0);
}
void build_swap_request_with_vsans(const fields& given) {
  outgoing message;
  put_swap_request(message, given);
  message.put(kVsans, &given.vsans, sizeof given.vsans);
  message.send(0);
}
void build_swap_response(const fields& given) {
  outgoing message;
  message.put(kResult, given.result);
  put_swap_request(message, given);
  message.send(0);
}
void parse_swap(msgq_message* message, fields& found) {
  bench::for_each_attribute(header_of(message), [&found](uint16_t type, const nlattr* attribute) {
    switch (type) {
      case kWordA:
        found.word_a = mnl_attr_get_u32(attribute);
        break;
      case kIfIndex:
        found.if_index = mnl_attr_get_u32(attribute);
        break;
      case kIfIndexB:
        found.if_index_b = mnl_attr_get_u32(attribute);
        break;
      case kVsans:
        std::memcpy(&found.vsans, mnl_attr_get_payload(attribute), sizeof found.vsans);
        break;
      case kResult:
        found.result = mnl_attr_get_u32(attribute);
        break;
      default:
        break;
    }
  });
}

void build_vsan_state_change(const fields& given) {
  outgoing message;
  message.put(kIfIndex, given.if_index);
  message.put(kWordA, given.word_a);
  message.send(0);
}
void build_updown_notice(const fields& given) {
  outgoing message;
  message.put(kIfIndex, given.if_index);
  message.put(kByteA, given.byte_a);
  message.put(kByteB, given.byte_b);
  message.send(0);
}
void build_enable_notice(const fields& given) {
  outgoing message;
  message.put(kIfIndex, given.if_index);
  message.put(kByteA, given.byte_a);
  message.send(0);
}
void parse_notice(msgq_message* message, fields& found) {
  bench::for_each_attribute(header_of(message), [&found](uint16_t type, const nlattr* attribute) {
    switch (type) {
      case kIfIndex:
        found.if_index = mnl_attr_get_u32(attribute);
        break;
      case kWordA:
        found.word_a = mnl_attr_get_u32(attribute);
        break;
      case kByteA:
        found.byte_a = mnl_attr_get_u8(attribute);
        break;
      case kByteB:
        found.byte_b = mnl_attr_get_u8(attribute);
        break;
      default:
        break;
    }
  });
}

} // namespace

const bench::message_forms bench::kLibmnlForms = {
    {build_port_map_request, parse_port_map},
    {build_port_map_answer, parse_port_map},
    {build_enabled_vsans, parse_enabled_vsans},
    {build_if_vsan_query, parse_if_vsan},
    {build_if_vsan_answer, parse_if_vsan},
    {build_rnid_request, parse_rnid},
    {build_rnid_answer, parse_rnid},
    {build_vsan_install, parse_vsan_install},
    {build_swap_request, parse_swap},
    {build_swap_request_with_vsans, parse_swap},
    {build_swap_response, parse_swap},
    {build_vsan_state_change, parse_notice},
    {build_updown_notice, parse_notice},
    {build_enable_notice, parse_notice},
};
