# platform_add_bundle(<target> NAME name PRINCIPAL_CLASS class WHOLE libraries...
#                     [LINK libraries...] RESOURCES files...)
# A loadable bundle as macOS wants it, with the nibs compiled. WHOLE libraries go in with every
# object file: classes that only a nib names have no other user.
function(platform_add_bundle target)
  cmake_parse_arguments(arg "" "NAME;PRINCIPAL_CLASS" "WHOLE;LINK;RESOURCES" ${ARGN})
  set(bundle "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${arg_NAME}.bundle")

  file(CONFIGURE OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/Info.plist" @ONLY CONTENT [[
<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
    <key>CFBundleExecutable</key><string>@arg_NAME@</string>
    <key>CFBundleIdentifier</key><string>org.tarvane.@arg_NAME@</string>
    <key>CFBundleInfoDictionaryVersion</key><string>6.0</string>
    <key>CFBundleName</key><string>@arg_NAME@</string>
    <key>CFBundlePackageType</key><string>BNDL</string>
    <key>CFBundleVersion</key><string>@PROJECT_VERSION@</string>
    <key>NSPrincipalClass</key><string>@arg_PRINCIPAL_CLASS@</string>
</dict>
</plist>
]])
  set(files)
  find_program(IBTOOL ibtool REQUIRED)
  foreach(source IN LISTS arg_RESOURCES)
    cmake_path(GET source EXTENSION LAST_ONLY extension)
    cmake_path(GET source STEM LAST_ONLY stem)
    if(extension STREQUAL ".xib")
      set(nib "${CMAKE_CURRENT_BINARY_DIR}/${stem}.nib")
      add_custom_command(OUTPUT "${nib}" COMMAND "${IBTOOL}" --compile "${nib}" "${source}"
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
    MACOSX_BUNDLE_INFO_PLIST "${CMAKE_CURRENT_BINARY_DIR}/Info.plist"
    TARVANE_BUNDLE "${bundle}")
  list(JOIN arg_WHOLE "," whole)
  set_property(TARGET ${target} PROPERTY LINK_LIBRARY_OVERRIDE "WHOLE_ARCHIVE,${whole}")
  target_link_libraries(${target} PRIVATE ${arg_WHOLE} ${arg_LINK})
endfunction()
