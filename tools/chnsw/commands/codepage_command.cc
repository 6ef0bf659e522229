#include "commands/codepage_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "inspect/mainframe/code_page.h"
#include "inspect/mainframe/host_text.h"
#include "inspect/messages/hex_text.h"
#include "inspect/words/printable_text.h"
#include "libchnsw.h"
#include "output/record_table.h"
#include "standard_input.h"

namespace chnsw_tool {

namespace {

using inspect::code_page;
using inspect::converted_text;

struct codepage_options {
  std::vector<std::string> pages; // none: those that there are
  std::vector<std::string> to_host;
  std::vector<std::string> from_host;
};

cell name_of(uint32_t codepage) {
  return std::string(ficon_get_codepage_name(codepage));
}

std::string utf8_of(char latin1) {
  return inspect::utf8_of_latin1({&latin1, 1});
}

// ---- The pages ----

// The places where the pages differ most.
constexpr std::string_view kDistinctivePlaces = "\x4A\x4F\x5A\x5B\x5F\x7B\x7C\xA1\xC0\xD0\xE0";

std::string distinctive_characters(const code_page& page) {
  std::string text;
  for (char place : kDistinctivePlaces) {
    const auto latin1 = page.latin1[static_cast<unsigned char>(place)];
    text += (text.empty() ? "" : "  ") + (latin1 ? utf8_of(*latin1) : "-");
  }
  return text;
}

std::vector<record_column<code_page>> page_columns() {
  return {
      {{"codepage", "CODE PAGE"}, [](const code_page& page) -> cell { return int64_t{page.codepage}; }},
      {{"name", "NAME"}, [](const code_page& page) { return name_of(page.codepage); }},
      {{"characters", "CHARACTERS"}, [](const code_page& page) -> cell { return static_cast<int64_t>(page.characters()); }},
      {{"distinctive", inspect::hex_text(kDistinctivePlaces, 1), 0, false, column::table_only},
       [](const code_page& page) -> cell { return distinctive_characters(page); }}};
}

exit_code list_pages(const command_context& context) {
  std::vector<code_page> pages;
  for (uint32_t codepage : inspect::known_codepages()) pages.push_back(inspect::code_page_of(codepage));
  context.print(document_of<code_page>(page_columns(), pages));
  return kFound;
}

// ---- One page ----

bool is_graphic(char latin1) {
  const auto byte = static_cast<unsigned char>(latin1);
  return (byte > 0x20 && byte < 0x7F) || (byte > 0xA0 && byte != 0xAD);
}

// What stands in a place of the picture: a character as it is, any other by its number in the switch's text.
std::string place_text(const std::optional<char>& latin1, bool colour) {
  if (!latin1) return coloured("--", tone::faint, colour);
  if (is_graphic(*latin1)) return " " + utf8_of(*latin1);
  return coloured(inspect::hex_text({&*latin1, 1}), tone::faint, colour);
}

std::string picture_of(const code_page& page, bool colour) {
  std::string text = fmt::format("code page {} {}\n\n     ", page.codepage, ficon_get_codepage_name(page.codepage));
  for (unsigned low = 0; low < 16; ++low) text += fmt::format(" x{:X}", low);
  for (unsigned host = 0; host < 256; ++host) {
    if (host % 16 == 0) text += fmt::format("\n  {:X}x ", host / 16);
    text += " " + place_text(page.latin1[host], colour);
  }
  return text + "\n";
}

// A byte of a host's, and what it is on the switch.
struct page_place {
  uint32_t codepage;
  unsigned host;
  std::optional<char> latin1;
};

const record_column<page_place> kPlaceColumns[] = {
    {{"codepage", "CODE PAGE"}, [](const page_place& place) -> cell { return int64_t{place.codepage}; }},
    {{"name", "NAME"}, [](const page_place& place) { return name_of(place.codepage); }},
    {{"byte", "BYTE", 2}, [](const page_place& place) -> cell { return int64_t{place.host}; }},
    {{"latin1", "ISO 8859-1", 2},
     [](const page_place& place) {
       return place.latin1 ? cell(int64_t{static_cast<unsigned char>(*place.latin1)}) : cell();
     }},
    {{"text", "TEXT"}, [](const page_place& place) { return place.latin1 ? cell(utf8_of(*place.latin1)) : cell(); }},
};

exit_code show_pages(const command_context& context, const std::vector<uint32_t>& codepages) {
  std::vector<page_place> places;
  std::string pictures;
  for (uint32_t codepage : codepages) {
    const code_page page = inspect::code_page_of(codepage);
    for (unsigned host = 0; host < page.latin1.size(); ++host) places.push_back({codepage, host, page.latin1[host]});
    pictures += (pictures.empty() ? "" : "\n") + picture_of(page, context.style.colour);
  }
  if (context.style.format == output_format::table)
    context.results.write(pictures);
  else
    context.print(document_of<page_place>(kPlaceColumns, places));
  return kFound;
}

// ---- Text ----

const record_column<converted_text> kTextColumns[] = {
    {{"codepage", "CODE PAGE"}, [](const converted_text& text) -> cell { return int64_t{text.codepage}; }},
    {{"name", "", 0, false, column::data_only}, [](const converted_text& text) { return name_of(text.codepage); }},
    {{"text", "TEXT"}, [](const converted_text& text) -> cell { return inspect::utf8_of_latin1(text.latin1); }},
    {{"bytes", "", 0, false, column::data_only},
     [](const converted_text& text) -> cell { return inspect::hex_text(text.host); }},
    {{"bytes_text", "BYTES", 0, false, column::table_only},
     [](const converted_text& text) -> cell { return inspect::hex_text(text.host, 1); }},
    {{"substituted", "SUBSTITUTED"},
     [](const converted_text& text) -> cell { return static_cast<int64_t>(text.substituted); }},
};

// Standard input stands for its lines.
std::vector<std::string> lines_of(const std::vector<std::string>& words) {
  std::vector<std::string> lines;
  for (const auto& word : words) {
    if (word != kStandardInput) {
      lines.push_back(word);
      continue;
    }
    const std::string all = read_all_input();
    for (std::string_view rest = all; !rest.empty(); rest.remove_prefix(std::min(rest.size(), lines.back().size() + 1)))
      lines.emplace_back(rest.substr(0, rest.find('\n')));
  }
  return lines;
}

std::vector<converted_text> texts_to_host(const std::vector<uint32_t>& codepages, const codepage_options& options) {
  std::vector<converted_text> texts;
  for (const auto& line : lines_of(options.to_host)) {
    const std::string latin1 = inspect::latin1_of_utf8(line, "text");
    for (uint32_t codepage : codepages) texts.push_back(inspect::text_to_host(codepage, latin1));
  }
  return texts;
}

std::vector<converted_text> texts_from_host(const std::vector<uint32_t>& codepages, const codepage_options& options) {
  std::vector<converted_text> texts;
  const std::string host = bytes_of_words(options.from_host);
  texts.reserve(codepages.size());
  for (uint32_t codepage : codepages) texts.push_back(inspect::text_from_host(codepage, host));
  return texts;
}

exit_code print_texts(const command_context& context, const std::vector<converted_text>& texts) {
  context.print(document_of<converted_text>(kTextColumns, texts));
  const bool any = std::any_of(texts.begin(), texts.end(), [](const auto& text) { return text.substituted != 0; });
  return any ? kNotFound : kFound;
}

exit_code show_codepages(const command_context& context, const codepage_options& options) {
  const bool converts = !options.to_host.empty() || !options.from_host.empty();
  if (options.pages.empty() && converts)
    throw inspect::question_error("name the code page of the text, as in chnsw codepage 37");
  if (options.pages.empty()) return list_pages(context);
  const auto codepages = inspect::parse_codepages(options.pages);
  if (!options.to_host.empty()) return print_texts(context, texts_to_host(codepages, options));
  if (!options.from_host.empty()) return print_texts(context, texts_from_host(codepages, options));
  return show_pages(context, codepages);
}

// ---- The command ----

std::vector<std::string> offered_codepages(std::span<const std::string>) {
  std::vector<std::string> words = {"all"};
  const auto known = inspect::known_codepages();
  std::transform(known.begin(), known.end(), std::inserter(words, words.begin()),
                 [](uint32_t codepage) { return std::to_string(codepage); });
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
