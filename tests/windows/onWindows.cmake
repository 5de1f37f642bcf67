# What of the tests runs on Windows: all that does not need POSIX itself, or a library that is built for this machine
# alone. Read by tests/CMakeLists.txt.
add_compile_options("$<$<COMPILE_LANGUAGE:CXX>:SHELL:-include ${CMAKE_CURRENT_SOURCE_DIR}/windows/posix/posixNames.h>")
include_directories(BEFORE SYSTEM ${CMAKE_CURRENT_SOURCE_DIR}/windows/posix)
set(ZEL_TESTS_FOR_POSIX
  aesTest.cpp              # compares with OpenSSL
  convolutionTest.cpp      # takes the system's threads away
  damagedFilesTest.cpp     # has the allocator give dirty memory
  hostStateTest.cpp        # makes contexts by EGL
  logTest.cpp              # opens a terminal
  memoryReserveTest.cpp    # takes a child process's memory away
  noDriverTest.cpp         # takes EGL's driver away
  outcomeTest.cpp          # makes contexts by EGL
  parallelRowsTest.cpp     # takes the system's threads away
  processorCountTest.cpp   # takes processors away
  scalersTest.cpp          # takes the system's threads away
  sharedBlocksTest.cpp     # takes a child process's memory away
  sizeLimitTest.cpp        # takes a child process's memory away
  stbImageUtilTest.cpp     # reads pipes and devices
  zelFileUtilsTest.cpp)    # reads pipes and devices
