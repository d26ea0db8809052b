"""Which test cases run which function of the product.

Measured once with the counters of coverage, each case in a process of its own, whose counters go to a folder of its own.
The counters are read here, of each function whether any of its parts ran. The table serves for the order of the tests
alone: after it was measured the tree goes on, and what a killed process ran is not counted.
"""

import hashlib
import json
import pathlib
import shutil
import struct

import testrun

FUNCTION, ARCS = 0x01000000, 0x01A10000


def records(data, magic):
    """(tag, contents, empty) of each record of one of the compiler's files for coverage. Counters that are all zero are
    told by their number alone. GCC 12 and later."""
    if len(data) < 16 or data[:4][::-1] != magic:
        return
    at = 16
    if magic == b"gcno":
        at += 4 + struct.unpack_from("<I", data, at)[0] + 4  # the folder, and a flag
    while at + 8 <= len(data):
        tag, length = struct.unpack_from("<Ii", data, at)
        at += 8
        if tag == 0:
            return
        yield tag, data[at:at + max(length, 0)], length < 0
        at += max(length, 0)


def functions_of(path):
    """The functions that an object counts: by its number (name, file, first line, last line)."""
    found = {}
    for tag, data, _ in records(path.read_bytes(), b"gcno"):
        if tag != FUNCTION:
            continue
        number, _, _, length = struct.unpack_from("<IIII", data)
        at = 16 + length + 4  # the name, and whether the compiler made it up
        length, = struct.unpack_from("<I", data, at)
        file = data[at + 4:at + 4 + length].rstrip(b"\0").decode(errors="replace")
        first, _, last = struct.unpack_from("<III", data, at + 4 + length)
        found[number] = (file.removeprefix("./"), first, last)
    return found


def ran(path):
    """The numbers of the functions that ran."""
    number = None
    for tag, data, empty in records(path.read_bytes(), b"gcda"):
        if tag == FUNCTION and len(data) >= 4:
            number, = struct.unpack_from("<I", data)
        elif tag == ARCS and not empty and any(data):
            yield number


class Measurement(testrun.Run):
    """A run of all cases that keeps what each of them ran."""

    def __init__(self, options, sessions, workshop, known, tell):
        super().__init__(options, sessions)
        self.workshop = workshop
        self.known = known  # the product's paths
        self.tell = tell
        self.counters = workshop.copy.parent / "counters"
        self.functions = {}
        self.reached = {}   # (file, first, last): names of cases

    def fail(self, case, worker, why, output):
        pass  # what it ran counts all the same

    def progress(self, force=False):
        self.tell(f"measuring which case runs what: {self.done} of {self.total}")

    def environment(self, case):
        # The target's programs see the host's files on this drive.
        return {"GCOV_PREFIX": f"Z:{self.counters}/{hashlib.sha1(case.name.encode()).hexdigest()}"}

    def collect(self, case):
        folder = self.counters / hashlib.sha1(case.name.encode()).hexdigest()
        for path in folder.rglob("*.gcda"):
            source = pathlib.Path("/") / path.relative_to(folder).with_suffix(".gcno")
            if not source.exists():
                continue
            if source not in self.functions:
                self.functions[source] = functions_of(source)
            for number in ran(path):
                place = self.functions[source].get(number)
                if place and place[0] in self.known:
                    self.reached.setdefault(place, set()).add(case.name)
        shutil.rmtree(folder, ignore_errors=True)


def measure(workshop, cases, options, sessions, known, tell):
    """@return the table: by file its text's hash and, by function, the cases that run it."""
    run = Measurement(options, sessions, workshop, known, tell)
    run.total = len(cases)
    shutil.rmtree(run.counters, ignore_errors=True)
    try:
        run.run(cases)
        run.end_workers()
    except BaseException:
        run.abandon()
        raise
    for case in cases:
        run.collect(case)
    shutil.rmtree(run.counters, ignore_errors=True)
    names = sorted(case.name for case in cases)
    number = {name: at for at, name in enumerate(names)}
    files = {}
    for (path, first, last), reaching in sorted(run.reached.items()):
        entry = files.setdefault(path, {"hash": hash_of(workshop.copy / path), "functions": []})
        entry["functions"].append([first, last, sorted(number[name] for name in reaching)])
    return {"cases": names, "files": files}


def hash_of(path):
    return hashlib.sha1(path.read_bytes()).hexdigest()


class Table:
    """The measured table, of now or of an earlier tree."""

    def __init__(self, path, copy):
        self.data = json.loads(path.read_text())
        self.names = self.data["cases"]
        self.same = {}
        for name, entry in self.data["files"].items():
            self.same[name] = (copy / name).exists() and hash_of(copy / name) == entry["hash"]

    def reaching(self, mutant):
        """The names of the cases that run the function a fault stands in; those that run anything of its file, where it
        stands in none or the file is another now."""
        functions = self.data["files"].get(mutant.path, {"functions": []})["functions"]
        if self.same.get(mutant.path):
            inside = [cases for first, last, cases in functions if first <= mutant.line <= last]
            if inside:
                functions = [(0, 0, cases) for cases in inside]
        return {self.names[at] for _, _, cases in functions for at in cases}
