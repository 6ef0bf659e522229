// manager: serves one switch until it is interrupted.
#include "manager_command.h"

#include <fmt/format.h>

#include "interruption.h"
#include "manager/manager.h"
#include "vswitch.h"

namespace chnsw_tool {

exit_code serve_folder(const command_context& context, const manager_command_options& options) {
  const command_context served{context.results, context.style,
                               options.folder.empty() ? context.switch_path : options.folder};
  const std::string& folder = served.named_folder("a manager serves a switch's folder (chnsw create)");
  const interruption stop;
  vswitch::manager_options manager;
  manager.stop_descriptor = stop.descriptor();
  manager.ready = [&folder] { notice(fmt::format("serving {}; an interrupt ends it", folder)); };
  manager.log = [](const vswitch::manager_event& event) { fmt::print(stderr, "{}\n", vswitch::text_of(event)); };
  try {
    vswitch::use_switch(vswitch::switch_store::open(folder));
    vswitch::run_manager(manager);
  } catch (const vswitch::switch_error& error) {
    throw platform_error(error.what());
  }
  notice("ended");
  return kFound;
}

} // namespace chnsw_tool
