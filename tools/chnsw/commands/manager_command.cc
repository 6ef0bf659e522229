// manager: serves one switch until it is interrupted.
#include "commands/manager_command.h"

#include <fmt/format.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <string>

#include "interruption.h"
#include "vswitch/manager/manager.h"
#include "vswitch/vswitch.h"

namespace chnsw_tool {

namespace {

struct manager_command_options {
  std::string folder; // empty: the switch that the context names
};

// The log on standard error. The manager waits for nobody, so a line that finds no room, or a full disk, is counted and left out.
class manager_log {
 public:
  void add(const vswitch::manager_event& event) {
    std::string text = vswitch::text_of(event) + "\n";
    if (left_out_ != 0) text = fmt::format("{} lines left out\n", left_out_) + text;
    if (write_out(text))
      left_out_ = 0;
    else
      ++left_out_;
  }

 private:
  static bool write_out(const std::string& text) {
    pollfd state{STDERR_FILENO, POLLOUT, 0};
    if (poll(&state, 1, 0) != 1 || (state.revents & POLLOUT) == 0) return false;
    ssize_t written = 0;
    do written = write(STDERR_FILENO, text.data(), text.size());
    while (written < 0 && errno == EINTR);
    return written == static_cast<ssize_t>(text.size());
  }

  uint64_t left_out_ = 0;
};

exit_code serve_folder(const command_context& context, const manager_command_options& options) {
  const command_context served{context.results, context.style,
                               options.folder.empty() ? context.switch_path : options.folder};
  const std::string& folder = served.named_folder("a manager serves a switch's folder (chnsw create)");
  const interruption stop;
  vswitch::manager_options manager;
  manager.stop_descriptor = stop.descriptor();
  manager.ready = [&folder] { notice(fmt::format("serving {}; an interrupt ends it", folder)); };
  manager_log log;
  manager.log = [&log](const vswitch::manager_event& event) { log.add(event); };
  try {
    vswitch::use_switch(vswitch::switch_store::open(folder));
    vswitch::run_manager(manager);
  } catch (const vswitch::switch_error& error) {
    throw inspect::platform_error(error.what());
  }
  notice("ended");
  return kFound;
}

} // namespace

command manager_command() {
  auto options = std::make_shared<manager_command_options>();
  return {.name = "manager",
          .what = "Be the FICON manager of a switch's folder, until interrupted",
          .examples = "  chnsw manager /tmp/director\n  chnsw manager /tmp/director 2> manager.log &",
          .arguments =
              {optional_word("FOLDER", &options->folder, "Folder of the switch; the one of --switch when left out").path()},
          .run = runs(serve_folder, options),
          .parts = {}};
}

} // namespace chnsw_tool
