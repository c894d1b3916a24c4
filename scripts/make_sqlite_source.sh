#!/bin/bash
# Makes SQLite's amalgamation (sqlite3.c and sqlite3.h) from Debian's source package, for the targets that
# have no package of the library: the Windows build compiles it into the DLL.
#
# usage: make_sqlite_source.sh TARGET_FOLDER
#
# The package comes through apt, which checks its signature, from the places that this machine takes its
# packages from anyway: a private list asks them for sources, and nothing under /etc is touched. Where the
# library is installed its own version is asked for, so that both targets have the same engine. The result
# is kept with its checksums; while those fit, a further call does nothing.
# Needs dpkg-dev, tcl and a C compiler for this machine.
set -u

target=${1:?usage: make_sqlite_source.sh TARGET_FOLDER}
mkdir -p "$target" || exit 1
target=$(cd "$target" && pwd) || exit 1
log=$target/log

# Two builds may ask at once.
exec 9>"$target/lock"
flock 9 || exit 1

is_sound() { [ -s "$target/checksums" ] && (cd "$target" && sha256sum --quiet -c checksums) >/dev/null 2>&1; }
is_sound && exit 0

for program in apt-get dpkg-source tclsh make cc; do
  command -v "$program" >/dev/null && continue
  echo "SQLite's source cannot be made: $program is missing; scripts/install_packages.sh windows installs it" >&2
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

private_apt() {
  apt-get -o Dir::Etc::sourcelist=/dev/null -o Dir::Etc::sourceparts="$work/sources.d" \
    -o Dir::State::lists="$work/lists" -o Dir::Cache="$work/cache" -o APT::Sandbox::User= \
    -o Acquire::Languages=none "$@" </dev/null
}

installed_version() {
  LC_ALL=C dpkg-query -W -f '${db:Status-Status} ${source:Version}\n' libsqlite3-0 2>/dev/null |
    sed -n 's/^installed //p' | head -n 1
}

download() {
  local version
  version=$(installed_version)
  cd "$work" || return 1
  # Not fatal: a list that has no sources may stand beside the one that has this package.
  private_apt update
  { [ -n "$version" ] && private_apt source --download-only "sqlite3=$version"; } ||
    private_apt source --download-only sqlite3
}

make_amalgamation() {
  # apt has checked the files against the signed index; the packagers' own keys are not asked for.
  dpkg-source -x --no-check "$work"/sqlite3_*.dsc "$work/source" && mkdir "$work/made" &&
    cd "$work/made" && ../source/configure --disable-tcl --enable-update-limit && make sqlite3.c sqlite3.h
}

if ! { private_lists && (download) && (make_amalgamation); } >"$log" 2>&1; then
  tail -n 20 "$log" >&2
  cat >&2 <<END
SQLite's source could not be made from the source package sqlite3; all messages are in $log.
The package comes from the places that apt is configured for, so the machine must reach one that has
sources. Or put the amalgamation (sqlite3.c, sqlite3.h) there by hand, with its checksums:
  cd $target && sha256sum sqlite3.c sqlite3.h >checksums
END
  exit 1
fi
rm -f "$target/checksums"
mv "$work/made/sqlite3.c" "$work/made/sqlite3.h" "$target" || exit 1
(cd "$target" && sha256sum sqlite3.c sqlite3.h >checksums.new && mv checksums.new checksums)
