"""Writing: delimited text, DBF and XLSX, chosen by the extension of the target.

A table is written to a temporary file beside its target, checked, and renamed: the target appears whole or stays
as it was. WHY the check: the library does not report a disk that is full.
"""
from __future__ import annotations

import itertools
import os
import re
import struct
import xml.parsers.expat
import zipfile
from typing import Any, Iterable, List, NamedTuple, Optional, Sequence, Union

from ._errors import ClosedError, WriteError
from ._library import TEXT, load_library, utf8

PathLike = Union[str, "os.PathLike[str]"]

WIDEST_DBF_FIELD = 254
_PLAIN_NUMBER = re.compile(r"-?(?:0|[1-9][0-9]*)(?:\.([0-9]+))?", re.ASCII)  # "007" is a text
_temporary_numbers = itertools.count()


class Field(NamedTuple):
    """A column of the table to write. Type, width and decimals matter to DBF alone."""

    name: str
    type: str = "text"  #: "text" or "number"
    width: int = 0      #: in bytes of the file's code page, 1 to 254
    decimals: int = 0   #: digits behind the point


def text_of(value: Any) -> str:
    """A value as it is written: None and NaN are empty, text stays, everything else is str(value)."""
    if isinstance(value, str):
        return value
    return "" if value is None or value != value else str(value)


class TableWriter:
    """A table being written, for rows that come one by one; write_table is the short way.

        with TableWriter("out.csv", ["WELL", "DEPTH"]) as writer:
            writer.add_row(["W-1", 1250.5])

    An exception inside the block leaves the target as it was.
    """

    def __init__(self, path: PathLike, fields: Sequence[Union[str, Field]], *, delimiter: str = ";") -> None:
        """fields: names, or Fields, which DBF needs with their widths.
        delimiter: between the values of delimited text, whose code page is Windows-1251

        Raises ValueError for what cannot be written and WriteError when the target's folder is missing.
        """
        self._path = os.fspath(path)
        self._fields = [Field(field) if isinstance(field, str) else field for field in fields]
        self._rows = 0
        self._line_feeds = sum(field.name.count("\n") for field in self._fields)
        if not self._fields:
            raise ValueError("a table needs at least one field")
        folder, name = os.path.split(os.path.abspath(self._path))
        if not os.path.isdir(folder):
            raise WriteError(f"cannot write {self._path}: there is no folder {folder}")
        self._extension = os.path.splitext(name)[1].lower()
        for field in self._fields:
            if field.type not in ("text", "number"):
                raise ValueError(f"field {field.name!r}: the type {field.type!r} is neither text nor number")
            if self._extension == ".dbf" and not 1 <= field.width <= WIDEST_DBF_FIELD:
                raise ValueError(f"field {field.name!r}: DBF needs a width from 1 to {WIDEST_DBF_FIELD}")
        self._target = os.path.join(folder, name)
        self._temporary = os.path.join(
            folder, f"vok_{os.getpid()}_{next(_temporary_numbers)}{self._extension}")
        self._library = load_library()
        self._handle: Optional[int] = self._opened(delimiter)

    def _opened(self, delimiter: str) -> int:
        library = self._library
        separator = utf8(delimiter, "the delimiter")
        names = [utf8(field.name, "a field's name") for field in self._fields]
        options = library.vo_table_writer_options_create_u8(utf8(self._temporary, "the path"))
        if not options:
            raise MemoryError("vo_table_writer_options_create_u8")
        try:
            done = library.vo_table_writer_options_set_delimiter_u8(options, separator)
            for name, field in zip(names, self._fields):
                done = done and library.vo_table_writer_options_add_field_u8(
                    options, name, field.type == "number", field.width, field.decimals)
            if not done:
                raise ValueError("a field's width or decimals are out of range")
            handle = library.vo_table_writer_open(options)
        finally:
            library.vo_table_writer_options_close(options)
        if not handle:
            raise WriteError(f"cannot write {self._path}: memory is short")
        return handle

    def add_row(self, values: Sequence[Any]) -> None:
        """Appends a row: a value for each field. None is empty, other values are written as str has them."""
        if self._handle is None:
            raise ClosedError(f"the writer of {self._path} is closed")
        if len(values) != len(self._fields):
            raise ValueError(f"row {self._rows} has {len(values)} values for {len(self._fields)} fields")
        texts = [utf8(text_of(value), "a value") for value in values]
        if not self._library.vo_table_writer_add_row_u8(self._handle, (TEXT * len(texts))(*texts), len(texts)):
            raise WriteError(f"{self._path}: row {self._rows} was not taken")
        self._rows += 1
        self._line_feeds += sum(text.count(b"\n") for text in texts)

    def close(self) -> None:
        """Finishes the file and gives it the target's name. Raises WriteError, the target unchanged, when it
        is not whole."""
        if self._handle is None:
            return
        self._finish()
        try:
            if not self._is_whole():
                raise WriteError(f"{self._path} was not written: the folder or the disk did not take the whole file; "
                                 "is it writable and not full?")
            if self._extension in (".xls", ".xlsx") and not _is_well_formed(self._temporary):
                raise WriteError(f"{self._path} was not written: a value holds a control character, or one of the "
                                 "characters & < > twice, of which a workbook takes one; write .csv or .dbf")
            os.replace(self._temporary, self._target)
            self._replace_code_page()
        except OSError as error:
            self._remove()
            if isinstance(error, WriteError):
                raise
            raise WriteError(f"cannot write {self._path}: {error}") from error

    def discard(self) -> None:
        """Ends the writing without a result; the target stays as it was."""
        if self._handle is not None:
            self._finish()
            self._remove()

    def __enter__(self) -> "TableWriter":
        return self

    def __exit__(self, kind: Any, *rest: object) -> None:
        if kind is None:
            self.close()
        else:
            self.discard()

    def __del__(self) -> None:
        if getattr(self, "_handle", None) is not None:
            self.discard()

    def _finish(self) -> None:
        self._library.vo_table_writer_close(self._handle)
        self._handle = None

    def _remove(self) -> None:
        for path in (self._temporary, _code_page_file(self._temporary)):
            if os.path.exists(path):
                os.remove(path)

    def _is_whole(self) -> bool:
        try:
            with open(self._temporary, "rb") as file:
                if self._extension in (".xls", ".xlsx"):
                    return zipfile.is_zipfile(file)  # its directory is the last that is written
                if self._extension == ".dbf":
                    head = file.read(12)
                    if len(head) < 12:
                        return False
                    count, first, length = struct.unpack_from("<IHH", head, 4)
                    size = file.seek(0, os.SEEK_END)
                    return count == self._rows and size >= first + count * length
                line_feeds, last = 0, b""
                for block in iter(lambda: file.read(1 << 20), b""):
                    line_feeds += block.count(b"\n")
                    last = block[-1:]
                return line_feeds == 1 + self._rows + self._line_feeds and last == b"\n"
        except OSError:
            return False

    def _replace_code_page(self) -> None:
        """The file beside a DBF table that names its code page: the new one takes the old one's place, and an
        old one goes where there is no new one."""
        if self._extension != ".dbf":
            return
        made, wanted = _code_page_file(self._temporary), _code_page_file(self._target)
        if os.path.exists(made):
            os.replace(made, wanted)
        elif os.path.exists(wanted):
            os.remove(wanted)


def _is_well_formed(path: str) -> bool:
    """Whether every part of a workbook can be parsed. WHY asked: of each character that XML reserves only the first in
    a value is escaped, as the programs want it that these workbooks are made for."""
    with zipfile.ZipFile(path) as package:
        for part in package.namelist():
            with package.open(part) as file:
                try:
                    xml.parsers.expat.ParserCreate().ParseFile(file)
                except xml.parsers.expat.ExpatError:
                    return False
    return True


def _code_page_file(path: str) -> str:
    return os.path.splitext(path)[0] + ".cpg"


def _dbf_field(name: str, values: List[str]) -> Field:
    """A field that holds the values: numbers when all are, else text."""
    filled = [value for value in values if value]
    matches = [_PLAIN_NUMBER.fullmatch(value) for value in filled]
    if filled and all(matches):
        decimals = max(len(match.group(1) or "") for match in matches if match)
        width = max(len(value.partition(".")[0]) for value in filled) + (decimals + 1 if decimals else 0)
        if width <= 19 and decimals <= 15:
            return Field(name, "number", width, decimals)
    widest = max((len(value.encode("utf-8")) for value in filled), default=1)
    if widest > WIDEST_DBF_FIELD:
        raise ValueError(f"field {name!r}: a value of {widest} bytes; DBF holds {WIDEST_DBF_FIELD}")
    return Field(name, "text", widest)


def write_table(path: PathLike, fields: Sequence[Union[str, Field]], rows: Iterable[Sequence[Any]], *,
                delimiter: str = ";") -> int:
    """Writes a table; the extension of the path selects the format: .xlsx and .xls make a workbook, .dbf a
    dBASE III table, everything else delimited text in Windows-1251.

    fields     names, or Fields; of a DBF table given by names alone, types and widths come from the values
    rows       a value for each field in every row
    delimiter  between the values of delimited text

    Answers the number of rows. An existing target is replaced, in one step. Raises ValueError and WriteError.
    Text that its format cannot hold is substituted by the library: characters outside Windows-1251 become "?",
    and a value of delimited text that holds the delimiter or a line break comes apart when it is read back. A value
    that would make a workbook which no program opens is a WriteError.
    """
    if os.fspath(path).lower().endswith(".dbf") and any(isinstance(field, str) for field in fields):
        rows = [[text_of(value) for value in row] for row in rows]
        for number, row in enumerate(rows):
            if len(row) != len(fields):
                raise ValueError(f"row {number} has {len(row)} values for {len(fields)} fields")
        fields = [field if isinstance(field, Field) else _dbf_field(field, [row[index] for row in rows])
                  for index, field in enumerate(fields)]
    count = 0
    with TableWriter(path, fields, delimiter=delimiter) as writer:
        for row in rows:
            writer.add_row(row)
            count += 1
    return count
