# Tests of another processor than the building machine's: their programs run under CMAKE_CROSSCOMPILING_EMULATOR. No test is
# left out by its name; which folders are, and why, tests/CMakeLists.txt says.

add_compile_options(-g0) # nobody debugs here

# Programs that tests start by themselves are started by scripts of the same names, since the system cannot.
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

# emulate_tests(<program> <name> <filter> [<property> <value>]...)
function(emulate_tests program name filter)
  get_target_property(sources ${program} SOURCES)
  list(LENGTH sources count)
  if(count GREATER 12) # takes long enough for two of them, side by side
    foreach(half IN ITEMS 0 1)
      add_test(NAME ${name}_${half} COMMAND ${program} --gtest_brief=1 --gtest_filter=${filter})
      set_tests_properties(${name}_${half} PROPERTIES COST 1 ENVIRONMENT "GTEST_TOTAL_SHARDS=2;GTEST_SHARD_INDEX=${half}"
                                                      TIMEOUT 900 ${ARGN})
    endforeach()
    return()
  endif()
  add_test(NAME ${name} COMMAND ${program} --gtest_brief=1 --gtest_filter=${filter})
  set_tests_properties(${name} PROPERTIES TIMEOUT 900 ${ARGN})
endfunction()
