# 64-bit Windows, with the compiler whose standard library has threads. Programs are linked with all
# that they need, so they run on any Windows, and under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

# Wine has its registry and drives below the build folder, changes nobody's own, and opens no window.
find_program(WINE wine64 PATHS /usr/lib/wine NO_CMAKE_FIND_ROOT_PATH)
set(CMAKE_CROSSCOMPILING_EMULATOR
    "${CMAKE_COMMAND};-E;env;--unset=DISPLAY;WINEPREFIX=${CMAKE_BINARY_DIR}/wine;WINEDEBUG=-all;${WINE}")
