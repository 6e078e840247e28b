# Shell functions shared by ./run, ./test and ./test-windows; sourced from the project's root.

# The user's, where nobody has logged in.
export HOME="${HOME:-$(echo ~)}"

install_packages() {
  bash cmake/install-packages.sh "$@"
}

# build_preset PRESET [TARGET]: quiet when nothing changed; the whole output when something fails.
build_preset() {
  local preset=$1 target=${2:-all} log=build/$1.log
  mkdir -p build
  if [ ! -f "build/$preset/build.ninja" ]; then
    echo "Configuring ($preset)" >&2
    cmake --preset "$preset" > "$log" 2>&1 || { cat "$log" >&2; return 1; }
  fi
  if [ -t 2 ]; then
    cmake --build "build/$preset" --target "$target" >&2
  else
    echo "Building ($preset)" >&2
    cmake --build "build/$preset" --target "$target" > "$log" 2>&1 || { cat "$log" >&2; return 1; }
  fi
}
