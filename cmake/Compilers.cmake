# Two compilers can share the work where the tests are built: clang the C++, in half of GCC's time, and
# GCC the Objective-C++, for with GNUstep's runtime an exception that passes through clang's ends the
# program. GCC links then, so that one set of sanitizers stands behind both.
if(CMAKE_CXX_COMPILER_ID STREQUAL Clang AND CMAKE_OBJCXX_COMPILER_ID STREQUAL GNU)
  foreach(rule IN ITEMS
      CMAKE_CXX_LINK_EXECUTABLE CMAKE_CXX_CREATE_SHARED_LIBRARY CMAKE_CXX_CREATE_SHARED_MODULE)
    string(REPLACE "<CMAKE_CXX_COMPILER>" "${CMAKE_OBJCXX_COMPILER}" ${rule} "${${rule}}")
  endforeach()
  # What GCC compiles does not tell the types of its functions, which clang looks for at calls.
  set(TARVANE_UNKNOWN_TO_ONE $<$<COMPILE_LANGUAGE:CXX>:-fno-sanitize=function>)
endif()

# Checked programs are large: the fastest linker of those that come with GCC, but for the default
# where it is not there.
find_program(TARVANE_GOLD ld.gold)
mark_as_advanced(TARVANE_GOLD)
if(TARVANE_SANITIZE AND TARVANE_GOLD AND CMAKE_OBJCXX_COMPILER_ID STREQUAL GNU)
  add_link_options(-fuse-ld=gold)
endif()
