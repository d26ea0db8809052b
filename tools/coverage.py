"""Reads what gcovr counted, prints a table by file, and compares the lines that did not run with a list of exceptions.

usage: coverage.py COVERAGE.json EXCEPTIONS.txt

An exception is a line "path: text of the source line", below a line "# reason". Ends with 1 when a line that did not run
is not listed, a listed one does run or is gone, or a goal is missed.
"""

import json
import sys

LINES_GOAL = 0.98
BRANCHES_GOAL = 0.90


def read_exceptions(path):
    with open(path, encoding="utf-8") as file:
        lines = [line.rstrip("\n") for line in file]
    return [line for line in lines if line and not line.startswith("#")]


def share(done, total):
    return f"{done:5} of {total:5} {100 * done / total if total else 100:6.1f} %"


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        files = json.load(file)["files"]
    missed = []
    lines = lines_run = branches = branches_taken = 0
    for entry in sorted(files, key=lambda entry: entry["file"]):
        with open(entry["file"], encoding="utf-8") as file:
            source = file.read().split("\n")
        counted = [line for line in entry["lines"] if not line.get("gcovr/noncode")]
        run = [line for line in counted if line["count"] > 0]
        edges = [edge for line in counted for edge in line["branches"]]
        taken = [edge for edge in edges if edge["count"] > 0]
        lines, lines_run = lines + len(counted), lines_run + len(run)
        branches, branches_taken = branches + len(edges), branches_taken + len(taken)
        missed += [f'{entry["file"]}: {source[line["line_number"] - 1].strip()}' for line in counted if line["count"] == 0]
        if len(run) < len(counted) or len(taken) < len(edges):
            print(f'{entry["file"]:34} lines {share(len(run), len(counted))}   branches {share(len(taken), len(edges))}')
    print(f'{"all":34} lines {share(lines_run, lines)}   branches {share(branches_taken, branches)}')

    exceptions = read_exceptions(sys.argv[2])
    unlisted = [line for line in missed if line not in exceptions]
    stale = [line for line in exceptions if line not in missed]
    for line in unlisted:
        print("did not run, and is not listed:", line)
    for line in stale:
        print("is listed, and did run or is gone:", line)
    reached = lines_run >= LINES_GOAL * lines and branches_taken >= BRANCHES_GOAL * branches
    if not reached:
        print(f"goal: {LINES_GOAL:.0%} of the lines, {BRANCHES_GOAL:.0%} of the branches")
    sys.exit(0 if reached and not unlisted and not stale else 1)


main()
