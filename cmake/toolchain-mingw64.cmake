# Cross build for 64-bit Windows with Debian's mingw-w64 compiler (the posix
# thread model, which std::thread and std::mutex need). The runtime is linked
# statically, so the .exe files need no DLL beside them, and Wine runs the
# test programs for ctest.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(ODB2VRN_MINGW_PREFIX x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${ODB2VRN_MINGW_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${ODB2VRN_MINGW_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER ${ODB2VRN_MINGW_PREFIX}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${ODB2VRN_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")

find_program(ODB2VRN_WINE NAMES wine wine64)
if(ODB2VRN_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${ODB2VRN_WINE})
endif()

# Tests are listed when ctest runs, under the Wine prefix that the test script
# prepares, not at build time under whatever prefix the user has.
set(CMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE PRE_TEST)
