#!/usr/bin/env python3
"""What a person sees on a terminal: aligned tables, colours, a line of progress, nothing that data drive.

The terminal is a pseudo terminal of this system, so the Windows program cannot be asked."""
import os
import re
import select
import signal
import subprocess
import sys
import time

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "support"))
from tool_cases import CaseTest, Settings, main, posix_only, skip_for_windows  # noqa: E402

ESCAPE = "\x1b"


class Terminal:
    """A pseudo terminal; what the tool writes to it is collected without the terminal's own changes."""

    def __init__(self, columns=80):
        import pty
        import termios
        self.ours, self.theirs = pty.openpty()
        attributes = termios.tcgetattr(self.theirs)
        attributes[1] &= ~termios.OPOST
        termios.tcsetattr(self.theirs, termios.TCSANOW, attributes)
        self.set_columns(columns)

    def set_columns(self, columns):
        import fcntl
        import struct
        import termios
        fcntl.ioctl(self.theirs, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))

    def read_until(self, pattern):
        """What is written up to a sign that the pattern finds, or until nothing comes for long."""
        seen = b""
        while not re.search(pattern, seen) and select.select([self.ours], [], [], 60)[0]:
            seen += self.read_some()
        return seen.decode("utf-8")

    def read_some(self):
        try:
            return os.read(self.ours, 65536)
        except OSError:  # the answer when no program has the terminal open any more
            return b""

    def read_rest(self):
        os.close(self.theirs)
        seen = b""
        while block := self.read_some():
            seen += block
        os.close(self.ours)
        return seen.decode("utf-8")


def start(args, environment, folder, out, err):
    clean = {k: v for k, v in os.environ.items() if k not in ("NO_COLOR", "TERM")}
    return subprocess.Popen([*Settings.tool, *args], cwd=folder, env={**clean, **environment},
                            stdin=subprocess.DEVNULL, stdout=out, stderr=err)


class TerminalTest(CaseTest):
    def shown(self, *args, environment=None, stream="out"):
        """What stands on the terminal that one of the two streams leads to."""
        terminal = Terminal()
        out, err = ((terminal.theirs, subprocess.PIPE) if stream == "out" else
                    (subprocess.PIPE, terminal.theirs))
        with start(args, {"TERM": "xterm"} if environment is None else environment, self.folder,
                   out, err) as tool:
            text = terminal.read_rest()
            (tool.stderr if stream == "out" else tool.stdout).read()
        return text


def on_terminals(cls):
    """Every test of the class needs a pseudo terminal."""
    for name, test in list(vars(cls).items()):
        if name.startswith("test_"):
            setattr(cls, name, posix_only(skip_for_windows("pseudo terminals of this system")(test)))
    return cls


@on_terminals
class Drawing(TerminalTest):
    def check_drawing(self, content, expected, *args):
        self.write({"t.csv": content})
        self.assertEqual(self.shown(*(args or ("cat",)), "t.csv"), expected)

    def test_numbers_on_the_right(self):
        self.check_drawing("скв;глубина;порода;x\nС-1;5;гранит;-1,5\nС-12;1000.25;гнейс;\nС-3;;;1e-3\n",
                           "скв   глубина  порода     x\n"
                           "----  -------  ------  ----\n"
                           "С-1         5  гранит  -1,5\n"
                           "С-12  1000.25  гнейс\n"
                           "С-3                    1e-3\n")

    def test_numbers_among_text_stay_left(self):
        self.check_drawing("проба;Au\n1;<0,05\n2;12\n",
                           "проба  Au\n-----  -----\n    1  <0,05\n    2  12\n")

    def test_wide_characters(self):
        self.check_drawing("名前;b\n井戸一;x\nab;y\n", "名前    b\n------  -\n井戸一  x\nab      y\n")

    def test_long_values_push_their_own_row(self):
        long = "x" * 50
        self.check_drawing(f"a;b\n{long};1\ny;2\n",
                           f"a{'':39}  b\n{'-' * 40}  -\n{long}  1\ny{'':39}  2\n")

    def test_header_alone(self):
        self.check_drawing("a;bcd\n", "a  bcd\n-  ---\n")

    def test_head(self):
        self.check_drawing("a\n1\n22\n333\n", " a\n--\n 1\n22\n", "head", "-n", "2")

    def test_fields_have_no_header(self):
        self.check_drawing("well;d\n", "well  text\nd     text\n", "fields")

    def test_rejected_lines(self):
        self.check_drawing("a;b\n" + "1;2\n" * 8 + "3\n4;5;6\n",
                           "line  offset  expected  found  text\n----  ------  --------  -----  -----\n"
                           "  10      36         2      1  3\n  11      38         2      3  4;5;6\n", "errors")

    def test_data_cannot_drive_the_terminal(self):
        self.write({"t.csv": "a\x1b[31m;b\n\x1b]0;title\x07\n1\x9b2J;2\u202e\x7f\n\tx\ry;3\x08\n"
                             "\x1b[H\x0c\n"})
        for command in (["cat"], ["errors"], ["errors", "--csv"], ["fields"], ["stats"], ["cat", "--json"],
                        ["find", "--where", "b=3\x08", "--show", "a\x1b[31m"]):
            text = self.shown(command[0], "t.csv", *command[1:])
            self.assertNotEqual(text, "")
            self.assertEqual(re.findall("[\x00-\x09\x0b-\x1f\x7f-\x9f\u202e]", text), [], command)
        self.assertIn("1\ufffd2J", self.shown("cat", "t.csv"))
        self.assertIn("x\\ry", self.shown("cat", "t.csv"))

    def test_a_mark_is_seen(self):
        self.check_drawing("\ufeffa;b\n1;2\n", "\ufffda  b\n--  -\n 1  2\n")


@on_terminals
class Colours(TerminalTest):
    def warning(self, **environment):
        self.write({"t.csv": "a;b\n1;2\n3\n"})
        text = self.shown("count", "t.csv", environment=environment, stream="err")
        self.assertIn("1 of 2 lines was rejected", text)
        return text

    def test_colours(self):
        self.assertTrue(self.warning(TERM="xterm").startswith("vok_table: \x1b[1;33mwarning:\x1b[0m 1 of 2"))

    def test_no_color(self):
        self.assertNotIn(ESCAPE, self.warning(TERM="xterm", NO_COLOR="1"))

    def test_empty_no_color_is_no_wish(self):
        self.assertIn(ESCAPE, self.warning(TERM="xterm", NO_COLOR=""))

    def test_terminals_without_colours(self):
        self.assertNotIn(ESCAPE, self.warning(TERM="dumb"))
        self.assertNotIn(ESCAPE, self.warning(TERM=""))
        self.assertNotIn(ESCAPE, self.warning())

    def test_names_cannot_drive_the_terminal(self):
        text = self.shown("cat", "a\x1b[2Jb\x07.csv", environment={"TERM": "dumb"}, stream="err")
        self.assertEqual(text, "vok_table: error: cannot open a\ufffd[2Jb\ufffd.csv: there is no such file; "
                               "check the path\n")

    def test_errors_have_another_colour(self):
        text = self.shown("cat", "t.csv", stream="err")
        self.assertTrue(text.startswith("vok_table: \x1b[1;31merror:\x1b[0m cannot open"))


@on_terminals
class Progress(TerminalTest):
    """The line appears when work takes long; a pipe that gives nothing takes as long as the test likes."""

    def run_slowly(self, out, environment):
        os.mkfifo(self.path("slow.csv"))
        terminal = Terminal(columns=200)
        feeder = os.open(self.path("slow.csv"), os.O_RDWR)
        with start(["count", "slow.csv"], environment, self.folder, out, terminal.theirs) as tool:
            text = terminal.read_until(b"slow.csv")
            os.write(feeder, b"a\n1\n")
            os.close(feeder)
            answer = tool.stdout.read()
            text += terminal.read_rest()
        self.assertEqual((tool.returncode, answer), (0, b"1\n"))
        return text

    def test_line_appears_and_is_gone_at_the_end(self):
        text = self.run_slowly(subprocess.PIPE, {"TERM": "dumb"})
        drawn = re.findall(r"\rreading slow\.csv: \d+ s", text)
        self.assertNotEqual(drawn, [])
        self.assertTrue(text.endswith("\r" + " " * (len(drawn[-1]) - 1) + "\r"), repr(text))
        self.assertEqual(re.sub(r"\rreading slow\.csv: \d+ s|\r +\r", "", text), "")

    def test_a_terminal_that_becomes_narrow(self):
        os.mkfifo(self.path("slow.csv"))
        terminal = Terminal(columns=200)
        feeder = os.open(self.path("slow.csv"), os.O_RDWR)
        with start(["count", "slow.csv"], {"TERM": "dumb"}, self.folder, subprocess.PIPE, terminal.theirs) as tool:
            whole = re.match(r"\rreading slow\.csv: \d+ s", terminal.read_until(rb"\d s"))[0][1:]
            terminal.set_columns(13)
            text = terminal.read_until(rb"\r +\r\rreadin(\rreadin)+")
            os.write(feeder, b"a\n1\n")
            os.close(feeder)
            self.assertEqual(tool.stdout.read(), b"1\n")
            text += terminal.read_rest()
        # The longer line is wiped away before half of a narrow terminal is filled.
        self.assertRegex(text, r"^(\rreading slow\.csv: \d+ s)*\r {%d}\r(\rreadin)+\r {6}\r$" % len(whole))

    def test_rows_are_counted_while_they_are_written(self):
        self.write({"t.csv": "a;b\n" + "".join(f"{i};text {i * 7919}\n" for i in range(200000))})
        os.mkdir(self.path("temp"))
        terminal = Terminal(columns=200)
        with start(["convert", "t.csv", "out.xlsx"], {"TERM": "dumb", "TEMP": self.path("temp")}, self.folder,
                   subprocess.PIPE, terminal.theirs) as tool:
            while tool.poll() is None and not os.listdir(self.path("temp")):
                time.sleep(0.001)
            # The line's patience goes on while the program stands, and between its steps the line has its turn.
            text = ""
            while tool.poll() is None and " rows" not in text:
                tool.send_signal(signal.SIGSTOP)
                time.sleep(0.6)
                tool.send_signal(signal.SIGCONT)
                if select.select([terminal.ours], [], [], 0.002)[0]:
                    text += terminal.read_some().decode("utf-8")
            text += terminal.read_rest()
        self.assertEqual(tool.returncode, 0)
        self.assertRegex(text, r"\rwriting out\.xlsx: [\d ]+ of 200 000 rows")
        self.assertTrue(text.endswith(" \r"), repr(text))


class NoTerminal(CaseTest):
    @posix_only
    @skip_for_windows("named pipes of this system")
    def test_no_progress_and_no_colours_in_a_log(self):
        os.mkfifo(self.path("slow.csv"))
        feeder = os.open(self.path("slow.csv"), os.O_RDWR)
        with start(["count", "slow.csv"], {"TERM": "xterm"}, self.folder, subprocess.PIPE,
                   subprocess.PIPE) as tool:
            time.sleep(1)  # longer than the line's patience
            os.write(feeder, b"a;b\n1;2\n3\n")
            os.close(feeder)
            self.assertEqual(tool.stdout.read(), b"1\n")
            self.assertEqual(tool.stderr.read(),
                             b"vok_table: warning: 1 of 2 lines was rejected (first: line 3); "
                             b"see: vok_table errors slow.csv\n")
        self.assertEqual(tool.returncode, 1)


if __name__ == "__main__":
    main()
