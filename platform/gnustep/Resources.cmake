# platform_add_resources(<program> FILES...)
# Files that the program finds in its main bundle: for a plain program GNUstep looks in
# Resources/<program> beside it.
function(platform_add_resources target)
  set(folder "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/Resources/${target}")
  set(copies)
  foreach(source IN LISTS ARGN)
    cmake_path(GET source FILENAME name)
    add_custom_command(OUTPUT "${folder}/${name}"
      COMMAND "${CMAKE_COMMAND}" -E make_directory "${folder}"
      COMMAND "${CMAKE_COMMAND}" -E copy "${source}" "${folder}/${name}"
      DEPENDS "${source}" VERBATIM)
    list(APPEND copies "${folder}/${name}")
  endforeach()
  add_custom_target(${target}_resources DEPENDS ${copies})
  set_property(TARGET ${target} APPEND PROPERTY TARVANE_RESOURCES ${ARGN})
  add_dependencies(${target} ${target}_resources)
endfunction()
