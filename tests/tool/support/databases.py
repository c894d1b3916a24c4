"""SQLite databases for tests: their values may hold what no line of delimited text can."""
import os
import sqlite3
import tempfile


def database(*tables):
    """@param tables  a name, the columns as SQL has them, and rows of values each
    @return the bytes of the file"""
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "t.sqlite")
        made = sqlite3.connect(path)
        for name, columns, rows in tables:
            made.execute(f'CREATE TABLE "{name}"({columns})')
            for row in rows:
                made.execute(f'INSERT INTO "{name}" VALUES ({", ".join("?" * len(row))})', row)
        made.commit()
        made.close()
        with open(path, "rb") as file:
            return file.read()
