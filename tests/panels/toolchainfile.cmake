# Stands for the file of this name in a Buildroot kit: it finds all else from where it lies.
get_filename_component(host "${CMAKE_CURRENT_LIST_DIR}/../.." REALPATH)
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_C_COMPILER "${host}/bin/arm-buildroot-linux-gnueabihf-gcc")
set(CMAKE_CXX_COMPILER "${host}/bin/arm-buildroot-linux-gnueabihf-g++")
set(CMAKE_SYSROOT "${host}/arm-buildroot-linux-gnueabihf/sysroot")
set(CMAKE_FIND_ROOT_PATH "${CMAKE_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf) # Debian's folders
# For three builds of a test: soon, rather than fast.
set(CMAKE_CXX_FLAGS_RELEASE -O0 CACHE STRING "")
set(TOVIK_PRECOMPILE ON)
set(CMAKE_CXX_FLAGS_INIT "-Wno-psabi")
