# What `cmake --install` puts where. The zel command and its man page add themselves in host/.
include(CMakePackageConfigHelpers)

set(ZEL_INSTALL_INCLUDE ${CMAKE_INSTALL_INCLUDEDIR}/zel_effects)
set(ZEL_INSTALL_PACKAGE ${CMAKE_INSTALL_LIBDIR}/cmake/zel_effects)

install(TARGETS zel_effects zel_face_points zel_gl_context EXPORT zel_effects_targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/zel_effects/ DESTINATION ${ZEL_INSTALL_INCLUDE})

# find_package(zel_effects) gives zel_effects::zel_effects, zel_effects::zel_face_points and
# zel_effects::zel_gl_context.
install(EXPORT zel_effects_targets NAMESPACE zel_effects:: FILE zel_effectsConfig.cmake
  DESTINATION ${ZEL_INSTALL_PACKAGE})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zel_effectsConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zel_effectsConfigVersion.cmake DESTINATION ${ZEL_INSTALL_PACKAGE})

# pkg-config zel_effects: both libraries. The paths count from the file itself, so the tree may be moved.
file(RELATIVE_PATH ZEL_PREFIX_FROM_PC "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(cmake/zel_effects.pc.in zel_effects.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zel_effects.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
