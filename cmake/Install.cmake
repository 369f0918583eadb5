# Where things go when they are installed, each as part of a component:
#
# runtime  the view's bundle, and the platform's libraries, which our programs and those that others
#          build run with
# tools    the programs, with their manual pages, completions and what a desktop shows of them
# lv2      the plug-in, in a folder that needs none of the others (plugin/lv2)
# dev      what others build with: headers, libraries, the descriptions for CMake and pkg-config
include(GNUInstallDirs)

# The programs, libraries and bundles stand to one another as in the build, in a folder of their own
# where programs of others share theirs with ours; what a user runs is then a link to it.
if(APPLE)
  set(TARVANE_HOME ".")
else()
  set(TARVANE_HOME "${CMAKE_INSTALL_LIBDIR}/tarvane-link")
endif()
set(TARVANE_ZSH_COMPLETIONS "${CMAKE_INSTALL_DATADIR}/zsh/site-functions" CACHE STRING
  "Where zsh finds completions; Debian's own packages put theirs into share/zsh/vendor-completions")
set(TARVANE_INCLUDE "${CMAKE_INSTALL_INCLUDEDIR}/tarvane-link")

# tarvane_install_program(<target>)
# The program, its resources and its manual page, where there is one.
function(tarvane_install_program target)
  install(TARGETS ${target}
    RUNTIME DESTINATION "${TARVANE_HOME}/bin" COMPONENT tools
    BUNDLE DESTINATION "${TARVANE_HOME}/bin" COMPONENT tools)
  if(NOT APPLE)
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/../lib")
    tarvane_install_link(${target})
    tarvane_install_completions(${target})
  endif()
  get_target_property(resources ${target} TARVANE_RESOURCES)
  if(resources)
    install(FILES ${resources} DESTINATION "${TARVANE_HOME}/bin/Resources/${target}"
      COMPONENT tools)
  endif()
  if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/${target}.1")
    tarvane_install_manual(${target} tools)
  endif()
endfunction()

# tarvane_install_manual(<program> <component>)
# The manual page beside the program's sources, compressed.
function(tarvane_install_manual target component)
  set(page "${CMAKE_CURRENT_SOURCE_DIR}/${target}.1")
  set(compressed "${CMAKE_CURRENT_BINARY_DIR}/${target}.1.gz")
  add_custom_command(OUTPUT "${compressed}" COMMAND gzip -9nc "${page}" > "${compressed}"
    DEPENDS "${page}")
  add_custom_target(${target}_manual ALL DEPENDS "${compressed}")
  install(FILES "${compressed}" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1"
    COMPONENT ${component})
endfunction()

function(tarvane_install_link target)
  file(RELATIVE_PATH program "/${CMAKE_INSTALL_BINDIR}" "/${TARVANE_HOME}/bin/${target}")
  file(MAKE_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/links")
  file(CREATE_LINK "${program}" "${CMAKE_CURRENT_BINARY_DIR}/links/${target}" SYMBOLIC)
  install(FILES "${CMAKE_CURRENT_BINARY_DIR}/links/${target}"
    DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
endfunction()

# The program itself writes what shells need to complete its command line. What the platform leaves
# behind at its end is no fault of the build, where sanitizers look.
function(tarvane_install_completions target)
  set(folder "${CMAKE_CURRENT_BINARY_DIR}/completions")
  file(MAKE_DIRECTORY "${folder}")
  set(bash "${folder}/${target}")
  set(zsh "${folder}/_${target}")
  set(fish "${folder}/${target}.fish")
  set(commands)
  foreach(shell IN ITEMS bash zsh fish)
    list(APPEND commands COMMAND "${CMAKE_COMMAND}" -E env ASAN_OPTIONS=detect_leaks=0
      "$<TARGET_FILE:${target}>" --completions ${shell} > "${${shell}}")
  endforeach()
  add_custom_command(OUTPUT "${bash}" "${zsh}" "${fish}" ${commands} DEPENDS ${target})
  add_custom_target(${target}_completions ALL DEPENDS "${bash}" "${zsh}" "${fish}")
  install(FILES "${bash}" DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions"
    COMPONENT tools)
  install(FILES "${zsh}" DESTINATION "${TARVANE_ZSH_COMPLETIONS}" COMPONENT tools)
  install(FILES "${fish}" DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d"
    COMPONENT tools)
endfunction()
