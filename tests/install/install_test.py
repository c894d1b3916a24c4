#!/usr/bin/env python3
"""Installs the built library as a user would and builds the examples against it, outside of the project.

usage: install_test.py --build DIR --source DIR --cmake PROGRAM [--emulator PROGRAM] [--toolchain FILE] [CASE...]

Each way of installing goes into a clean folder: `cmake --install`, moved to another place afterwards, with
find_package and with pkg-config; the Debian packages, through dpkg in a root folder of its own, installed
and removed again; the Windows ZIP. The examples must print what the files beside them say. A case whose
program is not installed is skipped.
"""
import argparse
import glob
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile

EXAMPLES = ("read_wells_c", "read_wells_cpp", "project_wells_cpp")
PACKAGES = ("libvok-table-rw1", "libvok-table-rw-dev", "vok-table", "vok-xls2csv")
GIVEN = argparse.Namespace()


def is_windows():
    return bool(GIVEN.toolchain)


def run(*command, **more):
    done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          check=False, **more)
    text = done.stdout.decode("utf-8", "backslashreplace")
    if done.returncode != 0:
        raise AssertionError(f"{' '.join(command)}: exit code {done.returncode}\n{text}")
    return text


def files_below(folder):
    return sorted(os.path.relpath(os.path.join(where, name), folder)
                  for where, _, names in os.walk(folder) for name in names)


def snippets_of(page, language):
    with open(os.path.join(GIVEN.source, page), encoding="utf-8") as file:
        return [block.split("\n", 1)[1] for block in file.read().split("```")[1::2]
                if block.split("\n", 1)[0] == language]


def as_program(snippet):
    """Statements in C++ with their includes, as a program that has the two functions of a host."""
    lines = snippet.split("\n")
    includes = [line for line in lines if line.startswith("#include")] + ["#include <cstdio>"]
    host = ['template <class... T> void use(const T&...) { std::puts("use"); }',
            'template <class... T> void report(const T&...) { std::puts("report"); }', "int main() {"]
    return "\n".join(includes + host + [line for line in lines if not line.startswith("#include")] + ["}", ""])


class InstallTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="vok install ")  # the blank is on purpose
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def check_program(self, program, name, library_folder):
        """Runs an example from a folder of its own."""
        environment = dict(os.environ)
        if is_windows():
            for library in glob.glob(os.path.join(library_folder, "*.dll")):
                shutil.copy(library, os.path.dirname(program))  # Windows looks beside the program
        else:
            environment["LD_LIBRARY_PATH"] = library_folder
        work = tempfile.mkdtemp(dir=self.folder)
        command = ([GIVEN.emulator] if GIVEN.emulator else []) + [program, os.path.join(GIVEN.source, "examples")]
        printed = run(*command, cwd=work, env=environment).replace("\r\n", "\n")
        with open(os.path.join(GIVEN.source, "examples", name + ".expected"), encoding="utf-8") as file:
            self.assertEqual(printed, file.read())

    def check_cmake(self, prefix, library_folder):
        """The examples as a project of their own, which knows nothing but the prefix."""
        sources = self.path("examples")
        shutil.copytree(os.path.join(GIVEN.source, "examples"), sources)
        build = tempfile.mkdtemp(dir=self.folder)
        options = ["-DCMAKE_BUILD_TYPE=Release", f"-DCMAKE_PREFIX_PATH={prefix}"]
        if GIVEN.toolchain:
            # The cross compiler's settings look for packages in its own folder alone.
            options += [f"-DCMAKE_TOOLCHAIN_FILE={GIVEN.toolchain}",
                        f"-Dvok_table_rw_DIR={os.path.join(prefix, 'lib', 'cmake', 'vok_table_rw')}"]
        run(GIVEN.cmake, "-S", sources, "-B", build, "-G", "Ninja", *options)
        run(GIVEN.cmake, "--build", build)
        for name in EXAMPLES:
            program = os.path.join(build, name + (".exe" if is_windows() else ""))
            self.check_program(program, name, library_folder)

    def check_pkg_config(self, pc_folder, library_folder):
        environment = dict(os.environ, PKG_CONFIG_PATH=pc_folder)
        found = run("pkg-config", "--cflags", "--libs", "vok_table_rw", env=environment)
        for name in EXAMPLES:
            source = glob.glob(os.path.join(GIVEN.source, "examples", name + ".c*"))[0]
            compiler = "cc -std=c99" if source.endswith(".c") else "c++ -std=c++20"
            program = self.path(name)
            # As users write it: $(pkg-config ...), whose escapes are the shell's.
            run("sh", "-c", f"{compiler} '{source}' -o '{program}' {found.strip()}")
            self.check_program(program, name, library_folder)


class Folder(InstallTest):
    """cmake --install into a folder that is moved afterwards."""

    def install(self):
        run(GIVEN.cmake, "--install", GIVEN.build, "--prefix", self.path("first"))
        os.rename(self.path("first"), self.path("second"))
        return self.path("second")

    def folder_of_library(self, prefix):
        pattern = "**/vok_table_rw_vc.dll" if is_windows() else "**/libvok_table_rw_vc.so.1"
        return os.path.dirname(glob.glob(os.path.join(prefix, pattern), recursive=True)[0])

    def test_cmake(self):
        prefix = self.install()
        self.check_cmake(prefix, self.folder_of_library(prefix))

    def test_pkg_config(self):
        if is_windows() or shutil.which("pkg-config") is None:
            self.skipTest("pkg-config is not installed, or not for this target")
        prefix = self.install()
        self.check_pkg_config(glob.glob(os.path.join(prefix, "lib*", "**", "pkgconfig"), recursive=True)[0],
                              self.folder_of_library(prefix))

    def test_snippets_of_the_readme(self):
        """The C and C++ of README.md compile as they stand, but for what a host does with values."""
        if is_windows() or shutil.which("pkg-config") is None:
            self.skipTest("pkg-config is not installed, or not for this target")
        prefix = self.install()
        environment = dict(os.environ, LD_LIBRARY_PATH=self.folder_of_library(prefix), LC_ALL="C.UTF-8",
                           PKG_CONFIG_PATH=glob.glob(os.path.join(prefix, "lib*", "**", "pkgconfig"), recursive=True)[0])
        shutil.copytree(os.path.join(GIVEN.source, "examples"), self.path("examples"))
        flags = run("pkg-config", "--cflags", "--libs", "vok_table_rw", env=environment).strip()
        printed = {}
        for language, count, compiler in (("cpp", 3, "c++ -std=c++20"), ("c", 1, "cc -std=c99")):
            snippets = snippets_of("README.md", language)
            self.assertEqual(len(snippets), count)
            for number, snippet in enumerate(snippets):
                name = f"snippet{number}.{language}"
                with open(self.path(name), "w", encoding="utf-8") as file:
                    file.write(snippet if language == "c" else as_program(snippet))
                run("sh", "-c", f"{compiler} {name} -o program {flags}", cwd=self.folder)
                printed[name] = run(self.path("program"), cwd=self.folder, env=environment)
        self.assertEqual(printed, {"snippet0.cpp": "use\n" * 5 + "report\n", "snippet1.cpp": "",
                                   "snippet2.cpp": "use\n" * 5,
                                   "snippet0.c": "Н-15\nН-16\nН-17\nН-21\nН-22\n"})
        with open(self.path("out.csv"), "rb") as file:
            self.assertEqual(file.read(), b"WELL;DEPTH\r\n101;2860.00\r\n")

    def test_programs(self):
        if is_windows():
            self.skipTest("the ZIP shows it")
        prefix = self.install()
        self.assertIn("vok_table", run(os.path.join(prefix, "bin", "vok_table"), "version"))
        self.assertTrue(os.access(os.path.join(prefix, "bin", "vok_xls2csv.exe"), os.X_OK))

    def test_no_inner_path(self):
        prefix = self.install()
        for name in files_below(prefix):
            if name.endswith((".cmake", ".pc", ".h", ".def")):
                with open(os.path.join(prefix, name), encoding="utf-8") as file:
                    text = file.read()
                self.assertNotIn(GIVEN.source, text, name)
                self.assertNotIn(self.path("first"), text, name)


@unittest.skipIf(shutil.which("dpkg") is None or shutil.which("dpkg-shlibdeps") is None, "no Debian tools")
class DebianPackages(InstallTest):
    """The packages in a root of their own, where nothing else is installed."""

    def setUp(self):
        super().setUp()
        if is_windows():
            self.skipTest("packages of the other target")
        run("cpack", "--config", os.path.join(GIVEN.build, "CPackConfig.cmake"), "-B", self.path("made"))
        self.made = sorted(glob.glob(self.path("made", "*.deb")))

    def dpkg(self, *arguments):
        root = self.path("root")
        return run("dpkg", f"--root={root}", "--force-not-root", "--force-depends", "--force-script-chrootless",
                   "--log=/dev/null", *arguments)

    def test_install_use_and_remove(self):
        self.assertEqual(len(self.made), len(PACKAGES), self.made)
        root = self.path("root")
        for folder in ("updates", "info", "triggers"):
            os.makedirs(os.path.join(root, "var", "lib", "dpkg", folder))
        for name in ("status", "available"):
            with open(os.path.join(root, "var", "lib", "dpkg", name), "wb"):
                pass
        self.dpkg("--install", *self.made)
        usr = os.path.join(root, "usr")
        installed = files_below(usr)
        for name in ("bin/vok_table", "bin/vok_xls2csv.exe", "include/vok_table_rw_vc/table_rw/core/tableReader.h",
                     "share/vok_table_rw_vc/bindings/csharp/VokTableRw.cs",
                     "share/vok_table_rw_vc/bindings/python/vok_table_rw/__init__.py"):
            self.assertIn(name, installed)
        with open(os.path.join(usr, "share", "man", "man1", "vok_table.1"), encoding="utf-8") as file:
            self.assertIn(".TH", file.read())
        library = os.path.dirname(glob.glob(os.path.join(usr, "lib", "**", "*.so.1"), recursive=True)[0])
        self.check_cmake(usr, library)
        self.check_pkg_config(glob.glob(os.path.join(usr, "lib", "**", "pkgconfig"), recursive=True)[0], library)
        self.assertIn("vok_table", run(os.path.join(usr, "bin", "vok_table"), "version"))
        self.dpkg("--purge", *PACKAGES)
        self.assertEqual(files_below(usr), [])

    def test_what_they_say(self):
        for path, name in zip(self.made, sorted(PACKAGES)):
            fields = run("dpkg-deb", "--field", path)
            self.assertIn(f"Package: {name}\n", fields)
        fields = run("dpkg-deb", "--field", [path for path in self.made if "libvok-table-rw1_" in path][0])
        for needed in ("libc6", "libsqlite3-0", "zlib1g"):
            self.assertIn(needed, fields)


class WindowsZip(InstallTest):
    """What a Windows user unpacks."""

    def setUp(self):
        super().setUp()
        if not is_windows():
            self.skipTest("the package of the other target")
        run("cpack", "--config", os.path.join(GIVEN.build, "CPackConfig.cmake"), "-B", self.path("made"))
        with zipfile.ZipFile(glob.glob(self.path("made", "*.zip"))[0]) as archive:
            archive.extractall(self.path("unpacked"))
        self.prefix = glob.glob(self.path("unpacked", "*"))[0]

    def test_examples_and_tool(self):
        installed = files_below(self.prefix)
        for name in ("bin/vok_table.exe", "bin/vok_xls2csv.exe", "bin/vok_table_rw_vc.dll", "lib/vok_table_rw_vc.def",
                     "lib/libvok_table_rw_vc.dll.a", "include/vok_table_rw_vc/table_rw/capi/vo_table_reader_utf.h",
                     "share/vok_table_rw_vc/bindings/csharp/VokTableRw.cs"):
            self.assertIn(name, installed)
        self.check_cmake(self.prefix, os.path.join(self.prefix, "bin"))
        tool = os.path.join(self.prefix, "bin", "vok_table.exe")
        self.assertIn("vok_table", run(GIVEN.emulator, tool, "version"))


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", required=True)
    parser.add_argument("--source", required=True)
    parser.add_argument("--cmake", required=True)
    parser.add_argument("--emulator", default="")
    parser.add_argument("--toolchain", default="")
    GIVEN, cases = parser.parse_known_args()
    unittest.main(argv=[sys.argv[0], *cases])
