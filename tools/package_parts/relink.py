"""What the receiver needs to link the module, and each other program that has log4cpp in it, with another build of it:
everything that the program's own link command names, and that command. log4cpp's source and the way in which it was built
come with it."""
import pathlib
import re
import shlex
import subprocess
import tempfile

LOG4CPP = "liblog4cpp.a"

RELINK = """#!/bin/sh
# Links VelUI.dll, or another program of the package, with another build of log4cpp, by the command that made the one of this
# package.
#   relink.sh LIBLOG4CPP.A [FOLDER [PROGRAM]]     makes FOLDER/VelUI.dll and FOLDER/VelUI.dll.debug (FOLDER: here), or PROGRAM:
#                                                 {programs}
# Needed: the compiler {compiler} (Debian's g++-mingw-w64-x86-64-win32). log4cpp/build.sh makes the library.
set -eu
[ $# -ge 1 ] || {{ sed -n 's/^#   //p' "$0" >&2; exit 2; }}
log4cpp=$(realpath "$1")
mkdir -p "${{2:-.}}"
out=$(realpath "${{2:-.}}")
# The linker chooses the module's address by the name that it is told, and the order of what it imports by those of the
# files: with no folder in front of the one and no whole path in front of the others the same log4cpp gives the same bytes.
rm -f "$out/objects"
ln -s "$(realpath "$(dirname "$0")")/objects" "$out/objects"
trap 'rm -f "$out/objects"' EXIT
cd "$out"
case ${{3:-VelUI.dll}} in
{cases}
*)
    echo "relink.sh: there is no $3 here" >&2
    exit 2
    ;;
esac
"""

CASE = """{program})
    {link}
    {finish}
    ;;"""

BUILD = """#!/bin/sh
# Builds log4cpp for the module from the archive beside this script, as it was built for this package.
#   build.sh FOLDER [FLAG ...]     makes FOLDER/install/lib/{library}; flags go to the compiler, behind those of this package
# Needed: cmake, make, and the compiler that the file {toolchain} names.
set -eu
[ $# -ge 1 ] || {{ sed -n 's/^#   //p' "$0" >&2; exit 2; }}
here=$(realpath "$(dirname "$0")")
mkdir -p "$1"
cd "$1"
shift
rm -rf unpacked source install objects
mkdir unpacked
tar xf "$here/{archive}" -C unpacked
mv unpacked/* source
# The change that this package's build makes to the source: calls may throw.
(cd source && cmake -P "$here/{patch}")
cmake -S source -B objects -G "Unix Makefiles" -Wno-dev -DCMAKE_TOOLCHAIN_FILE="$here/{toolchain}" -DCMAKE_BUILD_TYPE=None \\
    -DCMAKE_CXX_FLAGS={flags}" $*" -DCMAKE_INSTALL_PREFIX="$PWD/install"
cmake --build objects -j "$(nproc)"
cmake --install objects
"""


def run(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


class Relink:
    """The package's folder relink/."""

    def __init__(self, root, build):
        self.root, self.build = root, build
        self.names = {}  # of the copies, by the files of the build

    def take(self, word):
        """A file that a command names goes along, and the command names the copy."""
        path = (self.build / word).resolve()
        if path not in self.names:
            # Names that differ in case alone are one name where the package may be unpacked.
            taken = {name.lower() for name in self.names.values()}
            names = ["-".join(path.parts[-count:]) for count in (1, 2, 3)]
            self.names[path] = next(name for name in names if name.lower() not in taken)
        return self.names[path]

    def link(self, program, command):
        """The link command, with the package's copies of the files that it names. It names the linker's map and the import
        library too, which nobody needs here."""
        words = []
        for word in shlex.split(command):
            if word.startswith(("-Wl,-Map,", "-Wl,--out-implib,")):
                continue
            if word.endswith("/" + LOG4CPP):
                words.append('"$log4cpp"')
            elif word == program:
                words.append(program)
            elif not words:
                words.append(pathlib.Path(word).name)  # the compiler, wherever the receiver has it
            elif (self.build / word).is_file():
                words.append("objects/" + self.take(word))
            else:
                words.append(shlex.quote(word))
        if '"$log4cpp"' not in words:
            raise SystemExit(f"package: the link of {program} does not name log4cpp")
        return " ".join(words)

    def case(self, program):
        """How a program is linked, and what the build or the packaging does to it behind the link."""
        commands = run("ninja", "-C", str(self.build), "-t", "commands", program).splitlines()[-1].split(" && ")
        link = self.link(program, commands[1])
        finish = [command.replace(str(self.build) + "/", "") for command in commands[2:]
                  if command != ":" and not command.startswith("cd ")]
        return CASE.format(program=program, link=link,
                           finish="\n    ".join(finish or [f"x86_64-w64-mingw32-strip -p --strip-all {program}"]))

    def objects(self, whole):
        """The copies. Those that are not the module's leave their symbols behind, which are most of them."""
        files = {}
        with tempfile.TemporaryDirectory() as folder:
            stripped = []
            for path, name in self.names.items():
                copy = pathlib.Path(folder) / name
                copy.write_bytes(path.read_bytes())
                if name not in whole:
                    stripped.append(copy)
            run("x86_64-w64-mingw32-strip", "--strip-debug", "-D", *map(str, stripped))
            for name in self.names.values():
                files[f"relink/objects/{name}"] = (pathlib.Path(folder) / name).read_bytes()
        return files

    def log4cpp(self, archive):
        """Its source, and how it was built."""
        cache = next((self.build / "deps/log4cpp").glob("src/*-build/CMakeCache.txt")).read_text(encoding="utf-8")
        flags = re.search(r"^CMAKE_CXX_FLAGS:\w+=(.*)$", cache, re.M)[1]
        flags = re.sub(r" *-ffile-prefix-map=\S+", "", flags)
        toolchain, patch = "mingw-w64-win32-thread.cmake", "Log4cppThrows.cmake"
        files = {f"relink/log4cpp/{name}": (self.root / "cmake" / name).read_bytes() for name in (toolchain, patch)}
        files[f"relink/log4cpp/{archive.name}"] = archive.read_bytes()
        files["relink/log4cpp/build.sh"] = BUILD.format(
            library=LOG4CPP, archive=archive.name, toolchain=toolchain, patch=patch, flags=shlex.quote(flags)).encode()
        return files

    def folder(self, archive, programs):
        """All files of the folder, by path. programs: what log4cpp is linked into, the module first."""
        cases = [self.case(programs[0])]
        whole = set(self.names.values())
        cases += [self.case(program) for program in programs[1:]]
        compiler = next(line.split()[0] for line in cases[0].splitlines()[1:])
        script = RELINK.format(compiler=compiler, cases="\n".join(cases), programs=", ".join(programs[1:]))
        return {"relink/relink.sh": script.encode(), **self.objects(whole), **self.log4cpp(archive)}
