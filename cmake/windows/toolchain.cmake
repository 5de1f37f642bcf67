# Programs and libraries for Windows, by the compiler with POSIX threads. ZEL_WINDOWS_MACHINE says for which processor;
# ZEL_WINDOWS_DEPENDENCIES, a variable of the environment or of CMake, where scripts/windows keeps what it has built.
set(CMAKE_SYSTEM_NAME Windows)
if(ZEL_WINDOWS_MACHINE STREQUAL "x64")
  set(CMAKE_SYSTEM_PROCESSOR AMD64)
  set(ZEL_WINDOWS_TRIPLE x86_64-w64-mingw32)
else()
  set(CMAKE_SYSTEM_PROCESSOR i686)
  set(ZEL_WINDOWS_TRIPLE i686-w64-mingw32)
  # The arithmetic of 64-bit builds, so that the bytes are the same; and hosts may call with a stack that is aligned
  # to four bytes, less than vector registers want.
  set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
  set(CMAKE_CXX_FLAGS_INIT "${CMAKE_C_FLAGS_INIT}")
  # Where the system lets them, 32-bit programs have four gigabytes of addresses instead of two.
  set(CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,--large-address-aware")
  set(CMAKE_SHARED_LINKER_FLAGS_INIT "-Wl,--large-address-aware")
  set(CMAKE_MODULE_LINKER_FLAGS_INIT "-Wl,--large-address-aware")
endif()
set(CMAKE_C_COMPILER ${ZEL_WINDOWS_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${ZEL_WINDOWS_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${ZEL_WINDOWS_TRIPLE}-windres)

# The compiler's own run-time libraries go into each file, which then needs nothing beside the system's.
string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT " -static")
string(APPEND CMAKE_SHARED_LINKER_FLAGS_INIT " -static")
string(APPEND CMAKE_MODULE_LINKER_FLAGS_INIT " -static")

# The variable of the environment reaches the small projects that CMake tries compilers on; a cached one does not.
if(NOT ZEL_WINDOWS_DEPENDENCIES)
  set(ZEL_WINDOWS_DEPENDENCIES "$ENV{ZEL_WINDOWS_DEPENDENCIES}")
endif()
if(NOT ZEL_WINDOWS_DEPENDENCIES)
  set(ZEL_WINDOWS_DEPENDENCIES "$ENV{XDG_CACHE_HOME}")
  if(NOT ZEL_WINDOWS_DEPENDENCIES)
    set(ZEL_WINDOWS_DEPENDENCIES "$ENV{HOME}/.cache")
  endif()
  string(APPEND ZEL_WINDOWS_DEPENDENCIES "/zel-windows")
endif()
set(ZEL_WINDOWS_PREFIX ${ZEL_WINDOWS_DEPENDENCIES}/${ZEL_WINDOWS_MACHINE})
set(CMAKE_FIND_ROOT_PATH ${ZEL_WINDOWS_PREFIX} /usr/${ZEL_WINDOWS_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# Of this one the distribution has both kinds, and CMake would take the other.
set(ZLIB_LIBRARY /usr/${ZEL_WINDOWS_TRIPLE}/lib/libz.a CACHE FILEPATH "zlib")
set(ENV{PKG_CONFIG_LIBDIR} ${ZEL_WINDOWS_PREFIX}/lib/pkgconfig)
