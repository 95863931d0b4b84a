# Builds for Windows with Debian's MinGW. The libraries lie in the folder that the
# environment variable TARVEL_WINDOWS_PREFIX names; scripts/windows fills it.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(prefix $ENV{TARVEL_WINDOWS_PREFIX})
if(NOT prefix)
    set(prefix $ENV{HOME}/.cache/tarvel/windows)
endif()
set(TARVEL_WINDOWS_PREFIX ${prefix} CACHE PATH "Folder of the libraries for Windows")

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH ${TARVEL_WINDOWS_PREFIX} /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

# Qt's own tools run on the machine that builds.
set(QT_HOST_PATH /usr CACHE PATH "")
set(QT_HOST_PATH_CMAKE_DIR /usr/lib/x86_64-linux-gnu/cmake CACHE PATH "")

set(ENV{PKG_CONFIG_LIBDIR} ${TARVEL_WINDOWS_PREFIX}/lib/pkgconfig)
set(ENV{PKG_CONFIG_PATH} "")
set(PKG_CONFIG_ARGN --static CACHE STRING "Static libraries name what they need themselves")

# What was built runs under Wine, but not while the libraries ask what they have.
find_program(TARVEL_WINE NAMES wine64 wine HINTS /usr/lib/wine DOC "Wine, or empty")
set(CMAKE_CROSSCOMPILING_EMULATOR ${TARVEL_WINE})
