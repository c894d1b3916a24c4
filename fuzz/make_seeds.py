#!/usr/bin/env python3
"""Makes the inputs that fuzzing begins with: make_seeds.py FOLDER

FOLDER/<target>/ gets a file each of
  - the tables of a round-trip matrix, in every format that can be made here
  - the files of examples/ and tests/data, and the inputs of tests/fixtures
  - the files below the folder that VOK_REAL_FILES names, where it is there (never a part of the project)
in the form that the target takes apart (see the comment in its file). Files above 64 KiB are left out.
"""
import hashlib
import io
import os
import re
import sqlite3
import struct
import sys
import tempfile
import zipfile
import zlib
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
MOST_BYTES = 64 * 1024
MARK = b"\xff\xff"  # between the parts of an input

FIELDS = ["WELL", "DEPTH", "ROCK"]
TABLES = [
    [["W-1", "1250.5", "clay"], ["W-2", "980", "sand"]],
    [],
    [["Ёлки-1", "№ 7", "«Я»"], ["я", "1 000", "глина"]],
    [[" 1", "2 ", "\t3"], [" ", "", "x"]],
    [["", "", ""], ["1", "", ""], ["", "", "3"]],
    [['5" pipe', 'say "x" twice', '"q;r"'], ["1", "2", "3"]],
    [["007", "1,5", "1e5"], ["-0", "=A1+1", "TRUE"]],
    [["a&b", "<c>", "a & b < c"], ["_x0041_", "]]>", "$"]],
    [["x" * 1022, "y" * 1023, "z" * 300], ["Ж" * 200, "😀", "end"]],
]
CALLS = [bytes([2, 7, 8, 1, 1, 9, 0, 1, 10, 1, 11]), bytes(range(16)) * 2, bytes([6, 2, 3, 4, 7, 5, 0, 1, 2, 2, 8, 255, 255]),
         bytes([1, 8, 3, 16, 0, 1, 0, 1, 17, 1, 1, 10, 1, 2, 20, 3, 2, 10, 1, 1, 59, 17, 0])]
CAPI_EXTENSIONS = [".csv", ".dbf", ".dat", ".tops", ".sqlite", ".txt", "", ".fpt"]


class Seeds:
    def __init__(self, folder):
        self.folder = Path(folder)

    def add(self, target, data):
        if len(data) > MOST_BYTES:
            return
        place = self.folder / target
        place.mkdir(parents=True, exist_ok=True)
        (place / hashlib.sha1(data).hexdigest()).write_bytes(data)


# --- formats that are made here -------------------------------------------------------------------

def text_table(rows, delimiter=";", end="\r\n"):
    return end.join(delimiter.join(row) for row in [FIELDS] + rows) + end


def dbf_table(rows, memo=False):
    kind = b"\x83" if memo else b"\x03"
    widths = [254] * 3
    types = "CCM" if memo else "CNC"
    if memo:
        widths[2] = 10
    if not memo:
        widths[1] = 12
    header = b"".join(name.encode().ljust(11, b"\0") + kind_of.encode() + bytes(4) + bytes([width, 0]) + bytes(14)
                      for name, kind_of, width in zip(FIELDS, types, widths)) + b"\r"
    records, memos = b"", b""
    for row in rows:
        values = [value.encode("cp1251", "replace") for value in row]
        if memo:
            memos += values[2] + b"\x1a\x1a"
            memos += bytes(-len(memos) % 512)
            values[2] = str(len(memos) // 512).rjust(10).encode()
        records += b" " + b"".join(value[:width].ljust(width) for value, width in zip(values, widths))
    head = kind + b"\x18\x01\x01" + struct.pack("<IHH", len(rows), 32 + len(header), 1 + sum(widths)) + bytes(17)
    head += b"\xc9" + bytes(2)
    return head + header + records + b"\x1a", struct.pack("<I", 1 + len(memos) // 512).ljust(512, b"\0") + memos


def sqlite_table(rows, page_size=512, extra=()):
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "t.sqlite")
        connection = sqlite3.connect(path)
        connection.execute(f"PRAGMA page_size={page_size}")
        connection.execute("CREATE TABLE t(WELL TEXT, DEPTH FLOAT, ROCK)")
        connection.executemany("INSERT INTO t VALUES(?, ?, ?)", rows)
        for statement in extra:
            connection.execute(statement)
        connection.commit()
        connection.close()
        return Path(path).read_bytes()


def escaped(value):
    return value.replace("&", "&amp;").replace("<", "&lt;").replace("]]>", "]]&gt;")


def xlsx_parts(rows):
    cells, strings = "", []
    for number, row in enumerate([FIELDS] + rows, 1):
        cells += f'<row r="{number}">'
        for column, value in zip("ABC", row):
            place = f'r="{column}{number}"'
            if re.fullmatch(r"[0-9.]+", value):
                cells += f'<c {place} s="1"><v>{value}</v></c>'
            elif column == "C":
                cells += f'<c {place} t="inlineStr"><is><t>{escaped(value)}</t></is></c>'
            else:
                cells += f'<c {place} t="s"><v>{len(strings)}</v></c>'
                strings.append(f"<si><t>{escaped(value)}</t></si>")
        cells += "</row>"
    space = 'xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"'
    sheet = (f'<worksheet {space}><sheetData>{cells}</sheetData><mergeCells><mergeCell ref="A2:B3"/></mergeCells>'
             "</worksheet>")
    styles = (f'<styleSheet {space}><numFmts><numFmt numFmtId="170" formatCode="dd.mm.yyyy"/></numFmts>'
              '<cellXfs><xf numFmtId="0"/><xf numFmtId="170"/><xf numFmtId="22"/></cellXfs></styleSheet>')
    return [part.encode() for part in (sheet, f"<sst {space}>{''.join(strings)}</sst>", styles)]


def zip_of(members, method):
    out = io.BytesIO()
    with zipfile.ZipFile(out, "w", method) as archive:
        for name, data in members:
            archive.writestr(zipfile.ZipInfo(name, (2024, 1, 1, 0, 0, 0)), data, method)
    return out.getvalue()


def biff(identifier, data):
    return struct.pack("<HH", identifier, len(data)) + data


def xls_parts(rows):
    """Globals and cells in BIFF8: shared strings, numbers, an RK value, a label, a formula with its text."""
    texts = [value for row in [FIELDS] + rows for value in row]
    table = b"".join(struct.pack("<HB", len(text.encode("utf-16-le")) // 2, 1) + text.encode("utf-16-le")
                     for text in texts)
    shared = biff(0xFC, (struct.pack("<II", len(texts), len(texts)) + table)[:8000])
    formats = biff(0x41E, struct.pack("<HHB", 170, 10, 0) + b"dd.mm.yyyy")
    styles = b"".join(biff(0xE0, struct.pack("<HHH", 0, number, 0) + bytes(14)) for number in (0, 14, 170))
    cells = b""
    for index in range(len(texts)):
        cells += biff(0xFD, struct.pack("<HHHI", index // 3, index % 3, 0, index))
    row = len(texts) // 3
    cells += biff(0x203, struct.pack("<HHHd", row, 0, 1, 41684.5)) + biff(0x27E, struct.pack("<HHHi", row, 1, 0, 42 << 2 | 2))
    cells += biff(0x6, struct.pack("<HHH", row, 2, 0) + b"\0" + bytes(5) + b"\xff\xff" + bytes(8))
    cells += biff(0x207, struct.pack("<HB", 2, 0) + b"ok") + biff(0xE5, struct.pack("<HHHHH", 1, 0, 1, 0, 1))
    return formats + styles + shared, cells


def compound_of(name, data):
    """A compound file with one stream: its FAT, directory, mini FAT, then the bytes."""
    end, free = 0xFFFFFFFE, 0xFFFFFFFF
    is_mini = len(data) < 4096
    sectors, minis = -(-len(data) // 512), -(-len(data) // 64) if is_mini else 0

    def chain(first, count):
        return [first + i + 1 for i in range(count - 1)] + [end] if count else []

    def table(numbers):
        return struct.pack("<128I", *(numbers + [free] * 128)[:128])

    def entry(label, kind, start, size):
        units = label.encode("utf-16-le")
        return (units.ljust(64, b"\0") + struct.pack("<HBx", len(units) + 2, kind)).ljust(116, b"\0") + struct.pack(
            "<III", start, size, 0)

    directory = entry("Root Entry", 5, 3 if is_mini else end, minis * 64) + entry(name, 2, 0 if is_mini else 3, len(data))
    header = b"\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1" + bytes(16) + struct.pack("<HHHHH", 0x3E, 3, 0xFFFE, 9, 6) + bytes(10)
    header += struct.pack("<9I", 1, 1, 0, 4096, 2, 1, end, 0, 0)
    return (header.ljust(512, b"\xff") + table([0xFFFFFFFD, end, end] + chain(3, sectors)) + directory.ljust(512, b"\0")
            + table(chain(0, minis)) + data.ljust(sectors * 512, b"\0"))


# --- how targets take their inputs ----------------------------------------------------------------

def with_memo(table, memo):
    """The memo's share of the input is so many sixteenths; zeros fill it up."""
    for share in range(1, 8):
        for size in range(len(table) * share // (16 - share) - 1, len(table) * share // (16 - share) + 3):
            if size >= len(memo) and (len(table) + size) * share // 16 == size:
                return share, memo.ljust(size, b"\0") + table
    return 0, table


def add_text(seeds, data):
    for options in (bytes([0, 0, 0, 2, 0]), bytes([2, 0, 8, 1, 2]), bytes([1, 1, 16, 2, 1])):
        seeds.add("csv", options + data)
    seeds.add("petrel", b"\x05" + data)
    for encoding in (0, 8, 18):
        seeds.add("text", bytes([encoding, 1]) + b";" + data)
    seeds.add("names", b"\x07" + data[:400])
    for calls in CALLS:
        seeds.add("capi", bytes([0, len(calls)]) + calls + data)
        seeds.add("capi", bytes([3, len(calls)]) + calls + data)


def add_xlsx(seeds, parts):
    seeds.add("xlsx", MARK.join(parts))
    for kind, part in enumerate(parts[:2]):
        seeds.add("xml", bytes([kind, 9, 40, 255]) + part)


def add_package(seeds, data):
    seeds.add("zip", data)
    try:
        with zipfile.ZipFile(io.BytesIO(data)) as archive:
            names = archive.namelist()
            sheet = next((name for name in names if re.search(r"worksheets/[^/]*\.xml$", name)), None)
            wanted = [sheet, "xl/sharedStrings.xml", "xl/styles.xml", "xl/workbook.xml", "xl/_rels/workbook.xml.rels"]
            if sheet and sum(archive.getinfo(name).file_size for name in wanted if name in names) < MOST_BYTES:
                add_xlsx(seeds, [archive.read(name) if name in names else b"" for name in wanted])
    except (zipfile.BadZipFile, NotImplementedError, RuntimeError, zlib.error, EOFError):
        pass  # a damaged one is a good seed for the archive alone


def add_file(seeds, path):
    data = path.read_bytes()
    if len(data) > MOST_BYTES:
        return
    suffix = path.suffix.lower()
    if suffix == ".dbf":
        seeds.add("dbf", b"\0" + data)
        memos = [each for each in path.parent.iterdir()
                 if each.stem.lower() == path.stem.lower() and each.suffix.lower() in (".dbt", ".fpt")]
        for memo in memos:
            share, joined = with_memo(data, memo.read_bytes())
            seeds.add("dbf", bytes([share | (8 if memo.suffix.lower() == ".fpt" else 0)]) + joined)
    elif suffix in (".xlsx", ".xlsm", ".xlsb", ".ods", ".zip"):
        add_package(seeds, data)
    elif suffix == ".xls":
        seeds.add("xls", b"\x03" + data)
        seeds.add("compound", data)
    elif suffix in (".sqlite", ".db", ".gpkg"):
        seeds.add("sqlite", data)
    elif suffix in (".micromine", ".dat"):
        seeds.add("micromine", b"\0" + data)
    elif suffix in (".csv", ".txt", ".tsv", ".petrel", ".tops"):
        add_text(seeds, data)
    if suffix in CAPI_EXTENSIONS and suffix:
        for calls in CALLS:
            seeds.add("capi", bytes([CAPI_EXTENSIONS.index(suffix), len(calls)]) + calls + data)


def micromine_table(rows, end=b"\r\n", page=b"ibm-5347_P100-1998"):
    """A data file of the extended flavour, or, without a code page, of the standard one."""
    head = b"a title" + end
    if page:
        head = b'THIS IS MICROMINE EXTENDED DATA FILE!\x07\x1a\x01\r\n<metadata><data codepage="%b"/></metadata>' % page
        head = head.ljust(4096, b"\0")
    variables = list(zip(FIELDS, "CRC", (12, 8, 20)))
    head += b"%2d  VARIABLES" % len(variables) + end
    head += b"".join(name.encode().ljust(10) + kind.encode() + b"%3d   " % width + end
                     for name, kind, width in variables)
    for well, depth, rock in rows:
        digits = depth.strip().replace(",", ".").replace(".", "", 1)
        number = float(depth.replace(",", ".")) if digits.isascii() and digits.isdigit() else float("nan")
        head += well.encode("cp1251", "replace")[:12].ljust(12) + struct.pack("<d", number)
        head += rock.encode("cp1251", "replace")[:20].ljust(20) + end
    return head


def add_micromine(seeds, rows):
    for end in (b"\r\n", b"\n"):
        for page in (b"ibm-5347_P100-1998", b"UTF-8", b""):
            seeds.add("micromine", b"\0" + micromine_table(rows, end, page))
    # Records below a header that the target makes: which one, whose line ends, with which description.
    sizes = (20, 14, 4, 11, 32)
    text = "".join(value for row in rows for value in row).encode("cp1251", "replace") + bytes(range(200, 232))
    for header, size in enumerate(sizes):
        for lines, end in enumerate((b"\r\n", b"\n")):
            records = b"".join(text[at:at + size].ljust(size, b"\0") + end for at in range(0, len(text), size))
            seeds.add("micromine", bytes([2, header, lines, 12]) + b"TENLETTERS a" + records)


def add_matrix(seeds):
    for rows in TABLES:
        for encoding in ("utf-8", "cp1251"):
            for delimiter, end in ((";", "\r\n"), ("\t", "\n")):
                add_text(seeds, text_table(rows, delimiter, end).encode(encoding, "replace"))
        petrel = "# Petrel well tops\nBEGIN HEADER\n" + "\n".join(FIELDS) + "\nEND HEADER\n"
        petrel += "".join(" ".join('"%s"' % value for value in row) + "\n" for row in rows)
        seeds.add("petrel", b"\x01" + petrel.encode())
        seeds.add("dbf", b"\0" + dbf_table(rows)[0])
        share, joined = with_memo(*dbf_table(rows, memo=True))
        seeds.add("dbf", bytes([share]) + joined)
        add_micromine(seeds, rows)
        seeds.add("sqlite", sqlite_table(rows))
        seeds.add("sqlite", sqlite_table(rows, 1024, ["CREATE INDEX i ON t(DEPTH)", "CREATE VIEW v AS SELECT 1 AS a"]))
        parts = xlsx_parts(rows)
        add_xlsx(seeds, parts)
        members = list(zip(("xl/worksheets/sheet1.xml", "xl/sharedStrings.xml", "xl/styles.xml"), parts))
        for method in (zipfile.ZIP_STORED, zipfile.ZIP_DEFLATED):
            seeds.add("zip", zip_of(members, method))
        book, cells = xls_parts(rows)
        seeds.add("xls", b"\0" + book + MARK + cells)
        seeds.add("compound", compound_of("Workbook", book + cells))
        values = MARK.join(value.encode() for row in [FIELDS] + rows for value in row)
        for output in range(3):
            for page in range(2):
                seeds.add("writers", bytes([output, page, 0, 2]) + values)


def main(arguments):
    if len(arguments) != 1:
        sys.exit(__doc__.splitlines()[0])
    seeds = Seeds(arguments[0])
    add_matrix(seeds)
    real = os.environ.get("VOK_REAL_FILES", "")
    for folder in (ROOT / "examples", ROOT / "tests" / "data", Path(real) if real else None):
        if folder is None or not folder.is_dir():
            continue
        for path in sorted(folder.rglob("*")):
            if path.is_file():
                add_file(seeds, path)
    for path in sorted((ROOT / "tests" / "fixtures").glob("*/found/*")):
        seeds.add(path.parent.parent.name, path.read_bytes())


if __name__ == "__main__":
    main(sys.argv[1:])
