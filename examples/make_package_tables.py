#!/usr/bin/env python3
"""Makes examples/well_tops.petrel and examples/samples.micromine, tables as two big packages write them.

usage: make_package_tables.py [FOLDER]

The content is the same at every run; the tests compare it with the files in the project.
"""
import os
import struct
import sys

TOPS_FIELDS = ["X", "Y", "Z", "MD", "Type", "Surface", "Well", "Confidence"]
TOPS = [
    (4512360.50, 6123480.20, -1857.65, 2000.00, "Horizon", "Кровля Д1", "101-Р", None),
    (4512360.50, 6123480.20, -2717.65, 2860.00, "Horizon", "Кровля Д2", "101-Р", 0.90),
    (4513115.00, 6124012.80, -1862.20, 2002.00, "Horizon", "Кровля Д1", "102-Р", None),
    (4513115.00, 6124012.80, -2775.70, 2915.50, "Fault", "F 12", "102-Р", 0.75),
    (4530128.00, 6114390.50, None, 1742.00, "Other", None, "107", None),
]

MAGIC = b"THIS IS MICROMINE EXTENDED DATA FILE!\x07\x1a\x01\r\n"
METADATA = ('<metadata version="1.0"><meta-object type="title" version="1.0" compulsory="true">'
            '<data title="Опробование" description=""/></meta-object>'
            '<meta-object type="encoding" version="1.0" compulsory="true">'
            '<data codepage="ibm-5347_P100-1998"/></meta-object></metadata>')
PAGE = 4096
# name, type, width, decimals, description
VARIABLES = [("СКВАЖИНА", "C", 8, 0, ""), ("ОТ", "N", 7, 2, "начало интервала, м"),
             ("ДО", "N", 7, 2, "конец интервала, м"), ("СОДЕРЖАНИЕ", "R", 8, 3, "СОДЕРЖАНИЕ_ЗОЛОТА"),
             ("ВЫХОД", "F", 4, 1, "выход керна, %"), ("НОМЕР", "L", 4, 0, ""), ("КОД", "S", 2, 0, ""),
             ("ПОРОДА", "C", 10, 0, "")]
SAMPLES = [
    ("С-12", "0.00", "1.50", 0.125, 98.5, 100001, 3, "песчаник"),
    ("С-12", "1.50", "3.00", 2.34, 95, 100002, 3, "кварц"),
    ("С-12", "3.00", "4.20", None, None, None, None, ""),
    ("С-14", "0.00", "2.00", 0.1, 100, 100004, 7, "сланец"),
    ("С-14", "2.00", "2.75", 12.75, 87.3, 100005, 7, "кварц"),
    ("С-14", "2.75", "4.00", 1 / 3, 91, 100006, 1, "<нет>"),
]


def petrel():
    """Petrel ends every value, also the last of a line, in a blank; a null is -999."""
    def shown(value):
        if value is None:
            return "-999"
        return f"{value:.2f}" if isinstance(value, float) else f'"{value}"'

    lines = ["# Petrel well tops", "# Unit in X and Y direction: m", "# Unit in depth: m", "VERSION 2",
             "BEGIN HEADER", *TOPS_FIELDS, "END HEADER"]
    for row in TOPS:
        texts = [value if field == "Type" else shown(value) for field, value in zip(TOPS_FIELDS, row)]
        lines.append("".join(text + " " for text in texts))
    return "".join(line + "\r\n" for line in lines).encode("cp1251")


def micromine():
    """The extended flavour; a number without a value is a NaN or the smallest of its kind."""
    def stored(value, kind, width):
        formats = {"R": "<d", "F": "<f", "L": "<i", "S": "<h"}
        if kind not in formats:
            return value.encode("cp1251").ljust(width)
        if value is None:
            value = float("nan") if kind in "RF" else -2**(8 * width - 1)
        return struct.pack(formats[kind], value)

    data = (MAGIC + METADATA.encode("utf-8")).ljust(PAGE, b"\0")
    data += f"{len(VARIABLES):2}  VARIABLES\r\n".encode("ascii")
    for name, kind, width, decimals, description in VARIABLES:
        line = f"{name:10}{kind}{width:3}{decimals:3}|{description:255}\r\n"
        data += line.encode("cp1251")
    for row in SAMPLES:
        for value, (_, kind, width, _, _) in zip(row, VARIABLES):
            data += stored(value, kind, width)
        data += b"\r\n"
    return data


FILES = {"well_tops.petrel": petrel, "samples.micromine": micromine}


def make(folder):
    for name, content in FILES.items():
        with open(os.path.join(folder, name), "wb") as file:
            file.write(content())


if __name__ == "__main__":
    make(sys.argv[1] if len(sys.argv) > 1 else os.path.dirname(os.path.abspath(__file__)))
