# Cross toolchain: MinGW-w64, win32 thread model, 64 bit.
#
# The win32 thread model is needed, not a preference: with the posix one every load of the DLL loses a TLS index for
# good (winpthreads never frees its key), and LoadLibrary fails near the 1,084th load in one process.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

set(VELUI_TARGET_TRIPLE x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${VELUI_TARGET_TRIPLE}-gcc-win32)
set(CMAKE_CXX_COMPILER ${VELUI_TARGET_TRIPLE}-g++-win32)
set(CMAKE_RC_COMPILER ${VELUI_TARGET_TRIPLE}-windres)
set(CMAKE_DLLTOOL ${VELUI_TARGET_TRIPLE}-dlltool CACHE FILEPATH "dlltool of the target")
set(CMAKE_OBJCOPY ${VELUI_TARGET_TRIPLE}-objcopy CACHE FILEPATH "objcopy of the target")
set(CMAKE_STRIP ${VELUI_TARGET_TRIPLE}-strip CACHE FILEPATH "strip of the target")

set(CMAKE_FIND_ROOT_PATH /usr/${VELUI_TARGET_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Programs of the target run through the project's own wrapper, which keeps Wine's prefix under build/.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tools/wine.sh)
