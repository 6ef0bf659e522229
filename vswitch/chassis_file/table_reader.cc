#include "chassis_file/table_reader.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

#include "vswitch/spelling.h"

namespace vswitch {

namespace {

// The allowed key that was probably meant, else all of them.
std::string suggestion(std::string_view key, std::span<const std::string_view> allowed) {
  auto nearest = std::min_element(allowed.begin(), allowed.end(), [key](std::string_view a, std::string_view b) {
    return edit_distance(key, a) < edit_distance(key, b);
  });
  if (edit_distance(key, *nearest) <= std::clamp<size_t>(nearest->size() / 2, 1, 3))
    return "did you mean " + std::string(*nearest) + "?";
  std::string keys;
  for (std::string_view candidate : allowed) keys += (keys.empty() ? "" : ", ") + std::string(candidate);
  return "allowed are " + keys;
}

// "32" or "0x20".
std::optional<int64_t> parse_number(std::string_view text) {
  const bool hexadecimal = text.starts_with("0x");
  if (hexadecimal) text.remove_prefix(2);
  uint32_t number = 0;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, hexadecimal ? 16 : 10);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::optional<std::vector<uint8_t>> parse_hexadecimal_bytes(std::string_view text) {
  std::vector<uint8_t> bytes;
  while (!text.empty()) {
    if (text[0] == ' ') {
      text.remove_prefix(1);
      continue;
    }
    uint8_t byte = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + std::min<size_t>(2, text.size()), byte, 16);
    if (error != std::errc() || end != text.data() + 2) return std::nullopt;
    bytes.push_back(byte);
    text.remove_prefix(2);
  }
  return bytes;
}

} // namespace

place place_of(const toml::source_region& region) {
  return {region.begin.line, region.begin.column};
}
place place_of(const toml::node& node) {
  return place_of(node.source());
}

void problem_list::add(place where, std::string what) {
  problems_.push_back({file_, where.line, where.column, std::move(what)});
}

std::vector<file_problem> problem_list::in_file_order() const {
  auto sorted = problems_;
  std::stable_sort(sorted.begin(), sorted.end(), [](const file_problem& a, const file_problem& b) {
    return std::pair(a.line, a.column) < std::pair(b.line, b.column);
  });
  return sorted;
}

std::string number_range::text() const {
  return std::to_string(lowest) + " to " + std::to_string(highest);
}

std::optional<number_run> parse_number_run(std::string_view text) {
  const size_t dash = text.find('-');
  auto first = parse_number(text.substr(0, dash));
  auto last = dash == std::string_view::npos ? first : parse_number(text.substr(dash + 1));
  if (!first || !last) return std::nullopt;
  return number_run{*first, *last};
}

std::optional<number_run> number_run_in(const toml::node& value) {
  const auto number = value.value_exact<int64_t>();
  if (number) return number_run{*number, *number};
  const auto text = value.value_exact<std::string>();
  const auto run = text ? parse_number_run(*text) : std::nullopt;
  return run && run->first <= run->last ? run : std::nullopt;
}

std::string quoted(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string quoted = "\"";
  for (size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const bool c1 = byte == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0;
    if (c1) ++i; // U+0080 to U+009F in two bytes; the second one is the number
    const auto shown = static_cast<unsigned char>(text[i]);
    if (c1 || byte < 0x20 || byte == 0x7F) {
      quoted += {'\\', 'x', kDigits[shown >> 4], kDigits[shown & 15]};
    } else {
      quoted += text[i];
    }
  }
  return quoted + "\"";
}

std::string shown(const toml::node& value) {
  if (auto text = value.value_exact<std::string>()) return quoted(*text);
  if (auto number = value.value_exact<int64_t>()) return std::to_string(*number);
  if (auto truth = value.value_exact<bool>()) return *truth ? "true" : "false";
  if (value.is_array()) return "a list";
  if (value.is_table()) return "a table";
  if (value.is_floating_point()) return "a number with a fraction";
  return "a date or time";
}

std::optional<int64_t> number_in(const toml::node& value, std::string_view what, number_range allowed,
                                 problem_list& problems) {
  auto number = value.value_exact<int64_t>();
  if (number && allowed.holds(*number)) return number;
  problems.add(value, std::string(what) + " is " + shown(value) + "; " +
                          (number ? "allowed are " : "expected is a whole number, ") + allowed.text());
  return std::nullopt;
}

void table_reader::allow_only(std::initializer_list<std::string_view> keys) {
  for (const auto& [key, value] : table_)
    if (std::find(keys.begin(), keys.end(), key.str()) == keys.end())
      problems_.add(place_of(key.source()), "unknown key " + quoted(key.str()) + " in " + title_ + "; " +
                                                suggestion(key.str(), {keys.begin(), keys.size()}));
}

void table_reader::missing(std::string_view key, std::string_view expected) {
  problems_.add(where(), title_ + " has no " + std::string(key) + "; expected is " + std::string(expected));
}

std::optional<int64_t> table_reader::number(std::string_view key, number_range allowed) {
  const toml::node* value = find(key);
  return value == nullptr ? std::nullopt : number_in(*value, key, allowed, problems_);
}

std::optional<int64_t> table_reader::required_number(std::string_view key, number_range allowed) {
  if (!has(key)) missing(key, "a whole number, " + allowed.text());
  return number(key, allowed);
}

std::optional<std::string> table_reader::text(std::string_view key) {
  const toml::node* value = find(key);
  if (value == nullptr) return std::nullopt;
  auto text = value->value_exact<std::string>();
  if (!text) problems_.add(*value, std::string(key) + " is " + shown(*value) + "; expected is a text in quotes");
  return text;
}

std::optional<std::vector<uint8_t>> table_reader::bytes(std::string_view key, size_t count) {
  auto digits = text(key);
  if (!digits) return std::nullopt;
  auto bytes = parse_hexadecimal_bytes(*digits);
  if (bytes && bytes->size() == count) return bytes;
  problems_.add(*find(key), std::string(key) + " is " + quoted(*digits) + "; expected are " + std::to_string(count) +
                                " bytes of two hexadecimal digits each");
  return std::nullopt;
}

const toml::array* table_reader::array(std::string_view key, std::string_view expected) {
  const toml::node* value = find(key);
  if (value == nullptr) return nullptr;
  if (!value->is_array())
    problems_.add(*value, std::string(key) + " is " + shown(*value) + "; expected is " + std::string(expected));
  return value->as_array();
}

} // namespace vswitch
