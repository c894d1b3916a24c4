#!/usr/bin/env python3
"""--json: one document for every command, with exact strings, messages and the exit code (docs/tool_json.md)."""
import json
import os
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "support"))
from databases import database  # noqa: E402
from tool_cases import CaseTest, main, posix_only, run_tool, skip_for_windows  # noqa: E402

WELLS = {"t.csv": "WELL;DEPTH\n101;1250\n\n102\n103;98\n"}


class Document(CaseTest):
    def document(self, *arguments, code=0):
        """The document of a run; nothing else may have been said anywhere."""
        run = run_tool(*arguments, "--json", cwd=self.folder)
        self.assertEqual((run.code, run.err), (code, ""))
        self.assertTrue(run.out.endswith(b"}\n"))
        read = json.loads(run.out.decode("utf-8"))
        self.assertEqual(list(read)[:2] + list(read)[-2:], ["version", "command", "messages", "exitCode"])
        self.assertEqual((read["version"], read["exitCode"]), (1, code))
        return read

    def data(self, *arguments, code=0):
        """What a command tells beside what every document has."""
        read = self.document(*arguments, code=code)
        self.assertEqual(read["command"], arguments[0])
        return {key: value for key, value in read.items()
                if key not in ("version", "command", "messages", "exitCode")}


class Commands(Document):
    def setUp(self):
        super().setUp()
        self.write(WELLS)
        self.fields = [{"name": "WELL", "type": "text"}, {"name": "DEPTH", "type": "text"}]

    def test_tables(self):
        self.assertEqual(self.data("tables", "t.csv"), {"file": "t.csv", "tables": ["csv"]})

    def test_fields(self):
        self.assertEqual(self.data("fields", "t.csv"), {"file": "t.csv", "fields": self.fields})

    def test_head(self):
        self.assertEqual(self.data("head", "t.csv", "-n", "1", code=1),
                         {"file": "t.csv", "fields": self.fields, "rows": [["101", "1250"]]})

    def test_cat(self):
        self.assertEqual(self.data("cat", "t.csv", code=1),
                         {"file": "t.csv", "fields": self.fields, "rows": [["101", "1250"], ["103", "98"]]})

    def test_cat_of_numbers(self):
        self.write({"t.sqlite": database(("t", "a INTEGER, b TEXT", [[5, "x\ny"]]))})
        self.assertEqual(self.data("cat", "t.sqlite", "--table", "t"),
                         {"file": "t.sqlite", "rows": [["5", "x\ny"]],
                          "fields": [{"name": "a", "type": "number"}, {"name": "b", "type": "text"}]})

    def test_cat_of_no_rows(self):
        self.write({"empty.csv": "a\n"})
        self.assertEqual(self.data("cat", "empty.csv"),
                         {"file": "empty.csv", "fields": [{"name": "a", "type": "text"}], "rows": []})

    def test_count(self):
        self.assertEqual(self.data("count", "t.csv", code=1), {"file": "t.csv", "count": 2})

    def test_stats(self):
        both = {"distinctIsExact": True, "filled": 2, "distinct": 2}
        self.assertEqual(self.data("stats", "t.csv", code=1), {"file": "t.csv", "rowCount": 2, "fields": [
            {"name": "WELL", **both, "shortest": 3, "longest": 3, "minimum": "101", "maximum": "103"},
            {"name": "DEPTH", **both, "shortest": 2, "longest": 4, "minimum": "98", "maximum": "1250"}]})

    def test_stats_of_no_values(self):
        self.write({"empty.csv": "a\n"})
        self.assertEqual(self.data("stats", "empty.csv")["fields"],
                         [{"name": "a", "filled": 0, "distinct": 0, "distinctIsExact": True, "shortest": None,
                           "longest": None, "minimum": None, "maximum": None}])

    def test_errors(self):
        self.assertEqual(self.data("errors", "t.csv", code=1), {"file": "t.csv", "rejected": [
            {"line": 4, "offset": 21, "expected": 2, "found": 1, "text": "102"}]})

    def test_find(self):
        self.assertEqual(self.data("find", "t.csv", "--where", "WELL=103", "--show", "DEPTH", code=1),
                         {"file": "t.csv", "fields": self.fields[1:], "rows": [["98"]]})
        self.assertEqual(self.data("find", "t.csv", "--where", "WELL=103", "--select", "DEPTH,WELL", code=1),
                         {"file": "t.csv", "fields": self.fields[::-1], "rows": [["98", "103"]]})

    def test_convert(self):
        self.write({"two.csv": "a\n中\n"})
        self.assertEqual(self.data("convert", "two.csv", "out.csv", code=1), {"file": "two.csv", "tables": [
            {"table": "", "target": "out.csv", "rows": 1, "rejected": 0, "changed": 1, "exitCode": 1}]})
        read = self.document("convert", "t.csv", "out.xlsx", code=1)
        self.assertEqual(read["tables"][0]["rejected"], 1)

    def test_doctor(self):
        found = self.data("doctor")["findings"]
        self.assertTrue(all(set(each) == {"what", "found"} for each in found))
        self.assertIn("ODBC driver manager", [each["what"] for each in found])

    def test_formats(self):
        formats = self.data("formats")["formats"]
        self.assertEqual(formats[0], {"name": "delimited text", "type": "csv", "extensions": "csv, any other",
                                      "read": True, "write": True})
        self.assertIs({each["type"]: each for each in formats}["petrel"]["write"], False)

    def test_version(self):
        self.assertEqual(self.data("version"), {"program": run_tool("version").out.decode().strip()})


class Messages(Document):
    """Messages are part of the document; nothing goes to standard error."""

    def messages(self, *arguments, code):
        return self.document(*arguments, code=code)["messages"]

    def test_warning(self):
        self.write(WELLS)
        self.assertEqual(self.messages("count", "t.csv", code=1), [
            {"kind": "warning", "details": [],
             "text": "1 of 3 lines was rejected (first: line 4); see: vok_table errors t.csv"}])

    def test_details_belong_to_their_message(self):
        self.write({"t.csv": "a\n中\n"})
        self.assertEqual(self.messages("convert", "t.csv", "out.csv", code=1), [
            {"kind": "warning", "text": "1 value will not be read back unchanged from out.csv:",
             "details": ['row 1, field "a": holds a character outside Windows-1251 (U+4E2D)']}])

    def test_missing_file(self):
        read = self.document("cat", "no.csv", code=3)
        self.assertEqual(read, {"version": 1, "command": "cat", "file": "no.csv", "exitCode": 3, "messages": [
            {"kind": "error", "details": [],
             "text": "cannot open no.csv: there is no such file; check the path"}]})

    def test_unknown_field(self):
        self.write(WELLS)
        read = self.document("cat", "t.csv", "--select", "x", code=2)
        self.assertNotIn("rows", read)
        self.assertEqual([each["kind"] for each in read["messages"]], ["error", "warning"])

    def test_line_that_cannot_be_followed(self):
        for arguments, command in ((["cat"], "cat"), (["cat", "t.csv", "--color"], "cat"), (["show"], None), ([], None)):
            read = self.document(*arguments, code=2)
            self.assertEqual((read["command"], [each["kind"] for each in read["messages"]]),
                             (command, ["error", "hint"]))

    def test_help_is_no_document(self):
        run = run_tool("cat", "--json", "--help")
        self.assertEqual((run.code, run.out, run.err), (0, run_tool("cat", "--help").out, ""))

    def test_two_forms(self):
        self.write(WELLS)
        self.assertIn("--json and --csv", self.messages("errors", "t.csv", "--csv", code=2)[0]["text"])

    def test_a_file_of_that_name_is_no_option(self):
        run = run_tool("cat", "--color", "--", "--json", cwd=self.folder)
        self.assertEqual((run.code, run.out), (2, b""))

    @posix_only
    @skip_for_windows("the device is one of this system")
    def test_full_disk(self):
        self.write(WELLS)
        with open("/dev/full", "wb") as full:
            run = run_tool("cat", "t.csv", "--json", cwd=self.folder, stdout=full)
        self.assertEqual((run.code, run.err),
                         (5, "vok_table: error: standard output did not take everything: is the disk full?\n"))


class Strings(Document):
    """What a table holds comes back character for character."""

    def values(self, content, *options):
        self.write({"t.csv": content})
        return self.document("cat", "t.csv", *options)["rows"]

    def test_control_characters_and_quotes(self):
        odd = "".join(chr(code) for code in range(1, 0x20) if code not in (0x0a, 0x0d, 0x1a)) + "\x7f\x85\\/'"
        self.assertEqual(self.values(f"a\nx{odd}y\nq\"q\n"), [[f"x{odd}y"], ['q"q']])

    def test_text_of_all_kinds(self):
        for text in ("Скважина", "井戸", "𝛿13C", "e\u0301", "\u202eabc", "\u2028", "\ufeffx"):
            self.assertEqual(self.values(f"a\n{text}\n"), [[text]], text)

    def test_what_drives_a_terminal_is_escaped(self):
        self.write({"t.csv": "a\n\x1b[2J\x9b\u202e\n"})
        out = run_tool("cat", "t.csv", "--json", cwd=self.folder).out
        self.assertIn(b'["\\u001b[2J\\u009b\\u202e"]', out)

    def test_every_character_that_drives_a_terminal(self):
        escaped = "\x7f\x9f\u061c\u200e\u200f\u2028\u202e\u2066\u2069\ufeff"
        plain = "~\xa0\u061b\u061d\u200d\u2010\u2027\u202f\u2065\u206a\ufefe\uff00"
        self.assertEqual(self.values(f"a\n-{escaped}{plain}\n"), [["-" + escaped + plain]])
        out = run_tool("cat", "t.csv", "--json", cwd=self.folder).out.decode("utf-8")
        self.assertIn('["-' + "".join(f"\\u{ord(character):04x}" for character in escaped) + plain + '"]', out)

    @posix_only
    @skip_for_windows("names are no bytes there")
    def test_a_lone_surrogate_in_a_name(self):
        name = os.fsdecode(b"a\xffb.csv")
        read = json.loads(run_tool("count", name, "--json", cwd=self.folder).out)
        self.assertEqual(read["file"], "a\udcffb.csv")
        self.assertIn("a\udcffb.csv", read["messages"][0]["text"])


class Size(Document):
    def test_rows_stand_on_lines_of_their_own(self):
        self.write({"t.csv": "a;b\n" + "1;2\n" * 30000})
        run = run_tool("cat", "t.csv", "--json", cwd=self.folder)
        self.assertEqual(run.out.decode().splitlines()[1:30001], ['["1","2"],'] * 29999 + ['["1","2"]'])
        self.assertEqual(json.loads(run.out)["rows"], [["1", "2"]] * 30000)


if __name__ == "__main__":
    main()
