#!/usr/bin/env python3
"""--select: the fields that are shown and written, in the user's order."""
import os
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "support"))
from databases import database  # noqa: E402
from tool_cases import Case, CaseTest, cases, main, run_tool  # noqa: E402

ABC = {"t.csv": "a;b;c\n1;2;3\n4;5;6\n"}
PETREL = {"t.petrel": "# Petrel well tops\nVERSION 2\nBEGIN HEADER\nWell\nMD\nEND HEADER\n\"P\" 5 \n\"Q\" \n"}
UNKNOWN = 'error: --select "x": this is no field of t.csv; its fields are "a", "b", "c"\n'


def selected(name, header, selection, answer, **more):
    """A case that shows fields of one row."""
    return Case(name, ["cat", "t.csv", "--select", selection], answer, files={"t.csv": f"{header}\n1;2;3\n"}, **more)


@cases(
    Case("cat", ["cat", "t.csv", "--select", "c,a"], "c\ta\n3\t1\n6\t4\n", files=ABC),
    Case("head", ["head", "t.csv", "-n", "1", "--select", "b"], "b\n2\n", files=ABC),
    Case("find", ["find", "t.csv", "--where", "a=4", "--select", "c,b"], "c\tb\n6\t5\n", files=ABC),
    Case("find nothing", ["find", "t.csv", "--where", "a=9", "--select", "c"], "c\n", files=ABC),
    Case("convert", ["convert", "t.csv", "out.csv", "--select", "c,a"], files=ABC,
         leaves={**ABC, "out.csv": b"c;a\r\n3;1\r\n6;4\r\n"}),
    Case("given twice", ["cat", "t.csv", "--select", "c", "--select", "a,b"], "c\ta\tb\n3\t1\t2\n6\t4\t5\n", files=ABC),
    Case("a field shown twice", ["cat", "t.csv", "--select", "a,a"], "a\ta\n1\t1\n4\t4\n", files=ABC),
    Case("a field written twice", ["convert", "t.csv", "out.csv", "--select", "a,b,a"], "",
         ['error: --select names "a" twice, and a target holds a field once: leave one of them out\n'], 2, ABC),
    Case("an unknown field", ["cat", "t.csv", "--select", "a,x"], "", [UNKNOWN], 2, ABC),
    Case("an unknown field of head", ["head", "t.csv", "--select", "x"], "", [UNKNOWN], 2, ABC),
    Case("an unknown field of find", ["find", "t.csv", "--where", "a=1", "--select", "x,a"], "", [UNKNOWN], 2, ABC),
    Case("an unknown field of convert", ["convert", "t.csv", "out.csv", "--select", "b,x"], "", [UNKNOWN], 2, ABC),
    Case("no name", ["cat", "t.csv", "--select", ""], "", ['--select "": this is no field'], 2, ABC),
    Case("no name at the end", ["cat", "t.csv", "--select", "a,"], "", ['--select "": this is no field'], 2, ABC),
    Case("letter case counts", ["cat", "t.csv", "--select", "A"], "", ['--select "A": this is no field'], 2, ABC),
    selected("a comma in a name", "X, m;Y, m;c", "Y, m,c,X, m", "Y, m\tc\tX, m\n2\t3\t1\n"),
    selected("the shorter names first", "a;b;a,b", "a,b", "a\tb\n1\t2\n"),
    selected("the longer name where the rest fits so alone", "a;a,b;c", "a,b,c", "a,b\tc\n2\t3\n"),
    selected("the first of fields with one name", "a;b;a", "a", "a\n1\n"),
    selected("a mark before the first name", "\ufeffa;b;c", "a", "\ufeffa\n1\n",
             err=["warning: t.csv begins with a byte-order mark"]),
    selected("a blank belongs to a name", "a; b;c", " b", " b\n2\n"),
    Case("a table without fields", ["cat", "t.csv", "--select", "a", "--header-row", "9"], "",
         ['error: --select "a": this is no field of t.csv; it has no fields\n'], 2, ABC),
    Case("short rows", ["cat", "t.petrel", "--select", "MD,Well"], "MD\tWell\n5\tP\n\tQ\n", files=PETREL),
    Case("of another command", ["count", "t.csv", "--select", "a"], "", ["count has no option \"--select\""], 2, ABC),
)
class Select(CaseTest):
    def test_an_empty_name(self):
        self.write({"t.sqlite": database(("t", '"" TEXT, b TEXT', [["x", "y"]])), **ABC})
        for selection, answer in (("", b"\nx\n"), ("b,", b"b\t\ny\tx\n"), (",b", b"\tb\nx\ty\n"), (",", b"\t\nx\tx\n")):
            run = run_tool("cat", "t.sqlite", "--table", "t", "--select", selection, cwd=self.folder)
            self.assertEqual((run.code, run.out, run.err), (0, answer, ""), selection)
        run = run_tool("cat", "t.sqlite", "--table", "t", "--select", "c,", cwd=self.folder)
        self.assertEqual((run.code, run.err), (2, 'vok_table: error: --select "c": this is no field of t.sqlite; '
                                                  'its fields are "", "b"\n'))

    def test_a_dbf_file_of_some_fields(self):
        self.write(ABC)
        run = run_tool("convert", "t.csv", "out.dbf", "--select", "c,b", "--fields", "b=C7", cwd=self.folder)
        self.assertEqual((run.code, run.err), (0, ""))
        run = run_tool("cat", "out.dbf", cwd=self.folder)
        self.assertEqual(run.out, b"c\tb\n3\t2\n6\t5\n")
        run = run_tool("convert", "t.csv", "no.dbf", "--select", "c,b", "--fields", "a=C7", cwd=self.folder)
        self.assertEqual((run.code, "no such field" in run.err), (2, True))


if __name__ == "__main__":
    main()
