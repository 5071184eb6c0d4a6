# 32-bit ARM without a floating-point unit, the class of machine that the system was made for.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_CXX_COMPILER arm-linux-gnueabi-g++)
set(CMAKE_CXX_FLAGS_INIT "-mfloat-abi=soft")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
