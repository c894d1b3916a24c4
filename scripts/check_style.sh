#!/bin/bash
# Checks how the sources are written: check_style.sh [format|tidy|pages]; all of them without an argument.
#
#   format  clang-format over every source would change nothing
#   tidy    clang-tidy has no findings in the sources that are no tests
#   pages   every public name is documented; the pages lie in build/doxygen/html
set -u

cd "$(dirname "$0")/.." || exit 2
jobs=${VOK_JOBS:-$(nproc)}

check_format() {
  local folders=() folder log files
  for folder in bench converter database examples fuzz platform scripts suite table_rw tests tools; do
    [ -d "$folder" ] && folders+=("$folder")
  done
  log=$(mktemp) || return 1
  # Batches keep the processors busy: one clang-format takes its files in turn.
  if find "${folders[@]}" -type f \( -name '*.h' -o -name '*.c' -o -name '*.cpp' \) -print0 | sort -z |
    xargs -0 -r -n 8 -P "$jobs" clang-format --dry-run -Werror >"$log" 2>&1; then
    rm -f "$log"
    return 0
  fi
  files=$(sed -n 's/^\(.*\):[0-9]*:[0-9]*: error: code should be clang-formatted.*/\1/p' "$log" | sort -u)
  # Without such a line it is clang-format itself that complains, of its settings perhaps.
  if [ -n "$files" ]; then
    # shellcheck disable=SC2086 # no file name of the project holds a blank
    printf 'error: not as clang-format writes it: %s\n' $files
    echo "To put them right: clang-format -i FILE..."
  else
    cat "$log"
  fi
  rm -f "$log"
  return 1
}

check_tidy() {
  # Only the compiler commands are needed, so nothing is built.
  if [ ! -e build/native/compile_commands.json ]; then
    cmake --preset native >/dev/null || return 1
  fi
  python3 scripts/run_clang_tidy.py . build/native build/tidy "$jobs"
}

check_pages() {
  # The headers are those that the build hands to hosts.
  if [ ! -e build/native/public_include ]; then
    cmake --preset native >/dev/null || return 1
  fi
  mkdir -p build/doxygen && doxygen docs/Doxyfile
}

case ${1-all} in
  format) check_format ;;
  tidy) check_tidy ;;
  pages) check_pages ;;
  all)
    result=0
    for check in format tidy pages; do
      "check_$check" || result=1
    done
    exit "$result"
    ;;
  *) echo "usage: check_style.sh [format|tidy|pages]" >&2; exit 2 ;;
esac
