#!/usr/bin/env bash
# check_folders.sh SOURCE_FOLDER: which folders an installation may be configured with.
set -euo pipefail

# The folders that come out, or the error.
folders() {
    cmake -DCMAKE_INSTALL_PREFIX=/opt/a -DCMAKE_INSTALL_BINDIR=bin -DCMAKE_INSTALL_LIBDIR=lib \
        -DCMAKE_INSTALL_DATADIR=share -DCMAKE_INSTALL_LOCALEDIR=share/locale "$@" -DPXVIS_PRINT_FOLDERS=ON \
        -P "$source/cmake/InstallFolders.cmake" 2>&1 | tr -s '\n ' ' '
}

expect() {
    local pattern=$1 got
    shift
    got=$(folders "$@") || true
    # shellcheck disable=SC2254
    case "$got" in
        $pattern) ;;
        *)
            echo "check_folders: $*: $got" >&2
            exit 1
            ;;
    esac
}

source=$1
expect "*bin lib/pxvis share/pxvis share/locale*"
expect "*lib/x86_64-linux-gnu/pxvis*" -DCMAKE_INSTALL_LIBDIR=lib/x86_64-linux-gnu/
expect "*usr/games lib/pxvis*" -DCMAKE_INSTALL_BINDIR=/opt/a/usr/./games
for folder in /usr/bin /opt/a . .. ../bin ""; do
    expect "*CMAKE_INSTALL_BINDIR is $folder, but pxvis finds its files*" "-DCMAKE_INSTALL_BINDIR=$folder"
done
