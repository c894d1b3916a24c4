"""The cases of workbooks: this library and libxlsxwriter writing 200,000 rows of 12 columns.

held and streamed are this library (see xlsx_table.cpp), shared and constant libxlsxwriter in its two modes. All
are compared with shared; constant/held is held again, compared with constant. The cases deflate/... compress the
two large parts of the workbook alone: zlib and libdeflate by level, and zlib's level 4 tuned by its chain.
"""
import os
import subprocess
import sys
import zipfile

import csv_cases
from rounds import Case, Program

ROWS = 200000
COLUMNS = 12
MEGABYTES = 25  # of the text from which the rows are taken
PARTS = ("xl/worksheets/sheet1.xml", "xl/sharedStrings.xml")
LEVELS = ([("zlib", level) for level in (1, 2, 3, 4, 5, 6)] + [("tuned", chain) for chain in (4, 8)]
          + [("libdeflate", level) for level in (1, 3, 6)])


def source(places):
    return csv_cases.data_file(places, "utf8", MEGABYTES)


def part_paths(places):
    return [os.path.join(places.data, "xlsx", os.path.basename(part)) for part in PARTS]


def writing_program(places, program, mode, name, yardstick):
    data = source(places)
    output = os.path.join(places.data, f"{name.replace('/', '_')}.xlsx")
    # A workbook holds the time of its making, which does not always deflate to as many bytes.
    case = Case(name, mode, yardstick, whole_process=mode == "streamed", varying=("written",))
    # The parts go where TEMP says; without it they would go where the benchmark was started.
    return Program([os.path.join(places.programs, program), mode, data.path, output], data, [case],
                   {"TEMP": places.data}, output)


def programs(places, megabytes, with_peers):
    """All programs of a round; the size is given by the rows, and `megabytes` has no say."""
    del megabytes
    chosen = [writing_program(places, "xlsx_libxlsxwriter", "shared", "shared", "shared"),
              writing_program(places, "xlsx_table", "held", "held", "shared"),
              writing_program(places, "xlsx_table", "streamed", "streamed", "shared"),
              writing_program(places, "xlsx_libxlsxwriter", "constant", "constant", "shared"),
              writing_program(places, "xlsx_table", "held", "constant/held", "constant")]
    if not with_peers:
        chosen = [program._replace(cases=[case._replace(yardstick="held") for case in program.cases])
                  for program in chosen[1:3]]
    for library, level in LEVELS:
        command = [os.path.join(places.programs, "xlsx_levels"), library, str(level), *part_paths(places)]
        name = f"deflate/{library} {level}"
        chosen.append(Program(command, source(places), [Case(name, "level", "deflate/zlib 6",
                                                             whole_process=False)]))
    return chosen


DISTINCT = """
import sys
with open(sys.argv[1], "rb") as file:
    texts = {text for _, line in zip(range(int(sys.argv[2])), file) for text in line.rstrip(b"\\n").split(b";")}
print(f"{len(texts)} distinct texts, {sum(map(len, texts)) / 1e6:.1f} MB of them", file=sys.stderr)
"""


def make_data(places, chosen_programs):
    """The text, and the parts of a workbook made of it. @return what every program should find"""
    data = source(places)
    csv_cases.make_data(places, [chosen_programs[0]._replace(output="")])
    if not all(os.path.exists(path) for path in part_paths(places)):
        book = os.path.join(places.data, "parts.xlsx")
        subprocess.run([os.path.join(places.programs, "xlsx_table"), "held", data.path, book], check=True,
                       stdout=subprocess.DEVNULL, env={**os.environ, "TEMP": places.data})
        os.makedirs(os.path.join(places.data, "xlsx"), exist_ok=True)
        with zipfile.ZipFile(book) as package:
            for part, path in zip(PARTS, part_paths(places)):
                with open(path, "wb") as file:
                    file.write(package.read(part))
        os.remove(book)
    # In a process of its own: this one's peak memory is the least that is reported of any program.
    subprocess.run([sys.executable, "-c", DISTINCT, data.path, str(ROWS + 1)], check=True)
    return {data: {"rows": ROWS, "values": ROWS * COLUMNS}}
