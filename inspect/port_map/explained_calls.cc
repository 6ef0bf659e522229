// What the explanations share.
#include "inspect/port_map/explained_calls.h"

#include <fmt/format.h>

#include "inspect/error.h"
#include "inspect/words/status_names.h"

namespace inspect {

void report_disagreement(const explanation& explained, const std::string& how) {
  throw platform_error(
      fmt::format("internal error: {}: {}; please report it with this chassis", explained.translation, how));
}

void require_same_status(const explanation& explained, uint32_t library_status) {
  if (library_status == explained.status) return;
  report_disagreement(explained, fmt::format("the library answered {}, the tables say {}", status_text(library_status),
                                             status_text(explained.status)));
}

} // namespace inspect
