# What the toolchains of Debian's cross compilers have in common. Included by armhf.cmake and
# arm64.cmake, which say for which processor; scripts/cross-test makes the sysroot and names it.
if(NOT TOVIK_SYSROOT)
  message(FATAL_ERROR "There is no sysroot: start scripts/cross-test, which makes one, or name one "
                      "with -DTOVIK_SYSROOT=DIR")
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TOVIK_SYSROOT)

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSROOT ${TOVIK_SYSROOT})
set(CMAKE_CXX_COMPILER ${TOVIK_TRIPLET}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${TOVIK_TRIPLET})

# Programs of the machine that builds, all else of the one that is built for.
set(CMAKE_FIND_ROOT_PATH ${TOVIK_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${TOVIK_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR}
    ${TOVIK_SYSROOT}/usr/lib/${TOVIK_TRIPLET}/pkgconfig:${TOVIK_SYSROOT}/usr/share/pkgconfig)

# Tests run in an emulator of the processor; so do the programs that they start, by a library that is
# preloaded and made beside the other test support.
find_program(TOVIK_EMULATOR ${TOVIK_EMULATOR_NAME} REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR ${TOVIK_EMULATOR} -L ${TOVIK_SYSROOT}
    -E LD_PRELOAD=${CMAKE_BINARY_DIR}/tests/support/libtovik_emulated_exec.so
    -E QT_PLUGIN_PATH=${TOVIK_SYSROOT}/usr/lib/${TOVIK_TRIPLET}/qt5/plugins)
