#!/bin/sh
# Every text the sources hand to tr() has a German translation: a string that moves to another
# class is a new message to lupdate, and would otherwise show in English.
set -eu
lupdate=$1; src=$2; ts=$3
copy=$(mktemp -d); trap 'rm -rf "$copy"' EXIT
cp "$ts" "$copy/check.ts"
find "$src" \( -name '*.cpp' -o -name '*.h' \) ! -path '*/tests/*' ! -path '*/fake/*' > "$copy/sources"
"$lupdate" -silent -no-obsolete -extensions cpp,h @"$copy/sources" -ts "$copy/check.ts"
if grep -B3 'type="unfinished"' "$copy/check.ts" | grep '<source>'; then
    echo "Untranslated in $ts (run: cmake --build build --target quillon_lupdate, then translate)"
    exit 1
fi
