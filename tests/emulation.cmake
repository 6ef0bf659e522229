# Tests of another processor than the building machine's: their programs run under CMAKE_CROSSCOMPILING_EMULATOR.

# What is tested is compiled as it is shipped. The tests themselves are many and run once, but for the model of the port map and
# what is under it.
add_compile_options(-O0 -g0)
function(optimise_for_emulation)
  foreach(program IN ITEMS port_map_model_tests programmable_platform)
    target_compile_options(${program} PRIVATE -O2)
  endforeach()
endfunction()

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

# What the emulator cannot do.
set(not_under_emulation
)

# A test that was renamed is not excluded any more, and its line has gone stale.
foreach(test IN LISTS not_under_emulation)
  string(REPLACE "." ", " macro_arguments ${test})
  execute_process(COMMAND grep -rqF "(${macro_arguments})" --include=*_test.cc ${CMAKE_CURRENT_SOURCE_DIR}
                  RESULT_VARIABLE absent)
  if(absent)
    message(FATAL_ERROR "tests/emulation.cmake excludes ${test}, which is no test")
  endif()
endforeach()

# emulate_tests(<program> <name> <filter> [<property> <value>]...)
function(emulate_tests program name filter)
  list(JOIN not_under_emulation ":" excluded)
  get_target_property(sources ${program} SOURCES)
  list(LENGTH sources count)
  if(count GREATER 4)
    target_precompile_headers(${program} PRIVATE <gmock/gmock.h>)
  endif()
  if(count GREATER 12) # takes long enough for two of them, side by side
    foreach(half IN ITEMS 0 1)
      add_test(NAME ${name}_${half} COMMAND ${program} --gtest_brief=1 --gtest_filter=${filter}-${excluded})
      set_tests_properties(${name}_${half} PROPERTIES COST 1 ENVIRONMENT "GTEST_TOTAL_SHARDS=2;GTEST_SHARD_INDEX=${half}"
                                                      TIMEOUT 900 ${ARGN})
    endforeach()
    return()
  endif()
  add_test(NAME ${name} COMMAND ${program} --gtest_brief=1 --gtest_filter=${filter}-${excluded})
  set_tests_properties(${name} PROPERTIES TIMEOUT 900 ${ARGN})
endfunction()
