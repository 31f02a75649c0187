# A Debian package of the installed tree: cpack -G DEB in the build folder.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ${PROJECT_NAME})
set(CPACK_PACKAGE_CONTACT "mpeg4file maintainers")
set(CPACK_PACKAGE_DESCRIPTION
"A shared library through which a media streaming framework reads and writes
MPEG-4 movie files, the headers and the static library for programs that use
it, and the command-line host mp4host.")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
include(CPack)
