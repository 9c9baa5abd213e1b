#!/usr/bin/env bash
# Builds the installer OUT.msi from the staged folder with Debian's wixl.
# Usage: msi.sh STAGED_FOLDER ICON VERSION OUT.msi
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
staged="$(cd "$1" && pwd)" icon="$(realpath "$2")" version="$3" msi="$4"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
# Every staged file, each a component of its own under INSTALLDIR; their
# identifiers follow their paths, so an upgrade matches them up.
name="$(basename "$staged")"
(cd "$staged/.." && find "$name" -type f | LC_ALL=C sort |
   wixl-heat -p "$name/" --component-group ProgramFiles --var var.Staged --directory-ref INSTALLDIR \
             --win64) >"$work/files.wxs"
python3 "$here/msi-folders.py" "$work/files.wxs" "$work/folders.wxs" >"$work/folders.sql"
# wixl takes sources by paths relative to its descriptors.
cp "$here/yunqi-reports.wxs" "$work/"
ln -s "$staged" "$work/staged"
cp "$icon" "$work/yunqi-reports.ico"
out="$(cd "$(dirname "$msi")" && pwd)/$(basename "$msi")"
# wixl converts the tables' texts to the code page of the language that
# WINDOWS_LANGUAGE names, whatever the descriptor says: Chinese, as the
# descriptor's code page 936.
(cd "$work" && WINDOWS_LANGUAGE=zh_CN wixl -a x64 -D Version="$version" -D Staged=staged -D Icon=yunqi-reports.ico \
   -D Win64=yes -o "$out" yunqi-reports.wxs files.wxs folders.wxs)
# Nor does it mark the database's code page, which the installer reads the
# texts by; an English Windows would take them as its own code page's.
printf '\r\n\r\n936\t_ForceCodepage\r\n' >"$work/_ForceCodepage.idt"
queries=()
while read -r query; do queries+=(-q "$query"); done <"$work/folders.sql"
(cd "$work" && WINDOWS_LANGUAGE=zh_CN msibuild "$out" -i _ForceCodepage.idt "${queries[@]}")
