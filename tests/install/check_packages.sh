#!/usr/bin/env bash
# check_packages.sh BUILD_FOLDER: makes the Debian packages in a scratch folder, looks into them, and uses what they hold.
# Environment: GST_REGISTRY.
set -euo pipefail
build=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset XDG_DATA_DIRS XDG_CONFIG_DIRS

fail() {
    echo "check_packages: $*" >&2
    exit 1
}

(cd "$work" && cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work/made" >"$work/log" 2>&1) || fail "$(cat "$work/log")"
for package in "$work"/made/*.deb; do
    dpkg-deb --fsys-tarfile "$package" | tar -t | sed -n 's/^\.\(.*[^/]\)$/\1/p' >>"$work/packaged"
    dpkg-deb -x "$package" "$work/root"
done

# All that is installed is in one package, and in one only; and every package tells its licence and changes.
DESTDIR=$work/stage cmake --install "$build" --prefix /usr >/dev/null
(cd "$work/stage" && find . -not -type d | sed 's/^\.//; s/\/man1\/.*/&.gz/' | grep -vE '/doc/pxvis/LICENSES?(/|$)') |
    sort >"$work/installed"
grep -vE '/(copyright|changelog\.Debian\.gz)$' "$work/packaged" | sort >"$work/files"
difference=$(diff "$work/installed" "$work/files" | grep '^[<>]' || true)
[ -z "$difference" ] || fail "only installed (<), only packaged, or twice (>): $difference"

# A package's names, of those that shape what a user has to install.
holds() {
    local package=$1 file
    shift
    for file in "$@" "*/doc/$package/copyright" "*/doc/$package/changelog.Debian.gz"; do
        dpkg-deb --fsys-tarfile "$work/made/${package}_"*.deb | tar -t --wildcards "./usr/$file" >/dev/null 2>&1 ||
            fail "$package has no $file"
    done
}
depends() {
    local relation
    relation=$(dpkg-deb -f "$work/made/$1_"*.deb Depends)
    grep -qE "(^|, )$2" <<<"$relation" || fail "$1 does not depend on $2, but on $relation"
}
version=$(dpkg-deb -f "$work"/made/pxvis_*.deb Version)
holds pxvis bin/pxvis share/man/man1/pxvis.1.gz
holds pxvis-player bin/pxvis-player share/man/man1/pxvis-player.1.gz share/applications/pxvis-player.desktop \
    share/metainfo/org.pxvis.Player.metainfo.xml share/icons/hicolor/scalable/apps/pxvis.svg
holds libpxvis '*/pxvis/libpxvis.so'
holds pxvis-modules '*/pxvis/OQImage.so' '*/pxvis/OQTools.so' '*/pxvis/OQReader.so'
holds pxvis-data share/pxvis/demo/pxvis-demo.opus share/locale/de/LC_MESSAGES/pxvis.mo
holds libpxvis-dev include/pxvis/IOQVisualization.h '*/pkgconfig/pxvis.pc' '*/hosting.md' '*/xlib-host.cpp'
for relation in "pxvis pxvis-modules" "pxvis pxvis-data" "pxvis-player libpxvis" "libpxvis pxvis-modules" \
    "libpxvis pxvis-data" "libpxvis-dev libpxvis"; do
    depends "${relation% *}" "${relation#* } \(= $version\)"
done
depends pxvis gstreamer1.0-plugins-good
depends libpxvis libqt6widgets6
# A server that makes videos needs nothing of windows.
if dpkg-deb -f "$work"/made/pxvis_*.deb Depends | grep qt6; then fail "the command line needs Qt"; fi
if dpkg-deb -f "$work"/made/pxvis-modules_*.deb Depends | grep qt6; then fail "the modules need Qt"; fi
[ "$(dpkg-deb -f "$work"/made/pxvis-data_*.deb Architecture)" = all ] || fail "pxvis-data is of one architecture"

if command -v lintian >/dev/null; then
    lintian --fail-on error "$work"/made/*.deb 2>"$work/log" || fail "lintian finds errors"
fi
if command -v appstreamcli >/dev/null; then
    appstreamcli validate-tree --no-net "$work/root" >"$work/log" || fail "$(cat "$work/log")"
fi

mkdir "$work/home"
export HOME=$work/home XDG_CONFIG_HOME=$work/home XDG_DATA_HOME=$work/home XDG_CACHE_HOME=$work/home
cd "$work/home"
pxvis=$work/root/usr/bin/pxvis
[ "$("$pxvis" --version)" = "pxvis ${version%-*}" ] || fail "other version: $("$pxvis" --version)"
"$pxvis" list scripts | grep Undertow >/dev/null || fail "it has no scripts"
"$pxvis" analyze "$work/root/usr/share/pxvis/demo/pxvis-demo.opus" --from 1 --to 1.1 >"$work/records"
"$pxvis" frames --script Undertow --size 32x18 <"$work/records" >"$work/frames"
[ "$(stat -c %s "$work/frames")" -eq $((6 * 32 * 18 * 4)) ] || fail "it draws $(stat -c %s "$work/frames") bytes"
