// Reading a switch.
#include "inspect/session/opened_switch.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <vector>

#include "inspect/error.h"
#include "inspect/session/library_session.h"
#include "inspect/words/status_names.h"
#include "libchnsw.h"
#include "vswitch/chassis_file.h"
#include "vswitch/switch_store.h"

namespace inspect {

namespace {

// What the library thinks of one card's slot; empty when it agrees with the file.
std::string objection(const vswitch::chassis_description& chassis, unsigned slot) {
  uint8_t card = 0;
  int32_t answer = ficonm_platform_slot_to_lc_b0(static_cast<uint8_t>(slot - 1), &card);
  std::string kind =
      fmt::format("a chassis of {} slot{} and type {}", chassis.slots(), chassis.slots() == 1 ? "" : "s", chassis.type);
  if (answer == FICON_RC_PLATFORM)
    throw platform_error("the library cannot ask for slots: " + status_text(FICON_RC_PLATFORM));
  if (answer != 0)
    return fmt::format("slot {} is no line-card slot of {} (the library answers {}); put the card into another slot", slot,
                       kind, status_text(static_cast<uint32_t>(answer)));
  auto expected = vswitch::line_card_number(chassis, slot);
  if (expected && *expected == card) return "";
  return fmt::format(
      "slot {} is line card {} of {} for the library, but {} by the supervisors named here; check the supervisors", slot,
      card, kind, expected ? std::to_string(*expected) : "no line card");
}

void check_line_cards(const vswitch::chassis_description& chassis, const std::string& path,
                      const std::vector<vswitch::card_place>& places) {
  const served_switch served(chassis);
  std::vector<vswitch::file_problem> problems;
  for (const auto& place : places) {
    std::string what = objection(chassis, place.slot);
    if (!what.empty()) problems.push_back({path, place.line, place.column, what});
  }
  if (!problems.empty()) throw vswitch::chassis_file_error(std::move(problems));
}

std::string all_problems(const vswitch::chassis_file_error& error) {
  std::string text;
  for (const auto& problem : error.problems()) text += (text.empty() ? "" : "\n") + problem.text();
  return text;
}

// A file that is not there or may not be read says nothing about its content.
void require_readable(const std::string& path) {
  if (::access(path.c_str(), R_OK) == 0) return;
  throw platform_error(fmt::format("{}: {}; expected a chassis file or a switch's folder", path, std::strerror(errno)));
}

vswitch::chassis_description read_file(const std::string& path) {
  std::vector<vswitch::card_place> places;
  try {
    auto chassis = vswitch::read_chassis_file(path, &places);
    check_line_cards(chassis, path, places);
    return chassis;
  } catch (const vswitch::chassis_file_error& error) {
    throw file_error(all_problems(error));
  }
}

vswitch::chassis_description read_folder(const std::string& path) {
  try {
    return vswitch::switch_store::open(path)->describe();
  } catch (const vswitch::switch_error& error) {
    throw platform_error(error.what());
  }
}

} // namespace

bool is_folder(const std::string& path) {
  return vswitch::switch_store::names_switch(path);
}

opened_switch open_switch(const std::string& path) {
  require_readable(path);
  bool folder = is_folder(path);
  return {path, folder, folder ? read_folder(path) : read_file(path)};
}

} // namespace inspect
