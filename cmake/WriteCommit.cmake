# Run at each build: writes the commit of the folder `source` into the header `header`, and touches
# it only when it is another one. An empty text where the folder is no working copy of its own.
cmake_minimum_required(VERSION 3.25)
execute_process(COMMAND git -C "${source}" rev-parse --show-prefix
  OUTPUT_VARIABLE prefix RESULT_VARIABLE status ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
set(commit "")
if(status EQUAL 0 AND prefix STREQUAL "")
  execute_process(
    COMMAND git -C "${source}" describe --always "--dirty=+" --abbrev=12 --exclude=*
    OUTPUT_VARIABLE commit ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
endif()
file(CONFIGURE OUTPUT "${header}" CONTENT
  "constexpr const char* kProgramCommit = \"@commit@\";\n" @ONLY)
