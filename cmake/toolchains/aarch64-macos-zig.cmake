# Cross-compiles for macOS on Apple silicon from another system, without Apple's SDK: the zig compiler
# brings a C++ compiler, a linker and the system's headers. It finds out whether the sources compile
# and link there; the program for users is built on macOS itself.
# scripts/install-zig.sh puts the compiler into build/tools first.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR arm64)

set(CMAKE_CXX_COMPILER "${CMAKE_CURRENT_LIST_DIR}/zig-c++")
set(CMAKE_AR "${CMAKE_CURRENT_LIST_DIR}/zig-ar" CACHE FILEPATH "")
set(CMAKE_RANLIB "${CMAKE_CURRENT_LIST_DIR}/zig-ranlib" CACHE FILEPATH "")
# CMake asks for one on this system, and uses it only when installing, which nobody does here.
set(CMAKE_INSTALL_NAME_TOOL false CACHE STRING "")

# The wrapper names the target; there is no SDK for CMake to name.
set(CMAKE_OSX_SYSROOT "" CACHE STRING "")
set(CMAKE_OSX_ARCHITECTURES "" CACHE STRING "")
set(CMAKE_OSX_DEPLOYMENT_TARGET "" CACHE STRING "")

# Nothing of this machine's own libraries and headers is meant for the other system.
set(CMAKE_FIND_ROOT_PATH "${CMAKE_CURRENT_LIST_DIR}/nothing-of-this-machine")
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# CLI11 is headers only, so this machine's will do.
set(CLI11_DIR "${CMAKE_CURRENT_LIST_DIR}/cli11" CACHE PATH "")
