/* Message transport: messages between the processes of a switch, each kept whole and in the order sent.
 *
 * A process opens ends. An end serves one service point, which others send requests to, or none; its address is the
 * handle. A request is answered by a reply, which finds the requester through the message that it answers.
 *
 * The transport never blocks a sender. An end belongs to one thread, and so do the messages that it received. A child that
 * a fork made does not disturb its parent's ends and cannot use them: every operation on them is EINVAL there, and their
 * descriptors are closed. */
#ifndef PLATFORM_MSGQ_H
#define PLATFORM_MSGQ_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __GNUC__
#pragma GCC visibility push(default)
#endif

typedef struct msgq msgq;                 /* an end; its address is the handle, NULL is none */
typedef struct msgq_message msgq_message; /* a received message */

/* Where a message goes, 8 bytes. */
struct msgq_addr {
  uint32_t node;
  uint32_t service_point;
} __attribute__((packed));

enum {
  MSGQ_MAX_PAYLOAD = 65536, /* bytes of one message */
  MSGQ_SLACK = 1024         /* zeros that follow a received payload, at least */
};

/* ---- For whoever holds a handle or a message ---- */

/* Hands a message over, or refuses it; never blocks.
 * to: not looked at when a request is answered.
 * opcode: what the message is, for its receiver; 0 in replies.
 * payload: length bytes, 0 to MSGQ_MAX_PAYLOAD; NULL when length is 0. A TLV array that says to be longer than it is cannot
 * be sent.
 * send_arg: for the sender; the reply brings it back.
 * answered: the request that this is the reply to; NULL for a request. It is answered once, through the end that received
 * it, which reaches the connection that it came by and no other. zero is always 0. A server that was restarted is reached
 * anew; what was sent to the one before is not sent again.
 * Returns 0, or -1 with the reason in errno and for msgq_errno_get: EAGAIN, the receiver's queue is full; ECONNREFUSED,
 * nobody serves the address or the requester is gone; EHOSTUNREACH, there is no such node; EMSGSIZE, too long; EINVAL, an
 * argument that cannot be; EPERM, an end of another user; EMFILE, ENFILE or ENOMEM, the system has nothing left to connect
 * with. */
int msgq_send(msgq* handle, const struct msgq_addr* to, uint32_t opcode, const void* payload, uint32_t length,
              uintptr_t send_arg, msgq_message* answered, uint32_t zero);

/* The payload of a received message, valid until the message is released; NULL when it has none. At least MSGQ_SLACK zeros
 * follow it. */
void* msgq_payload_get(msgq_message* message);

/* Its length in bytes, without the zeros. */
uint32_t msgq_payload_size(msgq_message* message);

/* Why the last operation that failed on an end did, as an errno value; 0 when none did. EINVAL for a handle of NULL. */
int msgq_errno_get(msgq* handle);

/* ---- For whoever opens ends and receives ---- */

/* Opens an end. service_point: 0 for one that only asks and is answered; any other is served from now on.
 * Returns the handle, or NULL with errno: EADDRINUSE when another end serves the point, ENODEV when there is no switch or
 * one that no other process can reach, EPERM when the switch's messages are another user's; or what the system refused. The
 * end stays with the switch that was in use. */
msgq* msgq_open(uint32_t service_point);

/* Closes it; NULL does nothing. Messages that were received through it stay valid until they are released, and cannot be
 * answered any more (EINVAL). */
void msgq_close(msgq* handle);

/* Reaches an address before anything is sent to it, so that what its server sends unasked arrives.
 * Returns 0, or -1 as msgq_send does. */
int msgq_connect(msgq* handle, const struct msgq_addr* to);

/* The next message, in *message, which the caller releases.
 * timeout_ms: how long to wait; 0 does not wait, -1 waits for ever.
 * Returns 1 with a message; 0 when the time passed; -1 with the reason in errno and for msgq_errno_get: ECONNRESET, a
 * server that this end had reached is gone (told once; what it had sent comes first); EINTR, a signal came (of a handler
 * that restarts calls, a wait for ever may not tell). */
int msgq_receive(msgq* handle, msgq_message** message, int timeout_ms);

/* A descriptor that is readable when msgq_receive has something to tell, for poll(). It stays the end's. */
int msgq_descriptor(msgq* handle);

void msgq_release(msgq_message* message); /* NULL does nothing */

uint32_t msgq_opcode_get(const msgq_message* message);
int msgq_is_reply(const msgq_message* message);

/* Of a reply, the send_arg of its request; of a request, 0. */
uintptr_t msgq_send_arg_get(const msgq_message* message);

/* Tells the peers of a serving end apart: the same value for every message of one connection, never used again by this end.
 * 0 for a message from a server. */
uint64_t msgq_peer_get(const msgq_message* message);

/* Who has reached a serving end and is still there, whether anything came from it or not.
 * peers: out, the first capacity of them, ascending; NULL when capacity is 0.
 * Returns how many there are. */
uint32_t msgq_peers_get(msgq* handle, uint64_t* peers, uint32_t capacity);

/* Sends unasked to a peer of a serving end, who may answer. Returns as msgq_send; ECONNREFUSED when the peer is gone. */
int msgq_send_to_peer(msgq* handle, uint64_t peer, uint32_t opcode, const void* payload, uint32_t length);

#ifdef __GNUC__
#pragma GCC visibility pop
#endif

#ifdef __cplusplus
}
#endif

#endif
