#!/usr/bin/env bash
# Installs the packages of packages.txt that this machine lacks. Says nothing and takes no time when none is missing.
#   install-packages.sh [MACHINE]   those of packages-windows.txt as well, for x64 or x86
set -euo pipefail
machine=${1:-}
root="$(dirname "$0")/.."
lists=("$root/packages.txt")
[ -z "$machine" ] || lists+=("$root/packages-windows.txt")

wanted=()
while read -r package only _; do
  case "$package" in ''|'#'*) continue ;; esac
  case "$only" in x64|x86) [ "$only" = "$machine" ] || continue ;; esac
  wanted+=("$package")
done < <(cat "${lists[@]}")

if ! command -v dpkg-query >/dev/null; then
  echo "This is no Debian system: install what corresponds to ${lists[*]} by hand." >&2
  exit 0
fi
missing=()
for package in "${wanted[@]}"; do
  status=$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null || true)
  [ "$status" = "install ok installed" ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

echo "Installing ${missing[*]}" >&2
as_root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "Run as root, or install sudo." >&2; exit 1; }
  as_root=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -qq >&2
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
