// manager_process FOLDER PATIENCE_MS: the manager of a switch, until SIGTERM or SIGINT. Says "ready" when it serves; logs
// to standard error.
#include <signal.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <vswitch/manager/manager.h>
#include <vswitch/switch_store.h>
#include <vswitch/vswitch.h>

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace {

int descriptor_of_stop_signals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGTERM);
  sigaddset(&signals, SIGINT);
  sigprocmask(SIG_BLOCK, &signals, nullptr);
  return signalfd(-1, &signals, SFD_CLOEXEC);
}

void say_ready() {
  std::puts("ready");
  std::fflush(stdout);
}

void run(const char* folder, int patience_ms) {
  vswitch::use_switch(vswitch::switch_store::open(folder));
  vswitch::manager_options options;
  options.stop_descriptor = descriptor_of_stop_signals();
  options.swap_patience_ms = patience_ms;
  options.ready = say_ready;
  options.log = [](const vswitch::manager_event& event) { std::fprintf(stderr, "%s\n", text_of(event).c_str()); };
  vswitch::run_manager(options);
}

} // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  try {
    run(argv[1], std::atoi(argv[2]));
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
