#include "output/tod_explanation.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

namespace chnsw_tool {

namespace {

using nlohmann::ordered_json;

std::string text_of(const inspect::tod_explanation& why) {
  std::string text = fmt::format("{} ({})\n", why.translation, why.operation);
  for (const auto& step : why.steps) text += fmt::format("  {:<12}  {}\n", step.label, step.text);
  return text;
}

ordered_json data_of(const inspect::tod_explanation& why) {
  ordered_json steps = ordered_json::array();
  for (const auto& step : why.steps) steps.push_back(fmt::format("{}: {}", step.label, step.text));
  ordered_json data = {{"translation", why.translation}, {"operation", why.operation}, {"arithmetic", steps}};
  if (!why.drifted) return data;
  data["seconds_difference"] = why.drifted->seconds_difference;
  data["microseconds_difference"] = why.drifted->microseconds_difference;
  data["sub_second_drift_usec"] = why.drifted->sub_second_usec;
  data["ahead_of_host_time_usec"] = why.drifted->ahead_of_host_time_usec;
  return data;
}

} // namespace

void attach(const inspect::tod_explanation& why, result_row& row) {
  row.explanation_text = text_of(why);
  row.explanation = std::make_shared<const ordered_json>(ordered_json::array({data_of(why)}));
}

} // namespace chnsw_tool
