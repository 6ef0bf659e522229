// The sockets of a switch's message transport: one a service point, in the folder msgq of the switch's folder.
//   msgq/101       the socket, there while it is served (or left by a server that was killed)
//   msgq/101.lock  locked by the server; stays
// Only one user gets in: the folder is that user's alone, and both sides of a connection look at who the other one is.
#ifndef VSWITCH_MESSAGES_LOCAL_MESSAGE_SOCKET_H
#define VSWITCH_MESSAGES_LOCAL_MESSAGE_SOCKET_H

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "messages/message_frame.h"
#include "vswitch/descriptor.h"

namespace vswitch {

// Operations return a descriptor that is not open, with errno, when they fail.

// The switch's folder, as something that sockets are found through: its path may be longer than an address holds.
descriptor hold_folder(const std::string& path) noexcept;

// A socket that serves a point from now on. Its lock holds until the descriptor in lock is closed. errno: EADDRINUSE,
// EPERM.
descriptor serve_point(const descriptor& folder, uint32_t service_point, descriptor& lock) noexcept;
void stop_serving(const descriptor& folder, uint32_t service_point) noexcept;

// A connection to a server, and the server's process. errno: ECONNREFUSED, EPERM, EAGAIN when too many wait to be accepted.
descriptor connect_to_point(const descriptor& folder, uint32_t service_point, pid_t& process) noexcept;

// The next client that waits to be accepted, and its process. errno: EAGAIN when none does, EPERM when it was another user, who
// was turned away.
descriptor accept_client(const descriptor& listener, pid_t& process) noexcept;

// Whether the other side still has the connection.
bool still_connected(const descriptor& connection) noexcept;

// Returns 0 or an errno value; ECONNREFUSED when the connection is lost.
int send_frame(const descriptor& connection, const frame_header& header, const void* payload) noexcept;

// How long a receive_packet that waits does so.
inline constexpr int kNoTimeout = 0; // of a new connection
void set_timeout(const descriptor& connection, int ms) noexcept;

// Stores at most kMaxFrameBytes of a packet. Returns the size of all of it; 0 when the connection is lost (or the packet is
// empty, and so no frame); -1 with errno: EAGAIN, none came; EINTR, only when it may wait.
enum class waiting { no, yes };
ssize_t receive_packet(const descriptor& connection, void* packet, waiting may_wait) noexcept;

} // namespace vswitch

#endif
