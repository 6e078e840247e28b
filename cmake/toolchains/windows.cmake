# Programs for Windows by Debian's mingw-w64 with POSIX threads; windows-x64.cmake and windows-x86.cmake set the
# machine. The libraries come from the folder that VICENTER_WINDOWS_LIBRARIES names (cmake/windows/libraries.sh
# builds them), Qt from that of VICENTER_WINDOWS_QT (cmake/windows/qt.sh), its tools from the building machine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER "${VICENTER_WINDOWS_MACHINE}-w64-mingw32-gcc-posix")
set(CMAKE_CXX_COMPILER "${VICENTER_WINDOWS_MACHINE}-w64-mingw32-g++-posix")
set(CMAKE_RC_COMPILER "${VICENTER_WINDOWS_MACHINE}-w64-mingw32-windres")

# Checks of the compiler configure a project of their own, which knows none of our variables.
foreach(folder VICENTER_WINDOWS_LIBRARIES VICENTER_WINDOWS_QT)
  list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ${folder})
  if(NOT ${folder})
    set(${folder} "$ENV{${folder}}")
  endif()
  set(${folder} "${${folder}}" CACHE PATH "Static libraries for Windows")
endforeach()

set(CMAKE_FIND_ROOT_PATH "${VICENTER_WINDOWS_LIBRARIES}" "/usr/${VICENTER_WINDOWS_MACHINE}-w64-mingw32")
if(VICENTER_WINDOWS_QT)
  list(APPEND CMAKE_FIND_ROOT_PATH "${VICENTER_WINDOWS_QT}")
  set(QT_HOST_PATH /usr CACHE PATH "Where Qt's tools are")
endif()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} "${VICENTER_WINDOWS_LIBRARIES}/lib/pkgconfig")
set(ENV{PKG_CONFIG_PATH} "")

# Windows 10 and its texts in UTF-16; ICU is linked into the program, and so is everything else but the system's DLLs.
set(CMAKE_C_FLAGS_INIT "-D_WIN32_WINNT=0x0A00 -DUNICODE -D_UNICODE -DU_STATIC_IMPLEMENTATION")
set(CMAKE_CXX_FLAGS_INIT "${CMAKE_C_FLAGS_INIT}")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
# Of the two the import library of a DLL would be found first.
set(ZLIB_LIBRARY "/usr/${VICENTER_WINDOWS_MACHINE}-w64-mingw32/lib/libz.a" CACHE FILEPATH "zlib")
find_program(VICENTER_WINE NAMES wine64 wine)
if(VICENTER_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR "${VICENTER_WINE}")
endif()
