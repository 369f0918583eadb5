# Run by CTest: adds a test "Suite.*" for each suite of a GoogleTest program, as its own list has
# them. Expects `program`, a file for its `list`, and `properties` for the tests.
if(NOT EXISTS "${program}")
  get_filename_component(name "${program}" NAME)
  add_test("${name}_NOT_BUILT" "${name}_NOT_BUILT")
  return()
endif()
# A list is kept until its program is built anew. Whether listing leaks is no test.
if("${program}" IS_NEWER_THAN "${list}")
  set(options "$ENV{ASAN_OPTIONS}")
  set(ENV{ASAN_OPTIONS} "detect_leaks=0")
  execute_process(COMMAND "${program}" --gtest_list_tests
    OUTPUT_VARIABLE listing
    RESULT_VARIABLE status)
  set(ENV{ASAN_OPTIONS} "${options}")
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${program} does not list its tests: ${status}")
  endif()
  file(WRITE "${list}" "${listing}")
endif()
file(READ "${list}" listing)
# A suite's line begins with its name and a point; its cases are indented.
string(REGEX MATCHALL "(^|\n)[A-Za-z_][A-Za-z0-9_/]*\\." suites "${listing}")
foreach(suite IN LISTS suites)
  string(STRIP "${suite}" suite)
  add_test("${suite}*" "${program}" "--gtest_filter=${suite}*")
  set_tests_properties("${suite}*" PROPERTIES ${properties})
endforeach()
