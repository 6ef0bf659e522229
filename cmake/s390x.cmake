# A 64-bit big-endian processor, which no switch has: tells what depends on the byte order from what depends on the word size.

set(CMAKE_SYSTEM_PROCESSOR s390x)
set(chnsw_emulator qemu-s390x)
include(${CMAKE_CURRENT_LIST_DIR}/emulated.cmake)
