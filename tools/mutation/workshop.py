"""Where the faults are made: a copy of the tree with a build of its own, in which one source at a time is changed,
compiled and linked, and put back.

The copy lies in build/mutants/tree. A fault's objects are compiled straight, with the command that the build uses, and
take the place of the clean ones, which wait beside them; all else is left to the build. Sources and objects keep their
times, so that the build does what it is asked for and no more: not the tests' own objects again for a header, nor
anything when a fault is taken back.
"""

import concurrent.futures
import contextlib
import hashlib
import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess

FOLDERS = ("driver", "ui", "settings", "state", "diag", "support")
# The resource script reads this one too: its numbers are not code.
LEFT_OUT = ("support/module/Resource.h",)
OBJCOPY = "x86_64-w64-mingw32-objcopy"
ARCHIVE = "libvelui_core.a"
# What the product's own objects are called in the build.
OWN = re.compile(r"CMakeFiles/velui_(?:core|runtime)\.dir/")
TESTS = re.compile(r"tests/CMakeFiles/veltests\.dir/")


class NoBuild(Exception):
    """The compiler or the linker refused; the text is theirs."""


def product_files(root):
    return sorted(str(path.relative_to(root)) for folder in FOLDERS for path in (root / folder).rglob("*")
                  if path.suffix in (".cpp", ".h") and str(path.relative_to(root)) not in LEFT_OUT)


def listed_files(root):
    """The tree's own files, as git sees them."""
    listed = subprocess.run(["git", "-C", root, "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                            check=True, stdout=subprocess.PIPE).stdout.decode().split("\0")
    return sorted(path for path in set(listed) if path and (root / path).is_file())


def put_back(copy):
    """Puts the clean objects back, so that what is linked next is linked of them."""
    left = list(copy.glob("build/release/**/*.clean"))
    if left:
        (copy / "build" / "release" / ARCHIVE).unlink(missing_ok=True)
    for path in left:
        os.replace(path, path.with_suffix(""))


def bring_up_to_date(root, copy):
    """Makes the copy what the tree is, and touches nothing that is so already."""
    put_back(copy)  # of a run that was ended in the middle of a fault
    wanted = listed_files(root)
    wanted += [str(path.relative_to(root)) for path in (root / ".deps").glob("*") if path.is_file()]
    for path in wanted:
        source, target = root / path, copy / path
        if not target.exists() or target.read_bytes() != source.read_bytes():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(source, target)
            shutil.copymode(source, target)
    kept = set(wanted)
    for folder in [path for path in copy.iterdir() if path.name != "build"]:
        for path in folder.rglob("*") if folder.is_dir() else [folder]:
            if path.is_file() and str(path.relative_to(copy)) not in kept and "__pycache__" not in path.parts:
                path.unlink()


def fingerprint(copy):
    """Stands for everything that decides about a verdict: the product, the tests and how they are built."""
    digest = hashlib.sha256()
    for path in sorted(copy.rglob("*")):
        name = str(path.relative_to(copy))
        if path.is_file() and re.match(r"(?:%s|tests|cmake|tools/velhost)/|CMake|tools/(?:testrun|wine)" % "|".join(FOLDERS),
                                       name):
            digest.update(name.encode() + b"\0" + path.read_bytes())
    return digest.hexdigest()[:16]


class Workshop:
    """The copy's build."""

    def __init__(self, copy):
        self.copy = copy
        self.build = copy / "build" / "release"
        self.commands = {}  # compile commands by object, relative to the build
        self.needs = {}     # the tree's files that an object was compiled from

    def run(self, *command):
        result = subprocess.run(command, cwd=self.copy, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                stdin=subprocess.DEVNULL)
        if result.returncode:
            raise NoBuild(result.stdout.decode(errors="replace"))
        return result.stdout.decode(errors="replace")

    def make(self, counters=False):
        """Brings the copy's build up to date, with the counters of coverage or without."""
        self.run("tools/setup.sh")
        wanted = "ON" if counters else "OFF"
        cache = self.build / "CMakeCache.txt"
        if not (self.build / "build.ninja").exists() or f"VELUI_COVERAGE:BOOL={wanted}" not in cache.read_text():
            self.run("cmake", "--preset", "release", f"-DVELUI_COVERAGE={wanted}")
        self.run("cmake", "--build", "--preset", "release", "-j", str(os.cpu_count() or 2), "--target", "veltests")
        self._read_commands()

    def _read_commands(self):
        for entry in json.loads((self.build / "compile_commands.json").read_text()):
            words = shlex.split(entry["command"])
            if "-o" not in words:
                continue  # a resource
            target = words[words.index("-o") + 1]
            if OWN.match(target) or TESTS.match(target):
                self.commands[target] = words
        target = None
        for line in self.run("ninja", "-C", self.build, "-t", "deps").splitlines():
            if line and not line.startswith(" "):
                target = line.split(":")[0]
                self.needs[target] = set()
            elif line.strip():
                path = pathlib.Path(os.path.normpath(self.build / line.strip()))
                if self.copy in path.parents and self.build not in path.parents:
                    self.needs[target].add(str(path.relative_to(self.copy)))

    def objects_of(self, path):
        """The product's objects that a file goes into."""
        return sorted(target for target, needed in self.needs.items()
                      if OWN.match(target) and target in self.commands and path in needed)

    def tests_that_include(self, path):
        """The tests' objects whose source names a header, or one that names it. They may have copies of its inline
        functions where the product's objects have none."""
        def names(file, headers):
            text = pathlib.Path(file).read_text(encoding="utf-8")
            return any(f'#include "{header}"' in text for header in headers)

        headers = [path] + [other for other in product_files(self.copy)
                            if other.endswith(".h") and names(self.copy / other, [path])]
        return {target: words[-1] for target, words in self.commands.items()
                if TESTS.match(target) and names(words[-1], headers)}

    def compile(self, targets):
        """Compiles objects anew, the clean ones beside them. One alone at first: most that the compiler refuses, it
        refuses there."""
        def one(target):
            path = self.build / target
            times = path.stat()
            os.replace(path, f"{path}.clean")
            result = subprocess.run(self.commands[target], cwd=self.build, stdout=subprocess.PIPE,
                                    stderr=subprocess.STDOUT)
            if result.returncode:
                raise NoBuild(result.stdout.decode(errors="replace"))
            os.utime(path, ns=(times.st_atime_ns, times.st_mtime_ns))

        if targets:
            one(targets[0])
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count() or 2) as pool:
            list(pool.map(one, targets[1:]))

    def same_code(self, targets):
        """Whether the compiler made of a fault what it makes without it."""
        def code(path):
            out = self.copy.parent / "code.obj"
            subprocess.run([OBJCOPY, "--strip-debug", path, out], check=True)
            data = out.read_bytes()
            return data[:4] + data[8:]  # without the time

        return all(code(self.build / target) == code(f"{self.build / target}.clean") for target in targets)

    def link(self):
        """Links the programs and the module of what was compiled."""
        (self.build / ARCHIVE).unlink(missing_ok=True)
        self.run("ninja", "-C", self.build, "veltests")

    @contextlib.contextmanager
    def fault(self, mutant):
        """Puts a fault into the copy's source for as long as the context lasts, and takes it back, objects too."""
        path = self.copy / mutant.path
        clean, times = path.read_bytes(), path.stat()
        try:
            path.write_bytes(mutant.put_into(clean.decode()).encode())
            os.utime(path, ns=(times.st_atime_ns, times.st_mtime_ns))
            yield
        finally:
            put_back(self.copy)
            path.write_bytes(clean)
            os.utime(path, ns=(times.st_atime_ns, times.st_mtime_ns))
