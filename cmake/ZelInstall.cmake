# What `cmake --install` puts where. The zel command and its man page add themselves in host/, the assets in tools/
# and assets/.
include(CMakePackageConfigHelpers)

set(ZEL_INSTALL_INCLUDE ${CMAKE_INSTALL_INCLUDEDIR}/zel_effects)
set(ZEL_INSTALL_PACKAGE ${CMAKE_INSTALL_LIBDIR}/cmake/zel_effects)

install(TARGETS zel_effects zel_face_points zel_gl_context EXPORT zel_effects_targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/zel_effects/ DESTINATION ${ZEL_INSTALL_INCLUDE})

# find_package(zel_effects)
install(EXPORT zel_effects_targets NAMESPACE zel_effects:: FILE zel_effectsTargets.cmake
  DESTINATION ${ZEL_INSTALL_PACKAGE})
configure_package_config_file(cmake/zel_effectsConfig.cmake.in ${PROJECT_BINARY_DIR}/zel_effectsConfig.cmake
  INSTALL_DESTINATION ${ZEL_INSTALL_PACKAGE} PATH_VARS ZEL_INSTALL_ASSETS NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zel_effectsConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zel_effectsConfig.cmake ${PROJECT_BINARY_DIR}/zel_effectsConfigVersion.cmake
  DESTINATION ${ZEL_INSTALL_PACKAGE})
if(NOT PROJECT_IS_TOP_LEVEL)
  # add_subdirectory and FetchContent give the same variable: the assets that the build makes.
  set(zel_effects_ASSETS ${PROJECT_BINARY_DIR}/assets PARENT_SCOPE)
endif()

# pkg-config zel_effects: all three libraries. The paths count from the file itself, so the tree may be moved.
file(RELATIVE_PATH ZEL_PREFIX_FROM_PC "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(cmake/zel_effects.pc.in zel_effects.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zel_effects.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
