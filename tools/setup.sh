# shellcheck shell=bash disable=SC2034
# Sourced by ./run and ./test: makes sure that the packages are there. Works on Debian 12; elsewhere it
# says what is needed and goes on.

PXVIS_PACKAGES="g++ cmake ninja-build pkg-config ccache
    gettext libhwy-dev libspdlog-dev libkissfft-dev libcli11-dev libpango1.0-dev libgdk-pixbuf-2.0-dev webp-pixbuf-loader
    qt6-base-dev libxcb1-dev libxcb-shm0-dev libxcb-shape0-dev libepoxy-dev libegl-dev libgl1-mesa-dri libegl-mesa0
    libcurl4-openssl-dev libarchive-dev zlib1g-dev libsqlite3-dev
    libgstreamer1.0-dev libgstreamer-plugins-base1.0-dev
    gstreamer1.0-plugins-base gstreamer1.0-plugins-good gstreamer1.0-plugins-ugly gstreamer1.0-libav
    gstreamer1.0-alsa
    fonts-dejavu-core"
PXVIS_TEST_PACKAGES="doctest-dev clang-format clang libclang-rt-14-dev python3
    xvfb xdotool openbox libx11-dev dbus-daemon pulseaudio pulseaudio-utils lintian desktop-file-utils appstream"

# need_packages ASSUME_YES PACKAGE...
need_packages() {
    local yes=$1 missing="" package
    shift
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        echo "This system has no apt. pxvis needs what Debian calls: $*"
        return 0
    fi
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" ||
            missing="$missing $package"
    done
    [ -n "$missing" ] || return 0
    echo "These packages are missing:$missing"
    local root=""
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "Install them as root, then start again: apt-get install$missing" >&2
            return 1
        fi
        root=sudo
    fi
    if [ "$yes" != yes ] && [ -t 0 ]; then
        local answer
        read -r -p "Install them now? [Y/n] " answer
        case "$answer" in
            "" | [yY]*) ;;
            *) return 1 ;;
        esac
    fi
    $root apt-get -o DPkg::Lock::Timeout=300 update -qq || return 1
    # shellcheck disable=SC2086
    $root env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=300 install -y -qq \
        --no-install-recommends $missing >/dev/null
}
