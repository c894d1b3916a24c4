#!/usr/bin/env python3
"""Runs clang-tidy over the sources of a build: run_clang_tidy.py SOURCE_DIR BUILD_DIR CACHE_DIR JOBS

Every source of this project in the build's compile_commands.json is checked, tests and fuzz targets
excepted. A source without findings leaves a mark in the cache folder, named by the content of everything
that the answer depends on: the source and the project's headers it includes, its compiler command, the
settings and the version of clang-tidy. It is not checked again while that stays the same.
"""
import concurrent.futures
import hashlib
import json
import os
import re
import subprocess
import sys
import time

EXCLUDED = ("tests/", "fuzz/", "bench/", "build/")
INCLUDE = re.compile(rb'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)
KEEP_DAYS = 30


def closure(root, path, seen):
    """Adds the file and the project's headers that it includes, directly or not, to `seen`."""
    if path in seen:
        return
    with open(path, "rb") as file:
        content = file.read()
    seen[path] = content
    for match in INCLUDE.finditer(content):
        name = match.group(1).decode()
        for base in (os.path.dirname(path), root):
            header = os.path.normpath(os.path.join(base, name))
            if os.path.isfile(header):
                closure(root, header, seen)
                break


def key(root, entry, settings):
    files = {}
    closure(root, entry["file"], files)
    digest = hashlib.sha256(settings)
    digest.update(entry["command"].encode())
    for path in sorted(files):
        digest.update(os.path.relpath(path, root).encode() + b"\0")
        digest.update(hashlib.sha256(files[path]).digest())
    return digest.hexdigest()


def check(root, build, entry):
    run = subprocess.run(["clang-tidy", "--quiet", "-p", build, entry["file"]], cwd=root, check=False,
                         stdin=subprocess.DEVNULL, capture_output=True, text=True, errors="replace")
    # Standard error holds the count of suppressed warnings, or why clang-tidy could not run.
    return run.returncode == 0, run.stdout if run.stdout.strip() else run.stderr


def drop_old_marks(cache):
    limit = time.time() - KEEP_DAYS * 86400
    for mark in os.scandir(cache):
        if mark.stat().st_mtime < limit:
            os.unlink(mark.path)


def main():
    root, build, cache = (os.path.abspath(path) for path in sys.argv[1:4])
    jobs = int(sys.argv[4])
    os.makedirs(cache, exist_ok=True)
    drop_old_marks(cache)
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as file:
        entries = json.load(file)

    def ours(entry):
        path = os.path.relpath(entry["file"], root)
        return not path.startswith("..") and not path.startswith(EXCLUDED)

    entries = [entry for entry in entries if ours(entry)]
    if not entries:
        print(f"no sources in {build}/compile_commands.json")
        return 1
    with open(os.path.join(root, ".clang-tidy"), "rb") as file:
        settings = file.read()
    settings += subprocess.run(["clang-tidy", "--version"], capture_output=True, check=True).stdout

    marks = {entry["file"]: os.path.join(cache, key(root, entry, settings)) for entry in entries}
    waiting = [entry for entry in entries if not os.path.exists(marks[entry["file"]])]
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        for entry, (clean, text) in zip(waiting, pool.map(lambda e: check(root, build, e), waiting)):
            mark = marks[entry["file"]]
            if clean:
                with open(mark, "w", encoding="utf-8"):
                    pass
            else:
                failed += 1
                print(f"{os.path.relpath(entry['file'], root)}:\n{text.rstrip()}", flush=True)
    for mark in marks.values():
        if os.path.exists(mark):
            os.utime(mark)  # in use: not old
    print(f"clang-tidy: {len(entries)} sources, {len(waiting)} looked at anew, {failed} with findings")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
