# What is known of a switch's processor is that it has 32 bits and is big-endian. PowerPC, which can be emulated here, stands in
# for it.

set(CMAKE_SYSTEM_PROCESSOR powerpc)
set(chnsw_emulator qemu-ppc)
include(${CMAKE_CURRENT_LIST_DIR}/emulated.cmake)

set(CMAKE_CXX_STANDARD_LIBRARIES -latomic) # 64-bit atomics
# A switch's processor may trap on words at odd addresses; the emulator does not.
set(CMAKE_C_FLAGS_INIT -mstrict-align)
set(CMAKE_CXX_FLAGS_INIT -mstrict-align)
