# platform_add_resources(<program> FILES...)
# Files that the program finds in its main bundle, which it is made into.
function(platform_add_resources target)
  target_sources(${target} PRIVATE ${ARGN})
  set_source_files_properties(${ARGN} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
  set_target_properties(${target} PROPERTIES MACOSX_BUNDLE TRUE)
endfunction()
