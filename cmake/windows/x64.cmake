set(ZEL_WINDOWS_MACHINE x64)
include(${CMAKE_CURRENT_LIST_DIR}/toolchain.cmake)
