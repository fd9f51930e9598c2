# 32-bit Windows from Linux: MinGW-w64 with posix threads, and the libraries of
# the folder that BRISORA_WINDOWS_SDK names (tools/windows/sdk.sh provides it).

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)

set(BRISORA_WINDOWS_SDK "$ENV{BRISORA_WINDOWS_SDK}" CACHE PATH "Folder of the Windows libraries")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES BRISORA_WINDOWS_SDK)
if(NOT EXISTS ${BRISORA_WINDOWS_SDK}/lib/cmake/Qt5)
    message(FATAL_ERROR "BRISORA_WINDOWS_SDK names no folder of Windows libraries; "
                        "tools/build.sh windows provides one")
endif()

set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH ${BRISORA_WINDOWS_SDK} /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_PREFIX_PATH /)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tools/windows/run-under-wine.sh)
