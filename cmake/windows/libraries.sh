#!/usr/bin/env bash
# Builds the libraries for Windows from Debian's source packages, static and optimised, once for each version and
# compiler, and prints the folder that holds them:
#   cmake/windows/libraries.sh x64|x86
# They stand in the user's cache folder, so that a fresh clone finds them. The versions are those of the packages that
# the build for Linux uses; ./test-windows has installed what is needed.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
architecture=$1
toolchain="$here/../toolchains/windows-$architecture.cmake"
case "$architecture" in
  x64) machine=x86_64 ;;
  x86) machine=i686 ;;
  *) echo "x64 or x86?" >&2; exit 2 ;;
esac
cache="${XDG_CACHE_HOME:-$HOME/.cache}/vicenter"

# version_of PACKAGE: of the source that an installed package was made from
version_of() { dpkg-query -W -f '${source:Version}' "$1"; }
icu=$(version_of libicu-dev)
libzip=$(version_of libzip-dev)
sqlite=$(version_of libsqlite3-dev)

key=$({
  "$machine-w64-mingw32-g++-posix" --version | head -n 1
  echo "$icu $libzip $sqlite $(version_of googletest) $(version_of rapidjson-dev) $(version_of libcli11-dev)"
  cat "$0" "$here"/*/CMakeLists.txt "$here/icu/data.txt" "$toolchain" "$here/../toolchains/windows.cmake"
} | sha256sum | cut -c 1-16)
folder="$cache/windows-$architecture-$key"
if [ -f "$folder/complete" ]; then
  echo "$folder"
  exit 0
fi

# One at a time; the second finds what the first has built. The folder is the same one every time, so that a compiler
# cache knows the sources again.
mkdir -p "$cache"
exec 9> "$cache/building-$architecture.lock"
flock 9
if [ -f "$folder/complete" ]; then
  echo "$folder"
  exit 0
fi
work="$cache/building-$architecture"
rm -rf "$work"
mkdir "$work"
trap 'rm -rf "$work"' EXIT
prefix="$work/prefix"
log="$cache/windows-$architecture.log"
: > "$log"
step() {
  echo "  $1 $2" >&2
  shift 2
  "$@" >> "$log" 2>&1 || { tail -n 40 "$log" >&2; echo "The whole output is in $log" >&2; exit 1; }
}

# The system's own sources with those of its packages beside them, in lists of our own.
apt_with_sources() {
  apt-get -qq -o Dir::Etc::sourcelist=/dev/null -o Dir::Etc::sourceparts="$work/apt/parts" \
    -o Dir::State::lists="$work/apt/lists" -o Dir::Cache="$work/apt/cache" -o APT::Sandbox::User=root \
    -o Acquire::Languages=none "$@"
}
list_sources() {
  local codename
  codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
  mkdir -p "$work/apt/parts" "$work/apt/lists/partial" "$work/apt/cache/archives/partial"
  cat /etc/apt/sources.list /etc/apt/sources.list.d/*.list 2>/dev/null |
    sed -n "s/^deb \(.* $codename.*\)/deb-src \1/p" > "$work/apt/parts/lines.list" || true
  local file
  for file in /etc/apt/sources.list.d/*.sources; do
    if grep -qE "^Suites:.*\b$codename\b" "$file" 2>/dev/null; then
      sed 's/^Types:.*/Types: deb-src/' "$file" > "$work/apt/parts/$(basename "$file")"
    fi
  done
  apt_with_sources update
}
fetch() {  # NAME VERSION; the newest one where the archive no longer has that
  cd "$work"
  apt_with_sources source "$1=$2" || apt_with_sources source "$1"
}
source_of() { find "$work" -maxdepth 1 -type d -name "$1-*" | head -n 1; }

launcher=()
if command -v ccache > /dev/null; then
  launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi
build() {  # NAME SOURCE [OPTION...]
  local name=$1 source=$2
  shift 2
  VICENTER_WINDOWS_LIBRARIES="$prefix" cmake -S "$source" -B "$work/build-$name" -G Ninja --toolchain "$toolchain" \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_C_FLAGS_RELEASE="-O2 -DNDEBUG" -DCMAKE_CXX_FLAGS_RELEASE="-O2 -DNDEBUG" \
    -DCMAKE_INSTALL_PREFIX="$prefix" -DCMAKE_INSTALL_LIBDIR=lib "${launcher[@]}" "$@"
  cmake --build "$work/build-$name"
  cmake --install "$work/build-$name"
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
step build sqlite3 build sqlite "$here/sqlite" -DSQLITE="$work/sqlite"
step build libzip build libzip "$(source_of libzip)" -DBUILD_SHARED_LIBS=OFF -DENABLE_COMMONCRYPTO=OFF \
  -DENABLE_GNUTLS=OFF -DENABLE_MBEDTLS=OFF -DENABLE_OPENSSL=OFF -DENABLE_WINDOWS_CRYPTO=OFF -DENABLE_BZIP2=OFF \
  -DENABLE_LZMA=OFF -DBUILD_TOOLS=OFF -DBUILD_REGRESS=OFF -DBUILD_EXAMPLES=OFF -DBUILD_DOC=OFF
step build googletest build googletest /usr/src/googletest
step build icu build icu "$here/icu" -DICU="$(source_of icu)/source"
# The prefix moves once more.
sed -i "s|$prefix|$folder|g" "$prefix"/lib/pkgconfig/*.pc
touch "$prefix/complete"
rm -rf "$folder"
mv "$prefix" "$folder"
echo "$folder"
