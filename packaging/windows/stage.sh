#!/usr/bin/env bash
# Gathers what the Windows programs need into STAGE/yunqi-reports-<version>:
# the two programs, every DLL they load (found by reading their imports), the
# Qt plugins they load at run time, Qt's Chinese translations, the icon and
# the read-me.
# Usage: stage.sh BIN_DIR DEPS_DIR STAGE_DIR
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
bin="$1" deps="$2" stage="$3"
version=$(sed -n 's/^project(yunqi_reports VERSION \([0-9.]*\).*/\1/p' "$here/../../CMakeLists.txt")
out="$stage/yunqi-reports-$version"
rm -rf "$out"
mkdir -p "$out/plugins" "$out/translations"
cp "$bin/yunqi-reports.exe" "$bin/yunqi-statement.exe" "$out/"

qt="$deps/qt"
for plugin in platforms/qwindows.dll styles/qwindowsvistastyle.dll \
              sqldrivers/qsqlite.dll sqldrivers/qsqlodbc.dll \
              imageformats/qjpeg.dll imageformats/qico.dll; do
  [ -f "$qt/plugins/$plugin" ] || continue
  mkdir -p "$out/plugins/$(dirname "$plugin")"
  cp "$qt/plugins/$plugin" "$out/plugins/$plugin"
done

# The DLLs named in the imports of every program and plugin, and of those
# DLLs in turn, wherever the cross toolchain keeps them; Windows' own are
# left to Windows.
search=("$qt/bin" /usr/x86_64-w64-mingw32/lib
        "$(dirname "$(x86_64-w64-mingw32-g++-posix -print-libgcc-file-name)")"
        /usr/lib/gcc/x86_64-w64-mingw32/*-posix)
imports() { x86_64-w64-mingw32-objdump -p "$1" | sed -n 's/^\s*DLL Name: //p'; }
queue=("$out"/*.exe $(find "$out/plugins" -name '*.dll'))
while [ ${#queue[@]} -gt 0 ]; do
  file="${queue[0]}"
  queue=("${queue[@]:1}")
  for dll in $(imports "$file"); do
    [ -f "$out/$dll" ] && continue
    for dir in "${search[@]}"; do
      if [ -f "$dir/$dll" ]; then
        cp "$dir/$dll" "$out/$dll"
        queue+=("$out/$dll")
        break
      fi
    done
  done
done

# Plugins and translations where the deployed Qt looks for them.
printf '[Paths]\r\nPrefix = .\r\nPlugins = plugins\r\nTranslations = translations\r\n' >"$out/qt.conf"
cp /usr/share/qt6/translations/qtbase_zh_CN.qm "$out/translations/"
cp "$here/../yunqi-reports.svg" "$out/"
# Notepad reads UTF-8 by its byte-order mark; Windows' line ends.
{ printf '\xef\xbb\xbf'; sed 's/$/\r/' "$here/README-zh.txt"; } >"$out/README.txt"
# The toolchain's DLLs come with their debugging symbols: half the zip.
x86_64-w64-mingw32-strip "$out"/*.exe
find "$out" -name '*.dll' -exec x86_64-w64-mingw32-strip --strip-unneeded {} +
