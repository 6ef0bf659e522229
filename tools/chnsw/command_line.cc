// The command line, made from what the commands say of themselves.
#include "command_line.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <sstream>

#include "inspect/words/nearest_word.h"

namespace chnsw_tool {

namespace {

constexpr char kVersion[] = "chnsw " CHNSW_VERSION;

constexpr char kGeneralHelp[] =
    "Numbers: bare digits are hexadecimal for a port address (PA) and a TOD clock value, decimal for everything else; 0x\n"
    "always makes them hexadecimal. One number, a list or a range: C0  10-1F,30  all\n"
    "\n"
    "Exit status: 0 found, 1 not found or findings, 2 wrong command line or chassis file, 3 a folder, a service or the "
    "output\n"
    "failed.\n"
    "\n"
    "Examples:\n"
    "  chnsw -s examples/director-10.toml pa 20 --vsan 10 --explain\n"
    "  chnsw -s examples/director-10.toml check\n"
    "  chnsw create /tmp/director examples/director-10.toml && CHNSW_SWITCH=/tmp/director chnsw map\n";

constexpr char kCommonOptions[] = "chnsw --help tells the options of every command: --switch, --format, --color.";

// ---- One argument ----

template <typename number>
bool is_between(const std::string& word, double lowest, double highest) {
  number read{};
  auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), read);
  return error == std::errc{} && end == word.data() + word.size() && static_cast<double>(read) >= lowest &&
         static_cast<double>(read) <= highest;
}

// Not CLI::Range: the help would show its bounds, even those that are only the limits of the type.
CLI::Validator range_check(const argument& described) {
  const bool has_fraction = std::holds_alternative<double*>(described.value);
  return {[has_fraction, lowest = described.lowest, highest = described.highest](const std::string& word) -> std::string {
            if (has_fraction ? is_between<double>(word, lowest, highest) : is_between<uint64_t>(word, lowest, highest))
              return {};
            return fmt::format("found \"{}\", expected a decimal number from {} to {}", word, lowest, highest);
          },
          ""};
}

struct option_maker {
  CLI::App& app;
  const argument& described;

  CLI::Option* operator()(bool* value) const { return app.add_flag(described.name, *value, described.what); }
  CLI::Option* operator()(std::vector<std::string>* values) const {
    if (described.takes_many) return app.add_option(described.name, *values, described.what);
    if (described.is_option()) return app.add_option(described.name, *values, described.what)->allow_extra_args(false);
    return app.add_option_function<std::string>(
        described.name, [values](const std::string& word) { *values = {word}; }, described.what);
  }
  template <typename single>
  CLI::Option* operator()(single* value) const {
    return app.add_option(described.name, *value, described.what);
  }
};

void add_argument(CLI::App& app, const argument& described) {
  CLI::Option* made = std::visit(option_maker{app, described}, described.value);
  if (!described.is_flag()) made->type_name(described.value_name);
  if (described.is_required) made->required();
  if (!described.choices.empty()) made->check(CLI::IsMember(described.choices));
  if (described.highest > described.lowest) made->check(range_check(described));
  if (!described.variable.empty()) made->envname(described.variable);
}

// Which options exclude or need each other; called when all options of the command are there.
void add_relations(CLI::App& app, const argument& described) {
  if (!described.excludes.empty()) app.get_option(described.name)->excludes(app.get_option(described.excludes));
  if (!described.needs.empty()) app.get_option(described.name)->needs(app.get_option(described.needs));
}

// ---- One command ----

void add_command(CLI::App& app, const command& described, parsed_command_line& line) {
  CLI::App* made = app.add_subcommand(described.name, described.what);
  made->fallthrough();
  made->footer(fmt::format("Examples:\n{}\n\n{}", described.examples, kCommonOptions));
  for (const argument& each : described.arguments) add_argument(*made, each);
  for (const argument& each : described.arguments) add_relations(*made, each);
  for (const command& part : described.parts) add_command(*made, part, line);
  if (!described.parts.empty()) made->require_subcommand(described.run ? 0 : 1, 1);
  if (!described.run) return;
  made->callback([&line, made, run = described.run] {
    if (made->get_subcommands().empty()) line.run = run;
  });
}

// ---- What is wrong ----

std::vector<std::string> names_of_commands(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* sub : app.get_subcommands(nullptr)) names.push_back(sub->get_name());
  return names;
}

// The first word that is no option and no option's value: the command. Empty when there is none.
std::string first_word(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    std::string word = argv[i];
    if (word == "-s" || word == "--switch" || word == "--format" || word == "--color") {
      ++i;
    } else if (!word.starts_with('-')) {
      return word;
    }
  }
  return "";
}

void require_command(const CLI::App& app, const std::string& word) {
  const auto names = names_of_commands(app);
  if (word.empty() || std::find(names.begin(), names.end(), word) != names.end()) return;
  throw inspect::question_error(
      fmt::format("there is no command \"{}\"; {}", word, inspect::suggestion(word, names, "chnsw --help lists them")));
}

// The commands that were read before something went wrong: none, "pa", or "set" and "port".
std::vector<const CLI::App*> commands_read(const CLI::App& app) {
  std::vector<const CLI::App*> commands;
  for (auto inner = app.get_subcommands(); !inner.empty(); inner = inner.front()->get_subcommands())
    commands.push_back(inner.front());
  return commands;
}

std::string help_command(const CLI::App& app) {
  std::string command = "chnsw";
  for (const CLI::App* read : commands_read(app)) command += " " + read->get_name();
  return command + " --help";
}

// What is wrong; when a command lacks the part that must follow it, or has a wrong one there, which parts there are.
std::string complaint(const CLI::App& app, const CLI::ParseError& error) {
  auto read = commands_read(app);
  bool is_required = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::RequiredError);
  bool is_extra = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError);
  if (!(is_required || is_extra) || read.empty() || read.back()->get_subcommands(nullptr).empty()) return error.what();
  return fmt::format("{} is followed by one of: {}", read.back()->get_name(),
                     fmt::join(names_of_commands(*read.back()), ", "));
}

} // namespace

std::vector<argument> general_options(parsed_command_line& line) {
  return {option("-s,--switch", "PATH", &line.switch_path, "Chassis file, or folder of a switch; also from CHNSW_SWITCH")
              .path()
              .or_variable("CHNSW_SWITCH"),
          option("--format", "FORM", &line.format, "Form of the result: table (default), json, jsonl, csv")
              .one_of(format_names()),
          option("--color", "WHEN", &line.colour,
                 "Colour: auto (default: on a terminal, unless NO_COLOR is set), always, never")
              .one_of({"auto", "always", "never"})};
}

parsed_command_line parse_command_line(int argc, char** argv) {
  parsed_command_line line;
  CLI::App app("Asks the port map of a FICON switch which port, number, address and interface belong together, and why.",
               "chnsw");
  app.require_subcommand(1);
  app.footer(kGeneralHelp);
  for (const argument& each : general_options(line)) add_argument(app, each);
  app.set_version_flag("--version", kVersion, "Print the version");
  for (const command& each : all_commands()) add_command(app, each, line);
  try {
    require_command(app, first_word(argc, argv));
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() != 0)
      throw inspect::question_error(fmt::format("{}; see {}", complaint(app, error), help_command(app)));
    std::ostringstream out;
    std::ostringstream ignored;
    app.exit(error, out, ignored);
    line.text = out.str();
  }
  return line;
}

} // namespace chnsw_tool
