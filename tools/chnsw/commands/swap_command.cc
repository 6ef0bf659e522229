#include "commands/swap_command.h"

#include <fmt/format.h>
#include <platform/if_index.h>

#include <array>

#include "inspect/words/target_numbers.h"
#include "output/port_row.h"
#include "output/row_stream.h"
#include "vswitch/interface_index.h"
#include "vswitch/vsan_set.h"

namespace chnsw_tool {

namespace {

// A step of the handshake, and the library's functions for it.
struct handshake_step {
  uint32_t opcode;
  vswitch::swap_step step;
  const char* name;
  decltype(&ficon_if_swap_chk_lock_parse_with_vsan) parse;
  decltype(&ficon_if_swap_chk_lock_send_resp) respond;
};

constexpr std::array<handshake_step, 3> kSteps = {{
    {vswitch::kOpSwapCheckLock, vswitch::kStepCheckLock, "check-lock", ficon_if_swap_chk_lock_parse_with_vsan,
     ficon_if_swap_chk_lock_send_resp},
    {vswitch::kOpSwapDoSwap, vswitch::kStepDoSwap, "do-swap", ficon_if_swap_do_swap_parse_with_vsan,
     ficon_if_swap_do_swap_send_resp},
    {vswitch::kOpSwapUnlock, vswitch::kStepUnlock, "unlock", ficon_if_swap_unlock_parse_with_vsan,
     ficon_if_swap_unlock_send_resp},
}};

const handshake_step* step_asked(const msgq_message* request) {
  for (const auto& step : kSteps)
    if (step.opcode == msgq_opcode_get(request)) return &step;
  return nullptr;
}

cell name_of_step(uint32_t number) {
  if (number == vswitch::kStepMap) return std::string("map");
  for (const auto& step : kSteps)
    if (step.step == number) return std::string(step.name);
  return {};
}

std::vector<column> swap_columns() {
  return {{"swap", "SWAP"},
          {"step", "STEP", 0, false, column::everywhere, 10},
          {"interface_a", "A", 0, false, column::everywhere, 13},
          {"if_index_a", "", 8, false, column::data_only},
          {"interface_b", "B", 0, false, column::everywhere, 13},
          {"if_index_b", "", 8, false, column::data_only},
          {"vsans", "VSANS", 0, false, column::everywhere, 9},
          {"swap_status", "ANSWER"},
          {"refused_step", "REFUSED AT"},
          {"status", "STATUS"}};
}

class swap_client {
 public:
  swap_client(manager_client& manager, const swap_options& options, row_stream& rows)
      : manager_(manager), rows_(rows), refuse_(options.refuse), reason_(options.reason) {}

  // Answers every step of the swap that was ordered until the manager says how it ended.
  vswitch::swap_result see_through(uint32_t a, uint32_t b) {
    while (true) {
      auto message = manager_.receive();
      if (msgq_is_reply(message.get()) != 0) return end_of_swap(a, b, message.get());
      if (auto step = step_asked(message.get())) answer(*step, message.get());
    }
  }

 private:
  void answer(const handshake_step& step, msgq_message* request) {
    uint32_t a = 0;
    uint32_t b = 0;
    vsan_block vsans{};
    uint32_t number = 0;
    step.parse(request, &number, &a, &b, &vsans);
    number_ = number;
    const uint32_t swap_status = refuse_ == step.name ? reason_ : 0;
    if (swap_status != 0) refuse_.clear(); // what undoes the swap is not refused
    step.respond(manager_.handle(), request, number, a, b, swap_status);
    add_row(std::string(step.name), a, b, vswitch::vsans_of(vsans), int64_t{swap_status}, cell(), cell());
  }

  vswitch::swap_result end_of_swap(uint32_t a, uint32_t b, msgq_message* reply) {
    const auto result = record_in<vswitch::swap_result>(reply);
    add_row(std::string("result"), a, b, cell(), known_cell(result.refused_step != 0, int64_t{result.swap_status}),
            name_of_step(result.refused_step), status{result.result});
    return result;
  }

  void add_row(cell step, uint32_t a, uint32_t b, cell vsans, cell swap_status, cell refused_step, cell result) {
    rows_.add({optional_cell(number_), std::move(step), interface_name_cell(a), interface_cell(a), interface_name_cell(b),
               interface_cell(b), std::move(vsans), std::move(swap_status), std::move(refused_step), std::move(result)});
  }

  manager_client& manager_;
  row_stream& rows_;
  std::string refuse_;
  uint32_t reason_;
  std::optional<uint32_t> number_; // of the swap, known from the first step on
};

} // namespace

exit_code swap_interfaces(const command_context& context, const swap_options& options) {
  const uint32_t a = parse_interface(options.a);
  const uint32_t b = parse_interface(options.b);
  manager_client manager(managed_folder(context), options.timeout_seconds);
  const vswitch::swap_order order = {hton_if_index(a), hton_if_index(b)};
  manager.send(vswitch::kOpSwap, &order, sizeof order);
  row_stream rows(context, swap_columns());
  vswitch::swap_result result{};
  rows.fill([&] { result = swap_client(manager, options, rows).see_through(a, b); });
  return result.result == 0 ? kFound : kNotFound;
}

command swap_command() {
  auto options = std::make_shared<swap_options>();
  return {
      .name = "swap",
      .what = "Have the manager swap two interfaces, and answer each step of the handshake",
      .examples =
          "  chnsw -s /tmp/director swap fc1/1 fc2/1\n"
          "  chnsw -s /tmp/director swap fc1/1 fc2/1 --refuse do-swap --reason 7",
      .arguments = {word("A", &options->a, "Interface like fc3/5, or an index like 0x01020400"),
                    word("B", &options->b, "The other one"),
                    option("--refuse", "STEP", &options->refuse, "Refuse a step: check-lock, do-swap or unlock")
                        .one_of({"check-lock", "do-swap", "unlock"}),
                    option("--reason", "N", &options->reason, "The swap status that refuses it, decimal; 1 when left out")
                        .between(1, UINT32_MAX)
                        .only_with("--refuse"),
                    timeout_option(&options->timeout_seconds)},
      .run = runs(swap_interfaces, options),
      .parts = {}};
}

} // namespace chnsw_tool
