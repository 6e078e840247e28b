#!/usr/bin/env bash
# Builds the libraries for Windows from Debian's source packages, static and optimised, once for each version and
# compiler, and prints the folder that holds them:
#   cmake/windows/libraries.sh x64|x86
# They stand in the user's cache folder, so that a fresh clone finds them. The versions are those of the packages that
# the build for Linux uses; ./test-windows has installed what is needed. Qt has a folder of its own: qt.sh.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
architecture=$1
. "$here/building.sh"

icu=$(version_of libicu-dev)
libzip=$(version_of libzip-dev)
sqlite=$(version_of libsqlite3-dev)
begin "$architecture" \
  "$icu $libzip $sqlite $(version_of googletest) $(version_of rapidjson-dev) $(version_of libcli11-dev)" \
  "$0" "$here"/*/CMakeLists.txt "$here/icu/data.txt"

library() {  # NAME SOURCE [OPTION...]
  build "$@" -DCMAKE_C_FLAGS_RELEASE="-O2 -DNDEBUG" -DCMAKE_CXX_FLAGS_RELEASE="-O2 -DNDEBUG"
}
one_file_of_sqlite() {
  mkdir "$work/sqlite"
  cd "$work/sqlite"
  make -f "$(source_of sqlite3)/Makefile.linux-gcc" TOP="$(source_of sqlite3)" sqlite3.c
}
headers() {
  mkdir -p "$prefix/include" "$prefix/lib"
  cp -r /usr/include/rapidjson /usr/include/CLI "$prefix/include/"
}

echo "Building the libraries for Windows ($architecture), once" >&2
step list sources list_sources
for package in "icu $icu" "libzip $libzip" "sqlite3 $sqlite"; do
  step fetch "$package" fetch $package
done
step copy headers headers
step join sqlite3 one_file_of_sqlite
step build sqlite3 library sqlite "$here/sqlite" -DSQLITE="$work/sqlite"
step build libzip library libzip "$(source_of libzip)" -DBUILD_SHARED_LIBS=OFF -DENABLE_COMMONCRYPTO=OFF \
  -DENABLE_GNUTLS=OFF -DENABLE_MBEDTLS=OFF -DENABLE_OPENSSL=OFF -DENABLE_WINDOWS_CRYPTO=OFF -DENABLE_BZIP2=OFF \
  -DENABLE_LZMA=OFF -DBUILD_TOOLS=OFF -DBUILD_REGRESS=OFF -DBUILD_EXAMPLES=OFF -DBUILD_DOC=OFF
step build googletest library googletest /usr/src/googletest
step build icu library icu "$here/icu" -DICU="$(source_of icu)/source"
sed -i "s|$prefix|$folder|g" "$prefix"/lib/pkgconfig/*.pc
finish
