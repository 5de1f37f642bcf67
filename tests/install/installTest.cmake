# Run by ctest with BUILD, WORK, CLIENT, EXAMPLES, CC, CXX and LIBDIR set. Fails on the first command that fails.
cmake_minimum_required(VERSION 3.25)

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY OUTPUT_VARIABLE text ERROR_VARIABLE said)
  set(text "${text}" PARENT_SCOPE)
  set(said "${said}" PARENT_SCOPE)
endfunction()

# The client, started where no assets lie: it has to find those of its library by itself.
function(expectGreeting what)
  if(NOT text STREQUAL "2 x 1 pixels, 1 face, a network\n")
    message(FATAL_ERROR "The client built through ${what} said: ${text}")
  endif()
  if(said MATCHES "PSOverlay" OR NOT said MATCHES "stb load image")
    message(FATAL_ERROR "The client built through ${what} did not find the assets: ${said}")
  endif()
endfunction()

# The host in C, likewise.
function(expectHostInC what)
  if(NOT text MATCHES "^libzel [0-9.]+, darker\n${WORK}/tree/")
    message(FATAL_ERROR "The host in C built through ${what} said: ${text}")
  endif()
endfunction()

unset(ENV{ZEL_ASSETS})
file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/first)
# Nothing in the tree may know the folder that it was installed to.
file(RENAME ${WORK}/first ${WORK}/tree)
file(WRITE ${WORK}/two.pgm "P5 2 1 255\nAZ")

run(${CMAKE_COMMAND} -S ${CLIENT} -B ${WORK}/client -G Ninja -D CMAKE_C_COMPILER=${CC} -D CMAKE_CXX_COMPILER=${CXX}
  -D CMAKE_PREFIX_PATH=${WORK}/tree)
run(${CMAKE_COMMAND} --build ${WORK}/client)
run(${WORK}/client/client ${WORK}/two.pgm ${WORK}/tree/share/zel_effects/depth)
expectGreeting(find_package)
run(${WORK}/client/hostInC)
expectHostInC(find_package)

run(${CMAKE_COMMAND} -S ${EXAMPLES} -B ${WORK}/examples -G Ninja -D CMAKE_C_COMPILER=${CC}
  -D CMAKE_CXX_COMPILER=${CXX}
  -D CMAKE_PREFIX_PATH=${WORK}/tree)
run(${CMAKE_COMMAND} --build ${WORK}/examples)
run(${WORK}/examples/retouch ${WORK}/two.pgm ${WORK}/two.ppm)

set(ENV{PKG_CONFIG_PATH} ${WORK}/tree/${LIBDIR}/pkgconfig)
foreach(package zel_effects zel)
  run(pkg-config --variable=assets ${package})
  string(STRIP "${text}" assets)
  if(NOT EXISTS ${assets}/style/base/PSOverlay.bin)
    message(FATAL_ERROR "pkg-config names '${assets}' for ${package}, where no assets lie")
  endif()
endforeach()
run(pkg-config --cflags --libs zel_effects)
separate_arguments(flags UNIX_COMMAND "${text}")
run(${CXX} -std=c++17 -Wall -Wextra -Werror ${CLIENT}/client.cpp -o ${WORK}/plain ${flags})
run(pkg-config --cflags --libs zel)
separate_arguments(flags UNIX_COMMAND "${text}")
run(${CC} -std=c99 -Wall -Wextra -Wpedantic -Werror ${CLIENT}/client.c -o ${WORK}/plainInC ${flags})
set(ENV{LD_LIBRARY_PATH} ${WORK}/tree/${LIBDIR})
run(${WORK}/plain ${WORK}/two.pgm ${assets}/depth)
expectGreeting(pkg-config)
run(${WORK}/plainInC)
expectHostInC(pkg-config)

# The installed command finds the library and the inference module of its own tree, and that its assets.
unset(ENV{LD_LIBRARY_PATH})
if(EXISTS ${WORK}/tree/bin/zel)
  run(${WORK}/tree/bin/zel effects)
  if(NOT text MATCHES "nature-smooth")
    message(FATAL_ERROR "zel effects said: ${text}")
  endif()
  run(${WORK}/tree/bin/zel depth ${WORK}/two.pgm -o ${WORK}/depth.png)
  run(${WORK}/tree/bin/zel apply scenario ${WORK}/two.pgm -o ${WORK}/two.png)
endif()

# The plug-in finds its library, and says what it is to whoever is not GIMP.
file(GLOB_RECURSE plugin ${WORK}/tree/*/zel-portrait)
if(plugin)
  execute_process(COMMAND ${plugin} OUTPUT_VARIABLE text ERROR_VARIABLE text)
  if(NOT text MATCHES "must be run by GIMP")
    message(FATAL_ERROR "The installed plug-in said: ${text}")
  endif()
endif()
