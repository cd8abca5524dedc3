# Debian's arm64: ARMv8, 64 bits.
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(TOVIK_TRIPLET aarch64-linux-gnu)
set(TOVIK_EMULATOR_NAME qemu-aarch64-static)
set(TOVIK_MACHINE EM_AARCH64)
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
