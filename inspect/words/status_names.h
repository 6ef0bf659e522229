// What a status is called, and what it means.
#ifndef INSPECT_STATUS_NAMES_H
#define INSPECT_STATUS_NAMES_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace inspect {

struct known_status {
  uint32_t code;
  std::string_view name;
  std::string_view meaning; // a sentence
};

// Every status of the library and of the platform's headers, and those of the virtual switch that questions about ports meet.
std::span<const known_status> known_statuses();

std::string_view status_name(uint32_t code);    // "platform status" for one that is not known
std::string_view status_meaning(uint32_t code); // a sentence also for one that is not known
std::string status_text(uint32_t code);         // "FICON_RC_NO_IF 0x4085004A", "OK 0"

} // namespace inspect

#endif
