#!/usr/bin/env bash
# check_install.sh BUILD_FOLDER SOURCE_FOLDER: installs the build under a staging folder and uses what lies there, in a home
# where nothing is, from two places. Environment: GST_REGISTRY.
set -euo pipefail
build=$1
source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset PXVIS_KERNELS XDG_DATA_DIRS XDG_CONFIG_DIRS
# The system libraries keep memory for good.
export ASAN_OPTIONS=detect_leaks=0

fail() {
    echo "check_install: $*" >&2
    exit 1
}

value_of() { sed -n "s/^$1:[A-Z]*=//p" "$build/CMakeCache.txt"; }

mkdir "$work/home" "$work/elsewhere"
export HOME=$work/home XDG_CONFIG_HOME=$work/home XDG_DATA_HOME=$work/home XDG_CACHE_HOME=$work/cache
cd "$work/elsewhere"

DESTDIR=$work/stage cmake --install "$build" --prefix /usr --strip >/dev/null
prefix=$work/stage/usr
modules=$prefix/$(value_of CMAKE_INSTALL_LIBDIR)/pxvis
[ -f "$prefix/include/pxvis/IVisAudioData.h" ] || fail "the headers are missing"
[ -n "$(find "$prefix" -path '*/doc/*/LICENSES/*')" ] || fail "the licences are missing"
for module in libpxvis.so OQTools.so OQReader.so; do
    [ -f "$modules/$module" ] || fail "$module is missing"
done
library=$(PKG_CONFIG_PATH=$prefix/$(value_of CMAKE_INSTALL_LIBDIR)/pkgconfig pkg-config --variable=library pxvis)
[ "$(realpath "$library")" = "$(realpath "$modules/libpxvis.so")" ] || fail "pkg-config names $library"
[ -n "$(find "$prefix" -path '*/de/LC_MESSAGES/pxvis.mo')" ] || fail "the translations are missing"
[ -n "$(find "$prefix" -name pxvis.1)" ] || fail "the manual page is missing"
# Sanitizers put paths of their own into programs.
if ! grep -q '^PXVIS_SANITIZE:STRING=.' "$build/CMakeCache.txt"; then
    leaks=$(grep -rlF -e "$source" -e "$build" "$work/stage" || true)
    [ -z "$leaks" ] || fail "these know where they were built: $leaks"
fi

# A picture of the demo song by a script that only its name tells.
use() {
    "$1/bin/pxvis" render "$1/share/pxvis/demo/pxvis-demo.opus" -o "$work/$2.png" --script Undertow --size 160x90 \
        --from 16 --to 17 --at 16.5
    [ -s "$work/$2.png" ]
}

use "$prefix" staged || fail "it makes no picture"
mv "$work/stage" "$work/moved"
prefix=$work/moved/usr
modules=${modules/stage/moved}
use "$prefix" moved || fail "it makes no picture once it was moved"
cmp "$work/staged.png" "$work/moved.png"

# What it used was its own.
mv "$prefix/share/pxvis/Visualizations" "$work/aside"
if use "$prefix" no-scripts 2>"$work/errors"; then fail "it has scripts from elsewhere"; fi
grep -q "Undertow: no such script" "$work/errors" || fail "other error: $(cat "$work/errors")"
mv "$work/aside" "$prefix/share/pxvis/Visualizations"
rm "$modules/OQImage.so"
if use "$prefix" no-module 2>"$work/errors"; then fail "it has modules from elsewhere"; fi
grep -q "the image module is missing" "$work/errors" || fail "other error: $(cat "$work/errors")"
[ -z "$(ls -A "$HOME")" ] || fail "it left things in the home: $(ls -A "$HOME")"
