// Messages over local sockets, between processes of one user on one machine.
#ifndef VSWITCH_MESSAGES_LOCAL_LOCAL_LINK_H
#define VSWITCH_MESSAGES_LOCAL_LOCAL_LINK_H

#include <memory>
#include <string>

#include "messages/message_link.h"

namespace vswitch {

// What open_link() promises, for a folder.
std::unique_ptr<message_link> open_local_link(const std::string& folder);

} // namespace vswitch

#endif
