#!/bin/bash
# Installs the Debian packages that a task needs, those alone that are missing.
#
# usage: install_packages.sh SET...
#   run      to build the library and the tool
#   native   to build and run the tests on this machine (also with the sanitizers)
#   windows  to cross-compile and to run the tests under Wine
#   lint     to check style and to run clang-tidy
#   fuzz     to build the fuzz targets
#   coverage to measure what the tests reach
#   bench, bench-peers  to measure the library, and other programs beside it
#
# Says nothing when nothing is missing. On a system without dpkg the packages are taken for present: the
# build then tells what it does not find.
set -u

packages_of() {
  local run="cmake g++ libcli11-dev libexpat1-dev libfmt-dev libsqlite3-dev ninja-build unixodbc-dev zlib1g-dev"
  local native="$run binutils dpkg-dev gcc googletest libsqliteodbc libxml2-utils mdbtools mono-mcs mono-runtime"
  native="$native odbc-mdbtools pkg-config python3 python3-dbfread python3-openpyxl python3-pip python3-wheel"
  native="$native python3-xlrd valgrind"
  case $1 in
    run) echo "$run" ;;
    native) echo "$native" ;;
    windows) echo "$native g++-mingw-w64-x86-64-posix libodbc2 libz-mingw-w64-dev locales tcl wine wine64" ;;
    lint) echo "$native clang-format clang-tidy doxygen" ;;
    fuzz) echo "$run clang" ;;
    coverage) echo "$native gcovr" ;;
    bench) echo "$run python3" ;;
    bench-peers)
      echo "$run python3 libcsv-dev libdeflate-dev libgdal-dev libshp-dev libxlsxwriter-dev python3-dbfread" \
        "python3-openpyxl python3-pandas python3-xlwt xlsx2csv" ;;
    *)
      echo "install_packages.sh: there is no set '$1'; the sets are run, native, windows, lint, fuzz, coverage," \
        "bench, bench-peers" >&2
      return 1 ;;
  esac
}

[ $# -gt 0 ] || { echo "usage: install_packages.sh SET..." >&2; exit 2; }
wanted=
for set in "$@"; do
  packages=$(packages_of "$set") || exit 2
  wanted="$wanted $packages"
done
command -v dpkg-query >/dev/null || exit 0

# One package a line; a name that dpkg never heard of is missing from the answer.
# shellcheck disable=SC2086 # a list of words
installed=$(LC_ALL=C dpkg-query -W -f '${db:Status-Status} ${Package}\n' $wanted 2>/dev/null |
  sed -n 's/^installed //p')
missing=
# shellcheck disable=SC2086 # a list of words
for package in $(printf '%s\n' $wanted | sort -u); do
  grep -qxF -- "$package" <<<"$installed" || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

as_root=
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    echo "Packages are missing and neither root nor sudo is at hand:$missing" >&2
    exit 1
  fi
  as_root=sudo
  [ -t 0 ] || as_root="sudo -n"   # nobody is there to type a password
fi

apt() {
  # WHY env: sudo drops the environment.
  $as_root env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=300 -y "$@" </dev/null
}

echo "Installing:$missing" >&2
log=$(mktemp)
trap 'rm -f "$log"' EXIT
# shellcheck disable=SC2086 # a list of words
if ! { apt update && apt install --no-install-recommends $missing; } >"$log" 2>&1; then
  cat "$log" >&2
  echo "The packages could not be installed:$missing" >&2
  exit 1
fi
