#!/usr/bin/env python3
"""Tells how well the tests notice faults: changes one place of the sources at a time and runs the tests.

  mutate.py [--seed N] [--count N] text|csv|dbf|FILE...   tries N mutants that compile of each group or file
  mutate.py --replay [text|csv|dbf|FILE...]               tries again those that survived
  mutate.py --summary                                     prints the figures of all runs

Each mutant is built in a copy of the sources, build/mutation/source, with the preset `mutation`, and the tests of
text, CSV and DBF run until the first failure. Results are added to build/mutation/results.tsv: group, file, line,
source text, mutant text, verdict; what stands there is not tried again, so a run that was stopped goes on. Mutants
that cannot change any answer are listed with their reasons in tests/mutation/equivalent.tsv and count apart.
The exit code is 1 when a mutant that is not listed there survived.
"""
import argparse
import collections
import glob
import os
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
WORK = os.path.join(ROOT, "build", "mutation")
SOURCE = os.path.join(WORK, "source")
BUILD = os.path.join(WORK, "build")
RESULTS = os.path.join(WORK, "results.tsv")
EQUIVALENT = os.path.join(ROOT, "tests", "mutation", "equivalent.tsv")
TESTS = "vok_mutation_tests"
GROUPS = {
    "text": ["table_rw/text/*", "platform/singleByteEncoder.cpp", "platform/posix/codePages.cpp",
             "platform/posix/utf8.h", "platform/asciiSteps.h"],
    "csv": ["table_rw/readers/csv*", "table_rw/readers/tableReader_csv.*", "table_rw/writers/tableWriter_csv.*",
            "table_rw/core/valueTable.*"],
    "dbf": ["suite/file_dbf/*", "table_rw/readers/tableReader_dbf.*", "table_rw/writers/tableWriter_dbf.*"],
}
# These take longest; they run when no other has failed.
LONG = ":".join((
    "codePages.*LikeTheTwin", "csvAllocationFailure.*", "csvDamage.everyByteReplaced", "csvTwin.*",
    "dbfDamage.everyByteReplaced", "dbfWriting.table", "readTextLine.aNulAtEveryPositionOfAChunk",
    "readTextLine.filesOfManyBlocks", "readTextLine.random*", "tableReader_csv.aVeryLongLine", "textModeInput.folds*",
    "blockSizes.*", "twins.csvLines", "twins.textMode*"))
LEFT_OUT = "twins.written:twins.petrelRows:twins.plainPetrelFiles:twins.names"
PARTS = (f"*-{LONG}:{LEFT_OUT}", LONG)
MEMORY_LIMIT = 8 << 30

TOKEN = re.compile(r"""
    (?P<skip>//[^\n]*|/\*.*?\*/|^\#else.*?^\#endif|^[ ]*\#(?:[^\n]*\\\n)*[^\n]*|\bstatic_assert\b[^;]*;)
  | (?P<string>(?:u8|[LuU])?"(?:\\.|[^"\\\n])*"\w*)
  | (?P<char>(?:u8|[LuU])?'(?:\\.|[^'\\\n])+')
  | (?P<number>\d[\w'.]*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<sign><<=|>>=|<=|>=|==|!=|&&|\|\||\+\+|--|[-+*/%&|^]=|->|::|<<|>>|\S)
""", re.VERBOSE | re.MULTILINE | re.DOTALL)
# With blanks around them; < of a template and & of a reference have none.
BINARY = {"<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"], "==": ["!="], "!=": ["=="],
          "&&": ["||"], "||": ["&&"], "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["/"], "&": ["|"],
          "|": ["&"], "<<": [">>"], ">>": ["<<"], "+=": ["-="], "-=": ["+="], "|=": ["&="], "&=": ["|="]}
KEYWORDS = {"return", "using", "namespace", "const", "constexpr", "static", "auto", "if", "for", "while", "switch",
            "case", "default", "else", "do", "struct", "class", "enum", "template", "typedef", "public", "private",
            "explicit", "inline", "delete", "extern", "operator", "throw", "try"}

Token = collections.namedtuple("Token", "kind text start end")
Mutant = collections.namedtuple("Mutant", "group file line source mutant start end replacement")


def closing(tokens, at):
    """The index of the token that ends the bracket at `at`."""
    depth = 0
    for i in range(at, len(tokens)):
        depth += (tokens[i].text in "([{") - (tokens[i].text in ")]}")
        if depth == 0:
            return i
    return len(tokens) - 1


def statement_end(tokens, at):
    """The index of the semicolon of a statement that begins at `at` and only calls or assigns; None for others."""
    i = at
    while tokens[i].text in ("++", "--", "*"):
        i += 1
    if tokens[i].kind != "word" or tokens[i].text in KEYWORDS:
        return None
    while tokens[i].kind == "word" and tokens[i + 1].text in ("::", ".", "->"):
        i += 2
    if i == at and tokens[i].text in ("break", "continue") and tokens[i + 1].text == ";":
        return i + 1
    follows = tokens[i + 1].text
    if not (follows in ("(", "[", "=", "++", "--") or follows in BINARY and follows.endswith("=")
            or follows == ";" and tokens[at].text in ("++", "--")):
        return None
    while i < len(tokens) and tokens[i].text != ";":
        if tokens[i].text in "([{":
            i = closing(tokens, i)
        elif tokens[i].text in ")]}":
            return None
        i += 1
    return i if i < len(tokens) else None


def token_changes(text, token):
    """What may stand in place of one token."""
    spaced = text[token.start - 1].isspace() and text[token.end:token.end + 1].isspace()
    if token.kind == "sign" and token.text in BINARY and spaced:
        return BINARY[token.text]
    if token.text in ("++", "--"):
        return ["--" if token.text == "++" else "++"]
    if token.text == "!":
        return [""]
    if token.text in ("true", "false"):
        return ["false" if token.text == "true" else "true"]
    if token.kind in ("number", "char"):
        return [f"({token.text} + 1)"]
    return []


def changes(text):
    """All places of a source and what may stand there: (start, end, replacement)."""
    tokens = [Token(m.lastgroup, m.group(), m.start(), m.end()) for m in TOKEN.finditer(text) if m.lastgroup != "skip"]
    scopes = ["declarations"]
    words = []  # since the last statement began
    for i, token in enumerate(tokens[:-1]):
        for replacement in token_changes(text, token):
            yield token.start, token.end, replacement
        previous, following = tokens[i - 1].text, tokens[i + 1].text
        if token.text == "if" and following == "(":
            end = closing(tokens, i + 1)
            inner = [t.text for t in tokens[i + 2:end]]
            begin = i + 2 + (inner.index(";") + 1 if ";" in inner else 0)
            if "=" not in [t.text for t in tokens[begin:end]]:
                condition = text[tokens[begin].start:tokens[end].start]
                yield tokens[begin].start, tokens[end].start, f"!({condition})"
        if token.text == "return" and following not in (";", "{", "true", "false", "nullptr"):
            end = next(k for k in range(i, len(tokens)) if tokens[k].text == ";")
            yield tokens[i + 1].start, tokens[end].start, "{}"
        if scopes[-1] == "{" and previous in (";", "{", "}", ")", "else"):
            end = statement_end(tokens, i)
            if end is not None:
                yield token.start, tokens[end].end, ";"
        if token.text in (";", "}", "{"):
            declares = token.text == "{" and {"class", "struct", "namespace", "enum"} & set(words)
            words = []
        elif token.kind == "word":
            words.append(token.text)
        if token.text in "([{":
            scopes.append("declarations" if token.text == "{" and declares else token.text)
        elif token.text in ")]}" and len(scopes) > 1:
            scopes.pop()


def mutants_of(group, file):
    with open(os.path.join(ROOT, file), encoding="utf-8", newline="") as source:
        text = source.read()
    for start, end, replacement in changes(text):
        first = text.rfind("\n", 0, start) + 1
        last = text.find("\n", end)
        plain = " ".join(text[first:last].split())
        changed = " ".join((text[first:start] + replacement + text[end:last]).split())
        yield Mutant(group, file, text.count("\n", 0, start) + 1, plain, changed, start, end, replacement)


def files_of(name):
    patterns = GROUPS.get(name, [name])
    found = [os.path.relpath(path, ROOT) for p in patterns for path in sorted(glob.glob(os.path.join(ROOT, p)))]
    return [path for path in found if path.endswith((".cpp", ".h"))]


def read_table(path):
    if not os.path.exists(path):
        return []
    with open(path, encoding="utf-8", newline="") as table:
        return [line.rstrip("\n").split("\t") for line in table if line.strip()]


def key(mutant):
    return mutant.file, mutant.source, mutant.mutant


def results():
    """The verdicts on each mutant, in the order in which they were reached."""
    verdicts = collections.OrderedDict()
    for group, file, _, source, mutant, verdict in read_table(RESULTS):
        verdicts.setdefault((file, source, mutant), (group, []))[1].append(verdict)
    return verdicts


def copy_sources():
    """Brings the copy up to date; what is the same there keeps its time, so that it is not compiled again."""
    names = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", "-z"], cwd=ROOT, check=True,
                           capture_output=True).stdout.decode().split("\0")
    for name in filter(None, names):
        origin, copy = os.path.join(ROOT, name), os.path.join(SOURCE, name)
        with open(origin, "rb") as file:
            content = file.read()
        write_changed(copy, content)
        shutil.copymode(origin, copy)


def write_changed(path, content):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    if os.path.exists(path):
        with open(path, "rb") as file:
            if file.read() == content:
                return
    with open(path, "wb") as file:
        file.write(content)


def build(log):
    command = ["cmake", "--build", BUILD, "--target", TESTS, "-j", os.environ.get("VOK_JOBS", "2")]
    return subprocess.run(command, stdin=subprocess.DEVNULL, stdout=log, stderr=log, check=False).returncode == 0


def limit_child():
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_DATA, (MEMORY_LIMIT, MEMORY_LIMIT))
    resource.setrlimit(resource.RLIMIT_FSIZE, (MEMORY_LIMIT, MEMORY_LIMIT))


def run_tests(names, seconds):
    """@return None when all pass, else what failed"""
    temporary = os.path.join(WORK, "temporary")
    shutil.rmtree(temporary, ignore_errors=True)
    os.makedirs(temporary)
    environment = {k: v for k, v in os.environ.items() if not k.startswith(("VOK_", "LC_"))}
    environment.update(TMPDIR=temporary, LC_ALL="C.UTF-8")
    output = os.path.join(WORK, "tests.log")
    command = [os.path.join(BUILD, "bin", TESTS), "--gtest_filter=" + names, "--gtest_break_on_failure"]
    with open(output, "wb") as log:
        child = subprocess.Popen(command, cwd=WORK, env=environment, stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                 start_new_session=True, preexec_fn=limit_child)
        try:
            code = child.wait(seconds)
            how = "" if code in (0, 1, -signal.SIGTRAP) else f" ({signal.Signals(-code).name})" if code < 0 else ""
        except subprocess.TimeoutExpired:
            os.killpg(child.pid, signal.SIGKILL)
            code = child.wait()
            how = " (time limit)"
    if code == 0:
        return None
    with open(output, encoding="utf-8", errors="replace") as log:
        started = re.findall(r"^\[ RUN      \] (\S+)", log.read(), re.MULTILINE)
    return (started[-1] if started else "start") + how


def run_all(limits):
    for names, seconds in zip(PARTS, limits):
        failed = run_tests(names, seconds)
        if failed is not None:
            return failed
    return None


def try_mutant(mutant, limits, log):
    path = os.path.join(SOURCE, mutant.file)
    with open(os.path.join(ROOT, mutant.file), encoding="utf-8", newline="") as file:
        text = file.read()
    write_changed(path, (text[:mutant.start] + mutant.replacement + text[mutant.end:]).encode())
    try:
        if not build(log):
            return "did not compile"
        failed = run_all(limits)
        return "survived" if failed is None else "killed by " + failed
    finally:
        write_changed(path, text.encode())


def prepare(log):
    """Builds the tests as they are. @return time limits for their two parts"""
    copy_sources()
    if not os.path.exists(os.path.join(BUILD, "CMakeCache.txt")):
        subprocess.run(["cmake", "--preset", "mutation", "-B", BUILD], cwd=SOURCE, stdout=log, check=True)
    if not build(log):
        sys.exit(f"the tests do not compile; see {log.name}")
    limits = []
    for names in PARTS:
        start = time.monotonic()
        failed = run_tests(names, 600)
        if failed is not None:
            sys.exit(f"the tests fail as they are: {failed}")
        limits.append(10 + 5 * (time.monotonic() - start))
    return limits


def summary():
    """Prints the figures. @return mutants that survived and are not called equivalent"""
    equivalent = {tuple(row[:3]) for row in read_table(EQUIVALENT)}
    counts = collections.defaultdict(collections.Counter)
    open_ones = []
    for mutant, (group, verdicts) in results().items():
        if verdicts[-1] == "did not compile":
            continue
        counts[group]["all"] += 1
        if mutant in equivalent:
            counts[group]["equivalent"] += 1
        elif verdicts[-1] == "survived":
            open_ones.append(mutant)
            counts[group]["open"] += 1
        else:
            counts[group]["at once" if verdicts[0] != "survived" else "since"] += 1
    print("| group | mutants | killed | equivalent | survived, killed since | survived |\n|---|---|---|---|---|---|")
    for group, count in sorted(counts.items()):
        figures = (count[name] for name in ("all", "at once", "equivalent", "since", "open"))
        print(f"| {group} | {' | '.join(map(str, figures))} |")
    for file, source, mutant in open_ones:
        print(f"survived: {file}: {source}  ->  {mutant}")
    return open_ones


def chosen(arguments, names, verdicts):
    """Yields what is to be tried, in batches that are sorted by file: each change of file compiles one more."""
    equivalent = {tuple(row[:3]) for row in read_table(EQUIVALENT)}
    for name in names:
        # Of equal lines in one file the first stands for all.
        pool = list({key(m): m for file in files_of(name) for m in reversed(list(mutants_of(name, file)))}.values())
        if arguments.replay:
            yield [m for m in pool if key(m) not in equivalent and verdicts.get(key(m), ("", [""]))[1][-1] == "survived"]
            continue
        random.Random(f"{arguments.seed} {name}").shuffle(pool)
        done = 0
        while pool and done < arguments.count:
            batch = pool[:arguments.count - done]
            del pool[:len(batch)]
            yield sorted((m for m in batch if key(m) not in verdicts), key=lambda m: (m.file, m.start))
            done += sum(verdicts[key(m)][1][-1] != "did not compile" for m in batch)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--count", type=int, default=60)
    parser.add_argument("--replay", action="store_true")
    parser.add_argument("--summary", action="store_true")
    parser.add_argument("names", nargs="*", metavar="text|csv|dbf|FILE")
    arguments = parser.parse_args()
    names = arguments.names or list(GROUPS)
    os.makedirs(WORK, exist_ok=True)
    if not arguments.summary:
        with open(os.path.join(WORK, "build.log"), "w", encoding="utf-8") as log:
            limits = prepare(log)
            verdicts = results()
            for batch in chosen(arguments, names, verdicts):
                for mutant in batch:
                    verdict = try_mutant(mutant, limits, log)
                    row = (mutant.group, mutant.file, str(mutant.line), mutant.source, mutant.mutant, verdict)
                    verdicts.setdefault(key(mutant), (mutant.group, []))[1].append(verdict)
                    with open(RESULTS, "a", encoding="utf-8", newline="") as table:
                        table.write("\t".join(row) + "\n")
                    print(f"{mutant.file}:{mutant.line}: {mutant.mutant}: {verdict}", flush=True)
    return 1 if summary() else 0


if __name__ == "__main__":
    sys.exit(main())
