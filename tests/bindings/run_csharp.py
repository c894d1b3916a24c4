#!/usr/bin/env python3
"""Compiles a C# program with the binding's source file and runs it over the built library.

usage: run_csharp.py --product LIBRARY --source SOURCE_DIR --work FOLDER PROGRAM.cs [arguments of the program]

Prints what the program prints and answers with its exit code; 77 when mcs or mono (Debian: mono-mcs, mono-runtime)
is not installed. An argument {temporary} is a folder that is removed afterwards.
"""
import argparse
import os
import shutil
import subprocess
import sys
import tempfile

SKIPPED = 77


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--product", required=True)
    parser.add_argument("--source", required=True)
    parser.add_argument("--work", required=True, help="where the compiled program goes")
    parser.add_argument("program")
    parser.add_argument("arguments", nargs="*")
    options = parser.parse_args()
    compiler, runtime = shutil.which("mcs"), shutil.which("mono")
    if not compiler or not runtime:
        print("mcs or mono is not installed: skipped")
        return SKIPPED

    os.makedirs(options.work, exist_ok=True)
    name = os.path.splitext(os.path.basename(options.program))[0]
    executable = os.path.join(os.path.abspath(options.work), name + ".exe")
    # Version 7 of the language is what netstandard2.0 and .NET Framework projects compile by default.
    build = subprocess.run(
        [compiler, "-codepage:utf8", "-langversion:7", "-warnaserror", "-out:" + executable, options.program,
         os.path.join(options.source, "bindings", "csharp", "VokTableRw.cs")],
        stdin=subprocess.DEVNULL, stdout=sys.stderr, check=False)
    if build.returncode != 0:
        return 1
    environment = dict(os.environ, LD_LIBRARY_PATH=os.path.dirname(os.path.abspath(options.product)))
    with tempfile.TemporaryDirectory() as folder:
        arguments = [folder if argument == "{temporary}" else argument for argument in options.arguments]
        sys.stdout.flush()
        return subprocess.run([runtime, executable, *arguments], stdin=subprocess.DEVNULL, env=environment,
                              check=False).returncode


if __name__ == "__main__":
    sys.exit(main())
