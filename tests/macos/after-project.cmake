# Packages of this machine say that their headers are in /usr/include, where the system's lie too. CMake
# leaves out what a compiler searches anyway.
list(APPEND CMAKE_OBJCXX_IMPLICIT_INCLUDE_DIRECTORIES /usr/include)
