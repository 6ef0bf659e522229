// A command as it describes itself: its words, its options, its help and what runs it. The command line, the help and the
// completion are made from this description alone.
#ifndef CHNSW_COMMAND_H
#define CHNSW_COMMAND_H

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "command_context.h"
#include "exit_code.h"

namespace chnsw_tool {

// A word that follows a command, or an option. Values are not looked into here but for choices and ranges: the command itself
// says what is wrong with them.
struct argument {
  // Where the value goes; it must live as long as the command does. A flag has a bool.
  using target = std::variant<bool*, std::string*, std::optional<std::string>*, std::vector<std::string>*, double*,
                              uint32_t*, uint64_t*>;
  // What completion offers, by the words that stand before in the same command.
  using candidates = std::function<std::vector<std::string>(std::span<const std::string> words)>;

  std::string name; // "WHAT" of a word, "--vsan" of an option
  target value;
  std::string what;       // in the help
  std::string value_name; // of an option's value, in the help
  bool is_required = false;
  bool takes_many = false; // words up to the next option; else one
  bool is_path = false;
  std::vector<std::string> choices; // the only values; empty: any
  double lowest = 0;                // of a number
  double highest = 0;
  std::string excludes; // an option of the same command that may not be given with it
  std::string needs;    // one that must be
  std::string variable; // of the environment, for when it is not given
  candidates offered;

  bool is_option() const { return name.starts_with('-'); }
  bool is_flag() const { return std::holds_alternative<bool*>(value); }

  // Each returns the argument with one thing more said about it.
  argument one_of(std::vector<std::string> values) &&;
  argument between(double first, double last) &&;
  argument path() &&;
  argument single() &&; // one word, also where the target holds many
  argument without(std::string other) &&;
  argument only_with(std::string other) &&;
  argument or_variable(std::string name_of_variable) &&;
  argument offering(std::vector<std::string> words) &&;
  argument offering(candidates words) &&;
};

argument word(std::string name, argument::target value, std::string what);          // must be given
argument optional_word(std::string name, argument::target value, std::string what); // may be left out
argument option(std::string name, std::string value_name, argument::target value, std::string what);
argument flag(std::string name, bool* value, std::string what);

struct command {
  std::string name;
  std::string what;     // in the list of commands
  std::string examples; // lines, each indented by two blanks
  std::vector<argument> arguments;
  // Runs the command with the values of its arguments. Of one with parts: without any of them; empty when one must follow.
  std::function<exit_code(const command_context&)> run;
  std::vector<command> parts; // commands that may follow it, as "port" does "set"
};

// The function that runs a command with its options.
template <typename options>
std::function<exit_code(const command_context&)> runs(exit_code (*function)(const command_context&, const options&),
                                                      std::shared_ptr<options> with) {
  return [function, with](const command_context& context) { return function(context, *with); };
}

// ---- What several commands take ----

inline constexpr char kHexadecimalDigits[] = "Bare digits are hexadecimal.";
inline constexpr char kDecimalDigits[] = "Bare digits are decimal; 0x makes them hexadecimal.";

argument interfaces_word(std::vector<std::string>* interfaces); // "IF"
argument vsans_word(std::string* vsans);                        // "VSANS"
argument timeout_option(double* seconds);                       // for each of the manager's messages
// How often something is done before the command ends; 0: until interrupted.
argument count_option(uint64_t* count, std::string what);

// All of them, in the order in which the help lists them.
std::vector<command> all_commands();

} // namespace chnsw_tool

#endif
