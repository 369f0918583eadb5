# platform_add_bundle(<target> NAME name PRINCIPAL_CLASS class WHOLE libraries...
#                     [LINK libraries...] RESOURCES files... [INSTALL])
# A loadable bundle as GNUstep wants it: <name>.bundle/<name> beside Resources/Info-gnustep.plist.
# WHOLE libraries go in with every object file: classes that only a nib names have no other user.
function(platform_add_bundle target)
  cmake_parse_arguments(arg "INSTALL" "NAME;PRINCIPAL_CLASS" "WHOLE;LINK;RESOURCES" ${ARGN})
  set(bundle "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${arg_NAME}.bundle")

  file(CONFIGURE OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/Info-gnustep.plist" @ONLY CONTENT [[
{
    NSExecutable = "@arg_NAME@";
    NSPrincipalClass = "@arg_PRINCIPAL_CLASS@";
    CFBundleIdentifier = "org.tarvane.@arg_NAME@";
    CFBundleName = "@arg_NAME@";
    CFBundleVersion = "@PROJECT_VERSION@";
}
]])
  set(resources)
  foreach(source IN LISTS arg_RESOURCES ITEMS "${CMAKE_CURRENT_BINARY_DIR}/Info-gnustep.plist")
    cmake_path(GET source FILENAME name)
    add_custom_command(OUTPUT "${bundle}/Resources/${name}"
      COMMAND "${CMAKE_COMMAND}" -E make_directory "${bundle}/Resources"
      COMMAND "${CMAKE_COMMAND}" -E copy "${source}" "${bundle}/Resources/${name}"
      DEPENDS "${source}" VERBATIM)
    list(APPEND resources "${bundle}/Resources/${name}")
  endforeach()
  add_custom_target(${target}_resources DEPENDS ${resources})

  file(CONFIGURE OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/${target}.cpp" CONTENT "")
  add_library(${target} MODULE "${CMAKE_CURRENT_BINARY_DIR}/${target}.cpp")
  add_dependencies(${target} ${target}_resources)
  tarvane_target_defaults(${target})
  set_target_properties(${target} PROPERTIES
    PREFIX "" SUFFIX "" OUTPUT_NAME "${arg_NAME}"
    LIBRARY_OUTPUT_DIRECTORY "${bundle}"
    INSTALL_RPATH "$ORIGIN/.."
    TARVANE_BUNDLE "${bundle}")
  list(JOIN arg_WHOLE "," whole)
  set_property(TARGET ${target} PROPERTY LINK_LIBRARY_OVERRIDE "WHOLE_ARCHIVE,${whole}")
  target_link_libraries(${target} PRIVATE ${arg_WHOLE} ${arg_LINK})
  if(arg_INSTALL)
    install(TARGETS ${target} LIBRARY DESTINATION "${TARVANE_HOME}/lib/${arg_NAME}.bundle"
      COMPONENT runtime)
    install(FILES ${resources} DESTINATION "${TARVANE_HOME}/lib/${arg_NAME}.bundle/Resources"
      COMPONENT runtime)
  endif()
endfunction()
