#include "comparison_report.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

namespace chnsw_test {

std::string text_of_value(const ficon_pmap_port_entry& entry) {
  std::string text = text_of("{pn %d, pa %d, vsans", entry.pn, entry.pa);
  for (const uint16_t vsan : entry.vsans) text += text_of(" %d", vsan);
  return text + "}";
}

void comparison_report::tell(const char* format, ...) {
  if (!telling_) return;
  va_list values;
  va_start(values, format);
  char line[1024];
  vsnprintf(line, sizeof line, format, values);
  va_end(values);
  text_ += line;
  text_ += '\n';
}

void comparison_report::differ(const char* what, const std::string& of_library, const std::string& of_model) {
  differs_ = true;
  if (!telling_) return;
  text_ += std::string("  ") + what + "\n    library: " + of_library + "\n    model:   " + of_model + "\n";
}

void comparison_report::check_lines(const char* what, const std::vector<std::string>& of_library,
                                    const std::vector<std::string>& of_model) {
  if (of_library == of_model) return;
  const size_t common = std::min(of_library.size(), of_model.size());
  size_t first = 0;
  while (first < common && of_library[first] == of_model[first]) ++first;
  const auto line = [&](const std::vector<std::string>& lines) {
    return first < lines.size() ? text_of("%zu. ", first + 1) + lines[first] : "no more";
  };
  differ(what, line(of_library), line(of_model));
}

} // namespace chnsw_test
