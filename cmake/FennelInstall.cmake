# SPDX-License-Identifier: LGPL-2.1-or-later
# How other projects find the two libraries: a CMake package and a pkg-config file each.
include(CMakePackageConfigHelpers)

set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/FennelEas")
install(EXPORT FennelEasTargets NAMESPACE FennelEas:: DESTINATION "${package_folder}")
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/FennelEasConfig.cmake.in"
    "${CMAKE_BINARY_DIR}/FennelEasConfig.cmake" INSTALL_DESTINATION "${package_folder}")
write_basic_package_version_file("${CMAKE_BINARY_DIR}/FennelEasConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_BINARY_DIR}/FennelEasConfig.cmake" "${CMAKE_BINARY_DIR}/FennelEasConfigVersion.cmake"
    DESTINATION "${package_folder}")

foreach(library fennel-eas fennel-eas-common)
    configure_file("${CMAKE_CURRENT_LIST_DIR}/${library}.pc.in" "${CMAKE_BINARY_DIR}/${library}.pc" @ONLY)
    install(FILES "${CMAKE_BINARY_DIR}/${library}.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
endforeach()
