#!/usr/bin/env python3
"""Shows Doxygen the comments of a header as its own: doxygen_filter.py FILE

The headers are written to be read as they are: a guide of the file at its top, `/* */` in those that C
includes, `///` in the others. Here the guide becomes the file's page and `/* */` documentation. Lines stay
where they are, so that messages name the right ones.
"""
import os
import re
import sys


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        text = file.read()
    begin = f"/** @file {os.path.basename(sys.argv[1])} \\ilinebr "  # on one line with what follows
    if sys.argv[1].endswith(".h"):
        if text.startswith("// "):
            guide, hash_sign, rest = text.partition("\n#")
            text = begin + re.sub(r"^// ?", "", guide, flags=re.MULTILINE) + " */" + hash_sign + rest
        elif text.startswith("/* "):
            text = begin + text[3:]
        text = re.sub(r"^( *)/\* (?!-)", r"\1/** ", text, flags=re.MULTILINE)
    sys.stdout.write(text)


if __name__ == "__main__":
    sys.stdout.reconfigure(encoding="utf-8")
    main()
