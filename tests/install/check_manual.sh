#!/usr/bin/env bash
# check_manual.sh PROGRAM MANUAL: the manual page has each command with all its options, and no others, and is well formed.
# A program without commands has options only.
set -euo pipefail
program=$1
manual=$2
export ASAN_OPTIONS=detect_leaks=0
failed=0

fail() {
    echo "check_manual: $*" >&2
    failed=1
}

# Every command has --help, which the manual tells once for all.
long_options() { grep -oE -- '--[a-z][a-z-]*' | grep -vx -- '--help' | sort -u; }

compare() {
    local difference
    difference=$(diff <(echo "$2") <(echo "$3") | grep '^[<>]' || true)
    [ -z "$difference" ] || fail "$1: only in the program (<), only in the manual (>): $difference"
}

options_in_items() { grep '^\.It' | sed 's/Fl Fl /--/g' | long_options || true; }

commands=$("$program" --help | sed -n '/^Subcommands:/,$s/^  \([a-z]*\) .*/\1/p')
[ -n "$commands" ] || compare options "$("$program" --help | long_options)" "$(options_in_items <"$manual")"
for command in $commands; do
    in_program=$("$program" "$command" --help | long_options || true)
    in_manual=$(awk -v name="$command" '/^\.S[hs] /{inside = $2 == name} inside' "$manual" | options_in_items)
    [ -n "$(sed -n "/^\.Ss $command\b/p" "$manual")" ] || fail "$command is missing"
    compare "$command" "$in_program" "$in_manual"
done
for option in $("$program" --help | long_options); do
    grep -q -- "Fl Fl ${option#--}" "$manual" || fail "$option is missing"
done

if command -v groff >/dev/null; then
    warnings=$(groff -ww -mandoc -Tutf8 "$manual" 2>&1 >/dev/null || true)
    [ -z "$warnings" ] || fail "$warnings"
fi
exit $failed
