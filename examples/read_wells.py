#!/usr/bin/env python3
"""Reads examples/wells.csv through the Python package and prints a short report.

    read_wells.py [folder]      the folder that holds wells.csv; "examples" when not given

Shown here: opening and reading, columns as text and as numbers, rows, the list of rejected lines, value search.
The package is installed (pip install bindings/python), or on the PYTHONPATH; see its README for how it finds the
library.
"""
import os
import sys

import vok_table_rw


def report(table):
    print(f"{len(table.names)} fields: {' '.join(table.names)}")
    print(f"{len(table)} rows")
    for well, area, depth in zip(table["Скважина"], table["Площадь"], table["Забой"]):
        print(f"  {well}, {area}: {depth} m")

    depths = table.numbers("Забой")  # floats; what is empty is None, what is no number stays text
    print(f"drilled: {sum(depths):.1f} m, the deepest {max(depths):.1f} m")

    # The library counts lines from 0; people and their editors count from 1.
    print(f"{table.rejected_count} rejected lines")
    for line in table.rejected():
        print(f"  line {line.number + 1}: {line.text}")

    print("wells of Северная in Д1:", *table.find("Скважина", {"Площадь": "Северная", "Горизонт": "Д1"}))


def main():
    folder = sys.argv[1] if len(sys.argv) > 1 else "examples"
    sys.stdout.reconfigure(encoding="utf-8")  # whatever the console is set to
    try:
        with vok_table_rw.read_table(os.path.join(folder, "wells.csv"), encoding="UTF-8") as table:
            report(table)
    except (vok_table_rw.TableError, FileNotFoundError) as error:
        sys.exit(str(error))


if __name__ == "__main__":
    main()
