#!/usr/bin/env python3
"""Runs the test cases of the test program, plain and checked, in a handful of processes. Started by tools/test.sh.

Each core has one slot with a Wine session of its own, prefix and display included: its programs and the server that all
their calls wait for stay on that core, where a call costs half of what it costs across two. A slot keeps a process of the
test program for each build (and one more under a Chinese locale) and hands it case after case, in an order that the seed
decides. Tags of a case ask for more:
  [cp936]   a process under a Chinese locale, which gives code page 936
  [alone]   a process that runs nothing before it and nothing after it
  [cores]   a process that may run on all cores: the case is about threads or processes that do
  [once]    the plain build alone: the case is about the file that is shipped, or about what thousands of repetitions leave
            behind, where the traps of the checked build see nothing new
"""
import argparse
import collections
import json
import os
import pathlib
import random
import re
import selectors
import signal
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
END_OF_CASE = re.compile(rb"\r?\n\x01(-?\d+)\r?\n")
READY = re.compile(rb"\x01ready\r?\n")
LONG = 3.0            # seconds; a case that took longer the last time is begun early
REPEATS_ALLOWED = 3   # starts that Wine lost and that were tried again, in a whole run

Case = collections.namedtuple("Case", "build name tags file")


class Session:
    """A Wine session of one slot, with a prefix of its own."""

    def __init__(self, core):
        self.core = core    # on which its programs run; None for all of them
        self.environment = {}
        self.process = None

    def begin(self, prefix):
        """Starts it; join() waits until it stands."""
        self.environment["VELUI_WINEPREFIX"] = str(prefix)
        command = [ROOT / "tools/wine.sh", "--session", "sh", "-c", 'echo "$DISPLAY"; exec cat >/dev/null']
        self.process = subprocess.Popen(self.pinned(command), stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        env=dict(os.environ, **self.environment), start_new_session=True)

    def join(self):
        display = self.process.stdout.readline().decode().strip()
        if not display:
            sys.exit("a Wine session did not start")
        self.environment["DISPLAY"] = display

    def pinned(self, command, everywhere=False):
        """A command on this session's core."""
        if self.core is None or everywhere:
            return command
        return ["taskset", "-c", str(self.core), *command]

    def end(self):
        if self.process:
            self.process.stdin.close()
            self.process.wait()


class Sessions(list):
    """The sessions of all slots, for the length of a run."""

    def __init__(self, count):
        cores = sorted(os.sched_getaffinity(0))
        super().__init__(Session(cores[at % len(cores)] if len(cores) > 1 else None) for at in range(count))

    def __enter__(self):
        folder = ROOT / "build" / "tests"
        folder.mkdir(parents=True, exist_ok=True)
        prefixes = [folder / f"wine-{at + 1}" for at in range(len(self))]
        # One is made, and copied before anything has run in it.
        fresh = folder / "wine-new"
        for prefix in prefixes:
            if not (prefix / ".ready").exists():
                if not (fresh / ".ready").exists():
                    subprocess.run([ROOT / "tools/wine.sh", "--make"], check=True,
                                   env=dict(os.environ, VELUI_WINEPREFIX=str(fresh)))
                subprocess.run(["rm", "-rf", prefix], check=True)
                subprocess.run(["cp", "-a", fresh, prefix], check=True)
        for session, prefix in zip(self, prefixes):
            session.begin(prefix)
        for session in self:
            session.join()
        return self

    def __exit__(self, *exception):
        for session in self:
            session.end()


# Cases that the checked build is not asked: what thousands of repetitions leave, and the host program, whose objects are
# the same in both builds.
PLAIN_ALONE = {"once", "velhost"}


class Build:
    """One build of the test program."""

    def __init__(self, name, program):
        self.name = name
        self.program = program

    def cases(self, session):
        text = subprocess.run([ROOT / "tools/wine.sh", self.program, "--list-tests", "--reporter", "json"],
                              stdout=subprocess.PIPE, check=True, text=True,
                              env=dict(os.environ, **session.environment)).stdout
        for test in json.loads(text)["listings"]["tests"]:
            tags = frozenset(test["tags"])
            if self.name == "checked" and tags & PLAIN_ALONE:
                continue
            if "." not in tags and not any(tag.startswith(".") for tag in tags):
                yield Case(self, test["name"], tags, test["source-location"]["filename"].replace("\\", "/"))


class Worker:
    """A process of the test program that runs the cases it is told."""

    def __init__(self, build, locale, everywhere, session, environment):
        self.build = build
        self.locale = locale
        self.everywhere = everywhere  # not on its session's core alone
        self.ran = []          # what it ran, in order
        self.case = None
        self.buffer = b""
        self.ready = False
        self.started = self.since = time.monotonic()
        environment = dict(os.environ, **session.environment, **environment)
        if locale == "936":
            environment["VELUI_LOCALE"] = "zh_CN.UTF-8"
        folder = build.program.parent / "tests"
        folder.mkdir(exist_ok=True)
        command = session.pinned([ROOT / "tools/wine.sh", "--direct", build.program, "--worker"], everywhere)
        self.process = subprocess.Popen(command, cwd=folder, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=subprocess.STDOUT, env=environment, start_new_session=True)
        os.set_blocking(self.process.stdout.fileno(), False)

    def begin(self, case):
        self.case = case
        self.since = time.monotonic()
        self.ran.append(case)
        try:
            self.process.stdin.write(case.name.encode() + b"\n")
            self.process.stdin.flush()
        except BrokenPipeError:
            pass  # it has ended; its state is read soon

    def read(self):
        try:
            while True:
                data = os.read(self.process.stdout.fileno(), 65536)
                if not data:
                    break
                self.buffer += data
        except BlockingIOError:
            pass

    def kill(self):
        try:
            os.killpg(self.process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        self.process.wait()

    def close(self):
        """Lets it end by itself, so that it writes what a process writes when it ends (the counters of coverage)."""
        try:
            self.process.stdin.close()
        except BrokenPipeError:
            pass
        deadline = time.monotonic() + 60
        while self.process.poll() is None and time.monotonic() < deadline:
            self.read()
            time.sleep(0.005)
        if self.process.poll() is None:
            self.kill()
            return "did not end within 60 s after its last case"
        return f"ended with status {self.process.returncode} after its last case" if self.process.returncode else None


class Run:
    def __init__(self, options, sessions):
        self.options = options
        self.sessions = sessions[:options.jobs]  # one for each slot
        self.done = 0
        self.total = 0
        self.failed = []       # (case, order file or None)
        self.passed = 0
        self.times = {}
        self.workers = [{} for _ in self.sessions]  # for each slot, by the worker's key
        self.began = time.monotonic()
        self.shown = 0
        self.starts = 0
        self.folder = ROOT / "build" / "tests"
        self.folder.mkdir(parents=True, exist_ok=True)
        self.repeats = self.folder / "repeated-starts.txt"
        self.repeats.write_text("")
        # The programs of the target see the host's files on this drive.
        os.environ["VELUI_REPEATS"] = "Z:" + str(self.repeats)
        self.tty = sys.stdout.isatty()

    # -- what is shown

    def say(self, text):
        if self.tty:
            sys.stdout.write("\r\x1b[K")
        print(text, flush=True)

    def progress(self, force=False):
        now = time.monotonic()
        if not force and now - self.shown < (0.2 if self.tty else 5):
            return
        self.shown = now
        running = [f"{w.case.build.name} '{w.case.name}'" for slot in self.workers for w in slot.values() if w.case]
        line = f"  {self.done} of {self.total}, {len(self.failed)} failed, {now - self.began:.0f} s; now: " + ", ".join(running)
        if self.tty:
            sys.stdout.write("\r\x1b[K" + line[:os.get_terminal_size().columns - 1])
            sys.stdout.flush()
        else:
            print(line, flush=True)

    def fail(self, case, worker, why, output):
        order = None
        if worker and len(worker.ran) > 1:
            order = self.folder / f"failed-{len(self.failed) + 1}.order"
            order.write_text("".join(f"{c.build.name}\t{worker.locale}\t{c.name}\n" for c in worker.ran))
        self.failed.append((case, order))
        self.say(f"FAILED ({case.build.name}): {case.name}\n  {why}")
        for line in output.decode(errors="replace").replace("\r", "").strip("\n").split("\n"):
            print("  | " + line)
        sys.stdout.flush()

    # -- what is run

    @staticmethod
    def key(case):
        """What the cases of one process have in common: build, locale, and whether it may run on all cores."""
        return case.build.name, "936" if "cp936" in case.tags else "", "cores" in case.tags

    def environment(self, case):
        """Variables for a process that is started for a case."""
        return {}

    def limit(self, case):
        """Seconds that a case may take."""
        return self.options.timeout

    def start(self, slot, case):
        key = self.key(case)
        worker = self.workers[slot].get(key)
        if worker and ("alone" in case.tags or self.options.alone):
            self.retire(slot, key)
            worker = None
        if worker is None:
            worker = Worker(case.build, *key[1:], self.sessions[slot], self.environment(case))
            self.starts += 1
            self.workers[slot][key] = worker
            self.selector.register(worker.process.stdout, selectors.EVENT_READ)
        worker.begin(case)

    def retire(self, slot, key):
        worker = self.workers[slot].pop(key)
        self.selector.unregister(worker.process.stdout)
        why = worker.close()
        if why:
            self.fail(Case(worker.build, worker.ran[-1].name, frozenset(), ""), worker, f"its process {why}", worker.buffer)
        worker.process.stdout.close()

    def drop(self, slot, worker):
        """Forgets a process that has ended or was ended."""
        self.workers[slot].pop((worker.build.name, worker.locale, worker.everywhere))
        self.selector.unregister(worker.process.stdout)
        worker.process.stdout.close()

    def finish(self, slot, worker, code, output):
        case, worker.case = worker.case, None
        self.done += 1
        self.times[f"{case.build.name} {case.name}"] = round(time.monotonic() - worker.since, 2)
        if code == 0:
            self.passed += 1
        else:
            self.fail(case, worker, f"failed after {time.monotonic() - worker.since:.1f} s", output)
        if "alone" in case.tags or self.options.alone:
            self.retire(slot, self.key(case))

    def look(self, slot, worker):
        """What has become of a worker's case."""
        worker.read()
        if not worker.ready:
            match = READY.search(worker.buffer)
            if match:
                worker.ready = True
                worker.buffer = worker.buffer[match.end():]
                worker.since = time.monotonic()
        match = END_OF_CASE.search(worker.buffer)
        if match:
            output, worker.buffer = worker.buffer[:match.start()], worker.buffer[match.end():]
            self.finish(slot, worker, int(match[1]), output)
            return
        status = worker.process.poll()
        if status is not None:
            worker.read()
            if END_OF_CASE.search(worker.buffer):
                return  # seen the next time
            case, output = worker.case, worker.buffer
            self.drop(slot, worker)
            if not worker.ready:
                # Wine lost the process before the test program's first line. Counted, and tried again.
                with self.repeats.open("a") as file:
                    file.write(f"veltests.exe ended with {status} before its first line\n")
                if self.repeats.read_text().count("\n") <= REPEATS_ALLOWED:
                    self.start(slot, case)
                    return
            self.done += 1
            self.fail(case, worker, f"its process ended with status {status}", output)
        elif time.monotonic() - worker.since > self.limit(worker.case):
            case, output = worker.case, worker.buffer
            worker.kill()
            self.drop(slot, worker)
            self.done += 1
            self.fail(case, worker, f"did not end within {self.limit(case):g} s", output)

    def busy(self, slot):
        return any(worker.case for worker in self.workers[slot].values())

    def run(self, cases):
        """Runs cases, the first ones first."""
        slots = range(len(self.sessions))
        waiting = collections.deque(cases)
        self.selector = selectors.DefaultSelector()
        for slot in self.workers:
            for worker in slot.values():
                self.selector.register(worker.process.stdout, selectors.EVENT_READ)
        while True:
            for slot in slots:
                if waiting and not self.busy(slot):
                    self.start(slot, waiting.popleft())
            if not waiting and not any(self.busy(slot) for slot in slots):
                break
            if self.selector.get_map():
                self.selector.select(0.05)
            for slot in slots:
                for worker in list(self.workers[slot].values()):
                    if worker.case:
                        self.look(slot, worker)
                    else:
                        worker.read()
            self.progress()

    def end_workers(self):
        for slot in range(len(self.workers)):
            for key in list(self.workers[slot]):
                self.retire(slot, key)

    def abandon(self):
        """Ends all processes at once, whatever they are in."""
        for slot in self.workers:
            for worker in slot.values():
                worker.kill()
                worker.process.stdout.close()
            slot.clear()


def parse():
    parser = argparse.ArgumentParser(prog="tools/test.sh", description="Runs the tests that make test has built.")
    parser.add_argument("-R", metavar="PATTERN", help="the cases whose name this regular expression finds")
    parser.add_argument("--folder", help="the cases of one folder of tests/")
    parser.add_argument("--only", choices=["plain", "checked"], help="one build alone")
    parser.add_argument("--seed", type=int, help="the order of an earlier run")
    parser.add_argument("--order", metavar="FILE", help="the cases of a file, in its order, in one process")
    parser.add_argument("--repeat", type=int, default=1, help="each case so many times in a row in its process")
    parser.add_argument("--alone", action="store_true", help="each case in a process of its own")
    parser.add_argument("-j", "--jobs", type=int, default=os.cpu_count() or 2, help="how many at a time")
    parser.add_argument("--timeout", type=float, default=300, help="seconds a case may take")
    parser.add_argument("--list", action="store_true", help="names the cases and runs none")
    return parser.parse_args()


def builds(only):
    name = os.environ.get("VELUI_BUILD", "release")
    folder = ROOT / "build" / name
    found = [Build("plain" if name == "release" else name, folder / "veltests.exe"),
             Build("checked", folder / "checked" / "veltests.exe")]
    return [build for build in found if build.program.exists() and only in (None, build.name)]


def main():
    options = parse()
    if options.order:
        options.jobs = 1
    found = builds(options.only)
    if not found:
        sys.exit("no test program is built: make test")
    with Sessions(options.jobs) as sessions:
        sys.exit(run_all(options, found, sessions))


def run_all(options, found, sessions):
    """@return the exit code."""
    run = Run(options, sessions)
    cases = [case for build in found for case in build.cases(sessions[0])]
    if options.order:
        by_name = {(case.build.name, case.name): case for case in cases}
        lines = [line.split("\t") for line in pathlib.Path(options.order).read_text().splitlines()]
        cases = [by_name[(build, name)] for build, _, name in lines]
    else:
        if options.R:
            cases = [case for case in cases if re.search(options.R, case.name)]
        if options.folder:
            cases = [case for case in cases if f"tests/{options.folder}/" in case.file]
    if not cases:
        sys.exit("no test has such a name")
    if options.list:
        for case in cases:
            print(f"{case.build.name}: {case.name} {sorted(case.tags)}")
        return 0
    seed = options.seed if options.seed is not None else random.SystemRandom().randrange(1 << 31)
    durations = ROOT / "build" / "tests" / "durations.json"
    before = json.loads(durations.read_text()) if durations.exists() else {}
    if not options.order:
        random.Random(seed).shuffle(cases)
        # Long ones early, so that none is left running alone at the end; among themselves the order stays random.
        cases.sort(key=lambda case: before.get(f"{case.build.name} {case.name}", 0) < LONG)
    cases = [case for case in cases for _ in range(options.repeat)]
    run.total = len(cases)
    print(f"== {len(cases)} test cases in random order, seed {seed}, {options.jobs} at a time", flush=True)
    try:
        run.run(cases)
        failures = list(run.failed)
        run.end_workers()
        # A case that failed in company is tried alone, to say which of the two it takes. It stays failed.
        alone = {}
        if not options.order and not options.alone:
            for case, order in failures[:20]:
                if order and case not in alone:
                    judge = Run(argparse.Namespace(**{**vars(options), "jobs": 1, "alone": True}), sessions)
                    judge.say = judge.progress = lambda *a, **k: None
                    judge.fail = lambda case, worker, why, output: judge.failed.append((case, None))
                    judge.run([case])
                    judge.end_workers()
                    alone[case] = not judge.failed
    except KeyboardInterrupt:
        run.abandon()
        print("\ninterrupted")
        return 130
    if not options.order:
        durations.write_text(json.dumps({**before, **run.times}, indent=0, sort_keys=True))
    if run.tty:
        sys.stdout.write("\r\x1b[K")
    repeats = run.repeats.read_text().splitlines()
    for case, order in run.failed:
        print(f"failed ({case.build.name}): {case.name}")
        if order and alone.get(case):
            print(f"  passes alone; in company again: tools/test.sh --order {order.relative_to(ROOT)}"
                  f" (the whole run: --seed {seed})")
        else:
            print(f"  again: tools/test.sh --only {case.build.name} -R '^{re.escape(case.name)}$'".replace("\\ ", " "))
    for build in found:
        count = sum(1 for case in cases if case.build is build)
        bad = sum(1 for case, _ in run.failed if case.build is build)
        print(f"{build.name}: {count - bad} of {count} passed")
    print(f"{time.monotonic() - run.began:.0f} s, {run.starts} processes of the test program, seed {seed}, "
          f"{len(repeats)} repeated starts (at most {REPEATS_ALLOWED} are allowed)")
    for line in repeats:
        print("  repeated: " + line)
    print(f"tests: {run.passed} passed, {len(run.failed)} failed")
    return 1 if run.failed or len(repeats) > REPEATS_ALLOWED else 0


if __name__ == "__main__":
    main()
