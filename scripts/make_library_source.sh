#!/bin/bash
# Makes the sources of a library from Debian's source package, for the targets that have no package of it:
# the Windows build compiles them itself.
#
# usage: make_library_source.sh sqlite|expat TARGET_FOLDER
#
#   sqlite  the amalgamation, sqlite3.c and sqlite3.h; needs tcl and a C compiler for this machine
#   expat   the files of its folder lib
#
# The package comes through apt, which checks its signature, from the places that this machine takes its
# packages from anyway: a private list asks them for sources, and nothing under /etc is touched. Where the
# library is installed its own version is asked for, so that both targets have the same engine. The result
# is kept with its checksums; while those fit, a further call does nothing. Needs dpkg-dev.
set -u

case ${1-} in
  sqlite) library=SQLite package=sqlite3 binary=libsqlite3-0 programs="tclsh make cc" ;;
  expat) library=expat package=expat binary=libexpat1 programs= ;;
  *) echo "usage: make_library_source.sh sqlite|expat TARGET_FOLDER" >&2; exit 2 ;;
esac
target=${2:?the target folder is missing}
mkdir -p "$target" || exit 1
target=$(cd "$target" && pwd) || exit 1
log=$target/log

# Two builds may ask at once.
exec 9>"$target/lock"
flock 9 || exit 1

is_sound() { [ -s "$target/checksums" ] && (cd "$target" && sha256sum --quiet -c checksums) >/dev/null 2>&1; }
is_sound && exit 0

for program in apt-get dpkg-source $programs; do
  command -v "$program" >/dev/null && continue
  echo "The source of $library cannot be made: $program is missing; scripts/install_packages.sh windows installs it" >&2
  exit 1
done

work=$(mktemp -d "$target/work.XXXXXX") || exit 1
trap 'rm -rf "$work"' EXIT

# The configured lists, asked for sources in place of programs.
private_lists() {
  local file folder list
  mkdir -p "$work/lists/partial" "$work/cache/archives/partial" "$work/sources.d" || return 1
  list= folder=
  eval "$(apt-config shell list Dir::Etc::sourcelist/f folder Dir::Etc::sourceparts/d)"
  for file in "$list" "$folder"/*.list "$folder"/*.sources; do
    [ -r "$file" ] || continue
    case $file in
      *.sources) sed 's/^[Tt]ypes:.*/Types: deb-src/' "$file" ;;
      *) sed -n 's/^[[:blank:]]*deb[[:blank:]]/deb-src /p' "$file" ;;
    esac >"$work/sources.d/$(basename "$file")" || return 1
  done
}

# privately apt-get|apt-cache ARGUMENTS...
privately() {
  local program=$1
  shift
  "$program" -o Dir::Etc::sourcelist=/dev/null -o Dir::Etc::sourceparts="$work/sources.d" \
    -o Dir::State::lists="$work/lists" -o Dir::Cache="$work/cache" -o APT::Sandbox::User= \
    -o Acquire::Languages=none "$@" </dev/null
}

installed_version() {
  LC_ALL=C dpkg-query -W -f '${db:Status-Status} ${source:Version}\n' "$binary" 2>/dev/null |
    sed -n 's/^installed //p' | head -n 1
}

# The installed version first, then what the lists offer, newest first: a mirror may lag behind its lists.
download() {
  local version
  cd "$work" || return 1
  # Not fatal: a list that has no sources may stand beside the one that has this package.
  privately apt-get update
  for version in $(installed_version) $(privately apt-cache showsrc "$package" | sed -n 's/^Version: //p' |
    sort -rV | uniq); do
    rm -f "$package"_*
    privately apt-get source --download-only "$package=$version" && return 0
  done
  return 1
}

# Leaves the wanted files in the folder `made`.
make_files() {
  # apt has checked the files against the signed index; the packagers' own keys are not asked for.
  dpkg-source -x --no-check "$work/$package"_*.dsc "$work/source" && mkdir "$work/made" || return 1
  case $package in
    sqlite3)
      mkdir "$work/build" && cd "$work/build" && ../source/configure --disable-tcl --enable-update-limit &&
        make sqlite3.c sqlite3.h && mv sqlite3.c sqlite3.h "$work/made"
      ;;
    expat)
      # Debian packs upstream's repository, whose sources stand one folder deeper.
      cp "$(dirname "$(find "$work/source" -name xmlparse.c | head -n 1)")"/*.[ch] "$work/made"
      ;;
  esac
}

if ! { private_lists && (download) && (make_files); } >"$log" 2>&1; then
  tail -n 20 "$log" >&2
  cat >&2 <<END
The source of $library could not be made from the source package $package; all messages are in $log.
The package comes from the places that apt is configured for, so the machine must reach one that has
sources. Or put the files there by hand, with their checksums:
  cd $target && sha256sum *.c *.h >checksums
END
  exit 1
fi
rm -f "$target/checksums"
mv "$work"/made/*.[ch] "$target" || exit 1
(cd "$target" && sha256sum ./*.c ./*.h >checksums.new && mv checksums.new checksums)
