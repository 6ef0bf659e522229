// How a child process that a test forked ends.
#ifndef TEST_SUPPORT_CHILD_END_H
#define TEST_SUPPORT_CHILD_END_H

#include <unistd.h>

// There where what is reached is counted: writes the counts of this process, which otherwise only an exit in good order does.
extern "C" __attribute__((weak)) int __llvm_profile_write_file(void);

// Nothing that the test has set up is undone a second time.
[[noreturn]] inline void end_child(int status) {
  if (__llvm_profile_write_file != nullptr) __llvm_profile_write_file();
  _exit(status);
}

#endif
