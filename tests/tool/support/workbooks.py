"""Small .xlsx workbooks, made part by part."""
import io
import zipfile

MAIN = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
OFFICE = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
PACKAGE = "http://schemas.openxmlformats.org/package/2006/relationships"


def cell(reference, value, kind="n"):
    return f'<c r="{reference}" t="{kind}"><v>{value}</v></c>'


def sheet(rows, behind=""):
    return f'<worksheet xmlns="{MAIN}"><sheetData>{rows}</sheetData>{behind}</worksheet>'


def relationships(entries):
    items = "".join(f'<Relationship Id="{number}" Type="{OFFICE}/{kind}" Target="{target}"/>'
                    for number, kind, target in entries)
    return f'<Relationships xmlns="{PACKAGE}">{items}</Relationships>'


def book(sheets):
    """@return the bytes of a workbook with these sheets, name by XML part"""
    entries = [(f"r{n}", "worksheet", f"worksheets/sheet{n}.xml") for n in range(1, len(sheets) + 1)]
    listed = "".join(f'<sheet name="{name}" sheetId="{n}" r:id="r{n}"/>' for n, name in enumerate(sheets, 1))
    file = io.BytesIO()
    with zipfile.ZipFile(file, "w", zipfile.ZIP_DEFLATED) as archive:
        archive.writestr("_rels/.rels", relationships([("r1", "officeDocument", "xl/workbook.xml")]))
        archive.writestr("xl/workbook.xml", f'<workbook xmlns="{MAIN}" xmlns:r="{OFFICE}">'
                                            f"<sheets>{listed}</sheets></workbook>")
        archive.writestr("xl/_rels/workbook.xml.rels", relationships(entries))
        for (_, _, target), part in zip(entries, sheets.values()):
            archive.writestr("xl/" + target, part)
    return file.getvalue()
