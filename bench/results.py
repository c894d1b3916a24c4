"""The results of a benchmark as aligned text, as a .tsv file and as Markdown."""
import os
import subprocess
import time

from rounds import median, own_peak

HEADINGS = ("case", "rows", "bytes", "MB/s", "peak MB", "peak/file", "seconds", "ratio", "to", "note")
TEXT_COLUMNS = {"case", "to", "note"}  # aligned left
NOTHING = "-"


def headline(build_folder, rounds):
    """On what and how it was measured, in one line."""
    model = "unknown processor"
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        for line in file:
            if line.startswith("model name"):
                model = line.partition(":")[2].strip()
                break
    compiler = "unknown compiler"
    with open(os.path.join(build_folder, "CMakeCache.txt"), encoding="utf-8") as file:
        for line in file:
            if line.startswith("CMAKE_CXX_COMPILER:"):
                answer = subprocess.run([line.partition("=")[2].strip(), "--version"],
                                        capture_output=True, text=True)
                compiler = answer.stdout.partition("\n")[0]
    return (f"{time.strftime('%Y-%m-%d')}; {model}, one of {os.cpu_count()} cores; "
            f"Linux {os.uname().release.partition('-')[0]}; {compiler}; rounds: {rounds}")


def size_of(result):
    """The bytes that a case's results are given by: the data's own word, else the size of its file."""
    return result.expected.get("size") or os.path.getsize(result.data.path)


def table_row(result, results):
    """The cells of a case as text, in the order of HEADINGS."""
    case = result.case
    size = size_of(result)
    if result.absent:
        return [case.name] + [NOTHING] * (len(HEADINGS) - 2) + ["not installed"]
    times = result.good_seconds()
    moved = result.counts.get("written", size)
    rate = seconds = peak = share = ratio = NOTHING
    if times:
        seconds = f"{median(times):.4f}"
        rate = f"{moved / median(times) / 1e6:.0f}"
        quotient = result.ratio_to(results[case.yardstick])
        ratio = NOTHING if quotient is None else f"{quotient:.2f}"
    if result.peaks and case.whole_process:
        most = median(result.peaks)
        at_most = "<" if most <= own_peak() else ""
        peak = f"{at_most}{most / 1e6:.0f}"
        share = f"{at_most}{most / size:.2f}"
    note = f"{result.counts['rejected']} lines rejected" if result.counts.get("rejected") else ""
    if result.error:
        note = "ERROR: " + result.error
    rows = result.counts.get("rows", result.expected["rows"])
    return [case.name, str(rows), str(moved), rate, peak, share, seconds, ratio, case.yardstick, note]


def aligned(headings, rows):
    widths = [max(len(row[i]) for row in [headings, *rows]) for i in range(len(headings))]
    for row in [headings, *rows]:
        cells = [cell.ljust(width) if heading in TEXT_COLUMNS else cell.rjust(width)
                 for heading, cell, width in zip(headings, row, widths)]
        yield "  ".join(cells).rstrip()


def markdown_table(headings, rows):
    rule = ["---" if heading in TEXT_COLUMNS else "---:" for heading in headings]
    return "\n".join("| " + " | ".join(row) + " |" for row in [list(headings), rule, *rows])


# --- how reading grows ----------------------------------------------------------------------------

PER_BYTE_HEADINGS = ("case", "ns/byte", "least", "most")


def per_byte_rows(results):
    """Nanoseconds a byte of every case: the median of the rounds, the least and the most."""
    rows = []
    for name, result in results.items():
        size = size_of(result)
        costs = [seconds / size * 1e9 for seconds in result.good_seconds()]
        if costs:
            rows.append([name] + [f"{cost:.3f}" for cost in (median(costs), min(costs), max(costs))])
    return rows


def spread_line(results):
    """How far the sizes are apart: the largest median a byte by the smallest."""
    medians = [median(result.good_seconds()) / size_of(result)
               for name, result in results.items() if name.endswith("/read") and result.good_seconds()]
    return f"Spread of read over the sizes: {max(medians) / min(medians):.2f}" if medians else ""


# --- files ----------------------------------------------------------------------------------------


def write(results, headline_text, path, per_byte):
    """Prints the results and writes them to `path`.tsv and `path`.md. @return the Markdown text"""
    rows = [table_row(result, results) for result in results.values()]
    parts = [(HEADINGS, rows)]
    if per_byte:
        parts.append((PER_BYTE_HEADINGS, per_byte_rows(results)))
    print(headline_text)
    for headings, lines in parts:
        print()
        for line in aligned(headings, lines):
            print(line)
    markdown = "\n\n".join([headline_text] + [markdown_table(*part) for part in parts])
    if per_byte:
        print("\n" + spread_line(results))
        markdown += "\n\n" + spread_line(results)
    with open(path + ".md", "w", encoding="utf-8") as file:
        file.write(markdown + "\n")
    with open(path + ".tsv", "w", encoding="utf-8") as file:
        file.write("\t".join(HEADINGS + ("seconds of the rounds",)) + "\n")
        for cells, result in zip(rows, results.values()):
            each = " ".join(NOTHING if seconds is None else f"{seconds:.6f}" for seconds in result.seconds)
            file.write("\t".join([*cells, each]) + "\n")
    return markdown


def publish(markdown, name, page):
    """Replaces what stands between the marks `<!-- name -->` and `<!-- end of name -->` of a page."""
    with open(page, encoding="utf-8") as file:
        text = file.read()
    before, begin, rest = text.partition(f"<!-- {name} -->\n")
    _, end, after = rest.partition(f"<!-- end of {name} -->\n")
    if not begin or not end:
        raise SystemExit(f"{page} has no place for the table: the marks of '{name}' are missing")
    with open(page, "w", encoding="utf-8") as file:
        file.write(f"{before}{begin}\n{markdown}\n\n{end}{after}")
