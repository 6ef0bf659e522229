# The switch's processor: 32-bit big-endian PowerPC, with what scripts/target-sysroot built. Programs run under emulation.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR powerpc)
set(CMAKE_C_COMPILER powerpc-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER powerpc-linux-gnu-g++)

if(NOT DEFINED CHNSW_TARGET_SYSROOT)
  execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/../scripts/target-sysroot OUTPUT_VARIABLE CHNSW_TARGET_SYSROOT
                  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(CHNSW_TARGET_SYSROOT ${CHNSW_TARGET_SYSROOT} CACHE PATH "Cross-built libraries")
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CHNSW_TARGET_SYSROOT)

# CMAKE_SYSROOT would hide the cross compiler's own C library.
set(CMAKE_FIND_ROOT_PATH ${CHNSW_TARGET_SYSROOT} /usr/powerpc-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_PREFIX_PATH ${CHNSW_TARGET_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR} ${CHNSW_TARGET_SYSROOT}/lib/pkgconfig)

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-ppc -L ${CHNSW_TARGET_SYSROOT})
set(CMAKE_CXX_STANDARD_LIBRARIES -latomic) # 64-bit atomics
set(CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,-rpath-link,${CHNSW_TARGET_SYSROOT}/lib") # what GLib itself needs
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${CMAKE_EXE_LINKER_FLAGS_INIT}")
# The processor traps on words at odd addresses, which the emulator does not.
set(CMAKE_C_FLAGS_INIT -mstrict-align)
set(CMAKE_CXX_FLAGS_INIT -mstrict-align)
