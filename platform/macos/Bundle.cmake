# platform_add_bundle(<target> NAME name PRINCIPAL_CLASS class WHOLE libraries...
#                     [LINK libraries...] RESOURCES files... [INSTALL])
# A loadable bundle as macOS wants it, with the nibs compiled. WHOLE libraries go in with every
# object file: classes that only a nib names have no other user.
function(platform_add_bundle target)
  cmake_parse_arguments(arg "INSTALL" "NAME;PRINCIPAL_CLASS" "WHOLE;LINK;RESOURCES" ${ARGN})
  set(bundle "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${arg_NAME}.bundle")

  configure_file("${PROJECT_SOURCE_DIR}/platform/macos/Bundle.plist.in"
    "${CMAKE_CURRENT_BINARY_DIR}/${target}.plist" @ONLY)
  set(files)
  foreach(source IN LISTS arg_RESOURCES)
    cmake_path(GET source EXTENSION LAST_ONLY extension)
    cmake_path(GET source STEM LAST_ONLY stem)
    if(extension STREQUAL ".xib")
      find_program(IBTOOL ibtool REQUIRED)
      set(nib "${CMAKE_CURRENT_BINARY_DIR}/${stem}.nib")
      add_custom_command(OUTPUT "${nib}"
        COMMAND "${IBTOOL}" --minimum-deployment-target "${CMAKE_OSX_DEPLOYMENT_TARGET}"
          --compile "${nib}" "${source}"
        DEPENDS "${source}" VERBATIM)
      list(APPEND files "${nib}")
    else()
      list(APPEND files "${source}")
    endif()
  endforeach()

  file(CONFIGURE OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/${target}.cpp" CONTENT "")
  add_library(${target} MODULE "${CMAKE_CURRENT_BINARY_DIR}/${target}.cpp" ${files})
  set_source_files_properties(${files} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
  tarvane_target_defaults(${target})
  set_target_properties(${target} PROPERTIES
    BUNDLE TRUE BUNDLE_EXTENSION bundle OUTPUT_NAME "${arg_NAME}"
    MACOSX_BUNDLE_INFO_PLIST "${CMAKE_CURRENT_BINARY_DIR}/${target}.plist"
    TARVANE_BUNDLE "${bundle}")
  list(JOIN arg_WHOLE "," whole)
  set_property(TARGET ${target} PROPERTY LINK_LIBRARY_OVERRIDE "WHOLE_ARCHIVE,${whole}")
  target_link_libraries(${target} PRIVATE ${arg_WHOLE} ${arg_LINK})
  # All that a host needs to find, templates of the C++ library left out as well. In a file, since the
  # build takes the $_ of these names on a command line for a variable.
  set(shown "${CMAKE_CURRENT_BINARY_DIR}/${target}.exported")
  file(CONFIGURE OUTPUT "${shown}" CONTENT
    "_OBJC_CLASS_$_@arg_PRINCIPAL_CLASS@\n_OBJC_METACLASS_$_@arg_PRINCIPAL_CLASS@\n" @ONLY)
  target_link_options(${target} PRIVATE "LINKER:-exported_symbols_list,${shown}")
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${shown}")
  platform_sign(${target} "$<TARGET_BUNDLE_DIR:${target}>")
  if(arg_INSTALL)
    install(TARGETS ${target} LIBRARY DESTINATION "${TARVANE_HOME}/lib" COMPONENT runtime)
  endif()
endfunction()
