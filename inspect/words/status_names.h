// What a status is called.
#ifndef INSPECT_STATUS_NAMES_H
#define INSPECT_STATUS_NAMES_H

#include <cstdint>
#include <string>
#include <string_view>

namespace inspect {

std::string_view status_name(uint32_t code); // "platform status" for one that this platform does not know
std::string status_text(uint32_t code);      // "FICON_RC_NO_IF 0x4085004A", "OK 0"

} // namespace inspect

#endif
