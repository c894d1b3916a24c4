"""The shared library: where it is found, and the signatures of its C functions.

It is looked for, in this order
  1. at the path given to load_library: a file, or the folder that holds it
  2. at the path in the environment variable VOK_TABLE_RW_LIBRARY, likewise
  3. beside this package and in the package's own folder
  4. where the system's loader looks for libraries
A path that is given and does not lead to the library is an error; the search does not go on behind it.
"""
from __future__ import annotations

import ctypes
import os
import sys
import threading
from typing import Iterator, List, Optional, Union

from ._errors import LibraryNotFoundError

VARIABLE = "VOK_TABLE_RW_LIBRARY"
FILE_NAMES = (["vok_table_rw_vc.dll"] if sys.platform == "win32"
              else ["libvok_table_rw_vc.so.1", "libvok_table_rw_vc.so"])
CONVERTER = "vok_xls2csv.exe"  # its name on every system

HANDLE = ctypes.c_void_p
TEXT = ctypes.c_char_p
INT = ctypes.c_int32
UINT = ctypes.c_uint64
OFFSETS = ctypes.POINTER(ctypes.c_uint64)
TEXTS = ctypes.POINTER(ctypes.c_char_p)
BOOL = ctypes.c_bool

SIGNATURES = {
    "vo_text_list_create": (HANDLE, []),
    "vo_text_list_close": (None, [HANDLE]),
    "vo_text_list_count": (UINT, [HANDLE]),
    "vo_text_list_offsets": (OFFSETS, [HANDLE]),
    "vo_text_list_data_u8": (HANDLE, [HANDLE]),
    "vo_options_set_main_module_path_u8": (BOOL, [TEXT]),
    "vo_table_reader_options_create_u8": (HANDLE, [TEXT]),
    "vo_table_reader_options_close": (None, [HANDLE]),
    "vo_table_reader_options_set_header_position": (None, [HANDLE, INT]),
    "vo_table_reader_options_set_data_position": (None, [HANDLE, UINT]),
    "vo_table_reader_options_set_direction": (None, [HANDLE, INT]),
    "vo_table_reader_options_set_any_file_type": (BOOL, [HANDLE, INT]),
    "vo_table_reader_options_set_delimiter_u8": (BOOL, [HANDLE, TEXT]),
    "vo_table_reader_options_set_quote_u8": (BOOL, [HANDLE, TEXT]),
    "vo_table_reader_options_set_encoding": (None, [HANDLE, INT]),
    "vo_table_reader_options_set_table_u8": (BOOL, [HANDLE, TEXT]),
    "vo_table_reader_open": (HANDLE, [HANDLE]),
    "vo_table_reader_close": (None, [HANDLE]),
    "vo_table_reader_read_only_headers": (BOOL, [HANDLE]),
    "vo_table_reader_read_demo": (BOOL, [HANDLE, INT]),
    "vo_table_reader_read": (BOOL, [HANDLE]),
    "vo_table_reader_table_list_u8": (BOOL, [HANDLE, HANDLE]),
    "vo_table_reader_field_list_u8": (BOOL, [HANDLE, HANDLE]),
    "vo_table_reader_field_count": (UINT, [HANDLE]),
    "vo_table_reader_is_whole": (BOOL, [HANDLE]),
    "vo_table_reader_field_type": (INT, [HANDLE, UINT]),
    "vo_table_reader_count": (UINT, [HANDLE]),
    "vo_table_reader_value_index_u8": (BOOL, [HANDLE, UINT, UINT, HANDLE]),
    "vo_table_reader_row_u8": (BOOL, [HANDLE, UINT, HANDLE]),
    "vo_table_reader_column_u8": (BOOL, [HANDLE, UINT, HANDLE]),
    "vo_table_reader_search_u8": (BOOL, [HANDLE, TEXT, OFFSETS, TEXTS, UINT, HANDLE]),
    "vo_table_reader_rejected_u8": (BOOL, [HANDLE, UINT, HANDLE]),
    "vo_table_reader_error_count": (UINT, [HANDLE]),
    "vo_table_reader_error_string": (UINT, [HANDLE, UINT]),
    "vo_table_writer_options_create_u8": (HANDLE, [TEXT]),
    "vo_table_writer_options_close": (None, [HANDLE]),
    "vo_table_writer_options_set_delimiter_u8": (BOOL, [HANDLE, TEXT]),
    "vo_table_writer_options_add_field_u8": (BOOL, [HANDLE, TEXT, INT, INT, INT]),
    "vo_table_writer_open": (HANDLE, [HANDLE]),
    "vo_table_writer_add_row_u8": (BOOL, [HANDLE, TEXTS, UINT]),
    "vo_table_writer_close": (None, [HANDLE]),
}

_loaded: Optional[ctypes.CDLL] = None
_lock = threading.Lock()


def load_library(path: Union[str, "os.PathLike[str]", None] = None) -> ctypes.CDLL:
    """Loads the shared library, once in a process; needed only where the search of this module fails.

    path: the library, or the folder that holds it; None: searched for
    Raises LibraryNotFoundError when there is none, or when it lacks a function. A path is ignored, and the
    library that is there returned, once one is loaded.
    """
    global _loaded
    with _lock:
        if _loaded is None:
            _loaded = _prepared(_opened(os.fspath(path) if path is not None else None))
        return _loaded


def _opened(path: Optional[str]) -> ctypes.CDLL:
    asked = path or os.environ.get(VARIABLE)
    tried = []
    for candidate in _candidates(asked):
        try:
            return ctypes.CDLL(candidate)
        except OSError as error:
            tried.append(f"  {candidate}: {error}")
    raise LibraryNotFoundError(
        f"the library {FILE_NAMES[0]} cannot be loaded; tried\n" + "\n".join(tried) +
        f"\nBuild it, and name it (or its folder) in the environment variable {VARIABLE}")


def _candidates(asked: Optional[str]) -> Iterator[str]:
    if asked:
        if os.path.isdir(asked):
            yield from (os.path.join(os.path.abspath(asked), name) for name in FILE_NAMES)
        else:
            yield os.path.abspath(asked)
        return
    package = os.path.dirname(os.path.abspath(__file__))
    for folder in (package, os.path.dirname(package)):
        for name in FILE_NAMES:
            if os.path.exists(os.path.join(folder, name)):
                yield os.path.join(folder, name)
    yield from FILE_NAMES


def _prepared(library: ctypes.CDLL) -> ctypes.CDLL:
    for name, (result, arguments) in SIGNATURES.items():
        try:
            function = getattr(library, name)
        except AttributeError:
            raise LibraryNotFoundError(
                f"{library._name} has no function {name}: it is older than this package; "
                "build the library and install the package from the same version") from None
        function.restype, function.argtypes = result, arguments
    _tell_converter(library)
    return library


def _tell_converter(library: ctypes.CDLL) -> None:
    """Workbooks are read through a program that the library looks for beside the main module. That is the
    Python interpreter here, so the library is told the folder where the program is."""
    folder = os.path.dirname(library._name)
    if not folder:  # found by the system's loader
        folder = _folder_of_loaded(library)
    for place in (folder, os.path.join(folder, os.pardir, "bin"),
                  os.path.join(folder, os.pardir, os.pardir, "bin")):
        if os.path.exists(os.path.join(place, CONVERTER)):
            main_module = os.path.join(os.path.abspath(place), "python")
            library.vo_options_set_main_module_path_u8(main_module.encode("utf-8", "replace"))
            return


def _folder_of_loaded(library: ctypes.CDLL) -> str:
    if sys.platform == "win32":
        buffer = ctypes.create_unicode_buffer(32768)
        ctypes.windll.kernel32.GetModuleFileNameW(  # type: ignore[attr-defined]
            ctypes.c_void_p(library._handle), buffer, len(buffer))
        return os.path.dirname(buffer.value)
    try:
        with open("/proc/self/maps", encoding="utf-8", errors="replace") as maps:
            for line in maps:
                name = line.rstrip("\n").split(" ")[-1]
                if os.path.basename(name).startswith("libvok_table_rw_vc.so"):
                    return os.path.dirname(name)
    except OSError:
        pass
    return os.path.dirname(sys.executable)


def utf8(text: str, what: str) -> bytes:
    """Text as the library takes it. Raises ValueError for what a C string in UTF-8 cannot hold."""
    if "\0" in text:
        raise ValueError(f"{what} holds a NUL character: {text!r}")
    try:
        return text.encode("utf-8")
    except UnicodeEncodeError as error:
        raise ValueError(f"{what} holds what is no character: {text!r}") from error


class TextList:
    """A list of texts that the library fills; used again for every call of one table."""

    def __init__(self, library: ctypes.CDLL) -> None:
        self._library = library
        self.handle: Optional[int] = library.vo_text_list_create()
        if not self.handle:
            raise MemoryError("vo_text_list_create")

    def close(self) -> None:
        self._library.vo_text_list_close(self.handle)
        self.handle = None

    def texts(self) -> List[str]:
        count = self._library.vo_text_list_count(self.handle)
        if count == 0:
            return []
        offsets = self._library.vo_text_list_offsets(self.handle)
        data = ctypes.string_at(self._library.vo_text_list_data_u8(self.handle), offsets[count])
        # Every text has a NUL behind it, so one split makes them all, unless a text holds a NUL itself.
        texts = data[:-1].decode("utf-8").split("\0")
        if len(texts) == count:
            return texts
        return [data[offsets[i]:offsets[i + 1] - 1].decode("utf-8") for i in range(count)]
