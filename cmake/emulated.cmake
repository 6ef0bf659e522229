# Another processor than this machine's, CMAKE_SYSTEM_PROCESSOR: Debian's cross compiler, and the libraries of
# scripts/target-sysroot. Programs run under chnsw_emulator.

set(CMAKE_SYSTEM_NAME Linux)
set(triplet ${CMAKE_SYSTEM_PROCESSOR}-linux-gnu)
set(CMAKE_C_COMPILER ${triplet}-gcc)
set(CMAKE_CXX_COMPILER ${triplet}-g++)

if(NOT DEFINED CHNSW_TARGET_SYSROOT)
  execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/../scripts/target-sysroot ${CMAKE_SYSTEM_PROCESSOR}
                  OUTPUT_VARIABLE CHNSW_TARGET_SYSROOT OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(CHNSW_TARGET_SYSROOT ${CHNSW_TARGET_SYSROOT} CACHE PATH "Libraries of the other processor")
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CHNSW_TARGET_SYSROOT)

# Debian's own libraries lie where they do on a machine of that processor, cross-built ones do not.
set(debian_libraries ${CHNSW_TARGET_SYSROOT}/usr/lib/${triplet})

# CMAKE_SYSROOT would hide the cross compiler's own C library.
set(CMAKE_FIND_ROOT_PATH ${CHNSW_TARGET_SYSROOT} /usr/${triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_PREFIX_PATH ${CHNSW_TARGET_SYSROOT} ${debian_libraries})
set(ENV{PKG_CONFIG_LIBDIR} ${CHNSW_TARGET_SYSROOT}/lib/pkgconfig:${debian_libraries}/pkgconfig)

set(CMAKE_CROSSCOMPILING_EMULATOR ${chnsw_emulator} -L ${CHNSW_TARGET_SYSROOT})
# What GLib itself needs.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,-rpath-link,${CHNSW_TARGET_SYSROOT}/lib:${debian_libraries}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${CMAKE_EXE_LINKER_FLAGS_INIT}")
