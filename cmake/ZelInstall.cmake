# What `cmake --install` puts where. The zel command and its man page add themselves in cli/, the assets in tools/
# and assets/.
include(CMakePackageConfigHelpers)

# One library for other people's programs: find_package(PACKAGE) with the targets of the export set PACKAGE_targets,
# and pkg-config PACKAGE. Neither knows the folder that it was installed to, so the tree may be moved.
#   zelInstallPackage(PACKAGE DESCRIPTION text INCLUDE folder TARGETS name...)
function(zelInstallPackage package)
  cmake_parse_arguments(PARSE_ARGV 1 ZEL_PC "" "DESCRIPTION;INCLUDE" "TARGETS")
  set(folder ${CMAKE_INSTALL_LIBDIR}/cmake/${package})
  install(EXPORT ${package}_targets NAMESPACE ${package}:: FILE ${package}Targets.cmake DESTINATION ${folder})
  list(TRANSFORM ZEL_PC_TARGETS PREPEND ${package}:: OUTPUT_VARIABLE targets)
  list(JOIN targets ", " ZEL_PACKAGE_TARGETS)
  configure_package_config_file(cmake/packageConfig.cmake.in ${PROJECT_BINARY_DIR}/${package}Config.cmake
    INSTALL_DESTINATION ${folder} PATH_VARS ZEL_INSTALL_ASSETS NO_CHECK_REQUIRED_COMPONENTS_MACRO)
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/${package}ConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
  install(FILES ${PROJECT_BINARY_DIR}/${package}Config.cmake ${PROJECT_BINARY_DIR}/${package}ConfigVersion.cmake
    DESTINATION ${folder})

  file(RELATIVE_PATH ZEL_PREFIX_FROM_PC "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
  list(TRANSFORM ZEL_PC_TARGETS PREPEND -l OUTPUT_VARIABLE libraries)
  list(JOIN libraries " " ZEL_PC_LIBRARIES)
  configure_file(cmake/package.pc.in ${package}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${package}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

  if(NOT PROJECT_IS_TOP_LEVEL)
    # add_subdirectory and FetchContent give the same variable: the assets that the build makes.
    set(${package}_ASSETS ${PROJECT_BINARY_DIR}/assets CACHE INTERNAL "Assets of ${package}")
  endif()
endfunction()

# The C++ operations.
set(ZEL_INSTALL_INCLUDE ${CMAKE_INSTALL_INCLUDEDIR}/zel_effects)
install(TARGETS zel_effects zel_face_points zel_gl_context EXPORT zel_effects_targets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/zel_effects/ DESTINATION ${ZEL_INSTALL_INCLUDE})
zelInstallPackage(zel_effects DESCRIPTION "${PROJECT_DESCRIPTION}" INCLUDE ${ZEL_INSTALL_INCLUDE}
  TARGETS zel_effects zel_face_points zel_gl_context)

# The C interface.
if(ZEL_BUILD_INTERFACE)
  install(TARGETS libzel EXPORT zel_targets RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(DIRECTORY include/zel/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zel)
  zelInstallPackage(zel DESCRIPTION "Portrait effects for any program, through C functions"
    INCLUDE ${CMAKE_INSTALL_INCLUDEDIR} TARGETS zel)
endif()
