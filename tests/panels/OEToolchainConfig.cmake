# Stands for the file of this name in a Yocto kit: all it knows is in the environment. CMake takes the
# compiler, its flags and its sysroot from CC and CXX.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR $ENV{OECORE_TARGET_ARCH})
set(CMAKE_SYSROOT $ENV{OECORE_TARGET_SYSROOT})
set(CMAKE_FIND_ROOT_PATH $ENV{OECORE_TARGET_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf) # Debian's folders
# For three builds of a test: soon, rather than fast.
set(CMAKE_CXX_FLAGS_RELEASE -O0 CACHE STRING "")
set(TOVIK_PRECOMPILE ON)
