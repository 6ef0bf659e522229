// What carries messages between ends. An end knows a link by these interfaces alone; how packets travel is the link's own
// (messages/local: sockets between processes of one machine). Its descriptors, for poll() and epoll, become readable when there is
// something to do.
//
// A link outlives what it made. What returns a pointer returns nullptr with errno when it fails; nothing throws but for want of
// memory. After a fork the child abandons what it inherited: descriptors are closed, and all else is left to the parent.
#ifndef VSWITCH_MESSAGES_MESSAGE_LINK_H
#define VSWITCH_MESSAGES_MESSAGE_LINK_H

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <string>

#include "messages/message_frame.h"

namespace vswitch {

// A connection between a client and the server of a service point, as either side has it.
class message_connection {
 public:
  virtual ~message_connection() = default;
  virtual void abandon() noexcept = 0;

  // Readable when there is something to receive, or when the connection is lost.
  virtual int ready_descriptor() const noexcept = 0;

  // The process on the other side.
  virtual pid_t process() const noexcept = 0;

  // Whether the other side still has the connection.
  virtual bool is_connected() const noexcept = 0;

  // Sends a frame without waiting, whole or not at all. Returns 0 or an errno value: EAGAIN, there is no room; ECONNREFUSED, the
  // connection is lost.
  virtual int send(const frame_header& header, const void* payload) noexcept = 0;

  // Stores at most kMaxFrameBytes of the next packet; waits for it at most timeout_ms (0: not at all; negative: for ever).
  // Returns the size of all of it; 0 when the connection is lost (or the packet is empty, and so no frame); -1 with errno:
  // EAGAIN, none came; EINTR, only when it may wait.
  virtual ssize_t receive(void* packet, int timeout_ms) noexcept = 0;
};

// A service point that is served. Its end frees the point.
class message_listener {
 public:
  virtual ~message_listener() = default;
  virtual void abandon() noexcept = 0;

  // Readable when a client waits to be accepted.
  virtual int ready_descriptor() const noexcept = 0;

  // The next client. errno: EAGAIN when none waits; EPERM when it was another user, who was turned away; ECONNABORTED or EINTR
  // when it has gone again; EMFILE, ENFILE, ENOBUFS or ENOMEM when there is no room for it.
  virtual std::unique_ptr<message_connection> accept() = 0;
};

class message_link {
 public:
  virtual ~message_link() = default;
  virtual void abandon() noexcept = 0;

  // Serves a point. errno: EADDRINUSE, it is served already; EPERM.
  virtual std::unique_ptr<message_listener> serve(uint32_t service_point) = 0;

  // Connects to the server of a point. errno: ECONNREFUSED, nobody serves it; EPERM; EAGAIN, too many wait to be accepted.
  virtual std::unique_ptr<message_connection> connect(uint32_t service_point) = 0;
};

// The link that carries the messages of a place, as a store names it (switch_store::message_place).
std::unique_ptr<message_link> open_link(const std::string& place);

} // namespace vswitch

#endif
