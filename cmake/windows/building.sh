# Shell functions shared by libraries.sh and qt.sh, which build what stands in a folder of the user's cache, once for
# each version, compiler and recipe; sourced by them with `architecture` and `here` set.
toolchain="$here/../toolchains/windows-$architecture.cmake"
case "$architecture" in
  x64) machine=x86_64 ;;
  x86) machine=i686 ;;
  *) echo "x64 or x86?" >&2; exit 2 ;;
esac
cache="${XDG_CACHE_HOME:-$HOME/.cache}/vicenter"
unset VICENTER_WINDOWS_QT  # what the toolchain file else would take from

# version_of PACKAGE: of the source that an installed package was made from
version_of() { dpkg-query -W -f '${source:Version}' "$1"; }

# begin NAME VERSIONS RECIPE...: prints the folder and ends where it is there already; else sets `folder`, `work`,
# `prefix` and `log` for building it. One at a time; the second finds what the first has built. The folder to build in
# is the same one every time, so that a compiler cache knows the sources again. With `only_if_there` nothing is built.
begin() {
  local name=$1 versions=$2 key
  shift 2
  key=$({
    "$machine-w64-mingw32-g++-posix" --version | head -n 1
    echo "$versions"
    cat "$here/building.sh" "$@" "$toolchain" "$here/../toolchains/windows.cmake"
  } | sha256sum | cut -c 1-16)
  folder="$cache/windows-$name-$key"
  end_if_there
  [ -z "${only_if_there:-}" ] || exit 0
  mkdir -p "$cache"
  exec 9> "$cache/building-$name.lock"
  flock 9
  end_if_there
  work="$cache/building-$name"
  rm -rf "$work"
  mkdir "$work"
  trap 'rm -rf "$work"' EXIT
  prefix="$work/prefix"
  log="$cache/windows-$name.log"
  : > "$log"
}
end_if_there() {
  if [ -f "$folder/complete" ]; then
    echo "$folder"
    exit 0
  fi
}
# The prefix moves once more.
finish() {
  touch "$prefix/complete"
  rm -rf "$folder"
  mv "$prefix" "$folder"
  echo "$folder"
}

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
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" -DCMAKE_INSTALL_LIBDIR=lib "${launcher[@]}" "$@" &&
    cmake --build "$work/build-$name" &&
    cmake --install "$work/build-$name"
}
