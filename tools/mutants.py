#!/usr/bin/env python3
"""Puts one fault at a time into the product's code, runs the tests that can see it, and tells which faults none of them
noticed. Started by make mutants:

    make mutants                                        100 faults, chosen by chance
    make mutants MUTANTS=400 SEED=7 FOLDER=state        so many, the same again, of one folder or file
    make mutants AGAIN=1                                what survived the last time

The faults are made in a copy of the tree, build/mutants/tree, which has its own build and its own Wine prefix; a run can be
ended at any moment, and what it has found is kept for the next run on the same tree. The sample takes the kinds of
faults in turn (tools/mutation/faults.py has them), so that many texts or numbers don't crowd out few locks. What the
compiler refuses, or turns into the code that it makes without the fault, is not counted. Faults that change nothing
which the module promises are listed with their reasons in tools/mutants-equivalent.txt, and left out.
"""

import argparse
import collections
import json
import os
import pathlib
import random
import re
import signal
import subprocess
import sys
import time

sys.dont_write_bytecode = True

from mutation import faults, selftest  # noqa: E402
from mutation import workshop as workshops  # noqa: E402

ROOT = pathlib.Path(__file__).resolve().parent.parent
EQUIVALENT = "tools/mutants-equivalent.txt"
INSIDE = "VELUI_MUTANTS_INSIDE"  # set for the part that runs in the copy, within one Wine session


# -- the list of faults that change nothing


class Listed:
    """An entry of the list: "path Function: reason", or "path: reason" outside functions, then a line "- " with the text
    of the lines that the fault changes, and one "+ " with what it makes of them."""

    def __init__(self, line, path, function, reason):
        self.line, self.path, self.function, self.reason = line, path, function, reason
        self.before = self.after = None

    @property
    def key(self):
        return f"{self.path} {self.function}\n{self.before}\n{self.after}"


def read_listed(text):
    """@return the entries, and what is wrong with the list: texts with line numbers."""
    entries, wrong = [], []
    for number, line in enumerate(text.splitlines(), 1):
        if not line.strip() or line.startswith("#"):
            continue
        if line.startswith("- ") and entries and entries[-1].before is None:
            entries[-1].before = faults.squeeze(line[2:])
        elif line.startswith("+ ") and entries and entries[-1].before is not None and entries[-1].after is None:
            entries[-1].after = faults.squeeze(line[2:])
        else:
            head = re.fullmatch(r"([\w/.]+\.(?:cpp|h))(?: ([\w:~]+))?: (\S.*)", line)
            if head:
                entries.append(Listed(number, head[1], head[2] or "", head[3]))
            else:
                wrong.append(f"{EQUIVALENT}:{number}: neither an entry's head nor its - or + line")
    wrong += [f"{EQUIVALENT}:{entry.line}: an entry without its - and + lines" for entry in entries if entry.after is None]
    return [entry for entry in entries if entry.after is not None], wrong


# -- choosing


def all_mutants(root):
    return [mutant for path in workshops.product_files(root)
            for mutant in faults.mutants_of(path, (root / path).read_text(encoding="utf-8-sig"))]


def in_turn(mutants, seed):
    """The faults in the order in which they are tried: the kinds in turn, each in an order of the seed's."""
    chance = random.Random(seed)
    heaps = collections.defaultdict(list)
    for mutant in mutants:
        heaps[mutant.kind].append(mutant)
    for kind in faults.KINDS:
        chance.shuffle(heaps[kind])
    while any(heaps.values()):
        for kind in faults.KINDS:
            if heaps[kind]:
                yield heaps[kind].pop()


# -- the run in the copy


class Screen:
    """One line that tells what is going on, where there is a terminal; else a line a minute."""

    def __init__(self):
        self.head = ""
        self.tty = sys.stdout.isatty()
        self.shown = 0

    def tell(self, text):
        now = time.monotonic()
        if now - self.shown < (0.2 if self.tty else 60):
            return
        self.shown = now
        line = f"  {self.head}{text}"
        if self.tty:
            sys.stdout.write("\r\x1b[K" + line[:os.get_terminal_size().columns - 1])
            sys.stdout.flush()
        else:
            print(line, flush=True)

    def say(self, text):
        if self.tty:
            sys.stdout.write("\r\x1b[K")
        print(text, flush=True)


def kept(path, tree):
    """What an earlier run on the same tree has left in a file, or nothing."""
    data = json.loads(path.read_text()) if path.exists() else {}
    return data.get("found") if data.get("tree") == tree else None


def keep(path, tree, found):
    part = path.with_suffix(".part")
    part.write_text(json.dumps({"tree": tree, "found": found}, indent=0))
    os.replace(part, path)


def prepare(store, shop, screen, options, sessions):
    """Builds, measures what is not known yet, and returns the hunter."""
    import testrun
    from mutation import hunt, reach

    tests = testrun.Build("plain", shop.build / "veltests.exe")
    known = set(workshops.product_files(shop.copy))
    reached = store / "reach.json"
    if options.measure or not reached.exists():
        screen.say("== building with counters, to measure once which case runs which function (REACH=new does it again)")
        shop.make(counters=True)
        cases = list(tests.cases(sessions[0]))
        alone = argparse.Namespace(jobs=options.jobs, alone=True, timeout=300)
        reached.write_text(json.dumps(reach.measure(shop, cases, alone, sessions, known, screen.tell)))
    screen.say("== building the unchanged tree")
    shop.make()
    tree = workshops.fingerprint(shop.copy)
    cases = list(tests.cases(sessions[0]))
    base = store / "baseline.json"
    found = kept(base, tree)
    if found is None:
        screen.say(f"== running all {len(cases)} cases on the unchanged tree")
        run = hunt.Baseline(screen.tell, sessions)
        usual = run.all(cases)
        found = {"usual": usual, "unreliable": run.unreliable}
        keep(base, tree, found)
    for name, why in found["unreliable"].items():
        screen.say(f"not asked, since it does not pass without a fault: '{name}' {why}")
    cases = [case for case in cases if case.name not in found["unreliable"]]
    table = reach.Table(reached, shop.copy)
    return hunt.Hunter(shop, cases, table, found["usual"], screen.tell, sessions, options.quick), tree


def chosen(options, mutants, store, screen):
    """The faults to try, in their order, and how many are to be counted."""
    if options.folder:
        place = options.folder.rstrip("/")
        mutants = [mutant for mutant in mutants if mutant.path == place or mutant.path.startswith(place + "/")]
        if not mutants:
            sys.exit(f"no fault can be made in {place}")
    if not options.again:
        return in_turn(mutants, options.seed), options.count
    last = store / "survivors.json"
    keys = set(json.loads(last.read_text())) if last.exists() else set()
    left = [mutant for mutant in mutants if mutant.key in keys]
    screen.say(f"== {len(left)} of {len(keys)} that survived the last time can still be made")
    return iter(left), len(left)


def show(mutant):
    where = f" in {mutant.function}" if mutant.function else ""
    return f"{mutant.path}:{mutant.line}{where}: {mutant.kind}\n    - {mutant.before}\n    + {mutant.after}"


def score(killed, counted):
    return f"{killed:4} of {counted:4} {100 * killed / counted if counted else 0:6.1f} %"


def report(tried, screen):
    """Prints the scores and the survivors. tried: (mutant, verdict) of the counted ones."""
    from mutation import hunt

    for title, of in (("folder", lambda mutant: mutant.folder), ("kind of fault", lambda mutant: mutant.kind)):
        groups = collections.defaultdict(list)
        for mutant, verdict in tried:
            groups[of(mutant)].append(verdict.outcome == hunt.KILLED)
        screen.say(f"\nnoticed, by {title}:")
        for name in sorted(groups):
            screen.say(f"  {name:32}{score(sum(groups[name]), len(groups[name]))}")
    survivors = [(mutant, verdict) for mutant, verdict in tried if verdict.outcome == hunt.SURVIVED]
    if survivors:
        screen.say("\nnot noticed:")
    for mutant, verdict in sorted(survivors, key=lambda pair: (pair[0].path, pair[0].line)):
        screen.say("  " + show(mutant) + (f"\n    ({verdict.words})" if verdict.words else ""))
    screen.say(f"\nmutants: noticed {score(len(tried) - len(survivors), len(tried)).strip()}")
    return survivors


def hunt_in_copy(options):
    """The part that runs in the copy, whose Wine prefixes and all else below build/ are its own."""
    import testrun

    with testrun.Sessions(options.jobs) as sessions:
        return hunt_in_sessions(options, sessions)


def hunt_in_sessions(options, sessions):
    from mutation import hunt

    store = ROOT.parent
    screen = Screen()
    shop = workshops.Workshop(ROOT)
    mutants = all_mutants(ROOT)
    listed, wrong = read_listed((ROOT / EQUIVALENT).read_text(encoding="utf-8"))
    keys = {mutant.key for mutant in mutants}
    wrong += [f"{EQUIVALENT}:{entry.line}: matches no fault that can be made" for entry in listed if entry.key not in keys]
    for text in wrong:
        screen.say(text)
    equivalent = {entry.key for entry in listed}
    open_ones = [mutant for mutant in mutants if mutant.key not in equivalent]
    screen.say(f"== {len(mutants)} faults can be made, {len(mutants) - len(open_ones)} of them are listed as changing nothing")
    tried, counts, began, spent = [], collections.Counter(), time.monotonic(), 0.0
    try:
        hunter, tree = prepare(store, shop, screen, options, sessions)
        order, wanted = chosen(options, open_ones, store, screen)
        screen.say(f"== {wanted} faults, seed {options.seed}")
        verdicts = kept(store / "verdicts.json", tree) or {}
        began = time.monotonic()
        for mutant in order:
            if len(tried) >= wanted:
                break
            rest = (wanted - len(tried)) * spent / len(tried) if tried and spent else 0
            screen.head = (f"{len(tried)} of {wanted}, {counts[hunt.SURVIVED]} survived, "
                           f"{(time.monotonic() - began) / 60:.0f} min" + (f", about {rest / 60:.0f} min left" if rest else "") +
                           f"; {mutant.path}:{mutant.line} {mutant.kind}: ")
            before = verdicts.get(mutant.key)
            if before:
                verdict = hunt.Verdict(*before)
            else:
                verdict = hunter.judge(mutant)
                if verdict.outcome != hunt.SURVIVED or not options.quick:
                    verdicts[mutant.key] = list(verdict)
                    keep(store / "verdicts.json", tree, verdicts)
            counts[verdict.outcome] += 1
            spent += verdict.seconds
            if verdict.outcome in (hunt.KILLED, hunt.SURVIVED):
                tried.append((mutant, verdict))
                screen.say(f"{verdict.outcome:9}{mutant.path}:{mutant.line} {mutant.kind}, {verdict.seconds:.0f} s"
                           + (f": {verdict.words}" if verdict.words else ""))
            if verdict.outcome == hunt.SURVIVED:
                screen.say(f"    - {mutant.before}\n    + {mutant.after}")
    except workshops.NoBuild as refusal:
        sys.exit(f"the unchanged tree does not build:\n{refusal}")
    except KeyboardInterrupt:
        screen.say("interrupted; what was found is kept, and the same call goes on from here")
    if not tried:
        return 1
    survivors = report(tried, screen)
    (store / "survivors.json").write_text(json.dumps([mutant.key for mutant, _ in survivors]))
    screen.say(f"not counted: {counts[hunt.REFUSED]} that do not compile, {counts[hunt.SAME]} that compile to the same code; "
               f"{(time.monotonic() - began) / 60:.0f} min, seed {options.seed}")
    return 0


def start(options):
    """Brings the copy up to date and goes on in it."""
    copy = ROOT / "build" / "mutants" / "tree"
    copy.mkdir(parents=True, exist_ok=True)
    workshops.bring_up_to_date(ROOT, copy)
    child = subprocess.Popen([sys.executable, copy / "tools/mutants.py", *sys.argv[1:],
                              "--seed", str(options.seed)], cwd=copy, env=dict(os.environ, **{INSIDE: "1"}),
                             start_new_session=True)
    while True:
        try:
            return child.wait()
        except KeyboardInterrupt:
            os.killpg(child.pid, signal.SIGINT)  # the copy's part tells what it has found, and ends by itself


def main():
    parser = argparse.ArgumentParser(prog="make mutants", description=__doc__.split("\n\n")[0])
    parser.add_argument("--count", type=int, default=100, help="faults that are counted")
    parser.add_argument("--seed", type=int, help="the choice of an earlier run")
    parser.add_argument("--folder", help="a folder or a file of the product")
    parser.add_argument("--again", action="store_true", help="what survived the last time")
    parser.add_argument("--quick", action="store_true",
                        help="ask only the cases that are known to run a fault's place; --again asks the others later")
    parser.add_argument("--measure", action="store_true", help="measure anew which case runs which function")
    parser.add_argument("--list", action="store_true", help="show the faults that would be tried, and try none")
    parser.add_argument("--jobs", type=int, default=os.cpu_count() or 2, help="cases at a time")
    parser.add_argument("--self-test", action="store_true", help="check which faults the kinds make of a small text")
    options = parser.parse_args()
    if options.self_test:
        entries, wrong = read_listed((ROOT / EQUIVALENT).read_text(encoding="utf-8"))
        keys = {mutant.key for mutant in all_mutants(ROOT)}
        wrong += [f"{EQUIVALENT}:{entry.line}: matches no fault that can be made" for entry in entries if entry.key not in keys]
        return selftest.run(wrong)
    if options.seed is None:
        options.seed = random.SystemRandom().randrange(1 << 20)
    if options.list:
        listed, _ = read_listed((ROOT / EQUIVALENT).read_text(encoding="utf-8"))
        equivalent = {entry.key for entry in listed}
        order = [mutant for mutant in all_mutants(ROOT) if mutant.key not in equivalent and
                 mutant.path.startswith(options.folder or "")]
        for mutant, _ in zip(in_turn(order, options.seed), range(options.count)):
            print(show(mutant))
        return 0
    for number in (signal.SIGINT, signal.SIGTERM):  # also where a shell has switched the first one off
        signal.signal(number, signal.default_int_handler)
    return hunt_in_copy(options) if os.environ.get(INSIDE) else start(options)


if __name__ == "__main__":
    sys.exit(main())
