# One way to declare the project's libraries, programs and tests, so that warnings, sanitizers
# and include paths are the same everywhere.

# Ours: includes are written from the repository root and every warning counts.
function(tarvane_target_defaults target)
  target_include_directories(${target} PUBLIC
    "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>" "$<INSTALL_INTERFACE:${TARVANE_INCLUDE}>")
  target_compile_options(${target} PRIVATE -Wall -Wextra)
  if(CMAKE_BUILD_TYPE STREQUAL "Release" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU"
      AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # At -O3, GCC 12 takes a literal put before a string for a copy that overlaps.
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
  # CMake gives programs that it links as Objective-C++ no path to the shared libraries.
  set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX)
  if(TARVANE_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${TARVANE_SANITIZE} ${TARVANE_UNCHECKED}
      -fno-sanitize-recover=all -fno-omit-frame-pointer
      ${TARVANE_UNKNOWN_TO_ONE})
    target_link_options(${target} PUBLIC -fsanitize=${TARVANE_SANITIZE})
  endif()
endfunction()

# What programs begin with that are checked by GCC's address sanitizer. Its data are full of
# addresses, which are known beforehand in a program that is always loaded at the same place.
if(TARVANE_SANITIZE MATCHES "address" AND CMAKE_OBJCXX_COMPILER_ID STREQUAL GNU)
  add_library(tarvane_sanitized_start OBJECT
    "${PROJECT_SOURCE_DIR}/tests/support/SanitizedStart.cpp")
  target_compile_options(tarvane_sanitized_start PRIVATE -Wall -Wextra)
  target_link_options(tarvane_sanitized_start INTERFACE -no-pie -Wl,--wrap=main)
  foreach(function IN ITEMS objc_malloc FcFontMatch FcFontList GetMagickInfoList)
    target_link_options(tarvane_sanitized_start INTERFACE
      -Wl,--export-dynamic-symbol=${function})
  endforeach()
endif()

# tarvane_add_library(<target> <Alias> SOURCES ... [LINK ...])
# A static library, known to others as TarvaneLink::<Alias>. A product library links the
# platform's headers only: each program and test chooses the platform that stands behind them.
function(tarvane_add_library target alias)
  cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
  add_library(${target} STATIC ${arg_SOURCES})
  add_library(TarvaneLink::${alias} ALIAS ${target})
  tarvane_target_defaults(${target})
  # Products and sums are rounded one by one on every processor: positions of takes follow from them.
  target_compile_options(${target} PRIVATE -ffp-contract=off)
  target_link_libraries(${target} PUBLIC ${arg_LINK})
endfunction()

# tarvane_add_program(<target> SOURCES ... [LINK ...])
function(tarvane_add_program target)
  cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${target} ${arg_SOURCES})
  tarvane_target_defaults(${target})
  target_link_libraries(${target} PRIVATE ${arg_LINK})
  if(TARGET tarvane_sanitized_start)
    target_link_libraries(${target} PRIVATE tarvane_sanitized_start)
  endif()
endfunction()

# tarvane_add_plugin(<target> SOURCES ... [LINK ...])
# A library that is loaded while a program runs, called as its target is.
function(tarvane_add_plugin target)
  cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
  add_library(${target} MODULE ${arg_SOURCES})
  tarvane_target_defaults(${target})
  set_target_properties(${target} PROPERTIES PREFIX "")
  target_link_libraries(${target} PRIVATE ${arg_LINK})
endfunction()

# Without these ccache knows no source again that is compiled with a precompiled header.
set(tarvane_precompiled_for_ccache
  $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fpch-preprocess>
  $<$<COMPILE_LANG_AND_ID:OBJCXX,GNU>:-fpch-preprocess>
  "$<$<COMPILE_LANG_AND_ID:CXX,Clang>:SHELL:-Xclang -fno-pch-timestamp>")

# tarvane_add_test(<target> SOURCES ... [LINK ...] [TIMEOUT seconds] [NO_MAIN] [DISPLAY] [LONG]
#                  [JOINT] [SUITES])
# A GoogleTest program; CTest discovers its cases. NO_MAIN: the sources bring their own main().
# DISPLAY: the cases use the one mouse, or look at pixels of the one display, and so run one after
# another and apart from the rest; a case that only opens windows needs none of that. LONG: the
# cases are started before the others, which run beside them.
# JOINT: several sources are compiled at a time where TARVANE_JOINT_FILES says so; their names must
# not clash. SUITES: the cases of a suite, many and short, are run by one process.
function(tarvane_add_test target)
  cmake_parse_arguments(arg "NO_MAIN;DISPLAY;LONG;JOINT;SUITES" "TIMEOUT" "SOURCES;LINK" ${ARGN})
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  tarvane_add_program(${target} SOURCES ${arg_SOURCES} LINK ${arg_LINK})
  if(arg_NO_MAIN)
    target_link_libraries(${target} PRIVATE GTest::gmock)
  else()
    target_link_libraries(${target} PRIVATE GTest::gmock GTest::gmock_main)
  endif()
  target_precompile_headers(${target} REUSE_FROM tarvane_test_headers)
  target_compile_options(${target} PRIVATE ${tarvane_precompiled_for_ccache})
  if(arg_JOINT AND TARVANE_JOINT_FILES)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON)
    # GCC takes a source that is compiled behind another one for a header, with its own namespaces
    # without a name in other sources too.
    target_compile_options(${target} PRIVATE
      $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
  endif()
  set(properties TIMEOUT ${arg_TIMEOUT})
  if(arg_DISPLAY)
    list(APPEND properties RESOURCE_LOCK display LABELS display)
  endif()
  if(arg_LONG)
    list(APPEND properties COST 1000)
  endif()
  if(arg_SUITES)
    set(discovery "${CMAKE_CURRENT_BINARY_DIR}/${target}_suites.cmake")
    file(GENERATE OUTPUT "${discovery}" CONTENT
      "set(program \"$<TARGET_FILE:${target}>\")
set(list \"${CMAKE_CURRENT_BINARY_DIR}/${target}_suites.txt\")
set(properties ${properties})
include(\"${PROJECT_SOURCE_DIR}/cmake/DiscoverSuites.cmake\")
")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${discovery}")
  else()
    gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST PROPERTIES ${properties})
  endif()
endfunction()
