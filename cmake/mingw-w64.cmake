# Cross-compiling for 64-bit Windows with the MinGW-w64 compiler of the
# system's packages (Debian: g++-mingw-w64-x86-64-posix).  The posix variant
# gives std::thread through winpthreads.  Programs are linked statically, so
# that the .exe files need no DLLs beside them: not the compiler's runtime,
# not winpthreads.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(TESSERAMILL_MINGW_PREFIX x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${TESSERAMILL_MINGW_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${TESSERAMILL_MINGW_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER ${TESSERAMILL_MINGW_PREFIX}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${TESSERAMILL_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")

# The built programs run on this machine under Wine.
find_program(TESSERAMILL_WINE NAMES wine wine64)
if(TESSERAMILL_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${TESSERAMILL_WINE})
endif()
