# The component dev: what others build servers, plug-ins and tools of their own with.
include(CMakePackageConfigHelpers)

set(tarvane_libraries FileIO Parameters UnicodeText Colours Controls Graphics Script View Signal)
set(tarvane_signal_headers CaptureCore.h PropertyListeners.h PropertyStatus.h Take.h TakeFolder.h
  TakeFormat.h Transport.h)
set(tarvane_frameworks CoreFoundation AudioUnit AppleEvents AppKit CoreGraphics)

# A target is known in the build and behind find_package by one name.
function(tarvane_export target alias)
  set_target_properties(${target} PROPERTIES EXPORT_NAME "${alias}")
  install(TARGETS ${target} EXPORT TarvaneLink
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT dev
    LIBRARY DESTINATION "${TARVANE_HOME}/lib" COMPONENT runtime)
endfunction()

foreach(alias IN LISTS tarvane_libraries)
  get_target_property(target TarvaneLink::${alias} ALIASED_TARGET)
  tarvane_export(${target} ${alias})
endforeach()
tarvane_export(tarvane_all All)
foreach(framework IN LISTS tarvane_frameworks ITEMS Headers Foundation)
  get_target_property(target Platform::${framework} ALIASED_TARGET)
  tarvane_export(${target} Platform${framework})
endforeach()

# The headers stand to one another as in the sources. Of the capture core those that its own header
# needs; the others are its own affair.
foreach(folder IN ITEMS utils colours controls Graphics TarvaneLinkShared TarvaneLinkAU)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/${folder}" DESTINATION "${TARVANE_INCLUDE}"
    COMPONENT dev FILES_MATCHING PATTERN "*.h")
endforeach()
list(TRANSFORM tarvane_signal_headers PREPEND "${PROJECT_SOURCE_DIR}/signal/")
install(FILES ${tarvane_signal_headers} DESTINATION "${TARVANE_INCLUDE}/signal" COMPONENT dev)
foreach(header IN ITEMS PlugInEntry.h PropertyListeners.h UnitComponent.h)
  install(FILES "${PROJECT_SOURCE_DIR}/apps/support/${header}"
    DESTINATION "${TARVANE_INCLUDE}/apps/support" COMPONENT dev)
endforeach()
install(DIRECTORY "${PROJECT_SOURCE_DIR}/platform/gnustep/include/"
  DESTINATION "${TARVANE_INCLUDE}/platform" COMPONENT dev)

set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/TarvaneLink")
install(EXPORT TarvaneLink NAMESPACE TarvaneLink:: FILE TarvaneLinkTargets.cmake
  DESTINATION "${package_folder}" COMPONENT dev)
set(view_bundle "${TARVANE_HOME}/lib/TarvaneLink.bundle")
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/TarvaneLinkConfig.cmake.in"
  "${CMAKE_CURRENT_BINARY_DIR}/TarvaneLinkConfig.cmake" INSTALL_DESTINATION "${package_folder}"
  PATH_VARS view_bundle)
write_basic_package_version_file("${CMAKE_CURRENT_BINARY_DIR}/TarvaneLinkConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/TarvaneLinkConfig.cmake"
  "${CMAKE_CURRENT_BINARY_DIR}/TarvaneLinkConfigVersion.cmake"
  DESTINATION "${package_folder}" COMPONENT dev)

# Sanitizers, where the libraries have them, have to be linked by whoever uses the libraries.
set(pkgconfig_sanitizers "")
if(TARVANE_SANITIZE)
  set(pkgconfig_sanitizers "-fsanitize=${TARVANE_SANITIZE}")
endif()
file(RELATIVE_PATH pkgconfig_up "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
foreach(name IN ITEMS tarvane-link tarvane-link-plug-in)
  configure_file("${CMAKE_CURRENT_LIST_DIR}/${name}.pc.in"
    "${CMAKE_CURRENT_BINARY_DIR}/${name}.pc" @ONLY)
  install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${name}.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT dev)
endforeach()
