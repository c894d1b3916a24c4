#!/usr/bin/env python3
"""Reads a table through the C interface from Python, with ctypes alone: a host without any C in it.

usage: use_from_python.py LIBRARY    the built shared library

Prints a line for every check; exit code 1 if one failed.
"""
import argparse
import ctypes
import os
import sys
import tempfile

# ctypes' own types for what the two headers declare. Handles are plain pointers.
HANDLE = ctypes.c_void_p
TEXT = ctypes.c_wchar_p
RECEIVER = ctypes.CFUNCTYPE(None, ctypes.c_void_p, ctypes.c_wchar_p)
SIGNATURES = {
    "vo_string_adp_create_callback": (HANDLE, [RECEIVER, ctypes.c_void_p]),
    "vo_string_adp_destroy": (None, [HANDLE]),
    "vo_table_reader_options_create": (HANDLE, [TEXT]),
    "vo_table_reader_options_close": (None, [HANDLE]),
    "vo_table_reader_options_set_path": (None, [HANDLE, TEXT]),
    "vo_table_reader_options_set_header_position": (None, [HANDLE, ctypes.c_int32]),
    "vo_table_reader_options_set_data_position": (None, [HANDLE, ctypes.c_uint64]),
    "vo_table_reader_options_set_direction": (None, [HANDLE, ctypes.c_int32]),
    "vo_table_reader_options_set_file_type": (None, [HANDLE, ctypes.c_int32]),
    "vo_table_reader_options_set_delimiter": (None, [HANDLE, ctypes.c_wchar]),
    "vo_table_reader_options_set_encoding": (None, [HANDLE, ctypes.c_int32]),
    "vo_table_reader_options_set_table": (None, [HANDLE, TEXT]),
    "vo_table_reader_open": (HANDLE, [HANDLE]),
    "vo_table_reader_close": (None, [HANDLE]),
    "vo_table_reader_read_only_headers": (ctypes.c_bool, [HANDLE]),
    "vo_table_reader_read_demo": (ctypes.c_bool, [HANDLE, ctypes.c_int32]),
    "vo_table_reader_read": (ctypes.c_bool, [HANDLE]),
    "vo_table_reader_set_table": (None, [HANDLE, TEXT]),
    "vo_table_reader_table_list": (None, [HANDLE, HANDLE]),
    "vo_table_reader_field_list": (None, [HANDLE, HANDLE]),
    "vo_table_reader_field_num": (ctypes.c_int32, [HANDLE, TEXT]),
    "vo_table_reader_field_count": (ctypes.c_uint64, [HANDLE]),
    "vo_table_reader_count": (ctypes.c_uint64, [HANDLE]),
    "vo_table_reader_value_index": (None, [HANDLE, ctypes.c_uint64, ctypes.c_uint64, HANDLE]),
    "vo_table_reader_value_name": (None, [HANDLE, TEXT, ctypes.c_uint64, HANDLE]),
    "vo_table_reader_row": (None, [HANDLE, ctypes.c_uint64, HANDLE]),
    "vo_table_reader_is_ok": (ctypes.c_bool, [HANDLE]),
    "vo_table_reader_error_count": (ctypes.c_uint64, [HANDLE]),
    "vo_table_reader_error_string": (ctypes.c_uint64, [HANDLE, ctypes.c_uint64]),
}
CP1251 = 8

failures = 0


def check(what, answer, wanted):
    global failures
    passed = answer == wanted
    failures += 0 if passed else 1
    print(f"{'ok    ' if passed else 'FAILED'} {what}: {answer!r}" +
          ("" if passed else f", wanted {wanted!r}"))


class Library:
    """The functions of the library without their prefix, and an adapter that collects strings."""

    def __init__(self, path):
        self._library = ctypes.CDLL(path)
        for name, (result, arguments) in SIGNATURES.items():
            function = getattr(self._library, name)
            function.restype, function.argtypes = result, arguments
            setattr(self, name.removeprefix("vo_table_reader_"), function)
        self._heard = []
        # Kept here: the library holds no reference to a Python object.
        self._receiver = RECEIVER(lambda user, text: self._heard.append(text))
        self.adapter = self.vo_string_adp_create_callback(self._receiver, None)

    def fed(self, function, *arguments):
        """What a function with an adapter as its last argument feeds."""
        self._heard.clear()
        function(*arguments, self.adapter)
        return list(self._heard)


def use(library, folder):
    path = os.path.join(folder, "скважины wells.csv")
    with open(path, "wb") as file:
        file.write("WELL;ROCK\r\nW-1; глина \r\nW-2\r\nW-3;\r\n".encode("cp1251"))

    options = library.options_create(path)
    library.options_set_header_position(options, 0)
    library.options_set_encoding(options, CP1251)
    library.options_set_file_type(options, 6)  # ignored
    library.options_set_direction(options, 2)  # ignored
    reader = library.open(options)
    check("ok before reading", library.is_ok(reader), False)
    check("read", library.read(reader), True)
    check("ok after reading", library.is_ok(reader), True)
    check("tables", library.fed(library.table_list, reader), ["csv"])
    check("fields", library.fed(library.field_list, reader), ["WELL", "ROCK"])
    check("number of fields", library.field_count(reader), 2)
    check("field ROCK", library.field_num(reader, "ROCK"), 1)
    check("field rock", library.field_num(reader, "rock"), -1)
    check("number of rows", library.count(reader), 2)
    check("row 0", library.fed(library.row, reader, 0), ["W-1", "глина"])
    check("row 1", library.fed(library.row, reader, 1), ["W-3", ""])
    check("row 2", library.fed(library.row, reader, 2), [])
    check("value by name", library.fed(library.value_name, reader, "WELL", 1), ["W-3"])
    check("value by index", library.fed(library.value_index, reader, 1, 0), ["глина"])
    check("no such value", library.fed(library.value_index, reader, 0, 2**63), [""])
    check("number of errors", library.error_count(reader), 1)
    check("error 0", library.error_string(reader, 0), 2)
    check("error 1", library.error_string(reader, 1), 2**64 - 1)
    check("headers alone", library.read_only_headers(reader), True)
    check("rows then", library.count(reader), 0)
    check("demo", library.read_demo(reader, 1), True)
    library.set_table(reader, "any")
    check("read once more", library.read(reader), True)
    library.close(reader)

    library.options_set_delimiter(options, "-")
    library.options_set_header_position(options, -1)
    library.options_set_data_position(options, 0)
    library.options_set_table(options, "any")
    reader = library.open(options)
    check("read with another delimiter", library.read(reader), True)
    check("fields then", library.fed(library.field_list, reader), ["field_0"])
    check("row 0 then", library.fed(library.row, reader, 0), ["WELL;ROCK"])
    library.close(reader)

    library.options_set_path(options, os.path.join(folder, "gone.csv"))
    reader = library.open(options)
    check("read of a missing file", library.read(reader), False)
    library.close(reader)
    library.close(None)
    library.options_close(options)
    library.options_close(None)
    library.vo_string_adp_destroy(library.adapter)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("shared_library", metavar="library", help="the built shared library")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        use(Library(os.path.abspath(options.shared_library)), folder)
    print(f"{failures} failed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
