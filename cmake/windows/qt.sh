#!/usr/bin/env bash
# Builds Qt for Windows from Debian's source package, static and optimised, as libraries.sh does with the others:
#   cmake/windows/qt.sh x64|x86 [--there]
# prints the folder that holds it; --there prints nothing where it would have to be built first, which takes twenty
# minutes of two cores. Its tools are those of the package that the build for Linux uses.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
architecture=$1
only_if_there=${2:-}
. "$here/building.sh"

qt=$(version_of qt6-base-dev)
begin "$architecture-qt" "$qt" "$0"

features() { printf -- "-DFEATURE_%s=$1 " "${@:2}"; }

echo "Building Qt for Windows ($architecture), once" >&2
step list sources list_sources
step fetch "qt6-base $qt" fetch qt6-base "$qt"
# Widgets, paper and tests; what it wants of other libraries it has itself. Without Direct2D DirectWrite is left half built.
# Whole: its parts alone do not install.
step build qt build qt "$(source_of qt6-base)" -DCMAKE_FIND_PACKAGE_TARGETS_GLOBAL=ON \
  -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR="/usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)/cmake" \
  -DBUILD_SHARED_LIBS=OFF -DQT_BUILD_EXAMPLES=OFF -DQT_BUILD_TESTS=OFF -DINPUT_opengl=no \
  $(features OFF sql network dbus icu vulkan concurrent xml tabletevent glib zstd pkg_config \
    direct2d directwrite directwrite3 \
    system_zlib system_png system_jpeg system_freetype system_harfbuzz system_pcre2 system_doubleconversion) \
  $(features ON testlib printsupport)
finish
