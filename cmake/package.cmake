# What is installed: headers, the libraries with pkg-config files and a CMake package, the tool with its man page and
# completion, the examples.
include(CMakePackageConfigHelpers)

set(headers ${CMAKE_INSTALL_INCLUDEDIR}/chnsw)
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/libchnsw)

install(FILES feature/ficon/libchnsw/libchnsw.h DESTINATION ${headers})
install(DIRECTORY platform/include/platform DESTINATION ${headers})
target_include_directories(platform INTERFACE $<INSTALL_INTERFACE:${headers}>)

install(TARGETS platform chnsw_headers libchnsw libvswitch libchar_convert EXPORT libchnsw)
install(TARGETS chnsw)
install(EXPORT libchnsw NAMESPACE libchnsw:: FILE libchnsw-targets.cmake DESTINATION ${package})
configure_package_config_file(cmake/libchnsw-config.cmake.in ${PROJECT_BINARY_DIR}/libchnsw-config.cmake
                              INSTALL_DESTINATION ${package})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/libchnsw-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/libchnsw-config.cmake ${PROJECT_BINARY_DIR}/libchnsw-config-version.cmake
        DESTINATION ${package})

# A prefix that can be moved, or named at installation.
file(RELATIVE_PATH from_pkgconfig_to_prefix /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
foreach(library IN ITEMS libchnsw libvswitch)
  configure_file(cmake/${library}.pc.in ${PROJECT_BINARY_DIR}/${library}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

install(FILES docs/man/chnsw.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES tools/chnsw/chnsw.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME chnsw)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DATADIR}/chnsw)
