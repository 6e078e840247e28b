#!/usr/bin/env bash
# Makes a Debian of 32 bit with Wine, in which programs for Windows in 32 bit run, once for each version, as libraries.sh
# does with the libraries, and prints its folder:
#   cmake/windows/wine32.sh
# Its packages come from where this machine has its own. It takes a right to mount, hence root; where it cannot be made it
# says why and ends with 1. What is mounted for making it is seen by nobody else and goes with the processes that make it.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
architecture=x86
. "$here/building.sh"

cannot() {
  echo "No Wine of 32 bit: $1" >&2
  exit 1
}
# apart COMMAND...: with mounts and processes of its own, which end with it
apart() { unshare --mount --pid --fork --kill-child --mount-proc "$@"; }

[ "$(id -u)" -eq 0 ] || cannot "only root can make a system of its own for it."
command -v debootstrap > /dev/null || cannot "there is no debootstrap here."
# A daemon's container may be refused what its root can do elsewhere.
apart true 2> /dev/null || cannot "nothing can be mounted here."

# X and fonts are this machine's own; odbc32 hands on to drivers of its own width.
packages=(wine32 libodbc2 tdsodbc libxcursor1 libxfixes3 libxi6 libxinerama1 libxrandr2 libxrender1)
begin x86-wine "$(version_of wine64)" "$0"

# Where apt's sources have Debian's main archive from.
find_archive() {
  list_sources
  codename=$(. /etc/os-release && echo "${VERSION_CODENAME:-}")
  archive=$(apt_with_sources indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Sources' |
    awk -v release="$codename" '$2 == release && $3 == "main" && !found { found = $1 } END { print found }')
  [ -n "$archive" ] || echo "The sources of apt name no archive of Debian $codename."
  [ -n "$archive" ]
}
bootstrap() {
  apart debootstrap --arch=i386 --variant=minbase --components=main "$codename" "$prefix/root" "$archive" &&
    # What can be made again need not be on the disk at once, and nobody reads its pages.
    echo force-unsafe-io > "$prefix/root/etc/dpkg/dpkg.cfg.d/quick" &&
    printf 'path-exclude=/usr/share/%s/*\n' doc info locale man > "$prefix/root/etc/dpkg/dpkg.cfg.d/small" &&
    cp /etc/hosts "$prefix/root/etc/hosts"
}
inside() {
  apart sh -c 'mount --bind /proc "$1/proc" && shift && exec chroot "$@"' sh "$prefix/root" "$prefix/root" \
    /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
    ${http_proxy:+http_proxy="$http_proxy"} "$@"
}
install() {
  inside apt-get -q -o Acquire::Languages=none update &&
    inside apt-get -q -y --no-install-recommends install "${packages[@]}"
}
clean() {
  inside apt-get clean && rm -rf "$prefix/root/var/lib/apt/lists" "$prefix"/root/var/log/*
}

echo "Making a Debian of 32 bit for Wine, once" >&2
mkdir "$prefix"
step find "its archive" find_archive
step make "Debian $codename" bootstrap
step install Wine install
step clean up clean
step try Wine inside /usr/lib/wine/wine --version
finish
