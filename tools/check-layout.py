#!/usr/bin/env python3
"""Checks how the tree hangs together: who includes whom, which source belongs to which header, how long files are.

Prints a line with file and line number for each finding and ends with 1 when there is one. With --figures it prints
the structure's figures instead. What a folder may include stands in LAYERS, what may differ from the rules in PAIRED.
"""

import argparse
import collections
import fnmatch
import pathlib
import re
import statistics
import subprocess
import sys

PRODUCT = ("driver", "ui", "settings", "state", "support", "support/module", "support/runtime", "diag")
WINGS = tuple("tools/velhost/" + wing for wing in ("commands", "doctor", "install", "print", "sheet", "host", "report"))

# What each folder may include from; itself always. The longest name that fits a file is its folder.
LAYERS = {
    "driver": ("ui", "settings", "state", "support", "support/module", "diag"),
    "ui": ("settings", "state", "support", "support/module", "diag"),
    "settings": ("state", "support", "support/module", "diag"),
    "state": ("support", "support/module", "diag"),
    "support": ("diag",),  # knows nothing of the driver, nor of the module that it is linked into
    "support/module": ("support", "diag"),
    "support/runtime": (),  # stands in for the C++ run-time, below everything
    "diag": (),
    "tools/velhost": PRODUCT + WINGS,
    "tools/velhost/commands": PRODUCT + WINGS,
    "tools/velhost/doctor": PRODUCT + tuple("tools/velhost/" + wing for wing in ("install", "host", "report")),
    "tools/velhost/install": PRODUCT + ("tools/velhost/host", "tools/velhost/report"),
    "tools/velhost/print": PRODUCT + ("tools/velhost/host", "tools/velhost/report"),
    "tools/velhost/sheet": PRODUCT + ("tools/velhost/host", "tools/velhost/report"),
    "tools/velhost/host": PRODUCT + ("tools/velhost/report",),
    "tools/velhost/report": PRODUCT,
    "tests": None,  # anything
    "bench": None,
}

# Folders in which not even a header and its source together may need another pair that needs them.
ONE_WAY = ("diag", "tools/velhost")

# Sources whose declarations stand in a header of another name, and headers whose functions stand in such sources.
PAIRED = {
    "tools/velhost/commands/*Command.cpp": "one function each; a header for each would hold one line",
    "bench/*Bench.cpp": "one function each, declared in Benches.h",
    "bench/Benches.h": "one function of each subject's source",
    "support/module/PrinterInterface.h": "the interface as Windows publishes it; the entry points stand in driver/",
    "support/runtime/DelayLoad.cpp": "a function that the slots of dlltool's libraries call",
    "support/runtime/EmulatedTls.cpp": "functions that the compiler calls",
    "support/runtime/LateStreams.cpp": "functions that the linker puts in the place of others",
    "support/runtime/StaticGuards.cpp": "functions that the compiler calls",
    "bench/floors/LinkedLibraries.cpp": "part of a module of its own, which nobody calls",
}
# Test cases need no headers; what they share stands in pairs like all else.
UNPAIRED_SOURCES = ("tests/*Test.cpp",)

# Entry points are declared in the published interface, so their sources need no header for them.
EXPORTS = "driver/VelUI.def"

GENERATED = ("Version.h",)
SYSTEM_FOLDERS = ("CLI/", "log4cpp/")  # of libraries that spell their own names so
MOST_LINES = 600
README_LINES = 120  # the short way in: two screens with its pictures; all else has a page in docs/
LONG_FUNCTION = 60
SHORT_HEADER = 30
REPEATED_RUN = 6
KEYWORDS = {"if", "for", "while", "switch", "catch", "return", "sizeof", "alignof", "decltype", "noexcept"}


class Function:
    """A function with its body: its name, its lines, and whether other files can call it."""

    def __init__(self, name, first, last, public):
        self.name, self.first, self.last, self.public = name, first, last, public

    def lines(self):
        return self.last - self.first + 1


class File:
    """A file's text, its includes and, of C++, what it defines and what it only declares."""

    def __init__(self, path, text):
        self.path = path
        self.text = text
        self.lines = text.splitlines()
        self.includes = []  # line, name, whether it stands in quotation marks
        for number, line in enumerate(self.lines, 1):
            match = re.match(r'\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)', line)
            if match:
                self.includes.append((number, match[1] or match[2], match[1] is not None))
        self.functions, self.declared = scan(text) if path.endswith((".cpp", ".h")) else ([], [])

    def is_header(self):
        return self.path.endswith(".h")

    def is_source(self):
        return self.path.endswith(".cpp")

    def pair(self):
        """The path of the header of a source's name, or the other way round."""
        return self.path[:-2] + ".cpp" if self.is_header() else self.path[:-4] + ".h"


def bare(text):
    """The text without comments, literals and preprocessor lines; every character else keeps its place."""
    pattern = (r'//[^\n]*|/\*.*?\*/|R"([^(\s]*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\''
               r"|^[ \t]*#(?:\\\n|[^\n])*")
    def blank(match):
        # A digit group's mark is no literal, but a character literal is never behind a digit.
        if match[0][0] == "'" and match.start() > 0 and text[match.start() - 1].isdigit():
            return match[0].replace("'", " ")
        return re.sub(r"[^\n]", " ", match[0])
    return re.sub(pattern, blank, text, flags=re.S | re.M)


def name_of(head):
    """The name in front of a function's first parenthesis; None when the head is no function's."""
    match = re.search(r"(~?[A-Za-z_]\w*|operator[^\w\s(]+|operator\s*\(\s*\))\s*\(", head)
    return match[1] if match and match[1] not in KEYWORDS else None


def without_parentheses(head):
    """The head with what stands in its parentheses left out."""
    result, depth = [], 0
    for char in head:
        depth -= char == ")"
        if depth == 0:
            result.append(char)
        depth += char == "("
    return "".join(result)


def is_declaration(head, in_class):
    """Whether a statement declares a function or a variable whose definition stands elsewhere."""
    while "{" in head and re.search(r"\{[^{}]*\}", head):
        head = re.sub(r"\{[^{}]*\}", " ", head)
    head = re.sub(r"\b(?:public|private|protected)\s*:", " ", head).strip()
    head = re.sub(r"^template\s*<[^;]*?>\s*(?=[A-Za-z])", "", head)
    if re.match(r"(?:using|typedef|friend|inline|static_assert|enum|class|struct|union|template)\b", head):
        return False
    outer = without_parentheses(head)
    if "=" in outer.replace("operator=", "").replace("operator==", ""):
        return False
    if re.match(r"extern\b", head):
        return True
    if "(" not in outer or re.search(r"\)\s*\(|\(\s*\)\s*\[", outer) or "operator" in outer and "(" not in outer:
        return False
    before = outer[: outer.index("(")].split()
    macro = len(before) == 1 and not in_class
    return name_of(head) is not None and not macro and "return" not in before


def scan(text):
    """What a file defines and what it declares. Goes by braces: good for this tree's style, not for every C++."""
    clean = bare(text)
    functions, declared = [], []
    scopes = []  # kind, name, where its head starts
    start, position = 0, 0
    outer = ("namespace", "hidden", "class")
    while position < len(clean):
        char = clean[position]
        kind = scopes[-1][0] if scopes else "namespace"
        if char == "{":
            head = clean[start:position]
            if kind not in outer:
                scopes.append(("block", None, position))
            elif re.search(r"\bnamespace\b", head):
                scopes.append(("namespace" if re.search(r"\bnamespace\s+\w", head) else "hidden", None, position))
            elif re.match(r"\s*extern\s*$", head):
                scopes.append(("namespace", None, position))
            elif re.search(r"\b(?:class|struct|union)\b[^()=]*$", head):
                scopes.append(("class", None, position))
            elif re.search(r"\benum\b[^()=]*$", head) or not name_of(head) or "=" in re.sub(
                    r"operator\s*[=!<>]=?", "", without_parentheses(head)):
                scopes.append(("value", None, start))
            elif re.search(r"\)[^()]*:[^:].*\w\s*$", head, re.S) and not re.search(
                    r"\b(?:const|noexcept|override|final|try)\s*$", head):
                scopes.append(("value", None, start))  # a member's value in front of a constructor's body
            else:
                scopes.append(("function", name_of(head), start))
            if scopes[-1][0] != "value":
                start = position + 1
        elif char == "}" and scopes:
            kind, name, first = scopes.pop()
            if kind == "function":
                first += len(clean[first:]) - len(clean[first:].lstrip())
                hidden = any(scope[0] == "hidden" for scope in scopes) or re.match(r"static\b", clean[first:])
                functions.append(Function(name, clean.count("\n", 0, first) + 1, clean.count("\n", 0, position) + 1,
                                          not hidden))
            if kind == "value":
                start = first
            else:
                start = position + 1
        elif char == ";":
            if kind in outer and not any(scope[0] == "hidden" for scope in scopes):
                head = clean[start:position]
                if is_declaration(head, kind == "class"):
                    declared.append(clean.count("\n", 0, start + len(head) - len(head.lstrip())) + 1)
            if kind != "value":
                start = position + 1
        position += 1
    return functions, declared


def read_tree():
    """The tree's own files by their paths."""
    listed = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard", "*.cpp", "*.h", "*.rc"],
                            check=True, capture_output=True, text=True).stdout.split("\n")
    paths = sorted({path for path in listed if path and pathlib.Path(path).is_file()})
    return {path: File(path, pathlib.Path(path).read_text(encoding="utf-8-sig")) for path in paths}


def folder_of(path):
    """The row of LAYERS that a path belongs to, or None."""
    fits = [folder for folder in LAYERS if path.startswith(folder + "/")]
    return max(fits, key=len, default=None)


def cycles_of(graph):
    """Groups of nodes that reach each other (Tarjan), each in the order of their names."""
    index, low, stack, on_stack, groups = {}, {}, [], set(), []

    def visit(node):
        work = [(node, iter(sorted(graph.get(node, ()))))]
        index[node] = low[node] = len(index)
        stack.append(node)
        on_stack.add(node)
        while work:
            current, following = work[-1]
            for other in following:
                if other not in index:
                    index[other] = low[other] = len(index)
                    stack.append(other)
                    on_stack.add(other)
                    work.append((other, iter(sorted(graph.get(other, ())))))
                    break
                if other in on_stack:
                    low[current] = min(low[current], index[other])
            else:
                work.pop()
                if work:
                    low[work[-1][0]] = min(low[work[-1][0]], low[current])
                if low[current] == index[current]:
                    group = set()
                    while current not in group:
                        group.add(stack.pop())
                    on_stack.difference_update(group)
                    if len(group) > 1 or current in graph.get(current, ()):
                        groups.append(sorted(group))

    for node in sorted(graph):
        if node not in index:
            visit(node)
    return groups


def include_graph(files):
    return {path: {name for _, name, quoted in file.includes if quoted and name in files}
            for path, file in files.items()}


def unit_graph(files, roots):
    """Includes between pairs of header and source in some folders, a pair by its path without the ending."""
    graph = collections.defaultdict(set)
    for path, names in include_graph(files).items():
        for name in names:
            one, other = (re.sub(r"\.\w+$", "", text) for text in (path, name))
            if one != other and any(one.startswith(root + "/") and other.startswith(root + "/") for root in roots):
                graph[one].add(other)
    return graph


def check_includes(files, tell):
    for path, file in files.items():
        folder = folder_of(path)
        if folder is None:
            tell(path, 1, "stands in no folder that LAYERS knows")
            continue
        allowed = LAYERS[folder]
        for line, name, quoted in file.includes:
            if not quoted:
                if re.search("[A-Z]", name) and not name.startswith(SYSTEM_FOLDERS):
                    tell(path, line, f"<{name}>: system headers are written in lower case")
                continue
            other = folder_of(name)
            if name not in files:
                if name not in GENERATED:
                    tell(path, line, f'"{name}" is no path from the root to a file of the tree')
            elif allowed is not None and other != folder and other not in allowed:
                tell(path, line, f"{folder}/ must not include {other}/")


def check_cycles(files, tell):
    for group in cycles_of(include_graph(files)):
        tell(group[0], 1, "includes itself by way of " + ", ".join(group[1:] or group))
    for group in cycles_of(unit_graph(files, ONE_WAY)):
        tell(group[0] + ".*", 1, "needs and is needed by " + ", ".join(group[1:]))


def exported_names():
    """The module's entry points, and the functions by which a system starts a program or a module."""
    path = pathlib.Path(EXPORTS)
    listed = re.findall(r"^\s+(\w+)", path.read_text(encoding="utf-8"), re.M) if path.is_file() else []
    return {*listed, "main", "wmain", "DllMain"}


EXPORTED = exported_names()


def is_unpaired_source(files, file):
    """Whether a source has something that others can call and no header of its name."""
    return (file.is_source() and file.pair() not in files and
            any(function.public and function.name not in EXPORTED for function in file.functions))


def is_unpaired_header(files, file):
    """Whether a header has something without its definition and no source of its name."""
    return file.is_header() and file.pair() not in files and bool(file.declared)


def check_log_map(files, tell):
    """Whether the map in docs/logging.md names each file that writes log lines, under the word that it writes."""
    path, word, mapped = "docs/logging.md", None, {}
    for number, line in enumerate(pathlib.Path(path).read_text(encoding="utf-8").splitlines(), 1):
        cells = [cell.strip() for cell in line.split("|")]
        if len(cells) == 5 and re.search(r"`[\w/]+\.cpp`", cells[2]):
            word = cells[1].strip("`") or word
            mapped.update({name: (number, word) for name in re.findall(r"`([\w/]+\.cpp)`", cells[2])})
    for name, file in files.items():
        match = re.search(r'^VELUI_SOURCE_MODULE\("([^"]+)"\);', file.text, re.M)
        if name.startswith(("tests/", "bench/")) or not match:
            continue
        module = match[1].replace("\\\\", "\\")
        if mapped.pop(name, (0, None))[1] != module:
            tell(name, 1, f"writes log lines as {module}, and {path} does not say so")
    for name, (number, module) in mapped.items():
        tell(path, number, f"{name} writes no log lines")


def check_pairs(files, tell):
    used = set()
    for path, file in files.items():
        source = is_unpaired_source(files, file) and not any(fnmatch.fnmatch(path, p) for p in UNPAIRED_SOURCES)
        if not source and not is_unpaired_header(files, file):
            continue
        listed = [pattern for pattern in PAIRED if fnmatch.fnmatch(path, pattern)]
        used.update(listed)
        if listed:
            continue
        if source:
            first = next(f.first for f in file.functions if f.public and f.name not in EXPORTED)
            tell(path, first, "has no header of its name")
        else:
            tell(path, file.declared[0], "has no source of its name")
    for pattern in PAIRED:
        if pattern not in used:
            tell("tools/check-layout.py", 1, f"PAIRED lists {pattern}, which needs no exception")


def check_lengths(files, tell):
    for path, file in files.items():
        if len(file.lines) > MOST_LINES:
            tell(path, len(file.lines), f"has {len(file.lines)} lines, more than {MOST_LINES}: split it")
    readme = len(pathlib.Path("README.md").read_text(encoding="utf-8").splitlines())
    if readme > README_LINES:
        tell("README.md", readme, f"has {readme} lines, more than {README_LINES}: move some of it to docs/")


def repeated_runs(files):
    """Runs of lines that stand in more than one place, the longest possible of each counted once. Blank lines, braces,
    comments and includes are left out."""
    places = collections.defaultdict(list)
    kept = {}
    for path, file in files.items():
        rows = [(number, line.strip()) for number, line in enumerate(file.lines, 1)]
        rows = [(number, line) for number, line in rows
                if len(line) > 1 and not line.startswith(("#", "//", "namespace"))]
        kept[path] = rows
        for at in range(len(rows) - REPEATED_RUN + 1):
            places["\n".join(line for _, line in rows[at:at + REPEATED_RUN])].append((path, at))
    runs, seen = [], set()
    for path, rows in kept.items():
        for at in range(len(rows) - REPEATED_RUN + 1):
            key = "\n".join(line for _, line in rows[at:at + REPEATED_RUN])
            here = places[key]
            if len(here) > 1 and (path, at) == here[0]:
                follows = {(p, a - 1) for p, a in here}
                if not follows <= seen:
                    runs.append([f"{p}:{kept[p][a][0]}" for p, a in here])
                seen.update(here)
    return runs


def print_figures(files, verbose):
    areas = (("product", tuple(folder for folder in PRODUCT if "/" not in folder)),
             ("tools/velhost", ("tools/velhost",)),
             ("bench", ("bench",)), ("tests", ("tests",)))
    for title, roots in areas:
        own = {path: file for path, file in files.items()
               if path.startswith(tuple(root + "/" for root in roots)) and not path.endswith(".rc")}
        if not own:
            continue
        headers = [file for file in own.values() if file.is_header()]
        sources = [file for file in own.values() if file.is_source()]
        short = [file for file in headers if len(file.lines) <= SHORT_HEADER]
        lengths = {path: len(file.lines) for path, file in own.items()}
        longest = max(lengths, key=lengths.get)
        long = [(path, function) for path, file in own.items() for function in file.functions
                if function.lines() > LONG_FUNCTION]
        rows = (
            ("files", len(own), [f"{len(sources)} sources, {len(headers)} headers"]),
            (f"headers of {SHORT_HEADER} lines or fewer", len(short), [file.path for file in short]),
            ("sources without a header of their name", *listing(f for f in sources if f.pair() not in files)),
            ("  with something that others call", *listing(f for f in sources if is_unpaired_source(files, f))),
            ("headers without a source of their name", *listing(f for f in headers if f.pair() not in files)),
            ("  whose definitions stand elsewhere", *listing(f for f in headers if is_unpaired_header(files, f))),
            ("lines of the median file", round(statistics.median(lengths.values())), []),
            ("lines of the longest file", lengths[longest], [longest]),
            (f"functions over {LONG_FUNCTION} lines", len(long),
             [f"{path}:{function.first} {function.name} ({function.lines()})" for path, function in long]),
            ("include cycles", *grouped(cycles_of(include_graph(own)))),
            ("circles of pairs that need each other", *grouped(cycles_of(unit_graph(own, roots)))),
            (f"runs of {REPEATED_RUN} or more repeated lines", *grouped(repeated_runs(own))),
        )
        print(f"{title}:")
        for text, number, names in rows:
            print(f"  {text:48}{number:6}")
            for name in names if verbose else ():
                print(f"        {name}")


def listing(files):
    names = [file.path for file in files]
    return len(names), names


def grouped(groups):
    return len(groups), [" ".join(group) for group in groups]


def main():
    parser = argparse.ArgumentParser(description="Checks how the tree hangs together.")
    parser.add_argument("--figures", action="store_true", help="print the structure's figures, check nothing")
    parser.add_argument("--verbose", action="store_true", help="with --figures: name what was counted")
    options = parser.parse_args()
    files = read_tree()
    if options.figures:
        print_figures(files, options.verbose)
        return 0
    findings = []

    def tell(path, line, text):
        findings.append((path, line, text))

    for check in (check_includes, check_cycles, check_log_map, check_pairs, check_lengths):
        check(files, tell)
    for path, line, text in sorted(set(findings)):
        print(f"{path}:{line}: {text}")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
