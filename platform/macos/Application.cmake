# platform_make_application(<program> [SIGNATURE code] [BACKGROUND])
# An application of its own: what events are to find by its signature, or what has to explain to the
# user why it sends them. BACKGROUND: without a menu bar and a place in the Dock.
function(platform_make_application target)
  cmake_parse_arguments(arg "BACKGROUND" "SIGNATURE" "" ${ARGN})
  set(signature "????")
  if(arg_SIGNATURE)
    set(signature "${arg_SIGNATURE}")
  endif()
  set(element "<false/>")
  if(arg_BACKGROUND)
    set(element "<true/>")
  endif()
  configure_file("${PROJECT_SOURCE_DIR}/platform/macos/Application.plist.in"
    "${CMAKE_CURRENT_BINARY_DIR}/${target}.plist" @ONLY)
  set_target_properties(${target} PROPERTIES
    MACOSX_BUNDLE TRUE
    MACOSX_BUNDLE_INFO_PLIST "${CMAKE_CURRENT_BINARY_DIR}/${target}.plist")
  platform_sign(${target} "$<TARGET_BUNDLE_DIR:${target}>"
    --entitlements "${PROJECT_SOURCE_DIR}/platform/macos/Automation.entitlements")
endfunction()

# platform_add_resources(<program> FILES...)
# Files that the program finds in its main bundle, which it is made into.
function(platform_add_resources target)
  target_sources(${target} PRIVATE ${ARGN})
  set_source_files_properties(${ARGN} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
  set_target_properties(${target} PROPERTIES MACOSX_BUNDLE TRUE)
endfunction()
