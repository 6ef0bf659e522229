// Describing a command.
#include "commands/command.h"

#include <fmt/format.h>

#include <limits>

namespace chnsw_tool {

namespace {

constexpr char kInterfaces[] =
    "Interfaces: fc3/5, fc3/1-48, port-channel5, an index like 0x01020400, or all. Slots and ports are decimal.";

bool holds_many(const argument::target& value) {
  return std::holds_alternative<std::vector<std::string>*>(value);
}

} // namespace

argument argument::one_of(std::vector<std::string> values) && {
  choices = std::move(values);
  return std::move(*this);
}

argument argument::between(double first, double last) && {
  lowest = first;
  highest = last;
  return std::move(*this);
}

argument argument::path() && {
  is_path = true;
  return std::move(*this);
}

argument argument::single() && {
  takes_many = false;
  return std::move(*this);
}

argument argument::without(std::string other) && {
  excludes = std::move(other);
  return std::move(*this);
}

argument argument::only_with(std::string other) && {
  needs = std::move(other);
  return std::move(*this);
}

argument argument::or_variable(std::string name_of_variable) && {
  variable = std::move(name_of_variable);
  return std::move(*this);
}

argument argument::offering(std::vector<std::string> words) && {
  offered = [words = std::move(words)](std::span<const std::string>) { return words; };
  return std::move(*this);
}

argument argument::offering(candidates words) && {
  offered = std::move(words);
  return std::move(*this);
}

argument word(std::string name, argument::target value, std::string what) {
  argument made = optional_word(std::move(name), value, std::move(what));
  made.is_required = true;
  return made;
}

argument optional_word(std::string name, argument::target value, std::string what) {
  return option(std::move(name), "", value, std::move(what));
}

argument option(std::string name, std::string value_name, argument::target value, std::string what) {
  argument made;
  made.name = std::move(name);
  made.value = value;
  made.what = std::move(what);
  made.value_name = std::move(value_name);
  made.takes_many = holds_many(value);
  return made;
}

argument flag(std::string name, bool* value, std::string what) {
  return option(std::move(name), "", value, std::move(what));
}

argument interfaces_word(std::vector<std::string>* interfaces) {
  return word("IF", interfaces, kInterfaces).offering({"all"});
}

argument vsans_word(std::string* vsans) {
  return word("VSANS", vsans, fmt::format("VSANs: 10, 10,20 or all. {}", kDecimalDigits)).offering({"all"});
}

argument timeout_option(double* seconds) {
  return option("--timeout", "SECONDS", seconds,
                fmt::format("Seconds to wait for each of the manager's messages; {:g} when left out", *seconds))
      .between(0.01, 3600);
}

argument count_option(uint64_t* count, std::string what) {
  return option("--count", "N", count, std::move(what)).between(0, std::numeric_limits<uint32_t>::max());
}

} // namespace chnsw_tool
