# Debian's armhf: ARMv7 with VFPv3, 32 bits, hard float.
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(TOVIK_TRIPLET arm-linux-gnueabihf)
set(TOVIK_EMULATOR_NAME qemu-arm-static)
set(TOVIK_MACHINE EM_ARM)
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
