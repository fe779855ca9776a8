# The installed library: headers, what find_package and pkg-config read, and the licence. Nothing of it holds the prefix,
# so that the whole may be moved, and `cmake --install --prefix` may choose another one.
install(TARGETS brindlewort EXPORT BrindlewortTargets)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/brindlewort" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" "${PROJECT_SOURCE_DIR}/CHANGELOG.md" DESTINATION "${CMAKE_INSTALL_DOCDIR}")

set(packages "${CMAKE_INSTALL_LIBDIR}/cmake/Brindlewort")
install(EXPORT BrindlewortTargets NAMESPACE Brindlewort:: DESTINATION "${packages}")
include(CMakePackageConfigHelpers)
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/BrindlewortConfig.cmake.in"
  "${CMAKE_CURRENT_BINARY_DIR}/BrindlewortConfig.cmake" INSTALL_DESTINATION "${packages}")
write_basic_package_version_file("${CMAKE_CURRENT_BINARY_DIR}/BrindlewortConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/BrindlewortConfig.cmake"
  "${CMAKE_CURRENT_BINARY_DIR}/BrindlewortConfigVersion.cmake" DESTINATION "${packages}")

# The ways from the folder of the pkg-config file to the others.
set(pc_folder "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig")
file(RELATIVE_PATH BRINDLEWORT_PC_TO_PREFIX "${pc_folder}" "${CMAKE_INSTALL_PREFIX}")
file(RELATIVE_PATH BRINDLEWORT_PC_TO_INCLUDE "${pc_folder}" "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
configure_file("${PROJECT_SOURCE_DIR}/cmake/brindlewort.pc.in" "${CMAKE_CURRENT_BINARY_DIR}/brindlewort.pc" @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/brindlewort.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
