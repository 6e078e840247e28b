# Compiler settings shared by every target, and the functions that declare targets.
#
#   vicenter_library(NAME SOURCES ... LINKS ...)   a static library, warnings as errors
#   vicenter_program(NAME SOURCES ... LINKS ...)   an executable
#   vicenter_gtest(NAME SOURCES ... LINKS ...)     a GoogleTest program, one test of CTest
#   vicenter_window_plugins(NAME)                  what a static Qt loads while running, linked in instead

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
# What uses libvicenter.so need not be linked anew because it was.
set(CMAKE_LINK_DEPENDS_NO_SHARED ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Dev CACHE STRING "Build type" FORCE)
endif()
# Dev: what a test run on a small machine needs: quick to compile, assertions kept, line numbers in stacks.
set(CMAKE_C_FLAGS_DEV "-O1 -g1" CACHE STRING "" FORCE)
set(CMAKE_CXX_FLAGS_DEV "-O1 -g1" CACHE STRING "" FORCE)
if(WIN32)  # each program holds its libraries: with line numbers a hundred MB
  set(CMAKE_C_FLAGS_DEV "-O1" CACHE STRING "" FORCE)
  set(CMAKE_CXX_FLAGS_DEV "-O1" CACHE STRING "" FORCE)
  # Beside a system library found by its path CMake would else let the compiler's own come as DLLs.
  set(CMAKE_LINK_SEARCH_START_STATIC ON)
  set(CMAKE_LINK_SEARCH_END_STATIC ON)
endif()
set(CMAKE_EXE_LINKER_FLAGS_DEV "" CACHE STRING "" FORCE)
set(CMAKE_SHARED_LINKER_FLAGS_DEV "" CACHE STRING "" FORCE)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
  set(CMAKE_C_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
endif()

add_library(vicenter_settings INTERFACE)
target_include_directories(vicenter_settings INTERFACE "${CMAKE_SOURCE_DIR}")
target_compile_options(vicenter_settings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough
  -Wcast-qual -Werror)
# GCC 12 at -O3 takes "a" + text for overlapping memory (GCC bug 105651); nothing else here can.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(vicenter_settings INTERFACE -Wno-restrict)
endif()
if(VICENTER_SANITIZE)
  target_compile_options(vicenter_settings INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(vicenter_settings INTERFACE -fsanitize=address,undefined)
endif()

# A change in a low folder links half of the programs anew (CONTRIBUTING.md).
find_program(MOLD_PROGRAM mold)
if(MOLD_PROGRAM AND NOT WIN32)  # it links no programs for Windows
  target_link_options(vicenter_settings INTERFACE -fuse-ld=mold)
endif()

if(VICENTER_FUZZ)
  # Coverage of the libraries is what steers a fuzzer; a program adds the driver itself.
  target_compile_options(vicenter_settings INTERFACE -fsanitize=fuzzer-no-link)
  target_link_options(vicenter_settings INTERFACE -fsanitize=fuzzer-no-link)
endif()

if(VICENTER_TIDY)
  find_program(CLANG_TIDY_PROGRAM NAMES clang-tidy-14 clang-tidy REQUIRED)
  # The compile commands are the other compiler's.
  set(CMAKE_CXX_CLANG_TIDY "${CLANG_TIDY_PROGRAM};--quiet;--extra-arg=-Wno-unknown-warning-option")
endif()

# Where programs for Windows see the files of the machine that builds them.
set(VICENTER_TEST_DRIVE "")
if(WIN32 AND CMAKE_CROSSCOMPILING)
  set(VICENTER_TEST_DRIVE "Z:")
endif()
# For programs of 32 bit Wine stands in a system of its own, of which cmake/windows/wine32.sh tells the folder.
if(WIN32 AND CMAKE_CROSSCOMPILING AND CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(VICENTER_WINE32 "$ENV{VICENTER_WINE32}" CACHE PATH "A Debian of 32 bit with Wine")
  set(VICENTER_WINE "")
  set(CMAKE_CROSSCOMPILING_EMULATOR "")
  if(VICENTER_WINE32)
    foreach(name wine wineserver32)
      configure_file("${CMAKE_CURRENT_LIST_DIR}/windows/in_wine32.in" "${CMAKE_BINARY_DIR}/wine32/${name}" @ONLY)
    endforeach()
    set(VICENTER_WINE "${CMAKE_BINARY_DIR}/wine32/wine")
    set(VICENTER_WINESERVER "${CMAKE_BINARY_DIR}/wine32/wineserver32")
  endif()
endif()
if(VICENTER_WINE)
  configure_file("${CMAKE_CURRENT_LIST_DIR}/windows/wine.in" "${CMAKE_BINARY_DIR}/wine" @ONLY)
  set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_BINARY_DIR}/wine")
endif()
# The tests' place and language. Windows knows time zones by their distance alone, and looks for libraries on a path;
# windows that are drawn into memory there take their fonts from a folder, which under Wine is the building machine's.
# Wine keeps the variables of Qt and the path for programs of that machine; those behind "WINE" it hands on instead.
set(VICENTER_TEST_ENVIRONMENT "TZ=Asia/Shanghai;LC_ALL=C.UTF-8;QT_QPA_PLATFORM=offscreen")
if(WIN32)
  set(VICENTER_TEST_ENVIRONMENT "TZ=CST-8;WINEQT_QPA_PLATFORM=offscreen"
    "WINEQT_QPA_FONTDIR=${VICENTER_TEST_DRIVE}/usr/share/fonts/opentype/noto"
    "WINEPATH=${VICENTER_TEST_DRIVE}${CMAKE_BINARY_DIR}/front")
endif()

function(vicenter_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC vicenter_settings ${ARG_LINKS})
endfunction()

function(vicenter_program name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE vicenter_settings ${ARG_LINKS})
endfunction()

function(vicenter_gtest name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  find_package(GTest REQUIRED)
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE vicenter_settings vicenter_test_paths ${ARG_LINKS} GTest::gmock GTest::gtest_main)
  if(VICENTER_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Under the sanitizers GCC 12 takes parts of std::regex for uninitialized.
    target_compile_options(${name} PRIVATE -Wno-maybe-uninitialized)
  endif()
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # At -O3 GCC 12 takes the growth of a list of one argument for an overflow.
    target_compile_options(${name} PRIVATE $<$<CONFIG:Release>:-Wno-stringop-overflow>)
  endif()
  # A process per test would cost more than the tests themselves.
  add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
  set_tests_properties(${name} PROPERTIES ENVIRONMENT "${VICENTER_TEST_ENVIRONMENT}")
endfunction()

# The system's windows, those that are drawn into memory, and paper; pictures in other formats than PNG are nowhere.
function(vicenter_window_plugins name)
  if(NOT WIN32)
    return()
  endif()
  qt_import_plugins(${name}
    INCLUDE_BY_TYPE platforms Qt6::QWindowsIntegrationPlugin Qt6::QOffscreenIntegrationPlugin
    EXCLUDE_BY_TYPE imageformats generic)
endfunction()

# Tests of what is otherwise where there are windows: `ctest --label-regex qt` runs them alone.
function(vicenter_label_qt)
  foreach(test ${ARGN})
    set_property(TEST ${test} APPEND PROPERTY LABELS qt)
  endforeach()
endfunction()
