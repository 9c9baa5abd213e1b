#!/usr/bin/env bash
# Tries the Windows build under wine against the Linux build:
#  - the demo ledger made by each is the same data;
#  - each statement's CSV and workbook from the Windows programs equals the
#    Linux build's on the same ledger, byte for byte, and so does the batch;
#  - a refused or interrupted output keeps the old file and leaves no
#    temporary file, and an interrupted batch stops;
#  - workbooks and CSV into Chinese folders under an English code page, a
#    settings file in GBK under a Chinese one, and settings in the registry
#    where the program it replaces kept them (the login reaches a listener);
#  - the desktop program starts on the demo ledger, opens each report window
#    from the menu and closes (screenshots in OUT/screens);
#  - the installer installs, its programs start and run a statement, a later
#    version replaces it, and its uninstall leaves nothing behind.
# Usage: wine-test.sh WINDOWS_DIR LINUX_BIN_DIR OUT_DIR [MSI LATER_MSI]
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
win="$1" linux="$2" out="$3" msi="${4:-}" later_msi="${5:-}"
mkdir -p "$out" "$out/screens"
out="$(cd "$out" && pwd)"
export WINEPREFIX="$out/prefix" WINEARCH=win64 WINEDEBUG=-all
export SOURCE_DATE_EPOCH=1700000000 TZ=UTC
# Wine takes its code page from the locale: 1252, an English Windows's,
# unless a run names another.
export LC_ALL=C.UTF-8
failures=0
pass() { echo "ok    $*"; }
fail() { echo "FAIL  $*"; failures=$((failures + 1)); }
winpath() { echo "Z:$1"; }

# A display of our own for wine and the desktop program.
display=:$((90 + RANDOM % 100))
Xvfb "$display" -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 &
xvfb=$!
finished=false
trap 'kill $xvfb 2>/dev/null; wineserver -k 2>/dev/null || true
      $finished || echo "FAIL  stopped early by a failed command"' EXIT
export DISPLAY=$display
sleep 1
[ -d "$WINEPREFIX/drive_c" ] || wineboot -i >/dev/null 2>&1
statement() { wine "$win/yunqi-statement.exe" "$@"; }
# Starts the desktop program PROGRAM; sets desktop (its pid) and main (its
# main window, or empty when none came within a minute).
start_desktop() {
  wine "$1" >/dev/null 2>&1 &
  desktop=$!
  main=""
  for _ in $(seq 60); do
    main=$(xdotool search --name '^云栖账房报表$' 2>/dev/null | head -n 1 || true)
    [ -n "$main" ] && break
    sleep 1
  done
}
# Files whose path is FOLDER/PATTERN (a * also spans folders).
temporaries() { (find "$1" -maxdepth 3 -path "$1/$2" -type f 2>/dev/null || true) | wc -l; }
# Runs the companion with ARGS in the background and sends it Ctrl+C (wine
# hands SIGINT over as the console's event) once a temporary file FOLDER/NAME
# is there; sets writing (temporary files seen), pid, status and left.
interrupt_while_writing() {
  local folder=$1 name=$2; shift 2
  statement "$@" 2>/dev/null &
  local runner=$!
  writing=0
  for _ in $(seq 300); do
    writing=$(temporaries "$folder" "$name")
    [ "$writing" -gt 0 ] && break
    sleep 0.1
  done
  pid=$(pgrep -f "yunqi-statement.exe $1" | head -n 1 || true)
  [ -n "$pid" ] && kill -INT "$pid"
  status=0
  wait $runner || status=$?
  left=$(temporaries "$folder" "$name")
}

echo "== the demo ledger"
rm -f "$out/win.sqlite" "$out/linux.sqlite"
statement make-demo-db "$(winpath "$out/win.sqlite")" --tickets 20000 >"$out/make-demo-db.txt"
"$linux/yunqi-statement" make-demo-db "$out/linux.sqlite" --tickets 20000 >/dev/null
if cmp -s <(sqlite3 "$out/win.sqlite" .dump) <(sqlite3 "$out/linux.sqlite" .dump); then
  pass "make-demo-db: the same ledger ($(sed "s/.*sqlite: //" "$out/make-demo-db.txt"))"
else
  fail "make-demo-db: the ledgers differ"
fi

echo "== statements on the Windows-made ledger"
db="$out/win.sqlite"
runs=(
  "invoice --dept 01 --from 2024-01-01 --to 2024-12-31"
  "preinvoice --dept 01 --from 2024-01-01 --to 2024-12-31"
  "parking --dept 01 --from 2024-01-01 --to 2024-12-31 --ratio 007=66.7/33.3"
  "reconciliation --dept 01 --year 2024 --months 01-12"
)
for run in "${runs[@]}"; do
  read -r -a args <<<"$run"
  name=${args[0]}
  "$linux/yunqi-statement" "${args[@]}" --database "$db" --quiet \
    --csv "$out/$name.linux.csv" --xlsx "$out/$name.linux.xlsx"
  # Over files already there: each is replaced.
  echo "an older statement" | tee "$out/$name.win.csv" >"$out/$name.win.xlsx"
  statement "${args[@]}" --database "$(winpath "$db")" --quiet \
    --csv "$(winpath "$out/$name.win.csv")" --xlsx "$(winpath "$out/$name.win.xlsx")"
  rows=$(($(wc -l <"$out/$name.linux.csv") - 2))
  for kind in csv xlsx; do
    if cmp -s "$out/$name.linux.$kind" "$out/$name.win.$kind"; then
      pass "$name --$kind: equal ($rows rows, $(stat -c %s "$out/$name.win.$kind") bytes)"
    else
      fail "$name --$kind: differs from the Linux build's"
    fi
  done
done
statement invoice --dept 01 --from 2024-01-01 --to 2024-12-31 --database "$(winpath "$db")" \
  --csv - >"$out/stdout.win.csv"
if cmp -s "$out/stdout.win.csv" "$out/invoice.linux.csv"; then
  pass "invoice --csv -: standard output equals the file"
else
  fail "invoice --csv -: standard output differs (line ends?)"
fi

# The month-end batch: its statements as child processes, two at a time.
rm -rf "$out/batch.linux" "$out/batch.win"
"$linux/yunqi-statement" batch --database "$db" --month 2024-03 --out "$out/batch.linux" \
  --jobs 2 --csv --quiet 2>/dev/null || true
statement batch --database "$(winpath "$db")" --month 2024-03 --out "$(winpath "$out/batch.win")" \
  --jobs 2 --csv --quiet 2>/dev/null || true
seconds_aside() { cut -d, -f1-4,6 "$1/summary.csv"; }
if diff -r -q -x summary.csv "$out/batch.linux" "$out/batch.win" >/dev/null &&
   cmp -s <(seconds_aside "$out/batch.linux") <(seconds_aside "$out/batch.win"); then
  pass "batch --month 2024-03: every file equal, summary equal but for the seconds ($(find "$out/batch.win" -type f | wc -l) files)"
else
  fail "batch --month 2024-03: differs from the Linux build's"
fi

echo "== outputs that fail keep the old file"
old="$out/old.csv"
echo "the old statement" >"$old"
chmod 444 "$old"
status=0
statement invoice --dept 01 --from 2024-01-01 --to 2024-12-31 --database "$(winpath "$db")" \
  --csv "$(winpath "$old")" 2>"$out/refused.txt" || status=$?
if [ $status -eq 1 ] && [ "$(cat "$old")" = "the old statement" ]; then
  pass "read-only target: refused before work ($(head -c 120 "$out/refused.txt"))"
else
  fail "read-only target: status $status, file now: $(head -c 60 "$old")"
fi
chmod 644 "$old"
status=0
statement invoice --dept 01 --from 2024-01-01 --to 2024-12-31 --database "$(winpath "$db")" \
  --csv "$(winpath "$out/no such folder/x.csv")" 2>"$out/missing.txt" || status=$?
[ $status -eq 1 ] && pass "missing folder: $(head -c 120 "$out/missing.txt")" ||
  fail "missing folder: status $status"

# Ctrl+C in the middle of a long statement.
big="$out/big.sqlite"
[ -f "$big" ] || "$linux/yunqi-statement" make-demo-db "$big" --tickets 200000 >/dev/null
for kind in csv xlsx; do
  target="$out/interrupted.$kind"
  echo "the old statement" >"$target"
  interrupt_while_writing "$out" ".interrupted.$kind.*" invoice --dept 01 --from 2024-01-01 \
    --to 2024-12-31 --database "$(winpath "$big")" --quiet "--$kind" "$(winpath "$target")"
  if [ "$writing" -gt 0 ] && [ -n "$pid" ] && [ "$(cat "$target")" = "the old statement" ] &&
     [ "$left" -eq 0 ]; then
    pass "Ctrl+C while --$kind was written: old file kept, temporary file removed (status $status)"
  else
    fail "Ctrl+C during --$kind: writing $writing, pid '${pid}', status $status, $left temporary files left, file: $(head -c 40 "$target")"
  fi
done

# Ctrl+C to the batch: it stops starting statements and ends with 130. Under
# wine only the batch gets the signal, so its running statements end their
# files first; on Windows the console tells them too and they stop. The batch
# is built in a hidden folder beside its target: interrupted, that folder goes
# and the target stays as it was (here: none).
rm -rf "$out/batch.interrupted" "$out"/.batch.interrupted.batch-*
interrupt_while_writing "$out" '.batch.interrupted.batch-*/*' batch --database "$(winpath "$big")" \
  --month 2024-03 --out "$(winpath "$out/batch.interrupted")" --jobs 2 --quiet
staging=$(find "$out" -maxdepth 1 -name '.batch.interrupted.batch-*' | wc -l)
if [ "$writing" -gt 0 ] && [ $status -eq 130 ] && [ "$left" -eq 0 ] && [ "$staging" -eq 0 ] &&
   [ ! -e "$out/batch.interrupted" ]; then
  pass "Ctrl+C during the batch: stopped with 130, no staging folder and no batch folder left"
else
  fail "Ctrl+C during the batch: writing $writing, status $status, $left staged files," \
    "$staging staging folders, batch folder: $(ls "$out/batch.interrupted" 2>&1 | head -c 80)"
fi

echo "== Chinese paths, settings in GBK and in the registry"
mkdir -p "$out/报表"
rm -f "$out/报表"/*
statement invoice --dept 01 --from 2024-01-01 --to 2024-12-31 --database "$(winpath "$db")" \
  --quiet --csv "$(winpath "$out/报表/开票明细.csv")" --xlsx "$(winpath "$out/报表/开票明细.xlsx")"
if cmp -s "$out/报表/开票明细.csv" "$out/invoice.linux.csv" &&
   cmp -s "$out/报表/开票明细.xlsx" "$out/invoice.linux.xlsx"; then
  pass "code page 1252: --csv and --xlsx into 报表\开票明细.*: equal to the Linux build's"
else
  fail "--csv/--xlsx into 报表\开票明细.*: $(ls "$out/报表")"
fi
rm -rf "$out/月末"
statement batch --database "$(winpath "$db")" --month 2024-03 --out "$(winpath "$out/月末")" \
  --jobs 2 --csv --quiet 2>/dev/null || true
if diff -r -q -x summary.csv "$out/batch.linux" "$out/月末" >/dev/null; then
  pass "batch --out 月末: every file equal ($(find "$out/月末" -type f | wc -l) files)"
else
  fail "batch --out 月末: differs from the Linux build's"
fi

appdata=$(wine cmd /c 'echo %APPDATA%' 2>/dev/null | tr -d '\r')
config="$(winepath -u "$appdata" 2>/dev/null)/云栖账房"
mkdir -p "$config" "$out/账房目录"
cp "$db" "$out/账房目录/账房.sqlite"
# As Notepad saves it on a Chinese Windows: GBK, no mark.
printf '[DBConfig]\r\nDriver=SQLite\r\nDBname=%s\r\n' "$(winpath "$out/账房目录/账房.sqlite")" |
  iconv -f UTF-8 -t GBK >"$config/云栖账房.ini"
rm -f "$out/gbk.csv"
status=0
LC_ALL=zh_CN.UTF-8 statement invoice --dept 01 --from 2024-01-01 --to 2024-12-31 --quiet \
  --csv "$(winpath "$out/gbk.csv")" 2>"$out/gbk.txt" || status=$?
if [ $status -eq 0 ] && cmp -s "$out/gbk.csv" "$out/invoice.linux.csv"; then
  pass "code page 936: a GBK settings file names the ledger in 账房目录\账房.sqlite"
else
  fail "GBK settings file: status $status: $(head -c 200 "$out/gbk.txt")"
fi

# The settings of the program replaced: the registry first, the file above
# left where it is.
listener="$out/listener.txt"
python3 "$here/../../tests/db/tds_listener.py" --reply close >"$listener" &
tds=$!
for _ in $(seq 50); do grep -q '^port ' "$listener" 2>/dev/null && break; sleep 0.1; done
port=$(sed -n 's/^port //p' "$listener")
{ printf '\xff\xfe'; printf '%s\r\n' 'Windows Registry Editor Version 5.00' '' \
    '[HKEY_CURRENT_USER\Software\VB and VBA Program Settings\云栖账房\DBConfig]' \
    '"Edition"="2000"' "\"Svr\"=\"127.0.0.1,$port\"" '"UID"="报表用户"' '"PWD"="p;w'"'"'d"' \
    '"DBname"="账房"' '"Driver"="FreeTDS"' | iconv -f UTF-8 -t UTF-16LE; } >"$out/settings.reg"
wine regedit /s "$(winpath "$out/settings.reg")" 2>/dev/null
status=0
statement invoice --dept 01 --from 2024-01-01 --to 2024-12-31 --quiet \
  --csv "$(winpath "$out/registry.csv")" 2>"$out/registry.txt" || status=$?
wait $tds || true
login=$(grep '^{' "$listener" || true)
logged_in() {
  python3 -c 'import json, sys
f = json.loads(sys.argv[1])
sys.exit(not (f["user"] == "报表用户" and f["database"] == "账房"))' "$1" 2>/dev/null
}
if [ $status -eq 1 ] && logged_in "$login"; then
  pass "settings in HKCU\Software\VB and VBA Program Settings\云栖账房\DBConfig: the login reached the server ($login)"
else
  fail "settings in the registry: status $status, login '$login': $(head -c 200 "$out/registry.txt")"
fi
wine reg delete 'HKCU\Software\VB and VBA Program Settings\云栖账房' /f >/dev/null 2>&1 || true

echo "== the desktop program"
printf '[DBConfig]\r\nDriver=SQLite\r\nDBname=%s\r\n' "$(winpath "$db")" >"$config/云栖账房.ini"
start_desktop "$win/yunqi-reports.exe"
if [ -z "$main" ]; then
  fail "yunqi-reports.exe: no main window"
else
  sleep 2
  eval "$(xdotool getwindowgeometry --shell "$main")"
  import -window root "$out/screens/0-started.png"
  pass "yunqi-reports.exe started (window $WIDTH x $HEIGHT at $X,$Y)"
  windows_before=$(xdotool search --onlyvisible --name '.' 2>/dev/null | wc -l)
  # In the invoice window as it opens at the top left of the main window:
  # department 01, 2024-01-01 to 2024-12-31, 提取收费项目, then 开始统计.
  at() { xdotool mousemove $((X + $1)) $((Y + $2)) click 1; sleep 0.3; }
  keys() { for _ in $(seq "$2"); do xdotool key "$1"; done; }
  run_invoice_statement() {
    at 47 173; keys Down 2; at 80 173; keys Down 10; at 99 173; keys Down 24
    at 180 173; keys Down 2; at 212 173; keys Up 1; at 232 173; keys Up 6
    at 68 428; at 76 206; sleep 3
    import -window root -crop 900x560+310+220 "$out/screens/grid-before.png"
    at 213 206; sleep 8
    import -window root "$out/screens/invoice-window.png"
    import -window root -crop 900x560+310+220 "$out/screens/grid-after.png"
    if [ "$(compare -metric AE "$out/screens/grid-before.png" "$out/screens/grid-after.png" \
             null: 2>&1)" != 0 ]; then
      pass "invoice window: department 01, 2024: the statement is shown"
    else
      fail "invoice window: the grid did not change after 开始统计"
    fi
  }
  # The menu 统计报表 is the first of the menu bar; its entries in order.
  entries=(停车费明细表 增值税开票明细表 增值税预开明细表 开票票据核对表)
  for i in "${!entries[@]}"; do
    xdotool mousemove $((X + 30)) $((Y + 10)) click 1
    sleep 1
    for _ in $(seq 0 "$i"); do xdotool key Down; done
    xdotool key Return
    sleep 3
    import -window root "$out/screens/$((i + 1))-${entries[$i]}.png"
    windows_now=$(xdotool search --onlyvisible --name '.' 2>/dev/null | wc -l)
    if [ "$windows_now" -eq "$windows_before" ] && kill -0 $desktop 2>/dev/null; then
      pass "menu 统计报表 → ${entries[$i]}: opened, no message box"
    else
      fail "menu 统计报表 → ${entries[$i]}: $windows_now top-level windows (was $windows_before)"
    fi
    [ "$i" -eq 1 ] && run_invoice_statement
    xdotool key ctrl+F4
    sleep 1
  done
  # 退出系统 → 退出 ends the program.
  xdotool mousemove $((X + 100)) $((Y + 10)) click 1
  sleep 1
  xdotool key Down Return
  status=0
  timeout 20 tail --pid=$desktop -f /dev/null || status=$?
  kill -0 $desktop 2>/dev/null && fail "退出系统 → 退出: still running" || pass "退出系统 → 退出: the program ended"
fi

if [ -n "$msi" ]; then
  echo "== the installer"
  folder="$WINEPREFIX/drive_c/Program Files/云栖账房报表"
  uninstall_key='HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall'
  # reg writes a pipe in the console's code page: GBK for Chinese.
  entries() { LC_ALL=zh_CN.UTF-8 wine reg query "$uninstall_key" /s 2>/dev/null | tr -d '\r' |
                iconv -f GBK -t UTF-8; }
  products() { entries | grep -a -c "DisplayName *REG_SZ *云栖账房报表$" || true; }
  version_of() { entries | grep -a -A20 "DisplayName *REG_SZ *云栖账房报表$" |
                   sed -n 's/.*DisplayVersion *REG_SZ *//p' | head -n 1; }
  shortcuts() { find "$WINEPREFIX/drive_c" -name '云栖账房报表*.lnk' | wc -l; }
  status=0
  wine msiexec /i "$(winpath "$msi")" /qn || status=$?
  if [ $status -eq 0 ] && [ -f "$folder/yunqi-reports.exe" ] && [ "$(products)" -eq 1 ] &&
     [ "$(shortcuts)" -eq 2 ]; then
    pass "msiexec /i: Program Files\云栖账房报表 ($(find "$folder" -type f | wc -l) files), 2 Start-menu entries, 云栖账房报表 $(version_of) in Apps & features"
  else
    fail "msiexec /i: status $status, $(products) products, $(shortcuts) shortcuts"
  fi
  rm -f "$out/installed.csv"
  wine "$folder/yunqi-statement.exe" invoice --dept 01 --from 2024-01-01 --to 2024-12-31 \
    --database "$(winpath "$db")" --quiet --csv "$(winpath "$out/installed.csv")" || true
  cmp -s "$out/installed.csv" "$out/invoice.linux.csv" &&
    pass "the installed yunqi-statement.exe: the invoice statement equals the Linux build's" ||
    fail "the installed yunqi-statement.exe: no equal statement"
  start_desktop "$folder/yunqi-reports.exe"
  [ -n "$main" ] && pass "the installed yunqi-reports.exe: main window shown" ||
    fail "the installed yunqi-reports.exe: no main window"
  kill $desktop 2>/dev/null || true
  wineserver -k 2>/dev/null || true
  wait $desktop 2>/dev/null || true

  status=0
  wine msiexec /i "$(winpath "$later_msi")" /qn || status=$?
  later=$(version_of)
  if [ $status -eq 0 ] && [ "$(products)" -eq 1 ] && [ "$later" != "" ] &&
     [ -f "$folder/yunqi-statement.exe" ]; then
    pass "upgrade: $later replaced the installed version, one entry in Apps & features"
  else
    fail "upgrade: status $status, $(products) products, version '$later'"
  fi
  status=0
  wine msiexec /x "$(winpath "$later_msi")" /qn || status=$?
  left=$( (find "$folder" 2>/dev/null || true) | wc -l)
  key=$(wine reg query 'HKLM\Software\yunqi-reports' >/dev/null 2>&1 && echo 1 || echo 0)
  if [ $status -eq 0 ] && [ "$left" -eq 0 ] && [ "$(products)" -eq 0 ] && [ "$(shortcuts)" -eq 0 ] &&
     [ "$key" -eq 0 ]; then
    pass "msiexec /x: no file, folder, Start-menu entry, registry key or Apps & features entry left"
  else
    fail "msiexec /x: status $status, $left files and folders, $(products) products, $(shortcuts) shortcuts, key $key"
  fi
fi

finished=true
echo
[ $failures -eq 0 ] && echo "wine: all passed" || echo "wine: $failures failed"
exit $((failures > 0))
