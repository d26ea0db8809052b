"""What the receiver of the module needs to link it with another build of log4cpp: everything that the module's own link
command names, and that command. log4cpp's source and the way in which it was built come with it."""
import pathlib
import re
import shlex
import subprocess

LOG4CPP = "liblog4cpp.a"

RELINK = """#!/bin/sh
# Links VelUI.dll with another build of log4cpp, by the command that made the one of this package.
#   relink.sh LIBLOG4CPP.A [FOLDER]     makes FOLDER/VelUI.dll and FOLDER/VelUI.dll.debug (FOLDER: here)
# Needed: the compiler {compiler} (Debian's g++-mingw-w64-x86-64-win32). log4cpp/build.sh makes the library.
set -eu
[ $# -ge 1 ] || {{ sed -n 's/^#   //p' "$0" >&2; exit 2; }}
log4cpp=$(realpath "$1")
mkdir -p "${{2:-.}}"
out=$(realpath "${{2:-.}}")
cd "$(dirname "$0")"
{link}
cd "$out"
{finish}
"""

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
rm -rf source install objects
mkdir source
tar xf "$here/{archive}" -C source --strip-components=1
# The change that this package's build makes to the source: calls may throw.
(cd source && cmake -P "$here/{patch}")
cmake -S source -B objects -G "Unix Makefiles" -Wno-dev -DCMAKE_TOOLCHAIN_FILE="$here/{toolchain}" -DCMAKE_BUILD_TYPE=None \\
    -DCMAKE_CXX_FLAGS={flags}" $*" -DCMAKE_INSTALL_PREFIX="$PWD/install"
cmake --build objects -j "$(nproc)"
cmake --install objects
"""


class Relink:
    """The package's folder relink/."""

    def __init__(self, root, build):
        self.root, self.build = root, build
        self.files = {}

    def take(self, word):
        """A file that the command names goes along, and the command names the copy."""
        path = self.build / word
        name = path.name
        data = path.read_bytes()
        if self.files.setdefault(f"relink/{name}", data) != data:
            raise SystemExit(f"package: the link of the module names two different files {name}")
        return name

    def link(self, command):
        """The link command for a folder that holds everything it names. Beside files it names the linker's map and the
        import library, which nobody needs here."""
        words = []
        for word in shlex.split(command):
            if word.startswith(("-Wl,-Map,", "-Wl,--out-implib,")):
                continue
            if word.endswith("/" + LOG4CPP):
                words.append('"$log4cpp"')
            elif word == "VelUI.dll":
                words.append('"$out/VelUI.dll"')
            elif not words:
                words.append(pathlib.Path(word).name)  # the compiler, wherever the receiver has it
            elif (self.build / word).is_file():
                words.append(self.take(word))
            else:
                words.append(shlex.quote(word))
        return " ".join(words)

    def finish(self, commands):
        """What the build does behind the link: the symbols go to a file of their own."""
        return "\n".join(command.replace(str(self.build) + "/", "") for command in commands)

    def log4cpp(self, archive):
        cache = next((self.build / "deps/log4cpp").glob("src/*-build/CMakeCache.txt")).read_text(encoding="utf-8")
        flags = re.search(r"^CMAKE_CXX_FLAGS:\w+=(.*)$", cache, re.M)[1]
        flags = re.sub(r" *-ffile-prefix-map=\S+", "", flags)
        toolchain, patch = "mingw-w64-win32-thread.cmake", "Log4cppThrows.cmake"
        for name in (toolchain, patch):
            self.files[f"relink/log4cpp/{name}"] = (self.root / "cmake" / name).read_bytes()
        self.files[f"relink/log4cpp/{archive.name}"] = archive.read_bytes()
        self.files["relink/log4cpp/build.sh"] = BUILD.format(
            library=LOG4CPP, archive=archive.name, toolchain=toolchain, patch=patch, flags=shlex.quote(flags)).encode()

    def folder(self, archive):
        """All files of the folder, by path."""
        commands = subprocess.run(["ninja", "-C", str(self.build), "-t", "commands", "VelUI.dll"], check=True,
                                  stdout=subprocess.PIPE, text=True).stdout.splitlines()[-1].split(" && ")
        link = self.link(commands[1])
        if '"$log4cpp"' not in link:
            raise SystemExit("package: the link of the module does not name log4cpp")
        compiler = link.split()[0]
        finish = self.finish([command for command in commands[2:] if not command.startswith("cd ")])
        self.files["relink/relink.sh"] = RELINK.format(compiler=compiler, link=link, finish=finish).encode()
        self.log4cpp(archive)
        return self.files
