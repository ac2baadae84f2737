#!/bin/sh
# Checks that every PHP file of a produced folder parses, and every script when node is there.
#   lint.sh FOLDER...
# Prints the files that fail with their message; status 1 when there is one, or when there was no PHP file at all.
set -u
[ $# -gt 0 ] || { echo "usage: lint.sh FOLDER..." >&2; exit 2; }
jobs=$(nproc 2>/dev/null || echo 2)
count=$(find "$@" -name '*.php' -type f | wc -l)
[ "$count" -gt 0 ] || { echo "no PHP files in $*" >&2; exit 1; }

find "$@" -name '*.php' -type f -print0 | xargs -0 -P "$jobs" -n 1 sh -c '
  out=$(php -n -d display_errors=1 -d error_reporting=-1 -l "$1" 2>&1) || { echo "$1"; echo "$out"; exit 1; }
  # A deprecation or warning of the parser counts as well.
  case $out in "No syntax errors detected"*) ;; *) echo "$1"; echo "$out"; exit 1 ;; esac
' sh || status=1

if command -v node >/dev/null 2>&1; then
  find "$@" -name '*.js' -type f -print0 | xargs -0 -r -P "$jobs" -n 1 sh -c '
    out=$(node --check "$1" 2>&1) || { echo "$1"; echo "$out"; exit 1; }
  ' sh || status=1
fi
[ "${status:-0}" = 0 ] && echo "$count PHP files parse"
exit "${status:-0}"
