# What `cmake --install` adds beside the libraries and programs, and the .deb CPack makes of
# the whole installation (`cpack --config <build>/CPackConfig.cmake`).

# The bundled pack the programs start on: an installed program finds it at
# <prefix>/share/koqdde/sample, beside its own bin/. Databases are built from the .sql sources
# in the per-user copy, so none is installed, nor what a program run on the source tree's pack
# may have left in it (lock files, backups, the current-configuration record).
install(DIRECTORY ${PROJECT_SOURCE_DIR}/data/sample/
  DESTINATION ${CMAKE_INSTALL_DATADIR}/koqdde/sample
  PATTERN "*.db" EXCLUDE PATTERN ".*" EXCLUDE PATTERN "*.bak" EXCLUDE
  PATTERN "SysRegedit.ini" EXCLUDE)

set(KOQDDE_PACKAGE_MAINTAINER "KoQdDeConfig maintainers <maintainers@koqdde.example>"
  CACHE STRING "Maintainer field of the .deb")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME koqdde)
set(CPACK_PACKAGE_VENDOR "KoQdDeConfig maintainers")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
  "auto-apply configuration of bill and quota items for building-services take-off")
set(CPACK_PACKAGE_DESCRIPTION
  "The configurations that give each category of building-services component its bill
items and quota items: the command-line tool koqdde, the desktop program
koqdde-workbench with a sample data pack, and the libraries KoQdDeConfigCore (no Qt)
and KoQdDeConfig (the workbench and dialogs) with their headers and CMake package.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${KOQDDE_PACKAGE_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# The run-time libraries come from what the binaries are linked against.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The workbench's Chinese needs a CJK font to be read; the headers need the development
# packages of what they name.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-noto-cjk")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "libpugixml-dev, qt6-base-dev")
include(CPack)
