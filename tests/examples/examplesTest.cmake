# Run by ctest with ZEL, EXAMPLES, ASSETS, LIBRARY, SCRIPTS and WORK set, and PYTHON where there is one. Fails on the
# first command that fails.
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
run(${EXAMPLES}/embedInC ${portrait} ${WORK}/embedInC.ppm ${WORK}/faces.json)
run(${EXAMPLES}/embedInC ${portrait} ${WORK}/embedWithoutFaces.ppm)
run(${EXAMPLES}/embedInCpp ${portrait} ${WORK}/embedInCpp.ppm)

# The same call gives the same bytes.
run(${EXAMPLES}/reshape ${portrait} ${WORK}/landmarks.txt ${WORK}/again.ppm)
set(seen "")
foreach(example retouch reshape depthOfField embedInC embedWithoutFaces embedInCpp)
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

if(PYTHON)
  # A ramp of colours in blocks of 16: two pixels of a block are one colour, two blocks are not.
  run(${PYTHON} ${SCRIPTS}/embed.py ${LIBRARY} ${WORK}/embed.ppm)
  file(READ ${WORK}/embed.ppm blocks LIMIT 114 HEX)  # 15 bytes of head, 33 pixels
  string(SUBSTRING ${blocks} 30 6 first)
  string(SUBSTRING ${blocks} 120 6 sixteenth)
  string(SUBSTRING ${blocks} 126 6 next)
  if(NOT first STREQUAL "070780" OR NOT sixteenth STREQUAL first OR NOT next STREQUAL "170780")
    message(FATAL_ERROR "embed.py wrote ${blocks}")
  endif()
endif()

foreach(example retouch embedInC embedInCpp)
  execute_process(COMMAND ${EXAMPLES}/${example} ${WORK}/missing.png ${WORK}/none.ppm RESULT_VARIABLE status
    ERROR_VARIABLE ignored OUTPUT_QUIET)
  if(NOT status EQUAL 1 OR EXISTS ${WORK}/none.ppm)
    message(FATAL_ERROR "a missing portrait ended ${example} with ${status}")
  endif()
endforeach()
