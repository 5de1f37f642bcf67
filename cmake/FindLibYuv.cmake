# The YUV and scaling library, which ships neither a CMake package nor a pkg-config file.
# Gives LibYuv_FOUND and the target LibYuv::yuv. The shared library, because the static one that
# distributions build is not position independent.
find_path(LibYuv_INCLUDE_DIR libyuv.h)
find_library(LibYuv_LIBRARY NAMES yuv)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(LibYuv REQUIRED_VARS LibYuv_LIBRARY LibYuv_INCLUDE_DIR)

if(LibYuv_FOUND AND NOT TARGET LibYuv::yuv)
  add_library(LibYuv::yuv UNKNOWN IMPORTED)
  set_target_properties(LibYuv::yuv PROPERTIES
    IMPORTED_LOCATION "${LibYuv_LIBRARY}" INTERFACE_INCLUDE_DIRECTORIES "${LibYuv_INCLUDE_DIR}")
endif()
mark_as_advanced(LibYuv_INCLUDE_DIR LibYuv_LIBRARY)
