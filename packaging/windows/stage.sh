#!/usr/bin/env bash
# Gathers what the Windows programs need into STAGE/yunqi-reports: the two
# programs, every DLL they load (found by reading their imports), the Qt
# plugins they load at run time, Qt's Chinese translations, the icon, the
# read-me and the licences of what is bundled. The folder's name holds no
# dot: the export's file name rule cuts a path at its first dot.
# Usage: stage.sh BIN_DIR DEPS_DIR STAGE_DIR
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
bin="$1" deps="$2" stage="$3"
out="$stage/yunqi-reports"
rm -rf "$out"
mkdir -p "$out/plugins" "$out/translations" "$out/licenses"
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
# The licences of what goes with the programs: Debian's copyright files of
# the sources built here and of the cross toolchain's run-time libraries.
sources="$deps/../src"
licence() { cp "$2" "$out/licenses/$1"; }
licence Qt-copyright.txt "$(ls -d "$sources"/qt6-base-*/)debian/copyright"
licence LGPL-3.txt /usr/share/common-licenses/LGPL-3
licence GPL-3.txt /usr/share/common-licenses/GPL-3
licence SQLite-copyright.txt "$(ls -d "$sources"/sqlite3-*/)debian/copyright"
licence libxlsxwriter-License.txt "$(ls -d "$sources"/libxlsxwriter-*/)License.txt"
licence MPL-2.0.txt /usr/share/common-licenses/MPL-2.0
licence GCC-runtime-copyright.txt /usr/share/doc/gcc-mingw-w64-base/copyright
licence MinGW-w64-runtime-copyright.txt /usr/share/doc/mingw-w64-x86-64-dev/copyright
licence zlib-copyright.txt /usr/share/doc/libz-mingw-w64/copyright
for f in "$out/licenses"/*; do sed -i 's/$/\r/' "$f"; done
{ printf '\xef\xbb\xbf'; sed 's/$/\r/'; } >"$out/licenses/README.txt" <<'TEXT'
随附组件的许可证 / Licences of the components that come with the programs

Qt 6 (Qt6Core.dll, Qt6Gui.dll, Qt6Widgets.dll, Qt6Sql.dll, plugins):
    GNU LGPL 3 — Qt-copyright.txt, LGPL-3.txt, GPL-3.txt. Qt's source is
    Debian's qt6-base 6.4.2 source package, built unchanged.
GCC run-time libraries (libstdc++-6.dll, libgcc_s_seh-1.dll):
    GNU GPL 3 with the GCC Runtime Library Exception — GCC-runtime-copyright.txt.
MinGW-w64 run-time (libwinpthread-1.dll): MinGW-w64-runtime-copyright.txt.
zlib: the zlib licence — zlib-copyright.txt.
SQLite (in plugins\sqldrivers\qsqlite.dll): public domain — SQLite-copyright.txt.
libxlsxwriter (in the programs): BSD 2-clause; its minizip under the zlib
    licence, its tmpfileplus under MPL 2.0 (MPL-2.0.txt) — libxlsxwriter-License.txt.
    Built from Debian's libxlsxwriter 1.1.4 source with a change that opens
    files by their UTF-8 names (libxlsxwriter-utf8-names.patch in the project's
    source, packaging/windows).
TEXT
# The toolchain's DLLs come with their debugging symbols: half the zip.
x86_64-w64-mingw32-strip "$out"/*.exe
find "$out" -name '*.dll' -exec x86_64-w64-mingw32-strip --strip-unneeded {} +
