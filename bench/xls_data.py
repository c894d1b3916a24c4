#!/usr/bin/env python3
"""Makes the workbook of the spreadsheet benchmark: xls_data.py ROWS FILE.xlsx|FILE.xls

A sheet of twelve columns, two of them Russian words, two texts of which no two are equal, seven of numbers
and one of dates, as a spreadsheet program writes it: shared strings, references at every row and cell,
deflated. The sheet's part is written in pieces, so that a million rows need no memory either. The counts of
what is in it are printed as `xlsx rows=... values=... bytes=...`, where bytes are those of the values as
text. The same sheet as .xls, which has 65,536 rows at most, is written by xlwt.
"""
import datetime
import random
import sys
import zipfile

NAMESPACE = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
OFFICE = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
PACKAGE = "http://schemas.openxmlformats.org/package/2006"
HEADER = ["Скважина", "Площадь", "Проба", "X", "Y", "Z", "От", "До", "Au", "Дата", "Порода", "Примечание"]
FIELDS = ["Северная", "Восточная", "Южная; блок 2", "Центральный участок", "Западная"]
ROCKS = ["песчаник", "алевролит", "гранит", "сланец кварц-серицитовый", "диорит", "кварцевая жила"]
PIECE = 2000


class Strings:
    """The shared strings in the order of their first use."""

    def __init__(self):
        self.numbers = {}

    def number(self, text):
        return self.numbers.setdefault(text, len(self.numbers))


def row_of(number, rng):
    """The values of one row: text, or numbers as they stand in the file."""
    top = rng.randrange(0, 300000) / 100
    return [f"{number % 977 + 1}-Р", rng.choice(FIELDS), f"П-{number:07}",
            f"{4500000 + rng.randrange(0, 9000000) / 100:.15g}", f"{6100000 + rng.randrange(0, 9000000) / 100:.15g}",
            f"{rng.randrange(-50000, 200000) / 1000:.15g}", f"{top:.15g}", f"{top + 1:.15g}",
            f"{rng.randrange(1, 99999) / 10000:.15g}", rng.randrange(20000, 45000),
            rng.choice(ROCKS), f"образец {rng.randrange(10 ** 9)}"]


TEXT_COLUMNS = {0, 1, 2, 10, 11}
DATE_COLUMN = 9


def cell(column, row, value, strings):
    reference = f"{chr(65 + column)}{row}"
    if row == 1 or column in TEXT_COLUMNS:
        return f'<c r="{reference}" t="s"><v>{strings.number(value)}</v></c>'
    style = ' s="1"' if column == DATE_COLUMN else ""
    return f'<c r="{reference}"{style}><v>{value}</v></c>'


def shown(column, value):
    if column != DATE_COLUMN:
        return str(value)
    return (datetime.date(1899, 12, 30) + datetime.timedelta(days=value)).isoformat()


def write_sheet(archive, rows, strings):
    """@return the number of bytes of all values as text"""
    size = 0
    with archive.open("xl/worksheets/sheet1.xml", "w", force_zip64=True) as part:
        part.write(f'<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n<worksheet xmlns="{NAMESPACE}">'
                   f'<dimension ref="A1:L{rows}"/><sheetData>'.encode())
        piece = []
        for row, values in enumerate(table(rows), 1):
            cells = "".join(cell(column, row, value, strings) for column, value in enumerate(values))
            piece.append(f'<row r="{row}" spans="1:12">{cells}</row>')
            size += size_of(row, values)
            if len(piece) == PIECE:
                part.write("".join(piece).encode())
                piece = []
        part.write("".join(piece).encode() + b"</sheetData></worksheet>")
    return size


def write_small_parts(archive):
    def put(name, text):
        archive.writestr(name, '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n' + text)

    types = "application/vnd.openxmlformats-officedocument.spreadsheetml"
    put("[Content_Types].xml",
        f'<Types xmlns="{PACKAGE}/content-types"><Default Extension="rels" '
        'ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
        f'<Override PartName="/xl/workbook.xml" ContentType="{types}.sheet.main+xml"/>'
        f'<Override PartName="/xl/worksheets/sheet1.xml" ContentType="{types}.worksheet+xml"/>'
        f'<Override PartName="/xl/styles.xml" ContentType="{types}.styles+xml"/>'
        f'<Override PartName="/xl/sharedStrings.xml" ContentType="{types}.sharedStrings+xml"/></Types>')
    put("_rels/.rels",
        f'<Relationships xmlns="{PACKAGE}/relationships"><Relationship Id="rId1" '
        f'Type="{OFFICE}/officeDocument" Target="xl/workbook.xml"/></Relationships>')
    put("xl/workbook.xml",
        f'<workbook xmlns="{NAMESPACE}" xmlns:r="{OFFICE}"><sheets>'
        '<sheet name="Пробы" sheetId="1" r:id="rId1"/></sheets></workbook>')
    put("xl/_rels/workbook.xml.rels",
        f'<Relationships xmlns="{PACKAGE}/relationships">'
        f'<Relationship Id="rId1" Type="{OFFICE}/worksheet" Target="worksheets/sheet1.xml"/>'
        f'<Relationship Id="rId2" Type="{OFFICE}/styles" Target="styles.xml"/>'
        f'<Relationship Id="rId3" Type="{OFFICE}/sharedStrings" Target="sharedStrings.xml"/></Relationships>')
    put("xl/styles.xml",
        f'<styleSheet xmlns="{NAMESPACE}"><fonts count="1"><font/></fonts><fills count="1"><fill><patternFill/></fill></fills>'
        '<borders count="1"><border/></borders><cellStyleXfs count="1"><xf/></cellStyleXfs>'
        '<cellXfs count="2"><xf numFmtId="0"/><xf numFmtId="14" applyNumberFormat="1"/></cellXfs></styleSheet>')


def table(rows):
    rng = random.Random(7)
    for row in range(1, rows + 1):
        yield HEADER if row == 1 else row_of(row, rng)


def size_of(row, values):
    return sum(len((value if row == 1 else shown(column, value)).encode()) for column, value in enumerate(values))


def write_xls(rows, path):
    """@return the number of bytes of all values as text"""
    import xlwt  # pylint: disable=import-outside-toplevel
    book = xlwt.Workbook(encoding="utf-8")
    sheet = book.add_sheet("Пробы")
    day = xlwt.easyxf(num_format_str="YYYY-MM-DD")
    size = 0
    for row, values in enumerate(table(rows), 1):
        for column, value in enumerate(values):
            if row == 1 or column in TEXT_COLUMNS:
                sheet.write(row - 1, column, value)
            elif column == DATE_COLUMN:
                sheet.write(row - 1, column, value, day)
            else:
                sheet.write(row - 1, column, float(value))
        size += size_of(row, values)
        if row % PIECE == 0:
            sheet.flush_row_data()
    book.save(path)
    return size


def write_xlsx(rows, path):
    """@return the number of bytes of all values as text"""
    strings = Strings()
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        write_small_parts(archive)
        size = write_sheet(archive, rows, strings)
        items = "".join(f"<si><t>{text}</t></si>" for text in strings.numbers)
        archive.writestr("xl/sharedStrings.xml",
                         '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n'
                         f'<sst xmlns="{NAMESPACE}" uniqueCount="{len(strings.numbers)}">{items}</sst>')
    return size


def main():
    rows, path = int(sys.argv[1]), sys.argv[2]
    size = (write_xls if path.endswith(".xls") else write_xlsx)(rows, path)
    print(f"xlsx rows={rows} values={rows * 12} bytes={size}")


if __name__ == "__main__":
    main()
