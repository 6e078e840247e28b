# Makes the Debian package, reads what it says of itself and runs the program out of it. The package is unpacked,
# not installed: a test leaves the machine as it is.
include("${CMAKE_CURRENT_LIST_DIR}/checks.cmake")
file(REMOVE_RECURSE "${FOLDER}")

run(ignored "${CPACK}" --config "${BUILD}/CPackConfig.cmake" -G DEB -B "${FOLDER}")
file(GLOB package "${FOLDER}/vicenter_${VERSION}_*.deb")
list(LENGTH package count)
expect_same("the number of packages" "${count}" "1")

foreach(field Package Version Section Maintainer)
  run(${field} dpkg-deb -f "${package}" ${field})
endforeach()
expect_same("Package" "${Package}" "vicenter\n")
expect_same("Version" "${Version}" "${VERSION}\n")
expect_contains("Maintainer" "${Maintainer}" "@")
run(depends dpkg-deb -f "${package}" Depends)
# By the libraries that are linked, and by what is loaded while running.
foreach(name libc6 libstdc++6 libqt6widgets6 qt6-qpa-plugins libsqlite3-0 libicu fonts-noto-cjk)
  expect_contains("Depends" "${depends}" "${name}")
endforeach()
foreach(name asan ubsan libgtest libbenchmark)
  string(FIND "${depends}" "${name}" at)
  expect_same("${name} in Depends" "${at}" "-1")
endforeach()
run(ignored dpkg-deb -e "${package}" "${FOLDER}/control")
file(READ "${FOLDER}/control/shlibs" shlibs)
expect_contains("shlibs" "${shlibs}" "libvicenter 1 vicenter")

# Everything belongs to root and stands below /usr; nothing is writable by others.
run(listing dpkg-deb -c "${package}")
string(REGEX MATCHALL "[^\n]+" lines "${listing}")
foreach(line IN LISTS lines)
  if(NOT line MATCHES "^(-rw-r--r--|-rwxr-xr-x|drwxr-xr-x|lrwxrwxrwx) root/root +[0-9]+ [^ ]+ [^ ]+ \\./(usr/|$)")
    message(FATAL_ERROR "Not as a package should be: ${line}")
  endif()
endforeach()

# What Debian asks of a package: not an error and not a warning.
run(ignored "${LINTIAN}" --allow-root --fail-on error,warning "${package}")

run(ignored dpkg-deb -x "${package}" "${FOLDER}/root")
check_program("${FOLDER}/root/usr")
file(GLOB library "${FOLDER}/root/usr/${LIBRARY_FOLDER}/libvicenter.so.1")
expect_file("${library}")
file(GLOB_RECURSE targets "${FOLDER}/root/usr/*/vicenterTargets*.cmake")
foreach(file IN LISTS targets)
  file(READ "${file}" text)
  string(FIND "${text}" "${BUILD}" at)
  expect_same("the build folder in ${file}" "${at}" "-1")
endforeach()
file(REMOVE_RECURSE "${FOLDER}")
