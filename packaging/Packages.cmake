# What `cpack -G DEB` makes: tarvane-link, tarvane-link-tools and libtarvane-link-dev.
set(CPACK_PACKAGE_NAME tarvane-link)
set(CPACK_PACKAGE_VENDOR "The Tarvane Link developers")
set(CPACK_PACKAGE_CONTACT "Tarvane Link developers <developers@tarvane.org>")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_COMPONENTS_ALL runtime lv2 tools dev)
set(same_version "tarvane-link (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")

set(CPACK_DEBIAN_LINK_PACKAGE_NAME tarvane-link)
set(CPACK_DEBIAN_LINK_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_LINK_PACKAGE_DEPENDS "gnustep-back0.29-cairo | gnustep-back0.29, gnustep-base-runtime")
set(CPACK_DEBIAN_LINK_PACKAGE_RECOMMENDS "fonts-dejavu-core")
set(CPACK_DEBIAN_LINK_PACKAGE_SUGGESTS "tarvane-link-tools")
set(CPACK_DEBIAN_LINK_DESCRIPTION "plug-in that links a workstation to the audio editor Tarvane
Captures what a track of a digital audio workstation plays, and hands each
take to Tarvane, which places it on a track of its own timeline. The plug-in
is for LV2 hosts, in mono, stereo and with 8 channels.
.
This package has the plug-in, its view, and the libraries that both stand on.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME tarvane-link-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${same_version}")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "programs to run, try and test a link to Tarvane
A reference server that takes what the plug-in captures, a small host of its
view, and tools that find out what is wrong between the two, hold other
makers' servers and plug-ins against what the view needs of them, and look
into sessions and recordings.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libtarvane-link-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
  "${same_version}, libgnustep-gui-dev, gobjc++, libsndfile1-dev, pkg-config")
set(CPACK_DEBIAN_DEV_PACKAGE_SUGGESTS "tarvane-link-tools, cmake")
set(CPACK_DEBIAN_DEV_DESCRIPTION "headers and libraries of the link to Tarvane
What servers, plug-ins and tools of other makers are built with: sessions, the
commands to a server, the capture core and the property contract, with
descriptions for CMake and pkg-config.")

# What Debian wants to find in each package.
foreach(file IN ITEMS CHANGELOG.md packaging/changelog.Debian)
  cmake_path(GET file FILENAME name)
  string(REPLACE "CHANGELOG.md" "changelog" name "${name}")
  set(compressed "${CMAKE_CURRENT_BINARY_DIR}/${name}.gz")
  add_custom_command(OUTPUT "${compressed}"
    COMMAND gzip -9nc "${PROJECT_SOURCE_DIR}/${file}" > "${compressed}"
    DEPENDS "${PROJECT_SOURCE_DIR}/${file}")
  list(APPEND changelogs "${compressed}")
endforeach()
add_custom_target(tarvane_changelogs ALL DEPENDS ${changelogs})
foreach(component IN ITEMS runtime tools dev)
  set(package ${CPACK_DEBIAN_LINK_PACKAGE_NAME})
  if(NOT component STREQUAL runtime)
    string(TOUPPER ${component} upper)
    set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  endif()
  install(FILES copyright ${changelogs}
    DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${package}" COMPONENT ${component})
endforeach()

include(CPack)
cpack_add_component_group(link)
cpack_add_component(runtime GROUP link)
cpack_add_component(lv2 GROUP link)
cpack_add_component_group(tools)
cpack_add_component(tools GROUP tools)
cpack_add_component_group(dev)
cpack_add_component(dev GROUP dev)
