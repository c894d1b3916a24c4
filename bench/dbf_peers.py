#!/usr/bin/env python3
"""Python on the same file: dbf_peers.py FILE reads all records with dbfread into a list.

A dbfread that is not installed ends the program with code 77.
"""
import os
import sys
import time


def main():
    try:
        import dbfread
    except ImportError:
        sys.exit(77)
    start = time.perf_counter()
    rows = list(dbfread.DBF(sys.argv[1], encoding="cp1251"))
    seconds = time.perf_counter() - start
    print(f"dbfread seconds={seconds:.6f} rows={len(rows)} values={sum(map(len, rows))}", flush=True)
    os._exit(0)  # freeing the rows is not what is measured


if __name__ == "__main__":
    main()
