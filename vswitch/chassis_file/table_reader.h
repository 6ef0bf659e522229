// Reads TOML tables key by key and collects what is wrong with them, with its place.
#ifndef VSWITCH_TABLE_READER_H
#define VSWITCH_TABLE_READER_H

#include <toml++/toml.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vswitch/chassis_file.h"

namespace vswitch {

struct place {
  unsigned line = 0;
  unsigned column = 0;
};
place place_of(const toml::source_region& region);
place place_of(const toml::node& node);

class problem_list {
 public:
  explicit problem_list(std::string file) : file_(std::move(file)) {}

  void add(place where, std::string what);
  void add(const toml::node& where, std::string what) { add(place_of(where), std::move(what)); }

  bool empty() const { return problems_.empty(); }
  std::vector<file_problem> in_file_order() const;

 private:
  std::string file_;
  std::vector<file_problem> problems_;
};

// Whole numbers that a value may be, both ends included.
struct number_range {
  int64_t lowest;
  int64_t highest;

  bool holds(int64_t number) const { return number >= lowest && number <= highest; }
  std::string text() const; // "1 to 4095"
};

// "1024-1037", "0x20-0x2F" or "7"; none when it is not written so. The ends may stand in the wrong order.
struct number_run {
  int64_t first;
  int64_t last;
};
std::optional<number_run> parse_number_run(std::string_view text);

// The same in a value, which may be a number too; none when the ends stand in the wrong order.
std::optional<number_run> number_run_in(const toml::node& value);

// A text of the file in quotes, as a terminal can take it: a control character stands as its number.
std::string quoted(std::string_view text);

// How a value stands in a message.
std::string shown(const toml::node& value);

class table_reader {
 public:
  // title is what messages call the table: "[[line_card]]".
  table_reader(const toml::table& table, std::string title, problem_list& problems)
      : table_(table), title_(std::move(title)), problems_(problems) {}

  void allow_only(std::initializer_list<std::string_view> keys);

  bool has(std::string_view key) const { return table_.contains(key); }
  const toml::node* find(std::string_view key) const { return table_.get(key); }

  // A value of its kind, or none after a problem was added. A key that is missing is a problem for the required ones only.
  std::optional<int64_t> number(std::string_view key, number_range allowed);
  std::optional<int64_t> required_number(std::string_view key, number_range allowed);
  std::optional<std::string> text(std::string_view key);
  std::optional<std::vector<uint8_t>> bytes(std::string_view key, size_t count);
  const toml::array* array(std::string_view key, std::string_view expected);

  void missing(std::string_view key, std::string_view expected);

  place where() const { return place_of(table_); }
  problem_list& problems() { return problems_; }

 private:
  const toml::table& table_;
  std::string title_;
  problem_list& problems_;
};

// A number in a list or under a key, or none after a problem was added. what names it: "slot".
std::optional<int64_t> number_in(const toml::node& value, std::string_view what, number_range allowed,
                                 problem_list& problems);

} // namespace vswitch

#endif
