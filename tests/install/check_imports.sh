#!/usr/bin/env bash
# check_imports.sh FOLDER: the engine's libraries in FOLDER use none of the C library's functions whose last bits
# differ from processor to processor.
set -euo pipefail
status=0
for library in kernels expression engine2d components; do
    archive=$1/libpx_$library.a
    [ -f "$archive" ] || { echo "$archive isn't there" >&2; exit 1; }
    found=$(nm -A --undefined-only "$archive" |
        grep -E ' U (a?(sin|cos|tan)h?|atan2|exp|exp2|expm1|log|log2|log10|log1p|pow|sincos|hypot|cbrt|fmod|fma)[fl]?$' || true)
    if [ -n "$found" ]; then
        printf '%s\n' "$found" >&2
        status=1
    fi
done
exit $status
