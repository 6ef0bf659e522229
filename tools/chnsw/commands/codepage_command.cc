#include "commands/codepage_command.h"
#include "inspect/words/printable_text.h"

#include <fmt/format.h>

#include <algorithm>

#include "inspect/mainframe/host_text.h"
#include "inspect/messages/hex_text.h"
#include "inspect/words/target_numbers.h"
#include "libchnsw.h"

namespace chnsw_tool {

namespace {

constexpr char kHostSubstitute = 0x3F;
constexpr char kSwitchSubstitute = 0x1A;
constexpr number_kind kCodepage = {"code page", 10, 0, 65535, "37 or 37,500"};

std::string all_bytes() {
  std::string bytes;
  for (unsigned byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

// Whether a host's byte stands for no character of the switch's, so that SUB had to take its place; and the other way round.
bool is_missing(uint32_t page, char host, char latin1) {
  return page != FICON_CODEPAGE_ASCII && latin1 == kSwitchSubstitute && host != kHostSubstitute;
}
bool is_missing_on_host(uint32_t page, char latin1, char host) {
  return page != FICON_CODEPAGE_ASCII && host == kHostSubstitute && latin1 != kSwitchSubstitute;
}

cell name_of(uint32_t codepage) {
  return std::string(ficon_get_codepage_name(codepage));
}

std::vector<uint32_t> pages_of(const std::vector<std::string>& words) {
  const auto known = known_codepages();
  auto pages = parse_numbers(kCodepage, words, known);
  for (uint32_t page : pages)
    if (std::find(known.begin(), known.end(), page) == known.end())
      throw question_error(
          fmt::format("the library knows no code page {}; it knows {}", page, fmt::join(known.begin(), known.end(), ", ")));
  return pages;
}

// ---- The pages ----

// The places where the pages differ most, which tell them apart at a glance.
constexpr std::string_view kTellingPlaces = "\x4A\x4F\x5A\x5B\x5F\x7B\x7C\xA1\xC0\xD0\xE0";

std::string telling_characters(uint32_t page) {
  std::string text;
  const std::string characters = from_host(page, std::string(kTellingPlaces));
  for (size_t n = 0; n < characters.size(); ++n) {
    const bool missing = is_missing(page, kTellingPlaces[n], characters[n]);
    text += (n == 0 ? "" : "  ") + (missing ? "-" : utf8_of_latin1({&characters[n], 1}));
  }
  return text;
}

exit_code list_pages(const command_context& context) {
  result_document document{{{"codepage", "CODE PAGE"},
                            {"name", "NAME"},
                            {"characters", "CHARACTERS"},
                            {"telling", hex_text(kTellingPlaces, 1), 0, false, column::table_only}},
                           {}};
  for (uint32_t page : known_codepages()) {
    const std::string characters = from_host(page, all_bytes());
    int64_t there = 0;
    for (unsigned host = 0; host < 256; ++host)
      there += is_missing(page, static_cast<char>(host), characters[host]) ? 0 : 1;
    document.add({int64_t{page}, name_of(page), there, telling_characters(page)});
  }
  context.print(document);
  return kFound;
}

// ---- One page ----

bool is_graphic(char latin1) {
  const auto byte = static_cast<unsigned char>(latin1);
  return (byte > 0x20 && byte < 0x7F) || (byte > 0xA0 && byte != 0xAD);
}

// What stands in a place of the picture: a character as it is, any other by its number in the switch's text.
std::string place_text(uint32_t page, unsigned host, char latin1, bool colour) {
  if (is_missing(page, static_cast<char>(host), latin1)) return coloured("--", tone::faint, colour);
  if (is_graphic(latin1)) return " " + utf8_of_latin1({&latin1, 1});
  return coloured(hex_text({&latin1, 1}), tone::faint, colour);
}

std::string picture_of(uint32_t page, bool colour) {
  const std::string characters = from_host(page, all_bytes());
  std::string text = fmt::format("code page {} {}\n\n     ", page, ficon_get_codepage_name(page));
  for (unsigned low = 0; low < 16; ++low) text += fmt::format(" x{:X}", low);
  for (unsigned host = 0; host < 256; ++host) {
    if (host % 16 == 0) text += fmt::format("\n  {:X}x ", host / 16);
    text += " " + place_text(page, host, characters[host], colour);
  }
  return text + "\n";
}

std::vector<column> place_columns() {
  return {{"codepage", "CODE PAGE"}, {"name", "NAME"}, {"byte", "BYTE", 2}, {"latin1", "ISO 8859-1", 2}, {"text", "TEXT"}};
}

void add_places(uint32_t page, result_document& document) {
  const std::string characters = from_host(page, all_bytes());
  for (unsigned host = 0; host < 256; ++host) {
    const char latin1 = characters[host];
    if (is_missing(page, static_cast<char>(host), latin1))
      document.add({int64_t{page}, name_of(page), int64_t{host}, {}, {}});
    else
      document.add({int64_t{page}, name_of(page), int64_t{host}, int64_t{static_cast<unsigned char>(latin1)},
                    utf8_of_latin1({&latin1, 1})});
  }
}

exit_code show_pages(const command_context& context, const std::vector<uint32_t>& pages) {
  result_document document{place_columns(), {}};
  std::string pictures;
  for (uint32_t page : pages) {
    add_places(page, document);
    pictures += (pictures.empty() ? "" : "\n") + picture_of(page, context.style.colour);
  }
  if (context.style.format == output_format::table)
    context.results.write(pictures);
  else
    context.print(document);
  return kFound;
}

// ---- Text ----

std::vector<column> text_columns() {
  return {{"codepage", "CODE PAGE"},
          {"name", "", 0, false, column::data_only},
          {"text", "TEXT"},
          {"bytes", "", 0, false, column::data_only},
          {"bytes_text", "BYTES", 0, false, column::table_only},
          {"substituted", "SUBSTITUTED"}};
}

void add_text(uint32_t page, const std::string& latin1, const std::string& host, int64_t substitutes,
              result_document& document) {
  document.add({int64_t{page}, name_of(page), utf8_of_latin1(latin1), hex_text(host), hex_text(host, 1), substitutes});
}

int64_t missing_in(uint32_t page, const std::string& before, const std::string& after,
                   bool (*missing)(uint32_t, char, char)) {
  int64_t count = 0;
  for (size_t n = 0; n < before.size(); ++n) count += missing(page, before[n], after[n]) ? 1 : 0;
  return count;
}

bool any_substituted(const result_document& document) {
  return std::any_of(document.rows.begin(), document.rows.end(),
                     [](const auto& row) { return std::get<int64_t>(row.cells.back()) != 0; });
}

// "-" stands for the lines of standard input.
std::vector<std::string> lines_of(const std::vector<std::string>& words) {
  std::vector<std::string> lines;
  for (const auto& word : words) {
    if (word != "-") {
      lines.push_back(word);
      continue;
    }
    std::string_view rest;
    const std::string all = read_all(stdin);
    for (rest = all; !rest.empty(); rest.remove_prefix(std::min(rest.size(), lines.back().size() + 1)))
      lines.emplace_back(rest.substr(0, rest.find('\n')));
  }
  return lines;
}

exit_code convert_texts(const command_context& context, const std::vector<uint32_t>& pages,
                        const codepage_options& options) {
  result_document document{text_columns(), {}};
  for (const auto& word : lines_of(options.to_host)) {
    const std::string text = latin1_of_utf8(word, "text");
    for (uint32_t page : pages) {
      const std::string host = to_host(page, text);
      add_text(page, text, host, missing_in(page, text, host, is_missing_on_host), document);
    }
  }
  context.print(document);
  return any_substituted(document) ? kNotFound : kFound;
}

exit_code convert_bytes(const command_context& context, const std::vector<uint32_t>& pages,
                        const codepage_options& options) {
  result_document document{text_columns(), {}};
  const std::string host = parse_hex(options.from_host, stdin);
  for (uint32_t page : pages) {
    const std::string text = from_host(page, host);
    add_text(page, text, host, missing_in(page, host, text, is_missing), document);
  }
  context.print(document);
  return any_substituted(document) ? kNotFound : kFound;
}

} // namespace

exit_code show_codepages(const command_context& context, const codepage_options& options) {
  const bool converts = !options.to_host.empty() || !options.from_host.empty();
  if (options.pages.empty() && converts) throw question_error("name the code page of the text, as in chnsw codepage 37");
  if (options.pages.empty()) return list_pages(context);
  const auto pages = pages_of(options.pages);
  if (!options.to_host.empty()) return convert_texts(context, pages, options);
  if (!options.from_host.empty()) return convert_bytes(context, pages, options);
  return show_pages(context, pages);
}

// ---- The command ----

namespace {

std::vector<std::string> offered_codepages(std::span<const std::string>) {
  std::vector<std::string> words;
  for (uint32_t codepage : inspect::known_codepages()) words.push_back(std::to_string(codepage));
  words.emplace_back("all");
  return words;
}

} // namespace

command codepage_command() {
  auto options = std::make_shared<codepage_options>();
  return {.name = "codepage",
          .what = "Code pages of mainframe hosts, and text in them",
          .examples =
              "  chnsw codepage\n  chnsw codepage 273\n  chnsw codepage 37 --from-host C6C9C3D6D5\n"
              "  chnsw codepage 37,273 --to-host 'ACM $1'\n"
              "  chnsw codepage 500 --to-host - --format csv < texts.txt",
          .arguments = {optional_word("PAGES", &options->pages,
                                      fmt::format("Code pages: 37, 37,500 or all; without them a list of those that there "
                                                  "are. {}",
                                                  kDecimalDigits))
                            .offering(offered_codepages),
                        option("--to-host", "TEXT", &options->to_host,
                               "The switch's text into the host's bytes; - for the lines of standard input")
                            .single(),
                        option("--from-host", "HEX", &options->from_host,
                               "The host's bytes, hexadecimal, into the switch's text; - for standard input")
                            .without("--to-host")},
          .run = runs(show_codepages, options),
          .parts = {}};
}

} // namespace chnsw_tool
