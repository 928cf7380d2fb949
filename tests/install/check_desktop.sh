#!/usr/bin/env bash
# check_desktop.sh SOURCE_FOLDER: what desktops read of the player is well formed, and names what is there.
set -euo pipefail
cd "$1/packaging/desktop"
if command -v desktop-file-validate >/dev/null; then
    desktop-file-validate pxvis-player.desktop
fi
if command -v appstreamcli >/dev/null; then
    appstreamcli validate --no-net org.pxvis.Player.metainfo.xml
fi
icon=$(sed -n 's/^Icon=//p' pxvis-player.desktop)
for size in 16x16 32x32 48x48 64x64 128x128 256x256 512x512; do
    file=icons/hicolor/$size/apps/$icon.png
    # The size stands in a PNG's bytes 16 to 23.
    found=$(od -An -j16 -N8 -tu4 --endian=big "$file" | awk '{ print $1 "x" $2 }')
    [ "$found" = $size ] || { echo "check_desktop: $file is $found" >&2 && exit 1; }
done
[ -f "icons/hicolor/scalable/apps/$icon.svg" ]
