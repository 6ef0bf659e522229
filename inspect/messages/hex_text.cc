#include "inspect/messages/hex_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>

#include "inspect/error.h"
#include "inspect/words/printable_text.h"

namespace inspect {

namespace {

constexpr std::string_view kBlanks = " \t\r";
constexpr std::string_view kSeparators = " \t\r,:";
constexpr size_t kOffsetDigits = 4;   // at least, before a colon
constexpr size_t kOdOffsetDigits = 6; // of "od -A x"

bool are_digits(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

uint64_t number_of(std::string_view digits) {
  uint64_t number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
  return number;
}

// Takes the next word off the front of a line, without what separates it.
std::string_view take_word(std::string_view& line, std::string_view separators) {
  line.remove_prefix(std::min(line.size(), line.find_first_not_of(separators)));
  const std::string_view word = line.substr(0, line.find_first_of(separators));
  line.remove_prefix(word.size());
  return word;
}

class dump_reader {
 public:
  explicit dump_reader(std::string_view text)
      : has_characters_(text.find('|') != std::string_view::npos),
        has_lines_(text.find('\n') < text.find_last_not_of(" \t\r\n")) {}

  void add_line(std::string_view line) {
    ++line_;
    line = line.substr(0, line.find('|'));
    if (const auto offset = take_offset(line)) go_to(*offset);
    if (is_dump_ && line.substr(std::min(line.size(), line.find_first_not_of(kBlanks))).starts_with('*'))
      repeats_ = true;
    else
      while (!line.empty()) add_digits(take_word(line, kSeparators));
  }

  std::string take_bytes() {
    if (repeats_) throw question_error("the dump ends before it says how often \"*\" stands");
    return std::move(bytes_);
  }

 private:
  [[noreturn]] void refuse(const std::string& why) const {
    throw question_error(has_lines_ ? fmt::format("line {}: {}", line_, why) : why);
  }

  // "00000010:" or "0x0010:"; "00000010" where the characters stand between bars; "000010" before bytes of two digits, or alone
  // on the last line. What follows the bytes is cut off.
  std::optional<uint64_t> take_offset(std::string_view& line) {
    std::string_view rest = line;
    std::string_view word = take_word(rest, kBlanks);
    const bool has_colon = word.ends_with(':');
    if (has_colon) word.remove_suffix(1);
    if (has_colon && word.starts_with("0x")) word.remove_prefix(2);
    if (!are_digits(word) || word.size() < kOffsetDigits) return std::nullopt;
    if (!has_colon && !has_characters_ && !(word.size() == kOdOffsetDigits && stands_before_bytes(word, rest)))
      return std::nullopt;
    line = rest.substr(std::min(rest.size(), rest.find_first_not_of(kBlanks)));
    if (has_colon) line = line.substr(0, line.find("  "));
    return number_of(word);
  }

  bool stands_before_bytes(std::string_view offset, std::string_view rest) const {
    const std::string_view next = take_word(rest, kBlanks);
    return has_lines_ && (is_dump_ || number_of(offset) == 0) && (next.size() == 2 || (next.empty() && is_dump_));
  }

  void go_to(uint64_t offset) {
    if (!is_dump_) first_offset_ = offset;
    is_dump_ = true;
    const uint64_t here = first_offset_ + bytes_.size();
    if (repeats_ && offset >= here && offset - here < kLongestDump && bytes_.size() >= kDumpLine)
      for (uint64_t missing = offset - here; missing != 0; --missing) bytes_ += bytes_[bytes_.size() - kDumpLine];
    else if (offset != here)
      refuse(fmt::format("the offset is {:#x}, but {:#x} is the next one", offset, here));
    repeats_ = false;
  }

  void add_digits(std::string_view word) {
    std::string_view digits = word;
    if (digits.starts_with("0x") || digits.starts_with("0X")) digits.remove_prefix(2);
    if (word.empty()) return;
    if (!are_digits(digits))
      refuse(fmt::format("\"{}\" is not hexadecimal; expected bytes of two digits, as in 0001C1F1 or 00 01 C1 F1",
                         printable(word)));
    if (digits.size() % 2 != 0) refuse(fmt::format("\"{}\" has an odd number of digits; a byte has two", word));
    for (; !digits.empty(); digits.remove_prefix(2)) bytes_ += static_cast<char>(number_of(digits.substr(0, 2)));
  }

  static constexpr size_t kDumpLine = 16;
  static constexpr uint64_t kLongestDump = 1 << 20;

  bool has_characters_;
  bool has_lines_;
  bool is_dump_ = false;
  bool repeats_ = false;
  uint64_t first_offset_ = 0;
  size_t line_ = 0;
  std::string bytes_;
};

} // namespace

std::string parse_hex(std::string_view text) {
  dump_reader reader(text);
  for (size_t end = 0; end != std::string_view::npos;) {
    end = text.find('\n');
    reader.add_line(text.substr(0, end));
    if (end != std::string_view::npos) text.remove_prefix(end + 1);
  }
  return reader.take_bytes();
}

std::string hex_text(std::string_view bytes, size_t group) {
  std::string text;
  for (size_t n = 0; n < bytes.size(); ++n) {
    if (group != 0 && n != 0 && n % group == 0) text += ' ';
    text += fmt::format("{:02X}", static_cast<unsigned char>(bytes[n]));
  }
  return text;
}

} // namespace inspect
