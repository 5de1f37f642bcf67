# How every target of the project is compiled.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()
set(CMAKE_CXX_FLAGS_RELEASE "-O3 -DNDEBUG")
# The sanitizer builds keep their asserts: they exist to find faults.
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O2 -g")

# The floating-point contract: single- and double-precision steps give the same bits at every
# optimisation level, so products and sums are never fused.
add_compile_options(-ffp-contract=off)
# Log lines and assert texts name files from the source folder on, never a machine's path.
# Of two that fit, g++ takes the one that it was given last.
add_compile_options("-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=" "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/src/=")

add_compile_options(-Wall -Wextra -Wshadow "$<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor;-Woverloaded-virtual>"
  -Wcast-align)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  # Some classes keep fields that belong to their layout and that no step reads.
  add_compile_options(-Wno-unused-private-field)
endif()
if(ZEL_WERROR)
  add_compile_options(-Werror)
endif()
if(ZEL_SANITIZE)
  add_compile_options(-fsanitize=${ZEL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ZEL_SANITIZE})
endif()
