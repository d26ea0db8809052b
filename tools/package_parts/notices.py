"""Whose work goes with the programs, and its notices.

What is linked in is read from the linker's maps, and whose headers were compiled in from the compiler's lists of them.
Each file found belongs to a Debian package, which carries its notice, or to a library that was built from its archive. A
file of which neither is true ends the work: nothing is left out because nobody knew it."""
import collections
import pathlib
import re
import subprocess
import tarfile

COMMON = pathlib.Path("/usr/share/common-licenses")
DOC = pathlib.Path("/usr/share/doc")

# Libraries that are built from their archives: where their files lie in the build folder, their archive, and the files in
# it that are their notices.
Archive = collections.namedtuple("Archive", "name version folder file notices")
ARCHIVES = (
    Archive("log4cpp", "1.1.4", "deps/log4cpp/", ".deps/log4cpp_1.1.4.orig.tar.gz",
            {"COPYING": "log4cpp/COPYING", "AUTHORS": "log4cpp/AUTHORS"}),
    Archive("Catch2", "3.7.1", "deps/catch2/", ".deps/catch2_3.7.1.orig.tar.gz", {"LICENSE.txt": "LICENSE.txt"}),
)
# Where those libraries' own code lies in the build: the library made of it has another place.
BUILT = {"libvelui_catch2.a": "deps/catch2/", "CMakeFiles/velui_catch2.dir/": "deps/catch2/"}


def archive(name):
    """A library's row; None for one that was not built from an archive."""
    return next((row for row in ARCHIVES if row.name == name), None)


def run(*command, **options):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True, **options).stdout


def linked(map_file):
    """The objects and libraries of which the linker took something."""
    text = map_file.read_text(encoding="utf-8", errors="replace")
    members = text[text.index("Archive member included"):]
    members = members[:members.index("\n\n", members.index("\n\n") + 2)]
    files = {match[1] for match in re.finditer(r"^(\S.*)\([^()]*\)$", members, re.M)}
    files |= {match[1] for match in re.finditer(r"^LOAD (.*)$", text, re.M) if not match[1].endswith((".a", ".def"))}
    return files


def compiled(build, program):
    """The headers that went into a program's objects, precompiled ones included."""
    inputs = [name for name in run("ninja", "-C", str(build), "-t", "inputs", program).splitlines()
              if name.endswith((".obj", ".gch"))]
    headers = run("ninja", "-C", str(build), "-t", "deps", *inputs)
    return {line.strip() for line in headers.splitlines() if line.startswith("    ")}


def owners(paths):
    """The Debian packages of files, by file."""
    text = subprocess.run(["dpkg-query", "-S", *paths], stdout=subprocess.PIPE, text=True, check=False).stdout
    found = {}
    for line in text.splitlines():
        packages, _, path = line.partition(": ")
        found[path] = packages.split(",")[0].split(":")[0]
    return found


def unknown(path):
    raise SystemExit(f"package: nobody's notice is known for {path}")


class Notices:
    """The components of the programs, and the package's folder licenses/."""

    def __init__(self, root, build):
        self.root, self.build = root, build
        self.users = collections.defaultdict(set)  # by component: the programs that it is in
        self.linked = set()                        # components of which code was linked

    def component(self, name):
        """The library or the file of the system that a name of the linker's or the compiler's means; None for our own."""
        path = pathlib.Path(name)
        path = path if path.is_absolute() else self.build / path
        inside = str(path.relative_to(self.build)) if path.is_relative_to(self.build) else ""
        for start, folder in BUILT.items():
            inside = folder if inside.startswith(start) else inside
        for row in ARCHIVES:
            if inside.startswith(row.folder):
                return row.name
        path = path.resolve()
        if path.is_relative_to(self.build / "deps"):
            unknown(path)
        return None if path.is_relative_to(self.root) else path

    def find(self, programs):
        """Finds the components of programs of the build."""
        code, all_of = {}, {}
        for program in programs:
            map_file = self.build / "maps" / (pathlib.Path(program).stem + ".map")
            code[program] = {self.component(name) for name in linked(map_file)} - {None}
            all_of[program] = code[program] | {self.component(name) for name in compiled(self.build, program)} - {None}
        system = {path for parts in all_of.values() for path in parts if isinstance(path, pathlib.Path)}
        packages = owners(sorted(str(path) for path in system))
        for path in system:
            if str(path) not in packages:
                unknown(path)
        # Packages of one source share one notice.
        shared = {package: (DOC / package / "copyright").resolve().parent.name for package in set(packages.values())}
        name_of = {path: shared[packages[str(path)]] for path in system}
        for program in programs:
            self.linked |= {name_of.get(part, part) for part in code[program]}
            for part in all_of[program]:
                self.users[name_of.get(part, part)].add(program)

    def version(self, name):
        row = archive(name)
        return row.version if row else run("dpkg-query", "-W", "-f=${Version}", name)

    def files(self):
        """The folder licenses/: each component's notices, the licences that they refer to, and which is whose."""
        files, common = {}, set()
        for name in self.users:
            row = archive(name)
            if row:
                files.update(self.from_archive(row))
                continue
            data = (DOC / name / "copyright").read_bytes()
            files[f"licenses/{name}/copyright"] = data
            common |= set(re.findall(r"common-licenses/([\w.-]*\w)", data.decode("utf-8", "replace")))
        for name in sorted(common):
            text = COMMON / name
            if text.exists():
                files[f"licenses/common/{name}"] = text.read_bytes()
        files["licenses/README.txt"] = self.overview().encode("utf-8")
        return files

    def from_archive(self, row):
        with tarfile.open(self.root / row.file) as tar:
            for member in tar:
                for title, path in row.notices.items():
                    if member.isfile() and member.name.endswith("/" + path):
                        yield f"licenses/{row.name}/{title}", tar.extractfile(member).read()

    def overview(self):
        lines = ["Whose work goes with the programs of this package, found from the linker's maps and the compiler's",
                 "lists of headers. The notices lie in a folder for each; licences that they refer to lie in common/.", ""]
        for name in sorted(self.users, key=str.lower):
            how = "linked in" if name in self.linked else "headers"
            lines += [f"{name} {self.version(name)} ({how})", "    in " + ", ".join(sorted(self.users[name])), ""]
        lines += ["log4cpp is under the GNU Lesser General Public License 2.1 (log4cpp/COPYING). ../relink/ has its source,",
                  "the change that this build makes to it, and what is needed to link each program that has it with another",
                  "build of it.", ""]
        return "\n".join(lines)
