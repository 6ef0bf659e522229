// Which link carries the messages of a place, by what the place is called. This is the one place that knows every kind
// of link.
#include "messages/local/local_link.h"
#include "messages/message_link.h"

namespace vswitch {

std::unique_ptr<message_link> open_link(const std::string& place) {
  return open_local_link(place);
}

} // namespace vswitch
