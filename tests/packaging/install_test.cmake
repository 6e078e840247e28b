# Installs the build to a prefix, and builds and runs the C++ example against it, as another project would.
include("${CMAKE_CURRENT_LIST_DIR}/checks.cmake")
file(REMOVE_RECURSE "${FOLDER}")
set(prefix "${FOLDER}/prefix")

run(ignored "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${prefix}")
check_program("${prefix}")

# The example as it was installed, which names no path of its own.
set(example "${prefix}/share/doc/vicenter/examples/cpp_client")
run(ignored "${CMAKE_COMMAND}" -S "${example}" -B "${FOLDER}/example" -G "${GENERATOR}"
    "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER}"
    "-DCMAKE_CXX_FLAGS=-Wall -Wextra -Wpedantic -Werror")
file(STRINGS "${FOLDER}/example/CMakeCache.txt" found REGEX "^vicenter_DIR:")
expect_same("the package that was found" "${found}" "vicenter_DIR:PATH=${prefix}/${LIBRARY_FOLDER}/cmake/vicenter")
run(ignored "${CMAKE_COMMAND}" --build "${FOLDER}/example")
run(answer "${FOLDER}/example/cpp_client" "[1, {\"凭证\": \"\\ud83d\\ude00\"}, null]")
expect_same("the example's answer" "${answer}" "an array of 3 values\n[1,{\"凭证\":\"😀\"},null]\n")

# The host of docs/hosting.md, as pkg-config lets one build it; it opens a window where there are windows.
file(READ "${SOURCE}/docs/hosting.md" page)
string(REGEX MATCH "```c\n(.*)\n```\n\n`cc host.c" ignored "${page}")
file(WRITE "${FOLDER}/host.c" "${CMAKE_MATCH_1}\n")
find_program(pkg_config pkg-config REQUIRED)
run(flags "${CMAKE_COMMAND}" -E env "PKG_CONFIG_PATH=${prefix}/${LIBRARY_FOLDER}/pkgconfig"
    "${pkg_config}" --cflags --libs vicenter)
separate_arguments(flags UNIX_COMMAND "${flags}")
run(ignored "${COMPILER}" -x c -std=c11 -Wall -Werror "${FOLDER}/host.c" -x none -o "${FOLDER}/host" ${flags}
    "-Wl,-rpath,${prefix}/${LIBRARY_FOLDER}")
expect_file("${FOLDER}/host")

# A version that is not installed is refused.
file(WRITE "${FOLDER}/newer/CMakeLists.txt"
  "cmake_minimum_required(VERSION 3.25)\nproject(newer CXX)\nfind_package(vicenter 2 REQUIRED)\n")
execute_process(COMMAND "${CMAKE_COMMAND}" -S "${FOLDER}/newer" -B "${FOLDER}/newer/build" -G "${GENERATOR}"
                        "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_COMPILER=${COMPILER}"
                OUTPUT_QUIET ERROR_VARIABLE refusal RESULT_VARIABLE status)
if(status EQUAL 0)
  message(FATAL_ERROR "find_package(vicenter 2) was content with ${VERSION}")
endif()
expect_contains("the refusal" "${refusal}" "version: ${VERSION}")
file(REMOVE_RECURSE "${FOLDER}")
