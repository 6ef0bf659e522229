// What every command is given.
#include "command_context.h"

#include <fmt/format.h>

#include <cstdio>

#include "exit_code.h"

namespace chnsw_tool {

const std::string& command_context::named_switch() const {
  if (switch_path.empty())
    throw inspect::question_error(
        "no switch is named; name a chassis file or a switch's folder with --switch PATH or in CHNSW_SWITCH");
  return switch_path;
}

const std::string& command_context::named_folder(const std::string& reason) const {
  const std::string& path = named_switch();
  if (!inspect::is_folder(path)) {
    inspect::opened_switch opened = inspect::open_switch(path);
    throw inspect::question_error(fmt::format("{} is a chassis file: {}", opened.path, reason));
  }
  return path;
}

const std::string& managed_folder(const command_context& context) {
  return context.named_folder("a manager serves a switch's folder (chnsw create)");
}

void notice(const std::string& text) {
  std::fputs(fmt::format("chnsw: {}\n", text).c_str(), stderr); // a full disk does not end the command
}

} // namespace chnsw_tool
