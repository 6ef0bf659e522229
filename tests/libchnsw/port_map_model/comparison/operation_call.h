/* One call of an operation, by library and model, with all that it is made with and all that is looked at afterwards. */
#ifndef TESTS_PORT_MAP_MODEL_OPERATION_CALL_H
#define TESTS_PORT_MAP_MODEL_OPERATION_CALL_H

#include <libchnsw.h>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "compared_switch.h"
#include "comparison_report.h"
#include "drawn_values.h"
#include "port_map_comparison.h"
#include "port_map_model.h"

namespace chnsw_test {

// What a call is made with. Each operation uses some of it.
struct drawn_call {
  unsigned family = 0;
  unsigned operation = 0; // of the family
  int32_t number = 0;
  uint32_t vsan = 0;
  bool with_vsan = false;
  int32_t fast = 0;
  bool pass_pn_to_if = false;
  bool pass_port_to_pn = false;
  int32_t skip_lag_check = 0;
  bool null_result = false;
  bool null_flag = false;
  int32_t index = 0;
  uint32_t if_index = 0;
  uint8_t slot = 0;
  uint8_t port = 0;
  const uint16_t* pa_to_pn = nullptr; // the switch's

  const uint32_t* passed_pn_to_if() const { return pass_pn_to_if ? the_passed_tables().pn_to_if.data() : nullptr; }
  const ficon_pmap_port_entry* passed_port_to_pn() const {
    return pass_port_to_pn ? the_passed_tables().port_to_pn.data() : nullptr;
  }
};

// Every output of a call, and a VSAN for it to point to. Each operation uses some; the others must stay as they are.
struct outputs {
  explicit outputs(std::vector<ficon_pmap_port_entry>& numbering);
  ~outputs();
  outputs(const outputs&) = delete;
  outputs& operator=(const outputs&) = delete;

  uint32_t vsan = 0; // in
  uint16_t pn = 0xEEEE;
  uint16_t pa = 0xEEEE;
  uint32_t if_index = 0xEEEEEEEE;
  uint32_t flag = 0xEEEEEEEE;
  uint32_t index = 0xEEEEEEEE;
  uint32_t count = 0xEEEEEEEE;
  uint8_t line_card = 0xEE;
  uint8_t slot = 0xEE;
  uint8_t port = 0xEE;
  ficon_pmap_port_entry entry;
  ficon_platform_info info;
  std::array<uint16_t, kNumbers> pns;
  std::array<uint32_t, kNumbers> if_indexes;
  ficon_pmap_port_entry* numbering; // goes from call to call
  // Allocated for the caller.
  uint16_t* pn_list = &pn;
  uint16_t* pa_list = &pa;
  uint32_t* if_list = &if_index;
  uint32_t* bound_list = &flag;

  bool lists_are_written() const { return pn_list != &pn || pa_list != &pa || if_list != &if_index || bound_list != &flag; }
};

// Makes calls and compares.
class operation_caller {
 public:
  operation_caller(compared_switch& both, comparison_report& report, compared* what);

  // Draws a call; the next one that is made is this one.
  void draw(step& from);
  const drawn_call& drawn() const { return drawn_; }
  compared_switch& both() { return switch_; }

  // Of the default numbering that is passed.
  void change_numbering(step& from);

  // Makes the call and looks at everything. arguments: of the operation, from what was drawn and a side's outputs.
  template <class Result, class... Arguments, class Drawn>
  void call(const char* name, Result (*library)(Arguments...), Result (port_map_model::*model)(Arguments...),
            const Drawn& arguments);

 private:
  bool ask_model(const std::function<void()>& call);
  std::string ask_library(const std::function<void()>& call);
  void compare_outputs();
  void compare_lists();
  void compare_services(const std::string& printed);
  void compare_state();
  void count(const char* name, uint32_t status);

  compared_switch& switch_;
  comparison_report& report_;
  compared* what_;
  const ficon_convert_fn converter_ = convert_fnptr;
  drawn_call drawn_;
  std::vector<ficon_pmap_port_entry> library_numbering_;
  std::vector<ficon_pmap_port_entry> model_numbering_;
  std::optional<outputs> of_library_;
  std::optional<outputs> of_model_;
};

template <class Result, class... Arguments, class Drawn>
void operation_caller::call(const char* name, Result (*library)(Arguments...),
                            Result (port_map_model::*model)(Arguments...), const Drawn& arguments) {
  const std::tuple<Arguments...> for_library = arguments(*of_library_);
  const std::tuple<Arguments...> for_model = arguments(*of_model_);
  if (report_.is_telling()) {
    std::string values;
    std::apply([&](auto... value) { ((values += text_of_value(value) + ", "), ...); }, for_library);
    report_.tell("%s(%s) vsan %#x", name, values.c_str(), of_library_->vsan);
  }
  switch_.program_platform();
  Result expected{};
  const auto by_model = [&](auto... value) { expected = (switch_.model().*model)(value...); };
  if (!ask_model([&] { std::apply(by_model, for_model); })) return;
  Result found{};
  const auto by_library = [&](auto... value) { found = library(value...); };
  const std::string printed = ask_library([&] { std::apply(by_library, for_library); });
  report_.check("result", found, expected);
  compare_outputs();
  compare_services(printed);
  compare_state();
  count(name, static_cast<uint32_t>(expected));
}

} // namespace chnsw_test

#endif
