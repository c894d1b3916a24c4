#!/usr/bin/env python3
"""stats: what the fields hold, with Python's decimal numbers as the judge of least and greatest."""
import decimal
import os
import random
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "support"))
from tool_cases import Case, CaseTest, cases, main, run_tool  # noqa: E402

TITLES = "field\tfilled\tdistinct\tshortest\tlongest\tminimum\tmaximum\n"


def one_field(name, values, answer, **more):
    """A case with one field, a second one that keeps empty values from being empty lines."""
    text = "a;b\n" + "".join(f"{value};x\n" for value in values)
    rows = len(values)
    rest = f"b\t{rows}\t1\t1\t1\t\t\n"
    return Case(name, ["stats", "t.csv"], TITLES + f"a\t{answer}\n" + rest, files={"t.csv": text}, **more)


@cases(
    one_field("numbers", ["5", "10", "-2"], "3\t3\t1\t2\t-2\t10"),
    one_field("empty values do not count", ["5", "", "7"], "2\t2\t1\t1\t5\t7"),
    one_field("no values", ["", ""], "0\t0\t\t\t\t"),
    one_field("text among numbers", ["5", "<0.1", "7"], "3\t3\t1\t4\t\t"),
    one_field("the same value", ["x", "y", "x", "x"], "4\t2\t1\t1\t\t"),
    one_field("letter case counts", ["x", "X"], "2\t2\t1\t1\t\t"),
    one_field("characters, not bytes or units", ["Забой", "𝛿", "井戸"], "3\t3\t1\t5\t\t"),
    one_field("as written, the first of equals", ["1.50", "1,5", "+1.5e0", "15e-1"], "4\t4\t3\t6\t1.50\t1.50"),
    one_field("a comma is a point", ["1,5", "1.4", "1.6"], "3\t3\t3\t3\t1.4\t1.6"),
    one_field("exponents", ["1e3", "999", "1E-3", "0.002"], "4\t4\t3\t5\t1E-3\t1e3"),
    one_field("longer than any machine number", ["12345678901234567890123", "12345678901234567890124"],
              "2\t2\t23\t23\t12345678901234567890123\t12345678901234567890124"),
    one_field("beyond every exponent", ["1e999999999999", "1e400", "-1e999999999999", "0"],
              "4\t4\t1\t15\t-1e999999999999\t1e999999999999"),
    one_field("zeros", ["0", "-0.00", "0e9"], "3\t3\t1\t5\t0\t0"),
    one_field("nothing is a number by its name", ["nan", "inf"], "2\t2\t3\t3\t\t"),
    one_field("an exponent without digits is text", ["1e", "2E+", "3"], "3\t3\t1\t3\t\t"),
    one_field("hexadecimal is text", ["0x10", "1"], "2\t2\t1\t4\t\t"),
    Case("no rows", ["stats", "t.csv"], TITLES + "a\t0\t0\t\t\t\t\n", files={"t.csv": "a\n"}),
    Case("rejected lines do not count", ["stats", "t.csv"], TITLES + "a\t1\t1\t1\t1\t1\t1\n",
         ["1 of 2 lines was rejected"], 1, {"t.csv": "a\n1\n2;3\n"}),
    Case("missing file", ["stats", "t.csv"], "", ["there is no such file"], 3),
)
class Stats(CaseTest):
    def test_numbers_of_all_shapes(self):
        rng = random.Random(10)
        for _ in range(40):
            values = []
            for _ in range(30):
                digits = "".join(rng.choice("0123456789") for _ in range(rng.randint(1, 9)))
                point = rng.randint(0, len(digits))
                number = digits[:point] + rng.choice(".,") + digits[point:] if rng.random() < 0.6 else digits
                exponent = rng.choice(["", "", f"e{rng.randint(-12, 12)}", f"E+{rng.randint(0, 9)}"])
                values.append(rng.choice(["", "-", "+"]) + number + exponent)
            self.write({"t.csv": "a\n" + "".join(value + "\n" for value in values)})
            row = run_tool("stats", "t.csv", cwd=self.folder).out.decode().splitlines()[1].split("\t")
            numbers = [decimal.Decimal(value.replace(",", ".")) for value in values]
            found = [decimal.Decimal(text.replace(",", ".")) for text in row[5:]]
            self.assertEqual(found, [min(numbers), max(numbers)], values)

    def test_distinct_up_to_a_million(self):
        for count, answer in ((1_000_000, "1000000"), (1_000_001, ">1000000")):
            self.write({"t.csv": "a\n" + "".join(f"{i}\n" for i in range(count)) + "0\n"})
            run = run_tool("stats", "t.csv", cwd=self.folder)
            self.assertEqual(run.out.decode(), TITLES + f"a\t{count + 1}\t{answer}\t1\t"
                                                        f"{len(str(count - 1))}\t0\t{count - 1}\n")

    def test_distinct_up_to_64_mebibytes(self):
        self.write({"t.csv": "a\n" + "".join(chr(65 + i // 26) + chr(65 + i % 26) + "x" * ((1 << 20) - 2) + "\n"
                                             for i in range(65))})
        row = run_tool("stats", "t.csv", cwd=self.folder).out.decode().splitlines()[1]
        self.assertEqual(row.split("\t"), ["a", "65", ">64", "1048576", "1048576", "", ""])
        run = run_tool("stats", "t.csv", "--json", cwd=self.folder)
        self.assertIn(b'"distinct":64,"distinctIsExact":false', run.out)


if __name__ == "__main__":
    main()
