#!/usr/bin/env bash
# check_exports.sh FOLDER: each library in FOLDER shows the names that its users load, and no others.
set -euo pipefail
folder=$1
status=0
check() {
    local library=$1 wanted found
    shift
    wanted=$(printf '%s\n' "$@" | sort)
    found=$(nm -D --defined-only "$folder/$library" | awk '{ print $3 }' | sort)
    if [ "$found" != "$wanted" ]; then
        printf '%s shows\n%s\nand should show\n%s\n' "$library" "$found" "$wanted" >&2
        status=1
    fi
}
check libpxvis.so CreateVisualization DllRegisterServer DllUnregisterServer
check OQImage.so GetOQImageAppDLL
check OQReader.so CreateGenericReaderDLL OQReaderInitialize OQReaderUninitialize
check OQTools.so GetOQToolsDLL
exit $status
