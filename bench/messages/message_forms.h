// The manager's messages as four libraries build and parse them: from fields in the program's variables to bytes handed to
// the transport, and from a received message to fields in the program's variables.
#ifndef BENCH_MESSAGES_MESSAGE_FORMS_H
#define BENCH_MESSAGES_MESSAGE_FORMS_H

#include <cstdint>
#include <vector>

#include <libchnsw.h>

namespace bench {

inline constexpr uint32_t kInterfaces = 16; // of a VSAN install

// The fields of all messages. A message fills its own.
struct fields {
  const char* text1 = nullptr;
  const char* text2 = nullptr;
  uint32_t code = 0;
  uint32_t if_index = 0; // word0 of notices
  uint32_t if_index_b = 0;
  uint32_t result = 0; // swap_status
  uint32_t state = 0;
  uint32_t word_a = 0; // arg_a, rnid_word8, swap_word0 and swap_word4, word1 of notices
  uint32_t word_b = 0; // arg_b, rnid_word24
  uint32_t codepage = 0;
  uint32_t format = 0;
  uint16_t number_a = 0; // rnid_port
  uint16_t number_b = 0;
  uint8_t byte_a = 0; // selector, install_byte0, byte4 of notices
  uint8_t byte_b = 0; // byte5
  uint8_t node[FICON_RNID_DESCRIPTOR_BYTES] = {};
  vsan_block vsans = {};
  uint32_t* if_indexes = nullptr; // of parsers: the program's to free
  uint32_t count = 0;
  void* list = nullptr; // the same
};

// In this order by each library.
enum message_kind {
  kPortMapRequest,
  kPortMapAnswer,
  kEnabledVsansAnswer,
  kIfVsanQuery,
  kIfVsanAnswer,
  kRnidRequest,
  kRnidAnswer,
  kVsanInstall,
  kSwapRequest,
  kSwapRequestWithVsans,
  kSwapResponse,
  kVsanStateChange,
  kUpdownNotice,
  kEnableNotice,
  kMessageKinds
};

struct message_form {
  void (*build)(const fields& given); // and sends
  void (*parse)(msgq_message* message, fields& found);
};
using message_forms = message_form[kMessageKinds];

extern const message_forms kLibraryForms;
extern const message_forms kLibmnlForms;
extern const message_forms kProtobufForms;
extern const message_forms kKeptProtobufForms; // whose message objects are used again and again
extern const message_forms kNanopbForms;

// A copy that the program owns, of a list in a message.
void* copy_of(const void* list, uint32_t size);

} // namespace bench

#endif
