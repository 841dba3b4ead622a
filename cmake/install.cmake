# SPDX-License-Identifier: MIT
# What an installed library consists of: headers, archive, a package for CMake, one for pkg-config.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/csr_matrix_mod)

install(
  TARGETS csr_matrix_mod
  EXPORT csr_matrix_mod
  FILE_SET HEADERS)
install(
  EXPORT csr_matrix_mod
  NAMESPACE csr_matrix_mod::
  DESTINATION ${package_folder}
  FILE csr_matrix_mod-config.cmake)

# Nothing is promised between minor versions before 1.0.
set(compatibility SameMajorVersion)
if(PROJECT_VERSION_MAJOR EQUAL 0)
  set(compatibility SameMinorVersion)
endif()
write_basic_package_version_file(csr_matrix_mod-config-version.cmake
                                 COMPATIBILITY ${compatibility})
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/csr_matrix_mod-config-version.cmake
        DESTINATION ${package_folder})

# An installed tree may be moved, so pkg-config finds all else from where its own file stands.
file(RELATIVE_PATH includedir_from_pkgconfig
     ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_FULL_INCLUDEDIR})
configure_file(cmake/csr_matrix_mod.pc.in csr_matrix_mod.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/csr_matrix_mod.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
