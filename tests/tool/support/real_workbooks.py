"""What openpyxl and xlrd read from real workbooks, and how it compares with the converter's text."""
import datetime
import os
import re
import warnings

try:
    import openpyxl
    import xlrd
except ImportError:
    openpyxl = xlrd = None
HAS_PACKAGES = openpyxl is not None and xlrd is not None

# Refused on purpose; the other packages read them.
REFUSED = {
    "data03.xlsx",     # two cells in 1,048,576 x 16,384: no table
    "CRLFX5_4.XLS",    # Excel 4
    "testEXCEL_3.xls"  # Excel 3
}
SLOWEST = 400_000  # bytes; the other packages take minutes for more


def files(kind):
    folder = os.path.join(os.environ.get("VOK_REAL_FILES", ""), kind)
    if openpyxl is None or not os.environ.get("VOK_REAL_FILES"):
        return []
    found = [os.path.join(where, name) for where, _, names in os.walk(folder) for name in names
             if name.lower().endswith((".xls", ".xlsx", ".xlsm")) and "excel2016-csv" not in where]
    return sorted(path for path in found if os.path.getsize(path) <= SLOWEST)


def is_refused(name):
    return name in REFUSED


def expected_sheets(kind, path):
    """The cells of each sheet by (row, column); None when the package does not read the file."""
    try:
        with warnings.catch_warnings():
            warnings.simplefilter("ignore")
            return openpyxl_sheets(path) if kind == "xlsx" else xlrd_sheets(path)
    except Exception:  # pylint: disable=broad-except  # damaged files fail in many ways
        return None


def openpyxl_sheets(path):
    workbook = openpyxl.load_workbook(path, data_only=True)
    return {sheet.title: {(row - 1, column - 1): found.value
                          for (row, column), found in sheet._cells.items() if found.value is not None}
            for sheet in workbook.worksheets}


def xlrd_sheets(path):
    with open(os.devnull, "w", encoding="utf-8") as log:
        workbook = xlrd.open_workbook(path, logfile=log)
    sheets = {}
    for sheet in workbook.sheets():
        cells = {(row, column): xlrd_value(sheet.cell(row, column), workbook.datemode)
                 for row in range(sheet.nrows) for column in range(sheet.ncols)}
        sheets[sheet.name] = {place: value for place, value in cells.items() if value is not None}
    return sheets


def xlrd_value(cell, date_mode):
    if cell.ctype == xlrd.XL_CELL_TEXT:
        return cell.value or None
    if cell.ctype == xlrd.XL_CELL_NUMBER:
        return cell.value
    if cell.ctype == xlrd.XL_CELL_BOOLEAN:
        return bool(cell.value)
    if cell.ctype == xlrd.XL_CELL_ERROR:
        return xlrd.error_text_from_code[cell.value]
    if cell.ctype != xlrd.XL_CELL_DATE:
        return None
    if cell.value < 0:
        return cell.value  # that package turns them into some date
    return xlrd.xldate_as_datetime(cell.value, date_mode)


def as_line_text(text):
    """Escapes of the file format resolved, what cannot stand in a line replaced."""
    text = re.sub("_x([0-9A-Fa-f]{4})_", lambda match: chr(int(match.group(1), 16)), text)
    text = re.sub("[\r\n\t]", " ", text.replace("\r\n", "\n"))
    return text.replace("$", "\uff04").replace("\0", "\ufffd").replace("\x1a", "\ufffd")


def iso(value):
    has_time = isinstance(value, (datetime.datetime, datetime.time))
    text = value.isoformat(timespec="milliseconds") if has_time else value.isoformat()
    return text[:-4] if text.endswith(".000") else text


def possible_seconds(value):
    """What a time can stand for: of the day, or from the first day that there is."""
    if isinstance(value, datetime.timedelta):
        all_of_it = [value.total_seconds()]
    elif isinstance(value, datetime.time):
        all_of_it = [(datetime.datetime.combine(datetime.date.min, value) - datetime.datetime.min).total_seconds()]
    else:
        value = datetime.datetime.combine(value, getattr(value, "time", datetime.time)())
        firsts = (datetime.datetime(1899, 12, 30), datetime.datetime(1899, 12, 31), datetime.datetime(1904, 1, 1))
        all_of_it = [(value - first).total_seconds() for first in firsts]
    return all_of_it + [seconds % 86400 for seconds in all_of_it]


def is_same_date(value, text):
    """The number format decides here what of a date is written; the packages always give all of it."""
    if re.fullmatch(r"-[\d.]+", text):
        return True  # before 1900: the number stays
    if text in ("1900-02-29", "1900-01-00") or text.startswith("1900-02-29T"):
        return True  # days that only spreadsheets know
    match = re.fullmatch(r"(\d+):(\d\d):(\d\d(?:\.\d+)?)", text)
    if match:
        seconds = int(match[1]) * 3600 + int(match[2]) * 60 + float(match[3])
        return any(abs(seconds - possible) < 0.002 for possible in possible_seconds(value))
    return text in (iso(value), value.isoformat()[:10])


def is_same(value, text):
    if isinstance(value, bool):
        return text == ("TRUE" if value else "FALSE")
    if isinstance(value, (int, float)):
        return re.fullmatch(r"[-+.\de]+", text) is not None and abs(float(text) - value) <= 1e-15 * abs(value)
    if isinstance(value, str):
        return text == as_line_text(value)
    return is_same_date(value, text)


def differences(cells, text):
    """What differs, as (row, column, expected, found); also lines that are not all equally wide."""
    lines = [line.split("$") for line in text.split("\n")[:-1]]
    found = []
    for (row, column), value in cells.items():
        shown = lines[row][column] if row < len(lines) and column < len(lines[row]) else ""
        if not is_same(value, shown):
            found.append((row, column, value, shown))
    found += [(row, column, None, shown) for row, line in enumerate(lines) for column, shown in enumerate(line)
              if shown and (row, column) not in cells]
    widths = {len(line) for line in lines}
    return found + ([("widths", widths)] if len(widths) > 1 else [])
