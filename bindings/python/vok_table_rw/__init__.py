"""Reads tables from the files that geologists have, exactly, and writes them.

    import vok_table_rw

    with vok_table_rw.read_table("wells.csv", encoding="CP1251") as table:
        print(table.names, len(table))
        wells = table["WELL"]              # a column: a list of str
        depths = table.numbers("DEPTH")    # floats; None where empty, the text where it is no number
        sand = table.find("WELL", {"ROCK": "sand"})
        frame = table.to_pandas()          # when pandas is installed

    vok_table_rw.write_table("out.xlsx", ["WELL", "DEPTH"], zip(wells, depths))

Values cross as text, exactly as the source has them: a well called "007" stays "007". Numbers are made when
they are asked for, and what is no number stays visible. Lines and rows count from 0.

Threads: different tables are independent of each other; one table belongs to one thread at a time. Two workbooks of
one file name must not be read at the same time, in other programs neither, unless each has its own folder for
temporary files (the variable TMPDIR, on Windows TMP).
"""
from ._errors import ClosedError, LibraryNotFoundError, ReadError, TableError, UnknownFieldError, WriteError
from ._library import load_library
from ._reading import ENCODINGS, FileType, RejectedLine, Table, open_table, read_table
from ._writing import Field, TableWriter, write_table

__all__ = [
    "ENCODINGS", "ClosedError", "Field", "FileType", "LibraryNotFoundError", "ReadError", "RejectedLine",
    "Table", "TableError", "TableWriter", "UnknownFieldError", "WriteError", "load_library", "open_table",
    "read_table", "write_table",
]
__version__ = "1.0.0"
