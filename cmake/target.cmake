# The switch's processor: 32-bit big-endian PowerPC.

set(CMAKE_SYSTEM_PROCESSOR powerpc)
set(chnsw_emulator qemu-ppc)
include(${CMAKE_CURRENT_LIST_DIR}/emulated.cmake)

set(CMAKE_CXX_STANDARD_LIBRARIES -latomic) # 64-bit atomics
# The processor traps on words at odd addresses, which the emulator does not.
set(CMAKE_C_FLAGS_INIT -mstrict-align)
set(CMAKE_CXX_FLAGS_INIT -mstrict-align)
