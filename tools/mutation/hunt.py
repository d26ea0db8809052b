"""Tries a fault: builds it, runs the cases that can see it, and says whether one did."""

import argparse
import collections
import os
import pathlib
import re
import signal
import time

import testrun
from mutation import workshop as workshops

SLOW = 2.0      # seconds; a case that usually takes longer waits until the quick ones have run
REFUSED = "refused"    # the compiler or the linker refused it; not counted
SAME = "same code"     # the compiler makes of it what it makes without it; not counted
KILLED = "killed"
SURVIVED = "survived"

Verdict = collections.namedtuple("Verdict", "outcome words seconds")


class Failed(Exception):
    """A case did not pass."""

    def __init__(self, case, why):
        super().__init__(why)
        self.case = case
        self.why = why


class Trial(testrun.Run):
    """A run that ends at the first case that does not pass."""

    def __init__(self, usual, tell, sessions, alone=False):
        super().__init__(argparse.Namespace(jobs=len(sessions), alone=alone, timeout=300), sessions)
        self.usual = usual
        self.tell = tell
        self.passing = set()

    def say(self, text):
        pass

    def progress(self, force=False):
        self.tell(f"{self.done} of {self.total} cases")

    def limit(self, case):
        return 4 * self.usual.get(case.name, 15) + 10

    def finish(self, slot, worker, code, output):
        if code == 0:
            self.passing.add(worker.case.name)
        super().finish(slot, worker, code, output)

    def fail(self, case, worker, why, output):
        raise Failed(case, why)

    def first_failure(self, cases):
        """@return the Failed of the first case that did not pass, or None."""
        self.total = len(cases)
        try:
            self.run(cases)
            self.end_workers()
        except Failed as failed:
            return failed
        finally:
            self.abandon()
        return None


class Baseline(testrun.Run):
    """A run of all cases on the unchanged tree: how long each takes, and which can't be relied on."""

    def __init__(self, tell, sessions):
        super().__init__(argparse.Namespace(jobs=len(sessions), alone=False, timeout=300), sessions)
        self.tell = tell
        self.unreliable = {}

    def progress(self, force=False):
        self.tell(f"the unchanged tree: {self.done} of {self.total} cases")

    def fail(self, case, worker, why, output):
        self.unreliable[case.name] = why

    def all(self, cases):
        self.total = len(cases)
        try:
            self.run(cases)
            self.end_workers()
        finally:
            self.abandon()
        return {name.split(" ", 1)[1]: seconds for name, seconds in self.times.items()}


def leftover_processes(prefixes):
    """Programs of the tests' that are still there in our Wine prefixes, by number: not the platform's own."""
    wanted = {f"WINEPREFIX={prefix}".encode() for prefix in prefixes}
    for folder in pathlib.Path("/proc").iterdir():
        if not folder.name.isdigit() or int(folder.name) == os.getpid():
            continue
        try:
            if wanted.isdisjoint((folder / "environ").read_bytes().split(b"\0")):
                continue
            program = (folder / "cmdline").read_bytes().split(b"\0")[0].decode(errors="replace")
        except OSError:
            continue
        if program.lower().endswith(".exe") and not re.match(r"(?i)(?:\\\?\?\\)?c:\\windows\\|cmd\.exe", program):
            yield int(folder.name)


class Hunter:
    def __init__(self, shop, cases, table, usual, tell, sessions, quick):
        self.shop = shop
        self.cases = cases
        self.table = table    # of reach
        self.usual = usual    # seconds by case's name
        self.tell = tell
        self.sessions = sessions
        self.quick = quick    # whether the cases that are known to run a fault's place are enough
        self.newer = {case.name for case in cases} - set(table.names)  # of which nothing was measured
        self.killers = collections.Counter()  # (path, case's name)

    def order(self, mutant):
        """The cases that are known to run the fault's place, or may since nothing was measured of them, and all others;
        in both the likely ones first: those that have noticed a fault of the file before, quick ones, those that stand
        where the file is mirrored. And whether any case is known to run the place."""
        mirrored = "tests/" + re.sub(r"\.\w+$", "Test.cpp", mutant.path)
        folder = os.path.dirname(mirrored) + "/"
        known = self.table.reaching(mutant)
        first = known | self.newer

        def rank(case):
            seconds = self.usual.get(case.name, 1)
            near = 0 if mirrored in case.file else 1 if folder in case.file else 2
            return -self.killers[mutant.path, case.name], seconds > SLOW, near, seconds

        cases = sorted(self.cases, key=rank)
        return ([case for case in cases if case.name in first], [case for case in cases if case.name not in first],
                bool(known))

    def clear_up(self):
        """Ends what a fault has left behind: a program that waits for a lock for ever, and would keep others from it."""
        for number in leftover_processes(session.environment["VELUI_WINEPREFIX"] for session in self.sessions):
            try:
                os.kill(number, signal.SIGKILL)
            except ProcessLookupError:
                pass

    def noticed(self, cases, stage):
        """@return the Failed of a case that notices the fault, or None."""
        waiting = list(cases)
        while waiting:
            trial = Trial(self.usual, lambda text: self.tell(f"{stage}, {text}"), self.sessions)
            failed = trial.first_failure(waiting)
            self.clear_up()
            if failed is None:
                return None
            # Once more, by itself: neither chance nor what ran before it in its process may decide.
            again = Trial(self.usual, lambda text: self.tell(f"{stage}, once more '{failed.case.name}'"),
                          self.sessions[:1], alone=True)
            if again.first_failure([failed.case]):
                self.clear_up()
                return failed
            waiting = [case for case in waiting if case.name not in trial.passing and case.name != failed.case.name]
        return None

    def judge(self, mutant):
        began = time.monotonic()

        def verdict(outcome, words=""):
            return Verdict(outcome, words, round(time.monotonic() - began, 1))

        targets = self.shop.objects_of(mutant.path)
        with self.shop.fault(mutant):
            try:
                self.tell("compiling")
                self.shop.compile(targets)
                if self.shop.same_code(targets):
                    return verdict(SAME)
                self.tell("linking")
                self.shop.link()
            except workshops.NoBuild as refusal:
                return verdict(REFUSED, str(refusal)[:300])
            first, others, known = self.order(mutant)
            if self.quick and known:
                others = []
            failed = self.noticed(first, "cases that run it") or self.noticed(others, "all other cases")
            if failed is None and mutant.path.endswith(".h"):
                failed = self.noticed_by_own_copy(mutant)
            if failed is None:
                return verdict(SURVIVED, "" if known else "no case is known to run it")
            self.killers[mutant.path, failed.case.name] += 1
            return verdict(KILLED, f"'{failed.case.name}' {failed.why}")

    def noticed_by_own_copy(self, mutant):
        """A header's fault once more, with the tests that take the header in compiled anew: where the product's objects
        hold no copy of an inline function, the tests' own copy is what they try."""
        objects = self.shop.tests_that_include(mutant.path)
        sources = {os.path.relpath(path, self.shop.copy) for path in objects.values()}
        cases = [case for case in self.cases if any(case.file.endswith(source) for source in sources)]
        if not cases:
            return None
        try:
            self.tell("compiling the tests that take the header in")
            self.shop.compile(sorted(objects))
            self.shop.link()
        except workshops.NoBuild:
            return None
        return self.noticed(cases, "tests of the header")
