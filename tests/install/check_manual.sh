#!/usr/bin/env bash
# check_manual.sh PXVIS MANUAL: the manual page has each command with all its options, and no others, and is well formed.
set -euo pipefail
pxvis=$1
manual=$2
export ASAN_OPTIONS=detect_leaks=0
failed=0

fail() {
    echo "check_manual: $*" >&2
    failed=1
}

# Every command has --help, which the manual tells once for all.
long_options() { grep -oE -- '--[a-z][a-z-]*' | grep -vx -- '--help' | sort -u; }

commands=$("$pxvis" --help | sed -n '/^Subcommands:/,$s/^  \([a-z]*\) .*/\1/p')
[ -n "$commands" ] || fail "no commands in --help"
for command in $commands; do
    in_program=$("$pxvis" "$command" --help | long_options || true)
    in_manual=$(awk -v name="$command" '/^\.S[hs] /{inside = $2 == name} inside && /^\.It/' "$manual" |
        sed 's/Fl Fl /--/g' | long_options || true)
    [ -n "$(sed -n "/^\.Ss $command\b/p" "$manual")" ] || fail "$command is missing"
    difference=$(diff <(echo "$in_program") <(echo "$in_manual") | grep '^[<>]' || true)
    [ -z "$difference" ] || fail "$command: only in the program (<), only in the manual (>): $difference"
done
for option in $("$pxvis" --help | long_options); do
    grep -q -- "Fl Fl ${option#--}" "$manual" || fail "$option is missing"
done

if command -v groff >/dev/null; then
    warnings=$(groff -ww -mandoc -Tutf8 "$manual" 2>&1 >/dev/null || true)
    [ -z "$warnings" ] || fail "$warnings"
fi
exit $failed
