/* Whether library and model do the same, and, for people, what was done up to where they do not. */
#ifndef TESTS_PORT_MAP_MODEL_COMPARISON_REPORT_H
#define TESTS_PORT_MAP_MODEL_COMPARISON_REPORT_H

#include <libchnsw.h>

#include <cstddef>
#include <cstring>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "switch_services.h"

namespace chnsw_test {

template <class Value>
std::string text_of_value(Value value) {
  if constexpr (std::is_pointer_v<Value>) {
    return value == nullptr ? "NULL" : "address";
  } else {
    const auto number = static_cast<long long>(value);
    return number < 0 || number < 65536 ? text_of("%lld", number) : text_of("%#llx", number);
  }
}
std::string text_of_value(const ficon_pmap_port_entry& entry);

template <class Value>
std::string text_of_list(const Value* values, size_t count) {
  std::string text = "[";
  for (size_t n = 0; n < count; ++n) text += (n == 0 ? "" : ", ") + text_of_value(values[n]);
  return text + "]";
}

class comparison_report {
 public:
  // telling: whether it is written down, which takes longer than comparing.
  explicit comparison_report(bool telling) : telling_(telling) {}

  [[gnu::format(printf, 2, 3)]] void tell(const char* format, ...);
  bool is_telling() const { return telling_; }
  const std::string& text() const { return text_; }
  bool differs() const { return differs_; }

  void differ(const char* what, const std::string& of_library, const std::string& of_model);
  template <class Value>
  void check(const char* what, const Value& of_library, const Value& of_model);
  template <class Value>
  void check_list(const char* what, const Value* of_library, const Value* of_model, size_t count);
  template <class Value>
  void check_table(const char* what, const Value* of_library, const std::optional<std::vector<Value>>& of_model);
  void check_lines(const char* what, const std::vector<std::string>& of_library, const std::vector<std::string>& of_model);

 private:
  bool telling_;
  bool differs_ = false;
  std::string text_;
};

template <class Value>
void comparison_report::check(const char* what, const Value& of_library, const Value& of_model) {
  if (!(of_library == of_model)) differ(what, text_of_value(of_library), text_of_value(of_model));
}

template <class Value>
void comparison_report::check_list(const char* what, const Value* of_library, const Value* of_model, size_t count) {
  if (count == 0 || memcmp(of_library, of_model, count * sizeof(Value)) == 0) return;
  differ(what, text_of_list(of_library, count), text_of_list(of_model, count));
}

template <class Value>
void comparison_report::check_table(const char* what, const Value* of_library,
                                    const std::optional<std::vector<Value>>& of_model) {
  check(what, of_library != nullptr, of_model.has_value());
  if (of_library != nullptr && of_model) check_list(what, of_library, of_model->data(), of_model->size());
}

} // namespace chnsw_test

#endif
