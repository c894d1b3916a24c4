#!/bin/bash
# Runs the tests of this machine in other locales and time zones: nothing may depend on them.
#
# usage: test_locales.sh [ctest arguments]
#
# The locales are made from the system's own definitions (Debian: package locales) and stay in build/locales. The test
# program takes them over as a host does (VOK_TEST_LOCALE); the others only find them in their environment. Needs a
# built preset native.
set -u

cd "$(dirname "$0")/.." || exit 2
locales=$PWD/build/locales
logs=$PWD/build/logs
mkdir -p "$locales" "$logs" || exit 2

failed=0
run() {  # locale character-set time-zone [ctest arguments]
  local name=$1 set=$2 zone=$3
  shift 3
  if [ "$name" != C ] && [ ! -e "$locales/$name/LC_CTYPE" ]; then
    # Exit code 1 with the locale made is a warning: of a character set that does not hold ASCII as it is.
    localedef -i "${name%%.*}" -f "$set" "$locales/$name" >"$logs/localedef.log" 2>&1
    [ -e "$locales/$name/LC_CTYPE" ] || { cat "$logs/localedef.log"; exit 2; }
  fi
  # PYTHONUTF8: what Python makes of its own output is not the question.
  # The system's own folder: mdbtools asks for C.UTF-8 by name.
  env LC_ALL="$name" LOCPATH="$locales:/usr/lib/locale" TZ="$zone" VOK_TEST_LOCALE=1 PYTHONUTF8=1 \
    ctest --test-dir build/native -j "${VOK_JOBS:-$(nproc)}" --timeout 300 --output-on-failure "$@" \
    >"$logs/locale-$name.log" 2>&1 || failed=1
  printf '%-14s %-18s %s\n' "$name" "$zone" "$(grep 'tests passed' "$logs/locale-$name.log")"
  sed -n '/The following tests FAILED/,$p' "$logs/locale-$name.log"
}

run C "" Asia/Kamchatka "$@"
run ru_RU.CP1251 CP1251 America/St_Johns "$@"
run ru_RU.UTF-8 UTF-8 Asia/Kamchatka "$@"
run de_DE.UTF-8 UTF-8 America/St_Johns "$@"
exit "$failed"
