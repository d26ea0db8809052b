#!/usr/bin/python3
"""Tells what a Wine prefix holds, a line for each registry value and each file, so that two moments can be compared:
inventory.py PREFIX. The prefix must be at rest: Wine writes the registry down when its server ends."""
import pathlib
import re
import sys


def registry(file):
    """Each value with its key; an empty key alone. Times of keys are left out."""
    key, lines = "", []
    text = file.read_text(encoding="utf-8", errors="surrogateescape").replace("\\\n", "")
    for line in text.split("\n"):
        if line.startswith("["):
            key = re.sub(r"\] \d+$", "]", line)
            lines.append(f"{file.name} {key}")
        elif line and not line.startswith(("#", ";", "WINE REGISTRY")):
            lines.append(f"{file.name} {key} {line}")
    return lines


def main():
    prefix = pathlib.Path(sys.argv[1])
    lines = [line for file in sorted(prefix.glob("*.reg")) for line in registry(file)]
    for path in sorted((prefix / "drive_c").rglob("*")):
        size = f" {path.stat().st_size}" if path.is_file() else ""
        lines.append(f"file {path.relative_to(prefix)}{size}")
    sys.stdout.write("\n".join(lines).encode("utf-8", "replace").decode() + "\n")


if __name__ == "__main__":
    main()
