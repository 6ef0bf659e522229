// chnsw: asks a virtual switch's port map the way the switch itself would be asked.
#include <fmt/format.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>

#include "command_line.h"
#include "completion.h"
#include "exit_code.h"

namespace chnsw_tool {

namespace {

// What a shell asks for while a command line is being typed; what follows is that line.
constexpr std::string_view kComplete = "--complete";

bool is_set(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0';
}

bool wants_colour(const std::string& choice, const result_stream& results) {
  if (choice != "auto") return choice == "always";
  const char* terminal = std::getenv("TERM");
  bool dumb = terminal != nullptr && std::string_view(terminal) == "dumb";
  return !is_set("NO_COLOR") && !dumb && results.is_terminal();
}

exit_code run(int argc, char** argv, result_stream& results) {
  if (argc > 1 && std::string_view(argv[1]) == kComplete) {
    results.write(completion_text(complete(std::vector<std::string>(argv + 2, argv + argc))));
    return kFound;
  }
  parsed_command_line line = parse_command_line(argc, argv);
  if (!line.text.empty()) {
    results.write(line.text);
    return kFound;
  }
  return line.run({results, {format_named(line.format), wants_colour(line.colour, results)}, line.switch_path});
}

void tell(const inspect::error& error) {
  if (error.failed() == inspect::failure::file)
    std::fputs(fmt::format("{}\n", error.what()).c_str(), stderr);
  else if (*error.what() != '\0')
    notice(error.what());
}

} // namespace

} // namespace chnsw_tool

int main(int argc, char** argv) {
  try {
    chnsw_tool::result_stream results;
    return chnsw_tool::run(argc, argv, results);
  } catch (const inspect::error& error) {
    chnsw_tool::tell(error);
    return chnsw_tool::exit_code_of(error);
  } catch (const std::exception& error) {
    chnsw_tool::notice(fmt::format("failed: {}", error.what()));
    return chnsw_tool::kPlatform;
  }
}
