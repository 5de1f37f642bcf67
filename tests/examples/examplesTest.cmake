# Run by ctest with ZEL, EXAMPLES, ASSETS and WORK set. Fails on the first command that fails.
cmake_minimum_required(VERSION 3.25)

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY OUTPUT_QUIET ERROR_VARIABLE ignored)
endfunction()

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
set(portrait ${WORK}/portrait.png)
run(${ZEL} portrait -o ${portrait} --faces ${WORK}/faces.json --size 240x320 --seed 5 --quiet)

# The landmarks as a host with a face finder of its own would have them: in pixels, one a line.
file(READ ${WORK}/faces.json faces)
set(landmarks "")
foreach(i RANGE 82)
  foreach(axis 0 1)
    string(JSON fraction GET "${faces}" faces 0 points ${i} ${axis})
    # CMake has no fractions: whole ten-thousandths of a picture are fine enough to move a face by.
    string(REGEX REPLACE "^0\\.([0-9]?)([0-9]?)([0-9]?)([0-9]?).*" "\\1\\2\\3\\4" digits "${fraction}0000")
    string(REGEX REPLACE "^0+" "" digits "${digits}")
    if(axis EQUAL 0)
      math(EXPR pixel "${digits} * 240 / 10000")
    else()
      math(EXPR pixel "${digits} * 320 / 10000")
    endif()
    string(APPEND landmarks "${pixel} ")
  endforeach()
  string(APPEND landmarks "\n")
endforeach()
file(WRITE ${WORK}/landmarks.txt "${landmarks}")

run(${EXAMPLES}/retouch ${portrait} ${WORK}/retouch.ppm)
run(${EXAMPLES}/reshape ${portrait} ${WORK}/landmarks.txt ${WORK}/reshape.ppm)
run(${EXAMPLES}/depthOfField ${portrait} ${ASSETS} ${WORK}/depthOfField.ppm)

# The same call gives the same bytes.
run(${EXAMPLES}/reshape ${portrait} ${WORK}/landmarks.txt ${WORK}/again.ppm)
set(seen "")
foreach(example retouch reshape depthOfField)
  file(SIZE ${WORK}/${example}.ppm size)
  if(NOT size EQUAL 230415)  # head, and 240 by 320 pixels of three bytes
    message(FATAL_ERROR "${example} wrote ${size} bytes")
  endif()
  file(MD5 ${WORK}/${example}.ppm sum)
  if(sum IN_LIST seen)
    message(FATAL_ERROR "${example} wrote the picture of another example")
  endif()
  list(APPEND seen ${sum})
endforeach()
file(MD5 ${WORK}/again.ppm again)
list(GET seen 1 reshaped)
if(NOT again STREQUAL reshaped)
  message(FATAL_ERROR "reshape gave two pictures for one")
endif()

execute_process(COMMAND ${EXAMPLES}/retouch ${WORK}/missing.png ${WORK}/none.ppm RESULT_VARIABLE status
  ERROR_VARIABLE ignored)
if(NOT status EQUAL 1 OR EXISTS ${WORK}/none.ppm)
  message(FATAL_ERROR "a missing portrait ended with ${status}")
endif()
