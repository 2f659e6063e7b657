# Installs the Debian packages that a command needs. To be sourced.

packages_build="g++ cmake ninja-build pkg-config libcairo2-dev libpango1.0-dev librsvg2-dev libsdl2-dev libsqlite3-dev libsystemd-dev libcli11-dev libgtest-dev libgmock-dev"
packages_run="dbus-daemon fontconfig fonts-dejavu-core fonts-droid-fallback"
packages_check="$packages_run libbenchmark-dev appstream desktop-file-utils util-linux xdotool xvfb"
# For scripts/long-proofs.sh alone.
packages_fuzz="clang libclang-rt-14-dev"
# For scripts/check-package.sh alone.
packages_package="debootstrap dpkg-dev file util-linux"

# need_packages NAME...: does nothing, and quickly, when all are there.
need_packages() {
    missing=""
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" || missing="$missing $package"
    done
    [ -n "$missing" ] || return 0
    echo "installing:$missing"
    as_root=""
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "these packages are missing, and there is no sudo to install them with:$missing" >&2
            return 1
        fi
        as_root=sudo
    fi
    export DEBIAN_FRONTEND=noninteractive
    $as_root apt-get update -qq
    # shellcheck disable=SC2086 # a list of words
    $as_root apt-get install -y -qq --no-install-recommends $missing >/dev/null
}
