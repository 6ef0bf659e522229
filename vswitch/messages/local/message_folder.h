// Where the local message link keeps its sockets: a folder of its own, in the folder that it is opened with.
#ifndef VSWITCH_MESSAGES_LOCAL_MESSAGE_FOLDER_H
#define VSWITCH_MESSAGES_LOCAL_MESSAGE_FOLDER_H

namespace vswitch {

inline constexpr char kMessageFolder[] = "msgq";

} // namespace vswitch

#endif
