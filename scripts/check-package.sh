#!/bin/sh
# Builds the Debian packages and tries them in a clean Debian 12: install, verify the units, open the simulated unit's
# modem, remove, and look that nothing is left. Needs root for the clean system, which is kept in build/clean-root.
set -eu
cd "$(dirname "$0")/.."
. scripts/packages.sh
# shellcheck disable=SC2086 # lists of words
need_packages $packages_build $packages_package
if [ "$(id -u)" -ne 0 ]; then
    exec sudo "$0" "$@"
fi

clean=$PWD/build/clean-root
mkdir -p "$clean" out
log=$PWD/out/check-package.log
trap '[ $? -eq 0 ] || { tail -n 30 "$log" >&2; echo "== package: failed, see $log" >&2; }' EXIT
exec 3>&1 >"$log" 2>&1
say() { echo "== package: $*" | tee /dev/fd/3; }

say "building"
cmake --preset package
cmake --build --preset package -j "$(nproc)"
rm -f build/package/*.deb
(cd build/package && cpack -B .)

mirror=$(sed -n 's/^URIs: *//p; s/^deb \(\[[^]]*\] \)\?\([^ ]*\) .*/\2/p' /etc/apt/sources.list \
    /etc/apt/sources.list.d/debian.* 2>/dev/null | head -n 1)
if [ ! -e "$clean/base/etc/debian_version" ]; then
    say "making a clean system"
    rm -rf "$clean/base"
    debootstrap --variant=minbase bookworm "$clean/base.part" "${mirror:-http://deb.debian.org/debian}"
    mv "$clean/base.part" "$clean/base"
fi
rm -rf "$clean/root"
cp -a "$clean/base" "$clean/root"
cp build/package/*.deb scripts/try-package.sh "$clean/root/tmp/"
cp /etc/resolv.conf "$clean/root/etc/"
version=$(sed -n 's/^project(varkel VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)

say "trying it there"
# Its own mounts and processes: whatever the trial leaves running ends with it.
unshare --mount --pid --ipc --fork sh -eu -c '
    mount -t proc proc "$1/proc"
    mount -t tmpfs shm "$1/dev" -o mode=755
    mkdir "$1/dev/pts" "$1/dev/shm"
    mount -t devpts devpts "$1/dev/pts" -o newinstance,ptmxmode=0666,mode=620
    mount -t tmpfs shm "$1/dev/shm" -o mode=1777
    ln -s pts/ptmx "$1/dev/ptmx"
    ln -s /proc/self/fd "$1/dev/fd"
    for device in null zero urandom random tty; do
        : >"$1/dev/$device"
        mount --bind /dev/$device "$1/dev/$device"
    done
    exec chroot "$1" sh /tmp/try-package.sh "$2"
' sh "$clean/root" "$version"
cp "$clean/root/tmp/call.png" out/check-package.png
rm -rf "$clean/root"
say "installed, opened the modem and was removed without a trace"
