"""Reading: a source, its tables and fields, and the values of the last read."""
from __future__ import annotations

import enum
import os
import weakref
from typing import TYPE_CHECKING, Any, Dict, Iterable, Iterator, List, Mapping, NamedTuple, Optional, Tuple, Union

from ._errors import ClosedError, ReadError, UnknownFieldError
from ._library import CONVERTER, TEXT, UINT, TextList, load_library, utf8

if TYPE_CHECKING:
    import pandas

PathLike = Union[str, "os.PathLike[str]"]
Number = Union[float, str, None]

#: Encodings by number: the name and the other name that is accepted, without regard to letter case.
ENCODINGS: Tuple[Tuple[str, str], ...] = (
    ("UTF-8", "UTF-8"), ("UTF-16", "UTF-16"), ("UTF-16LE", "UTF-16LE"), ("UTF-16BE", "UTF-16BE"),
    ("UTF-32", "UTF-32"), ("UTF-32LE", "UTF-32BE"), ("UTF-32BE", "UTF-32LE"), ("CP1250", "Windows-1250"),
    ("CP1251", "Windows-1251"), ("CP1252", "Windows-1252"), ("CP1253", "Windows-1253"),
    ("CP1254", "Windows-1254"), ("CP1255", "Windows-1255"), ("CP1256", "Windows-1256"),
    ("CP1257", "Windows-1257"), ("CP1258", "Windows-1258"), ("CP866", "OEM 866"), ("ASCII", "US-ASCII"),
    ("SYSTEM", "ANSI"),
)

ALL = 2**64 - 1


class FileType(enum.IntEnum):
    """How to read a source. Each has a name in lower case too, as the command vok_table knows it."""

    AUTO = 0        #: chosen by the extension, else by the file's first line
    CSV = 1         #: delimited text
    XLS = 2         #: a workbook, through the converter program
    XLS_ODBC = 3    #: a workbook, through ODBC
    ACCESS = 4      #: an Access database, through ODBC
    DBF = 5
    SQLITE = 6
    MICROMINE = 7   #: a Micromine data file
    DHDB = 8        #: a Micromine drill-hole database, through ODBC
    PETREL = 9      #: a Petrel text table


class RejectedLine(NamedTuple):
    """A line that does not fit the table."""

    number: int  #: counts every line of the source from 0
    text: str    #: the line as it stands there, decoded


def _encoding_number(encoding: Union[str, int]) -> int:
    if isinstance(encoding, int):
        if 0 <= encoding < len(ENCODINGS):
            return encoding
        raise ValueError(f"encoding {encoding} is not between 0 and {len(ENCODINGS) - 1}")
    wanted = encoding.casefold()
    for column in (0, 1):
        for number, names in enumerate(ENCODINGS):
            if names[column].casefold() == wanted:
                return number
    raise ValueError(f"unknown encoding {encoding!r}; known are {', '.join(names[0] for names in ENCODINGS)}")


def _file_type_number(file_type: Union[FileType, str, int]) -> int:
    if isinstance(file_type, str):
        try:
            return FileType[file_type.upper().replace("-", "_")]
        except KeyError:
            known = ", ".join(kind.name.lower().replace("_", "-") for kind in FileType)
            raise ValueError(f"unknown file type {file_type!r}; known are {known}") from None
    return FileType(file_type)


def _number(text: str, decimal: str) -> Number:
    """A number if the whole text is one; the text where it is not; None for the empty text.

    WHY not float alone: it takes "1_000", "nan" and "inf" for numbers, and makes infinity of "1e999".
    """
    if not text:
        return None
    plain = text
    if decimal != ".":
        if "." in text:
            return text
        plain = text.replace(decimal, ".")
    try:
        value = float(plain)
    except ValueError:
        return text
    return value if value - value == 0.0 and "_" not in plain and plain.isascii() else text


class _Handles:
    """What a table owns in the library."""

    def __init__(self, functions: Any) -> None:
        self.functions = functions
        self.texts = TextList(functions)
        self.options: Optional[int] = None
        self.reader: Optional[int] = None

    def open_reader(self) -> int:
        self.functions.vo_table_reader_close(self.reader)
        self.reader = self.functions.vo_table_reader_open(self.options)
        return self.reader

    def close(self) -> None:
        self.functions.vo_table_reader_close(self.reader)
        self.functions.vo_table_reader_options_close(self.options)
        self.texts.close()


class Table:
    """A source and the results of its last read. Made by open_table or read_table.

    A source is opened at every read and closed again; what was read stays in memory until the next read or
    close(). Every access makes new Python objects, so keep the columns that are used in a loop.
    """

    def __init__(self, path: PathLike, *, table: Optional[str] = None, encoding: Union[str, int] = "UTF-8",
                 delimiter: str = ";", quote: str = '"', header_position: Optional[int] = 0,
                 data_position: Optional[int] = None, direction: int = 0,
                 file_type: Union[FileType, str, int] = FileType.AUTO) -> None:
        """Chooses how to read the source; nothing is read yet.

        table            the table or sheet, where the source holds several
        encoding         of delimited text and the like: a name or a number of ENCODINGS
        delimiter        between the values of delimited text; "": every line is one value
        quote            around values that hold the delimiter; "": none
        header_position  the line of the field names, from 0; None: there is none, and the fields are called
                         field_0, field_1...
        data_position    the first line that may hold data; None: the line behind the header. Not without a header
        direction        0: one record a line; 1: records run across columns, where the format has such tables
        file_type        a FileType or its name
        """
        self._path = os.fspath(path)
        if not isinstance(self._path, str):
            raise TypeError(f"the path must be text, not {type(self._path).__name__}")
        if direction not in (0, 1):
            raise ValueError(f"direction is {direction!r}; it is 0 or 1")
        header = -1 if header_position is None else header_position
        first = max(header + 1, 0) if data_position is None else data_position
        if not -1 <= header < 2**31 or not 0 <= first < 2**64:
            raise ValueError(f"lines count from 0: header_position {header_position}, data_position {data_position}")
        if header < 0 < first:
            raise ValueError("without a header every line is data: leave data_position out")
        texts = [utf8(self._path, "the path"), utf8(delimiter, "the delimiter"), utf8(quote, "the quote"),
                 utf8(table or "", "the table's name")]
        encoding_number, type_number = _encoding_number(encoding), _file_type_number(file_type)
        library = self._library = load_library()

        handles = self._handles = _Handles(library)
        self._freed = weakref.finalize(self, handles.close)
        self._texts = handles.texts
        options = handles.options = library.vo_table_reader_options_create_u8(texts[0])
        done = (options and
                library.vo_table_reader_options_set_delimiter_u8(options, texts[1]) and
                library.vo_table_reader_options_set_quote_u8(options, texts[2]) and
                library.vo_table_reader_options_set_table_u8(options, texts[3]) and
                library.vo_table_reader_options_set_any_file_type(options, type_number))
        if not done:
            raise MemoryError("the options of a reader")
        library.vo_table_reader_options_set_header_position(options, header)
        library.vo_table_reader_options_set_data_position(options, first)
        library.vo_table_reader_options_set_direction(options, direction)
        library.vo_table_reader_options_set_encoding(options, encoding_number)
        self._handle: Optional[int] = handles.open_reader()
        self._is_new = True

    # ---- life ----

    def close(self) -> None:
        """Frees the table; closing twice does nothing. Leaving a `with` block closes too."""
        self._handle = None
        self._freed()

    def __enter__(self) -> "Table":
        self._open()
        return self

    def __exit__(self, *exception: object) -> None:
        self.close()

    def __repr__(self) -> str:
        if self._handle is None:
            return f"<Table {self._path!r}, closed>"
        return f"<Table {self._path!r}: {len(self.names)} fields, {len(self)} rows>"

    def _open(self) -> int:
        if self._handle is None:
            raise ClosedError(f"the table {self._path!r} is closed")
        return self._handle

    def _filled(self, function: Any, *arguments: Any) -> List[str]:
        """The texts that a function of the library hands over."""
        if not function(self._open(), *arguments, self._texts.handle):
            raise ReadError(f"{self._path}: {function.__name__} failed")
        return self._texts.texts()

    # ---- reading ----

    @property
    def path(self) -> str:
        return self._path

    def tables(self) -> List[str]:
        """The names of the tables (sheets) in the source."""
        names = self._filled(self._library.vo_table_reader_table_list_u8)
        self._whole()
        return names

    def choose_table(self, name: str) -> "Table":
        """Chooses the table for the next read; the results of the last one stay."""
        self._open()
        text = utf8(name, "the table's name")
        if not self._library.vo_table_reader_options_set_table_u8(self._handles.options, text):
            raise MemoryError("vo_table_reader_options_set_table_u8")
        self._is_new = False
        return self

    def read(self) -> "Table":
        """Reads the whole table into memory. Raises FileNotFoundError or ReadError."""
        return self._checked(self._library.vo_table_reader_read(self._reader_for_a_read()))

    def read_headers(self) -> "Table":
        """Reads names and types of the fields, no rows."""
        return self._checked(self._library.vo_table_reader_read_only_headers(self._reader_for_a_read()))

    def read_preview(self, rows: int) -> "Table":
        """Reads with a limit of rows, where the format heeds one; delimited text does not."""
        if not 0 < rows < 2**31:
            raise ValueError(f"a preview of {rows} rows: at least one, fewer than 2^31")
        return self._checked(self._library.vo_table_reader_read_demo(self._reader_for_a_read(), rows))

    def _reader_for_a_read(self) -> int:
        """WHY a new reader for each read: in some formats the limit of a preview stays for later reads."""
        self._open()
        if not self._is_new:
            self._handle = self._handles.open_reader()
        self._is_new = False
        return self._open()

    def _checked(self, answer: bool) -> "Table":
        if answer:
            return self._whole()
        if not os.path.exists(self._path):
            raise FileNotFoundError(f"there is no file {self._path}")
        hint = "see `vok_table doctor` for what the file or this machine lacks"
        if self._path.lower().endswith((".xls", ".xlsx", ".xlsm")):
            hint = f"workbooks need {CONVERTER} beside the library; " + hint
        raise ReadError(f"{self._path} cannot be read as a table: check file_type, encoding, header_position "
                        f"and the table's name; {hint}")

    def _whole(self) -> "Table":
        if not self._library.vo_table_reader_is_whole(self._handle):
            raise ReadError(f"{self._path} could not be read to its end: the disk or the network failed")
        return self

    # ---- fields ----

    @property
    def names(self) -> List[str]:
        """The names of the fields; a name may occur twice."""
        return self._filled(self._library.vo_table_reader_field_list_u8)

    @property
    def types(self) -> List[str]:
        """For each field "number", where the source declares numbers, or "text". Delimited text declares none."""
        count = self._library.vo_table_reader_field_count(self._open())
        return ["number" if self._library.vo_table_reader_field_type(self._handle, index) == 1 else "text"
                for index in range(count)]

    def _index(self, field: Union[str, int]) -> int:
        """The index of a field, by its name (the first of that name) or its index; negative from the end."""
        names = self.names
        if isinstance(field, str):
            if field in names:
                return names.index(field)
            raise UnknownFieldError(f"{self._path} has no field {field!r}; it has "
                                    f"{', '.join(repr(name) for name in names) or 'none'}")
        if -len(names) <= field < len(names):
            return field % len(names)
        raise IndexError(f"{self._path} has {len(names)} fields, and no field {field}")

    # ---- values ----

    def __len__(self) -> int:
        """The number of rows."""
        return int(self._library.vo_table_reader_count(self._open()))

    def __bool__(self) -> bool:
        return True  # a table without rows is a table

    def column(self, field: Union[str, int]) -> List[str]:
        """The values of a field, as text, in row order; "" where there is none.

        field: a name, or an index from 0. Raises UnknownFieldError or IndexError.
        """
        return self._filled(self._library.vo_table_reader_column_u8, self._index(field))

    __getitem__ = column

    def numbers(self, field: Union[str, int], decimal: str = ".") -> List[Number]:
        """The values of a field as floats: None where there is no value, and the text itself where it is no
        number, so that "<0.05" and "no core" are seen and not lost.

        decimal: the character before the decimals; "," in many files
        """
        return [_number(text, decimal) for text in self.column(field)]

    def typed(self, field: Union[str, int]) -> List[Number]:
        """numbers() where the source declares the field as numbers, column() where it does not."""
        index = self._index(field)
        return self.numbers(index) if self.types[index] == "number" else list(self.column(index))

    def columns(self) -> Dict[str, List[str]]:
        """All columns by name, as text; of fields that share a name the first."""
        found: Dict[str, List[str]] = {}
        for index, name in enumerate(self.names):
            if name not in found:
                found[name] = self.column(index)
        return found

    def row(self, index: int) -> List[str]:
        """One row as it stands; rows of some formats have fewer or more values than there are fields."""
        count = len(self)
        if not -count <= index < count:
            raise IndexError(f"{self._path} has {count} rows, and no row {index}")
        return self._filled(self._library.vo_table_reader_row_u8, index % count)

    def rows(self) -> Iterator[Tuple[str, ...]]:
        """All rows, a value for each field; "" where a row is too short. Takes the memory of the whole table
        once more."""
        return zip(*[self.column(index) for index in range(len(self.names))])

    __iter__ = rows

    def find(self, field: str, conditions: Mapping[str, str]) -> List[str]:
        """The values of a field in all rows that have the wanted values, compared as exact text.

        table.find("WELL", {"AREA": "North", "ROCK": "sand"})
        """
        self._index(field)
        count = len(conditions)
        columns = (UINT * count)(*[self._index(name) for name in conditions])
        for name, value in conditions.items():
            if not isinstance(value, str):
                raise TypeError(f"values are text: {name!r} is to be {value!r}, a {type(value).__name__}")
        values = (TEXT * count)(*[utf8(value, "a wanted value") for value in conditions.values()])
        return self._filled(self._library.vo_table_reader_search_u8, utf8(field, "a field's name"), columns,
                            values, count)

    @property
    def rejected_count(self) -> int:
        """The number of lines that were rejected."""
        return int(self._library.vo_table_reader_error_count(self._open()))

    def rejected(self, most: int = ALL) -> List[RejectedLine]:
        """The lines that the last read rejected, the first `most` of them; the source is read once more.
        Their text is empty where the source has changed since, or where the format rejects no lines."""
        count = min(self.rejected_count, most)
        if count == 0:
            return []
        done = self._library.vo_table_reader_rejected_u8(self._open(), count, self._texts.handle)
        texts = self._texts.texts() if done else []
        texts += [""] * (count - len(texts))
        return [RejectedLine(self._library.vo_table_reader_error_string(self._handle, i), texts[i])
                for i in range(count)]

    # ---- pandas ----

    def to_pandas(self, numbers: Union[str, Iterable[Union[str, int]]] = "declared",
                  decimal: str = ".") -> "pandas.DataFrame":
        """The table as a pandas DataFrame, whose columns stand in the order of the fields.

        numbers  which fields become numbers: "declared", those that the source declares so; "all", every
                 field whose values are all numbers or empty; or the names (indexes) of fields
        decimal  the character before the decimals

        A column of numbers is float64 with NaN for what is empty. A column that was asked for and holds what
        is no number stays a column of objects, floats and texts mixed, so that nothing is lost. Texts are
        str, "" where there is no value. Raises ImportError when pandas is not installed.
        """
        try:
            import pandas
        except ImportError as error:
            raise ImportError("to_pandas needs pandas: pip install pandas") from error
        names, types = self.names, self.types
        if numbers == "declared":
            wanted = {index for index, kind in enumerate(types) if kind == "number"}
        elif numbers == "all":
            wanted = set(range(len(names)))
        elif isinstance(numbers, str):
            raise ValueError(f'numbers is {numbers!r}; it is "declared", "all" or a list of fields')
        else:
            wanted = {self._index(field) for field in numbers}
        series = []
        for index in range(len(names)):
            values: List[Any] = list(self.column(index))
            if index in wanted:
                converted = [_number(text, decimal) for text in values]
                texts = any(isinstance(value, str) for value in converted)
                if not texts and any(value is not None for value in converted):
                    series.append(pandas.Series(converted, dtype="float64"))
                    continue
                if numbers != "all":
                    values = converted
            series.append(pandas.Series(values, dtype=object))
        frame = pandas.concat(series, axis=1) if series else pandas.DataFrame(index=range(len(self)))
        frame.columns = names
        return frame


def open_table(path: PathLike, **options: Any) -> Table:
    """A table of which nothing is read yet: for its list of tables, its fields, a preview.
    The options are those of Table."""
    return Table(path, **options)


def read_table(path: PathLike, **options: Any) -> Table:
    """Reads a table into memory. The options are those of Table.

    Raises FileNotFoundError, ReadError, and ValueError for a bad option.
    """
    table = Table(path, **options)
    try:
        return table.read()
    except BaseException:
        table.close()
        raise
