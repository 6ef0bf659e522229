# What every target of the project is compiled with. Warnings are errors, with g++ and clang++ alike.

set(CMAKE_C_STANDARD 11)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_LINK_DEPENDS_NO_SHARED ON)

# The library and the tool lie side by side at the top of the build folder.
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})

add_compile_options(
  -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wsign-conversion -Wformat=2 -Wundef -Wcast-qual -Wvla
  -Wimplicit-fallthrough $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor> $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast>
  $<$<COMPILE_LANGUAGE:C>:-Wstrict-prototypes> $<$<CXX_COMPILER_ID:GNU>:-Wcast-align=strict>
  $<$<CXX_COMPILER_ID:Clang>:-Wcast-align>)

# No path of the building machine in what is built. The last map that fits wins.
set(path_maps -ffile-prefix-map=${PROJECT_SOURCE_DIR}/= -ffile-prefix-map=${PROJECT_BINARY_DIR}=build)
add_compile_options(${path_maps})

set(CHNSW_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize= takes them")
if(CHNSW_SANITIZE)
  # Checks that ask for RTTI, which the library lacks, and of a program in C for the C++ run time.
  set(without vptr $<$<CXX_COMPILER_ID:Clang>:function>)
  add_compile_options(-fsanitize=${CHNSW_SANITIZE} "-fno-sanitize=$<JOIN:${without},$<COMMA>>" -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${CHNSW_SANITIZE})
endif()

# What the tests reach is counted in the build that has the sanitizers, and the fuzz targets run in it: what is shipped is compiled
# once for all three.
option(CHNSW_CHECKED "Count what the tests reach, and build the fuzz targets for libFuzzer; for clang" OFF)
if(CHNSW_CHECKED)
  add_link_options(-fprofile-instr-generate)
endif()

# check_what_runs(<target> [<option>...]): of what is shipped, with these options besides. Counts are written when a process ends, and when it unloads a library.
function(check_what_runs target)
  if(CHNSW_CHECKED)
    target_compile_options(${target} PRIVATE ${ARGN} -fprofile-instr-generate -fcoverage-mapping -fcoverage-compilation-dir=.
                                             -fsanitize=fuzzer-no-link)
  endif()
endfunction()

# share_headers(<target> <header>...): of what is shipped; compiles these once for all of a target's sources, for which a compiler
# takes up to half of its time. Not where it is compiled to be shipped: there every file is held to what it includes, and to every
# warning; g++ forgets with a compiled header that the C++ library turns three false ones off for its own code.
function(share_headers target)
  if(CHNSW_CHECKED OR CMAKE_CROSSCOMPILING)
    target_precompile_headers(${target} PRIVATE ${ARGN})
    set(forgotten -Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread)
    target_compile_options(${target} PRIVATE "$<$<CXX_COMPILER_ID:GNU>:${forgotten}>")
  endif()
endfunction()
