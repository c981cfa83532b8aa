#!/bin/sh
# exports_test.sh LIBRARY LIST: a shared library shows what the list names, and nothing else.
set -eu
shown=$(nm -D --defined-only "$1" | sed -nE 's/^[0-9a-f]+ [A-Z] ([^@]*)@.*/\1/p' | LC_ALL=C sort)
printf '%s\n' "$shown" | diff - "$2"
