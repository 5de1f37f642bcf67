set(ZEL_WINDOWS_MACHINE x86)
include(${CMAKE_CURRENT_LIST_DIR}/toolchain.cmake)
