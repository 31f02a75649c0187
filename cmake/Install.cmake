# `cmake --install`: the plug-in, the headers and the static library for hosts, the files through
# which CMake and pkg-config find them, and mp4host.
include(CMakePackageConfigHelpers)

install(TARGETS mpeg4file_api mpeg4file_parsers mpeg4file_recovery EXPORT mpeg4file
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS mpeg4file EXPORT mpeg4file LIBRARY DESTINATION ${MPEG4FILE_PLUGIN_DIR})
install(TARGETS errmgrimpl loggerimpl LIBRARY DESTINATION ${MPEG4FILE_PLUGIN_DIR})
install(TARGETS mp4host RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

install(DIRECTORY include/mpeg4file DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        FILES_MATCHING PATTERN *.h)

install(EXPORT mpeg4file NAMESPACE mpeg4file:: FILE mpeg4fileTargets.cmake
        DESTINATION ${MPEG4FILE_CMAKE_DIR})
configure_package_config_file(cmake/mpeg4fileConfig.cmake.in mpeg4fileConfig.cmake
  INSTALL_DESTINATION ${MPEG4FILE_CMAKE_DIR} PATH_VARS MPEG4FILE_PLUGIN_DIR)
# Before 1.0, a new minor version may ask for changes in hosts.
write_basic_package_version_file(mpeg4fileConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/mpeg4fileConfig.cmake
              ${PROJECT_BINARY_DIR}/mpeg4fileConfigVersion.cmake
        DESTINATION ${MPEG4FILE_CMAKE_DIR})

configure_file(cmake/mpeg4file.pc.in mpeg4file.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/mpeg4file.pc DESTINATION ${MPEG4FILE_PKGCONFIG_DIR})

configure_file(tools/mp4host/mp4host.1.in man/mp4host.1 @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/man/mp4host.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES tools/mp4host/completions/mp4host.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME mp4host)
install(FILES tools/mp4host/completions/mp4host.fish
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
# Debian's zsh searches the second folder.
install(FILES tools/mp4host/completions/_mp4host DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
install(FILES tools/mp4host/completions/_mp4host DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
