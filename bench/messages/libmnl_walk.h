// libmnl's mnl_attr_for_each and mnl_attr_for_each_nested, which are for C, in C++: the same calls in the same order.
#ifndef BENCH_MESSAGES_LIBMNL_WALK_H
#define BENCH_MESSAGES_LIBMNL_WALK_H

#include <libmnl/libmnl.h>

namespace bench {

template <typename taker>
void for_each_attribute(const nlmsghdr* header, taker take) {
  const auto room_behind = [header](const nlattr* attribute) {
    return static_cast<int>(static_cast<const char*>(mnl_nlmsg_get_payload_tail(header)) -
                            reinterpret_cast<const char*>(attribute));
  };
  for (auto* attribute = static_cast<const nlattr*>(mnl_nlmsg_get_payload_offset(header, 0));
       mnl_attr_ok(attribute, room_behind(attribute)); attribute = mnl_attr_next(attribute)) {
    take(mnl_attr_get_type(attribute), attribute);
  }
}

template <typename taker>
void for_each_attribute(const nlattr* nest, taker take) {
  const auto room_behind = [nest](const nlattr* attribute) {
    return static_cast<int>(static_cast<const char*>(mnl_attr_get_payload(nest)) + mnl_attr_get_payload_len(nest) -
                            reinterpret_cast<const char*>(attribute));
  };
  for (auto* attribute = static_cast<const nlattr*>(mnl_attr_get_payload(nest));
       mnl_attr_ok(attribute, room_behind(attribute)); attribute = mnl_attr_next(attribute)) {
    take(mnl_attr_get_type(attribute), attribute);
  }
}

} // namespace bench

#endif
