# Tests of another processor than the building machine's: their programs run under CMAKE_CROSSCOMPILING_EMULATOR. No test is
# left out by its name; which folders are, and why, tests/CMakeLists.txt says.

add_compile_options(-g0) # nobody debugs here

# Programs of another processor that a test starts: the system cannot, so a script of the same name runs them in the emulator.
set(command_folder ${PROJECT_BINARY_DIR}/tests/commands)

# emulate_command(<variable> <program>): the path of such a script.
function(emulate_command variable program)
  list(JOIN CMAKE_CROSSCOMPILING_EMULATOR " " emulator)
  set(path ${command_folder}/${program})
  file(GENERATE OUTPUT ${path} CONTENT "#!/bin/sh\nexec ${emulator} $<TARGET_FILE:${program}> \"$@\"\n"
       FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
  set(${variable} ${path} PARENT_SCOPE)
endfunction()

# What such a program is to preload, which the emulator itself could not.
set(preload_variable QEMU_SET_ENV=LD_PRELOAD)
