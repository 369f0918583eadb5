# The names of the product's classes. A process has one class of a name, so two versions of the
# product in one host need names that differ: TARVANE_CLASS_SUFFIX goes behind each.

file(GLOB_RECURSE headers CONFIGURE_DEPENDS
  "${PROJECT_SOURCE_DIR}/controls/*.h" "${PROJECT_SOURCE_DIR}/TarvaneLinkAU/*.h"
  "${PROJECT_SOURCE_DIR}/colours/*.h" "${PROJECT_SOURCE_DIR}/Graphics/*.h"
  "${PROJECT_SOURCE_DIR}/utils/*.h")
set(tarvane_class_names)
foreach(header IN LISTS headers)
  file(STRINGS "${header}" lines REGEX "^@interface +[A-Za-z_0-9]+ *:")
  foreach(line IN LISTS lines)
    string(REGEX REPLACE "^@interface +([A-Za-z_0-9]+) *:.*" "\\1" name "${line}")
    list(APPEND tarvane_class_names ${name})
  endforeach()
endforeach()

# tarvane_suffix_class_names(<target> <suffix>)
# The target, and what links it, knows every class of the product under its name and the suffix.
function(tarvane_suffix_class_names target suffix)
  if(NOT suffix MATCHES "^[A-Za-z_0-9]*$")
    message(FATAL_ERROR "a suffix of class names is made of letters, digits and underscores, "
      "not '${suffix}'")
  endif()
  if(suffix STREQUAL "")
    return()
  endif()
  foreach(name IN LISTS tarvane_class_names)
    target_compile_definitions(${target} PUBLIC
      $<$<COMPILE_LANGUAGE:OBJCXX>:${name}=${name}${suffix}>)
  endforeach()
endfunction()

# tarvane_suffixed_nib(<variable> <suffix> <xib>)
# Puts into the variable the path of a xib that names the classes so.
function(tarvane_suffixed_nib variable suffix xib)
  if(suffix STREQUAL "")
    set(${variable} "${xib}" PARENT_SCOPE)
    return()
  endif()
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${xib}")
  file(READ "${xib}" text)
  foreach(name IN LISTS tarvane_class_names)
    string(REPLACE "customClass=\"${name}\"" "customClass=\"${name}${suffix}\"" text "${text}")
  endforeach()
  cmake_path(GET xib FILENAME name)
  file(CONFIGURE OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/suffixed${suffix}/${name}" CONTENT "${text}"
    @ONLY)
  set(${variable} "${CMAKE_CURRENT_BINARY_DIR}/suffixed${suffix}/${name}" PARENT_SCOPE)
endfunction()
