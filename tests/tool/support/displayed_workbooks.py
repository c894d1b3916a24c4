"""Sheets as a spreadsheet program displays them (its CSV export), and how the converter's text compares.

Displayed are rounded numbers and dates in any notation, so a cell agrees when what is shown can be a display
of the converter's text: the same number within the digits shown, a date whose parts are all in the text.
"""
import csv
import datetime
import io
import os
import re

# Exports that show what the workbook does not hold: that program computed formulas anew, or the display is
# not to be undone.
EXPLAINED = {
    "apachepoi_56688_4.xlsx.0.csv": "formulas of the current day",
    "apachepoi_57003-FixedFunctionTestCaseData.xls.1.csv": "formulas that depend on the locale",
    "apachepoi_57535.xlsx.0.csv": "other digits of formulas than were saved",
    "apachepoi_FormatKM.xls.0.csv": "thousands and millions",
    "apachepoi_NumberFormatApproxTests.xlsx.1.csv": "functions of macros",
    "apachepoi_NumberFormatTests.xlsx.1.csv": "quotes that make the export ambiguous",
    "formula_stress_test.xlsx.1.csv": "formulas of the current day",
    "formula_stress_test.xlsx.4.csv": "formulas of the current day",
    "formula_stress_test.xlsx.7.csv": "random numbers",
    "number_format.xls.0.csv": "minutes and seconds without a colon",
    "number_format.xls.1.csv": "functions of macros that have no saved result",
    "number_format_russian.xlsm.0.csv": "formulas that depend on the locale",
    "number_format_russian.xlsm.1.csv": "formulas that depend on the locale",
}
# Locked, of Excel 3, and no Excel workbook at all.
REFUSED = {"50833.xls", "testEXCEL_3.xls", "type_openoffice.xlsm"}
BLANKS = "[ \t\r\n\xa0]+"
MONTHS = ("january", "february", "march", "april", "may", "june", "july", "august", "september", "october",
          "november", "december")


def displays(folder, kind):
    """The displayed sheets of a kind of workbook: (path of the workbook, number of the sheet, CSV path)."""
    shown = os.path.join(folder, kind, "excel2016-csv")
    if not os.path.isdir(shown):
        return []
    workbooks = {name: os.path.join(where, name) for where, _, names in os.walk(os.path.join(folder, kind))
                 for name in names if where != shown}
    found = []
    for name in sorted(os.listdir(shown)):
        match = re.fullmatch(r"(.*)\.(\d+)\.csv", name)
        if match is None:
            continue
        # What stands before the first underscore is where the workbook is from.
        path = workbooks.get(match[1]) or workbooks.get(match[1].partition("_")[2])
        if path is not None:
            found.append((path, int(match[2]), os.path.join(shown, name)))
    return found


def is_refused(name):
    return name in REFUSED


def sheet_name(csv_path, number, listed):
    """The name of the sheet: from the list beside the export, or from the converter's where there is none."""
    path = re.sub(r"\.\d+\.csv$", ".sheetnames", csv_path)
    if os.path.exists(path):
        with open(path, encoding="utf-8") as names:
            listed = names.read().split("\n")
    return listed[number] if number < len(listed) else None


def displayed_cells(csv_path):
    """The cells that are not empty by (row, column), each in both encodings that such files have."""
    with open(csv_path, "rb") as file:
        content = file.read()
    cells = {}
    for encoding in ("mac_roman", "cp1252"):
        text = content.decode(encoding, "replace")
        for row, line in enumerate(csv.reader(io.StringIO(text, newline=""))):
            for column, value in enumerate(line):
                if value.strip():
                    cells.setdefault((row, column), []).append(value)
    return cells


def converted_cells(text):
    lines = [line.split("$") for line in text.split("\n")[:-1]]
    return {(row, column): value for row, line in enumerate(lines) for column, value in enumerate(line)
            if value.strip()}


def aligned(shown, converted):
    """The displayed cells at their places in the sheet: the export begins at the used range."""
    row = min(place[0] for place in converted) - min(place[0] for place in shown)
    column = min(place[1] for place in converted) - min(place[1] for place in shown)
    return {(place[0] + row, place[1] + column): value for place, value in shown.items()}


def is_same_text(shown, text):
    """The export has `_` or `?` for what its encoding lacks."""
    shown = re.sub(BLANKS, " ", shown).strip(" ")
    text = re.sub(BLANKS, " ", text).strip(" ").replace("\uff04", "$")
    if shown == text:
        return True
    # One for each UTF-16 unit.
    pattern = "".join("[^ -~]" if c in "_?" else re.escape(c) for c in shown)
    units = "".join(c if ord(c) < 0x10000 else c + c for c in text)
    return text == shown or re.fullmatch(pattern, units) is not None


def number_of(text):
    try:
        return float(text)
    except ValueError:
        return None


def is_same_number(shown, number):
    """Whether the digits shown are the number, rounded: 1,234.57 and 12% and ($5.00) and 3E+05 and 1 1/2."""
    plain = shown.replace(",", "").strip()
    if plain == "-":
        return number == 0  # accounts
    if re.search(r"\d[^\d.%eE+/ ]+\d", plain):
        return re.sub(r"\D", "", plain).lstrip("0") == str(abs(round(number)))  # such as 00-123-4567
    scale = 0.01 if "%" in plain else 1
    fraction = re.search(r"(?:(\d+) +)?(\d+) */ *(\d+)", plain)
    if fraction:
        value = int(fraction[1] or 0) + int(fraction[2]) / int(fraction[3])
        return abs(abs(number) - value) <= 1 / int(fraction[3])
    match = re.search(r"\d*\.?\d+(?:[eE][-+]?\d+)?|\d+\.", plain)
    if match is None:
        return False
    mantissa, _, exponent = match[0].lower().partition("e")
    unit = 10.0 ** (int(exponent or 0) - len(mantissa.partition(".")[2]))
    return abs(abs(number) - float(match[0]) * scale) <= (0.5000001 * unit + 1e-9 * abs(number)) * scale


def is_same_date(shown, text):
    """Whether every number and every name of a month or day in the display is a part of the date or time."""
    match = re.fullmatch(r"(?:(\d{4})-(\d\d)-(\d\d))?T?(?:(\d+):(\d\d):(\d\d)(?:\.(\d+))?)?", text)
    if match is None or not text:
        return False
    parts = set()
    year, month, day, hour, minute, second, _ = match.groups()
    names = {"am", "pm", "a", "p", "t", "z"}
    if year:
        parts |= {int(year), int(year) % 100, int(month), int(day)}
        name = MONTHS[int(month) - 1]
        names |= {name, name[:3], name[:1]}
        if int(day) and text[:10] != "1900-02-29":
            date = datetime.date(int(year), int(month), int(day))
            if date < datetime.date(1900, 3, 1):
                date -= datetime.timedelta(1)  # a leap day too many follows
            weekday = date.strftime("%A").lower()
            names |= {weekday, weekday[:3]}
    else:
        parts |= {0}
    if hour:
        parts |= {int(hour), int(hour) % 12, int(hour) % 12 + 12 * (int(hour) % 12 == 0), int(hour) % 24}
        parts |= {int(minute), int(second), int(second) + 1, int(hour) * 60 + int(minute)}
    else:
        parts |= {0, 12}
    words = re.findall(r"[a-z]+", shown.lower())
    numbers = re.findall(r"\d+", re.sub(r"\.\d+", "", shown) if hour and not year else shown)
    return words + numbers != [] and all(word in names for word in words) and \
        all(int(number) in parts for number in numbers)


def can_display(shown, text):
    """Whether a display (in either encoding) can stand for the converter's text."""
    for each in shown:
        if is_same_text(each, text) or set(each.strip()) == {"#"} or is_same_date(each, text):
            return True
        number = number_of(text)
        if number is not None and is_same_number(each, number):
            return True
    return False


def differences(csv_path, text):
    """What is displayed and cannot be a display of what was converted: (row, column, displayed, converted)."""
    shown, converted = displayed_cells(csv_path), converted_cells(text)
    if not shown or not converted:
        return [] if not shown and not converted else [("all", "all", len(shown), len(converted))]
    placed = aligned(shown, converted)
    return [(*place, placed.get(place, [""])[0], converted.get(place, ""))
            for place in sorted(set(placed) | set(converted))
            if place not in placed or place not in converted or not can_display(placed[place], converted[place])]
