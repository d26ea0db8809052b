#!/usr/bin/python3
"""Makes the package, build/VelUI-<version>-x64.zip, from what the build has made. Started by make package.

The same build of the same commit gives the same bytes: entries stand in the order of their names and have the commit's
time (or that of SOURCE_DATE_EPOCH; a copy of the tree without its repository gives the earliest time there is).
"""
import argparse
import hashlib
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time
import zipfile

sys.dont_write_bytecode = True  # the tree stays as it is
from package_parts.notices import Notices, archive
from package_parts.pages import pages, texts
from package_parts.relink import Relink

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "release"
MODULE = "VelUI.dll"
EARLIEST = 315532800  # 1980-01-01, the first day that such an archive can tell

# The command file of the selftest. Its folder may have blanks in its name.
SELFTEST = """@echo off
rem Runs the tests against the module in this folder. Words behind the command pick tests by parts of their names.
rem Under Windows from an administrator's console, under Wine as: wine cmd /c selftest.cmd
rem (docs/package.md tells what the tests do to the machine.)
cd /d "%~dp0"
"%~dp0veltests.exe" --selftest %*
exit /b %errorlevel%
"""


def output(*command):
    return subprocess.run(command, cwd=ROOT, check=True, stdout=subprocess.PIPE, text=True).stdout.strip()


def git(*arguments):
    """What git says; an empty text where the tree is a copy without its repository."""
    return subprocess.run(["git", *arguments], cwd=ROOT, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                          check=False).stdout.strip()


def version():
    """The version, from its one place; what was built must have the same."""
    found = re.search(r"^project\(VelUI VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text(encoding="utf-8"), re.M)[1]
    if f'VELUI_VERSION_TEXT "{found}"' not in (BUILD / "generated/Version.h").read_text(encoding="utf-8"):
        sys.exit("package: what is built has another version than CMakeLists.txt: build first")
    return found


def own_licence():
    """LICENSE, which must say what the about page says."""
    text = (ROOT / "LICENSE").read_text(encoding="utf-8")
    line = re.search(r'#define VELUI_COPYRIGHT_LINE "(.*)"', (BUILD / "generated/Version.h").read_text(encoding="utf-8"))[1]
    for notice in (line, "保留所有权利"):
        if notice not in text:
            sys.exit(f"package: LICENSE does not have the about page's {notice}")
    return text.encode("utf-8")


def stripped(program):
    """A test program without its symbols, which are most of it."""
    with tempfile.TemporaryDirectory() as folder:
        copy = pathlib.Path(folder) / program.name
        subprocess.run(["x86_64-w64-mingw32-strip", "-p", "--strip-all", "-o", copy, program], check=True)
        return copy.read_bytes()


def selftest(programs, sample):
    """The folder selftest/: what lies beside the test program, and the command."""
    files = {"selftest/" + name: data for name, data in sample.items()}
    files["selftest/selftest.cmd"] = SELFTEST.replace("\n", "\r\n").encode()
    for name in programs:
        files["selftest/" + name] = stripped(BUILD / name)
    # The module and its host are what is shipped, to the byte; texts are those that tests read.
    for path in (BUILD / MODULE, BUILD / (MODULE + ".debug"), BUILD / "velhost.exe", BUILD / "VelUI.inf.part",
                 *BUILD.glob("*.md")):
        files["selftest/" + path.name] = path.read_bytes()
    return files


def commit():
    changes = git("status", "--porcelain", "--untracked-files=no")
    return (git("rev-parse", "HEAD") or "not known") + (" and changes that are not committed" if changes else "")


def contents(files, title, stamp, notices):
    """CONTENTS: versions, and each file with its size."""
    compiler = output("x86_64-w64-mingw32-g++-win32", "--version").splitlines()[0]
    lines = [title, "", f"{'module':28}{version()}", f"{'commit':28}{commit()}",
             f"{'time of the commit':28}{time.strftime('%Y-%m-%d %H:%M:%S UTC', time.gmtime(stamp))}",
             f"{'compiler':28}{compiler}"]
    for name in sorted(notices.users, key=str.lower):
        lines.append(f"{name:28}{notices.version(name)}")
    lines += ["", f"{'bytes':>10}  file"]
    lines += [f"{len(data):10}  {name}" for name, data in sorted(files.items())]
    return ("\n".join(lines) + "\n").encode("utf-8")


def collect(title, stamp):
    """All files of the package, by path."""
    sample_folder = ROOT / "tools/velhost/sample"
    sample = {f"sample/{path.name}": path.read_bytes() for path in sample_folder.iterdir() if path.is_file()}
    programs = (BUILD / "selftest.txt").read_text(encoding="utf-8").split()
    files = {name: (BUILD / name).read_bytes() for name in (MODULE, "velhost.exe", "VelUI.inf.part")}
    files["symbols/VelUI.dll.debug"] = (BUILD / "VelUI.dll.debug").read_bytes()
    files["LICENSE"] = own_licence()
    files.update(sample)
    files.update(texts(ROOT))
    files.update(selftest(programs, sample))
    notices = Notices(ROOT, BUILD)
    notices.find([MODULE, "velhost.exe", *programs])
    files.update(notices.files())
    with_log4cpp = notices.users["log4cpp"] - {MODULE}
    files.update(Relink(ROOT, BUILD).folder(ROOT / archive("log4cpp").file, [MODULE, *sorted(with_log4cpp)]))
    files.update(pages(files))
    files["CONTENTS"] = contents(files, title, stamp, notices)
    sums = [f"{hashlib.sha256(data).hexdigest()}  {name}\n" for name, data in sorted(files.items())]
    files["SHA256SUMS"] = "".join(sums).encode("utf-8")
    return files


def write(target, title, files, stamp):
    """The archive, in place of the old one only when it is whole."""
    part = target.with_suffix(".part")
    with zipfile.ZipFile(part, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, data in sorted(files.items()):
            entry = zipfile.ZipInfo(f"{title}/{name}", time.gmtime(stamp)[:6])
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.create_system = 3  # so that the mode counts
            entry.external_attr = (0o100755 if name.endswith((".sh", ".exe")) else 0o100644) << 16
            archive.writestr(entry, data)
    os.replace(part, target)


def main():
    parser = argparse.ArgumentParser(description="Makes the package from what make package has built.")
    parser.add_argument("--output", type=pathlib.Path, metavar="FILE", help="in place of build/VelUI-<version>-x64.zip")
    parser.add_argument("--name", action="store_true", help="tells the package's name and makes none")
    options = parser.parse_args()
    title = f"VelUI-{version()}-x64"
    if options.name:
        print(title)
        return
    stamp = int(os.environ.get("SOURCE_DATE_EPOCH") or git("log", "-1", "--format=%ct") or EARLIEST)
    target = options.output or ROOT / "build" / f"{title}.zip"
    files = collect(title, stamp)
    write(target, title, files, stamp)
    print(f"{target}: {len(files)} files, {target.stat().st_size} bytes")


if __name__ == "__main__":
    main()
