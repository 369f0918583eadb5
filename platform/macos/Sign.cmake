# platform_sign(<target> <path> [options of codesign...])
# Signs what the target makes, once it is made; nothing without TARVANE_SIGN_AS.
set(TARVANE_SIGN_AS "" CACHE STRING
  "The identity that codesign signs by, '-' for none in particular; empty to leave it out")

function(platform_sign target path)
  if(TARVANE_SIGN_AS STREQUAL "")
    return()
  endif()
  set(hardened --options runtime --timestamp)
  if(TARVANE_SIGN_AS STREQUAL "-")
    set(hardened)
  endif()
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND codesign --force --sign "${TARVANE_SIGN_AS}" ${hardened} ${ARGN} "${path}" VERBATIM)
endfunction()
