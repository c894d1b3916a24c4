#!/bin/bash
# Runs ctest of the Windows build under Wine.
#
# usage: wine_ctest.sh 1252|1251 BUILD_DIR [ctest arguments]
#
# 1252 and 1251 are the ANSI code page that the programs see; Wine takes it from the locale. Everything
# lies in build/wine: the prefix (one for all runs: a new one costs 700 MB), the Russian locale and the
# program that keeps the session open.
set -u

here=$(cd "$(dirname "$0")" && pwd) || exit 2
source_dir=$(dirname "$here")
case ${1-} in
  1252 | 1251) code_page=$1 ;;
  *) echo "usage: wine_ctest.sh 1252|1251 BUILD_DIR [ctest arguments]" >&2; exit 2 ;;
esac
build=${2:?the build folder is missing}
shift 2

work=$source_dir/build/wine
mkdir -p "$work" || exit 2

# One run at a time: the next would end this one's session with its own.
exec 9>"$work/lock"
flock 9 || exit 2

# The driver manager lies below Wine, so the tests themselves cannot point it at their configuration.
ODBCSYSINI=$(cd "$build" && pwd)/odbc_tests || exit 2
export ODBCSYSINI ODBCINI=$ODBCSYSINI/odbc.ini

export WINEPREFIX=$work/prefix
# WHY winedbg off: with the crash debugger a crash sometimes ends with exit code 0, a pass for ctest.
export WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml=;winedbg.exe=d'
# The locale is the code page, and file names need UTF-8: nothing of the caller's locale may remain.
unset DISPLAY LANG LANGUAGE "${!LC_@}"
if [ "$code_page" = 1251 ]; then
  locales=$work/locales
  if [ ! -e "$locales/ru_RU.UTF-8/LC_CTYPE" ]; then
    mkdir -p "$locales"
    localedef -i ru_RU -f UTF-8 "$locales/ru_RU.UTF-8" || exit 2
  fi
  # For Wine and the tests alone: this shell would look for the locale in the system's folder.
  in_locale=(env LC_ALL=ru_RU.UTF-8 "LOCPATH=$locales")
else
  in_locale=(env LC_ALL=C.UTF-8)
fi

keep_alive=$work/wine_keep_alive.exe
if [ ! "$keep_alive" -nt "$here/wine_keep_alive.c" ]; then
  x86_64-w64-mingw32-gcc-posix -O1 -o "$keep_alive" "$here/wine_keep_alive.c" || exit 2
fi

# A session that an earlier run left behind: let it end, or end it. It is this prefix's own server.
end_session() {
  timeout 30 wineserver -w 9>&- || wineserver -k 9>&-
}

ready=$work/ready
keep_alive_pid=
# shellcheck disable=SC2317 # called by the trap
clean_up() {
  [ -n "$keep_alive_pid" ] && kill "$keep_alive_pid" 2>/dev/null && wait "$keep_alive_pid" 2>/dev/null
  keep_alive_pid=
  rm -f "$ready"
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

[ -e "$WINEPREFIX/system.reg" ] || "${in_locale[@]}" wine wineboot -i </dev/null >/dev/null 2>&1 9>&-
end_session
rm -f "$ready"
# WHY /dev/null: Wine's services inherit these handles, and ctest waits until a pipe is closed by all.
"${in_locale[@]}" wine "$keep_alive" "Z:$ready" 7200 </dev/null >/dev/null 2>&1 9>&- &
keep_alive_pid=$!
for ((i = 0; i < 600; i++)); do
  [ -e "$ready" ] && break
  kill -0 "$keep_alive_pid" 2>/dev/null || break
  sleep 0.1
done
if [ ! -e "$ready" ]; then
  echo "wine_ctest.sh: the Wine session did not start" >&2
  exit 2
fi

"${in_locale[@]}" ctest --test-dir "$build" --timeout 120 "$@" </dev/null 9>&-
