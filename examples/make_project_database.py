#!/usr/bin/env python3
"""Makes examples/project.well2, the project database that the examples read.

usage: make_project_database.py [FILE]

The table `well_base` names the wells, the field each belongs to and its work object; each log table has the
depths and curves of one well. The content is the same at every run; the tests compare it with the file
in the project.
"""
import os
import sqlite3
import sys

WELLS = [
    (1, "101-Р", "Северная", "Восток"),
    (2, "102-Р", "Северная", "Восток"),
    (7, "W-12", "North", "Proj"),
    (8, "Опорная 1", "", "Восток"),
    (9, "Без проекта", "Южная", None),
]

LOGS = {"Каротаж_101": (1250.0, 24, 7), "Каротаж_102": (1310.5, 16, 3), "log_w12": (980.0, 8, 5)}


def log_rows(top, count, seed):
    """Depths every half metre, and curves that a small generator makes; a gap now and then."""
    state = seed
    for number in range(count):
        state = (state * 1103515245 + 12345) % 2**31
        gamma = None if state % 11 == 0 else round(40 + state % 900 / 10, 1)
        rock = ("песчаник", "глина", "известняк")[state // 7 % 3]
        yield top + number / 2, gamma, round(state % 300 / 1000, 3), rock


def make(path):
    if os.path.exists(path):
        os.remove(path)
    database = sqlite3.connect(path, isolation_level=None)
    database.execute("PRAGMA page_size=1024")
    database.execute("BEGIN")
    database.execute("CREATE TABLE well_base(w_id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT, field TEXT, "
                     "work_object TEXT)")
    database.executemany("INSERT INTO well_base VALUES(?, ?, ?, ?)", WELLS)
    for table, (top, count, seed) in LOGS.items():
        database.execute(f'CREATE TABLE {table}("Глубина" FLOAT, "ГК" FLOAT, "Пористость" REAL, "Порода" TEXT)')
        database.executemany(f"INSERT INTO {table} VALUES(?, ?, ?, ?)", log_rows(top, count, seed))
    database.execute("CREATE VIEW \"Скважины\" AS SELECT name AS \"Скважина\", field AS \"Площадь\" FROM well_base")
    database.execute("COMMIT")
    database.close()


if __name__ == "__main__":
    make(sys.argv[1] if len(sys.argv) > 1 else
         os.path.join(os.path.dirname(os.path.abspath(__file__)), "project.well2"))
