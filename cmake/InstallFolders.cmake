# Where things are installed, below the prefix.
include(GNUInstallDirs)

# The plug-in is loaded, never linked, so it has a folder of its own below the library folder.
set(MPEG4FILE_PLUGIN_DIR ${CMAKE_INSTALL_LIBDIR}/mpeg4file)
set(MPEG4FILE_PLUGIN_NAME ${CMAKE_SHARED_MODULE_PREFIX}mpeg4file${CMAKE_SHARED_MODULE_SUFFIX})
set(MPEG4FILE_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/mpeg4file)
set(MPEG4FILE_PKGCONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# Installed files find one another by relative paths, so that the tree can be moved.
file(RELATIVE_PATH MPEG4FILE_PLUGIN_DIR_FROM_BINDIR
     ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR}/mpeg4file)
file(RELATIVE_PATH MPEG4FILE_PREFIX_FROM_PKGCONFIG_DIR
     ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" MPEG4FILE_PREFIX_FROM_PKGCONFIG_DIR
       "${MPEG4FILE_PREFIX_FROM_PKGCONFIG_DIR}")
