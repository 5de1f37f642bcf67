# Run by ctest with SOURCE, WORK, CLIENT, CC and CXX set: the library as a part of somebody else's project. Fails on
# the first command that fails.
cmake_minimum_required(VERSION 3.25)

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY OUTPUT_VARIABLE text ERROR_VARIABLE said)
  set(text "${text}" PARENT_SCOPE)
  set(said "${said}" PARENT_SCOPE)
endfunction()

unset(ENV{ZEL_ASSETS})
file(MAKE_DIRECTORY ${WORK})
file(WRITE ${WORK}/two.pgm "P5 2 1 255\nAZ")
# Debug: what the compiler makes of the library is told by other tests.
run(${CMAKE_COMMAND} -S ${CLIENT} -B ${WORK}/client -G Ninja -D CMAKE_C_COMPILER=${CC} -D CMAKE_CXX_COMPILER=${CXX}
  -D ZEL_SOURCE=${SOURCE} -D CMAKE_BUILD_TYPE=Debug -D CMAKE_EXPORT_COMPILE_COMMANDS=ON)

# What the library is compiled with stays its own, and of its programs and tests nothing is there.
file(READ ${WORK}/client/compile_commands.json commands)
string(REGEX MATCH "\"command\": \"([^\"]*)client\\.cpp\"" command "${commands}")
if(NOT command OR command MATCHES "ffp-contract|-Wshadow|-Werror|fvisibility|std=c\\+\\+20|-O3")
  message(FATAL_ERROR "The client is compiled with: ${command}")
endif()
if(commands MATCHES "cli/main\\.cpp|gtest")
  message(FATAL_ERROR "The client's project has the library's command or tests")
endif()

run(${CMAKE_COMMAND} --build ${WORK}/client --target client hostInC --parallel 2)
run(${WORK}/client/client ${WORK}/two.pgm ${WORK}/client/zel_effects/assets/depth)
if(NOT text STREQUAL "2 x 1 pixels, 1 face, a network\n" OR said MATCHES "PSOverlay")
  message(FATAL_ERROR "The client said: ${text}${said}")
endif()
run(${WORK}/client/hostInC)
if(NOT text MATCHES ", darker\n${WORK}/client/zel_effects/assets\n")
  message(FATAL_ERROR "The host in C said: ${text}${said}")
endif()
