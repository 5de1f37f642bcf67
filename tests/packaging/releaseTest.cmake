# Run by ctest with SOURCE, VERSION, MAJOR and MINOR set. The version stands in CMakeLists.txt; what cannot be made from it is
# held to it.
cmake_minimum_required(VERSION 3.25)

# The first match of an expression in a file has to be what the version asks for.
function(expect file expression wanted)
  file(READ ${SOURCE}/${file} text)
  if(NOT text MATCHES "${expression}")
    message(FATAL_ERROR "${file} tells no version (${expression})")
  elseif(NOT CMAKE_MATCH_1 STREQUAL wanted)
    message(FATAL_ERROR "${file} tells '${CMAKE_MATCH_1}', not '${wanted}'")
  endif()
endfunction()

expect(include/zel/zel.h "#define ZEL_VERSION_MAJOR ([0-9]+)" ${MAJOR})
expect(include/zel/zel.h "#define ZEL_VERSION_MINOR ([0-9]+)" ${MINOR})
expect(CHANGELOG.md "\n## \\[([0-9][^]]*)\\]" ${VERSION})
expect(packaging/debian/changelog "^zel-effects \\(([^)]+)\\)" ${VERSION})
# Packages of libraries are named after what programs ask for.
expect(packaging/debian/control "\nPackage: libzel([0-9]+)\n" ${MAJOR})
expect(packaging/debian/control "\nPackage: libzel-effects([0-9]+)\n" ${MAJOR})
expect(packaging/debian/libzel1.symbols "^libzel\\.so\\.([0-9]+) " ${MAJOR})
expect(packaging/debian/libzel-effects1.symbols "^libzel_effects\\.so\\.([0-9]+) " ${MAJOR})

# Whatever the scripts install to build with, a package build asks for.
file(READ ${SOURCE}/packaging/debian/control control)
string(REGEX MATCH "\nBuild-Depends:(\n [^\n]+)+" wants "${control}")
# Every Debian system that builds packages has the compiler.
file(STRINGS ${SOURCE}/scripts/packages.txt lines REGEX "^build +[a-z0-9.-]+$")
foreach(line IN LISTS lines)
  string(REGEX REPLACE "^build +" "" package "${line}")
  if(NOT wants MATCHES "\n ${package}[ ,]")
    message(FATAL_ERROR "${package} is in the group build, and not in packaging/debian/control")
  endif()
endforeach()
