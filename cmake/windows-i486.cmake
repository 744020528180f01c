# The Windows edition: one static 32-bit program for Windows 95 to XP, on processors from the 486 on.
#
# The compiler with Windows' own threads: the one with POSIX threads imports functions that Windows 95 lacks.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i486)

set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-win32)
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-win32)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The headers show what Windows 95 with Internet Explorer 4 has. The templates of the standard library are compiled here, for
# this processor: its ready-made ones are for a younger one.
set(CMAKE_CXX_FLAGS_INIT
    "-march=i486 -mtune=i586 -D_WIN32_WINDOWS=0x0400 -D_WIN32_WINNT=0x0400 -D_WIN32_IE=0x0400 -DWINVER=0x0400 -D_GLIBCXX_EXTERN_TEMPLATE=0 -ffunction-sections -fdata-sections")
set(CMAKE_CXX_FLAGS_RELEASE_INIT "-Os -DNDEBUG")
set(CMAKE_CXX_FLAGS_RELEASE "-Os -DNDEBUG" CACHE STRING "")
# Windows 95 starts no program that asks for a younger subsystem. Sections that lie in the file as they do in memory are read only
# where they are used, and their memory is given back when it is short.
set(CMAKE_EXE_LINKER_FLAGS_INIT
    "-static -Wl,--gc-sections -Wl,--file-alignment=0x1000 -Wl,--major-os-version=4,--minor-os-version=0,--major-subsystem-version=4,--minor-subsystem-version=0")
