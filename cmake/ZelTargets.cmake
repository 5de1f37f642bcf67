# Small helpers, so that each folder's list says what it holds and nothing else.

# The sources of one room of the library, listed by name.
function(zelLibrarySources)
  target_sources(zel_core PRIVATE ${ARGN})
endfunction()

# Tests, benchmarks: every folder adds its files to the one program of its kind.
function(zelAddTest)
  foreach(file ${ARGN})
    cmake_path(GET file FILENAME name)
    if(NOT name IN_LIST ZEL_TESTS_FOR_POSIX)
      target_sources(zel_tests PRIVATE ${file})
    endif()
  endforeach()
endfunction()

function(zelAddBench)
  target_sources(zel_bench PRIVATE ${ARGN})
endfunction()

# One libFuzzer program from NAME.cpp in the current folder; with ZEL_FUZZ_REPLAY one that runs on given inputs.
function(zelAddFuzzer name)
  add_executable(${name} ${name}.cpp)
  target_link_libraries(${name} PRIVATE zel_core)
  if(ZEL_FUZZ_REPLAY)
    target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/fuzz/replay.cpp)
  else()
    target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  endif()
endfunction()
