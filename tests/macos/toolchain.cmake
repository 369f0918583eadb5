# Builds for macOS with what Debian has (clang, lld, the headers of libc++) against the declarations in
# sdk/, so that it shows when a change breaks the build over there. What comes out never runs: there
# is nothing behind the declarations.
#
# TARVANE_MACOS_PROCESSOR: arm64 or x86_64.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_OSX_SYSROOT "${CMAKE_CURRENT_LIST_DIR}/sdk")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TARVANE_MACOS_PROCESSOR)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(IBTOOL "${CMAKE_CURRENT_LIST_DIR}/ibtool" CACHE FILEPATH "")

find_program(CMAKE_C_COMPILER clang-14 REQUIRED)
find_program(CMAKE_CXX_COMPILER clang++-14 REQUIRED)
find_program(CMAKE_OBJCXX_COMPILER clang++-14 REQUIRED)
find_program(CMAKE_AR llvm-ar-14 REQUIRED)
find_program(CMAKE_RANLIB llvm-ranlib-14 REQUIRED)
find_program(CMAKE_INSTALL_NAME_TOOL llvm-install-name-tool-14 REQUIRED)

# The libraries of others, as a package manager would have put them there: the headers of this machine,
# without the system's that lie beside them.
get_property(trying GLOBAL PROPERTY IN_TRY_COMPILE)
if(NOT trying)
  set(neighbours "${CMAKE_BINARY_DIR}/neighbours")
  set(ENV{PKG_CONFIG_LIBDIR} "${neighbours}/pkgconfig")
  set(Boost_NO_BOOST_CMAKE ON)
  set(Boost_INCLUDE_DIR "${neighbours}/include")
  set(SQLiteCpp_DIR "${neighbours}")
endif()
if(NOT trying AND NOT EXISTS "${neighbours}/pkgconfig")
  file(MAKE_DIRECTORY "${neighbours}/include" "${neighbours}/lib")
  file(GLOB headers /usr/include/CLI /usr/include/boost /usr/include/nlohmann /usr/include/SQLiteCpp
    /usr/include/sndfile.h /usr/include/sqlite3.h /usr/include/pugi*.hpp
    /usr/include/lua5.4/*.h /usr/include/lua5.4/*.hpp
    /usr/include/*-linux-gnu/lua5.4-deb-multiarch.h)
  foreach(header IN LISTS headers)
    cmake_path(GET header FILENAME name)
    file(CREATE_LINK "${header}" "${neighbours}/include/${name}" SYMBOLIC)
  endforeach()
  foreach(library sndfile lua5.4 pugixml SQLiteCpp sqlite3)
    file(WRITE "${neighbours}/lib/lib${library}.tbd"
      "--- !tapi-tbd\ntbd-version: 4\ntargets: [ x86_64-macos, arm64-macos ]\n"
      "install-name: /usr/local/lib/lib${library}.dylib\n...\n")
    file(WRITE "${neighbours}/pkgconfig/${library}.pc"
      "Name: ${library}\nDescription: ${library}\nVersion: 5.4\n"
      "Cflags: -I${neighbours}/include\nLibs: -L${neighbours}/lib -l${library}\n")
  endforeach()
  file(WRITE "${neighbours}/SQLiteCppConfig.cmake"
    "add_library(SQLiteCpp INTERFACE IMPORTED)\n"
    "target_link_libraries(SQLiteCpp INTERFACE -L${neighbours}/lib -lSQLiteCpp -lsqlite3)\n")
endif()

# clang 14 looks for no other C++ library than its own's predecessor unless told, and its own does not
# know which macOS has what.
set(CMAKE_C_FLAGS_INIT "-target ${TARVANE_MACOS_PROCESSOR}-apple-macos13.4")
foreach(language CXX OBJCXX)
  set(CMAKE_${language}_FLAGS_INIT "-target ${TARVANE_MACOS_PROCESSOR}-apple-macos13.4 \
-stdlib=libc++ -D_LIBCPP_DISABLE_AVAILABILITY -isystem ${neighbours}/include")
endforeach()
foreach(kind EXE MODULE SHARED)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-fuse-ld=lld -undefined dynamic_lookup")
endforeach()
set(CMAKE_PROJECT_TarvaneLink_INCLUDE "${CMAKE_CURRENT_LIST_DIR}/after-project.cmake")
