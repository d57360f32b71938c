#!/usr/bin/env python3
"""Fails when an #include in Base/, ObrixBase/ or programs/ draws an arrow that the include
table of docs/architecture.md does not allow, or names a private header from outside the
library.

Usage: check_layering.py [repository root]   (default: the parent of this script's folder)
"""
import os
import re
import sys

TREES = ("Base", "ObrixBase", "programs")
SOURCE_SUFFIXES = (".h", ".hpp", ".c", ".cpp", ".inc")
INCLUDE = re.compile(r'^\s*#\s*include\s*"((?:ObrixBase|Base)/[^"]+)"', re.MULTILINE)
EVERY = "every part"


def read_table(path):
    """Returns {part: (paths, allowed parts or EVERY)} from the table whose header row is
    `| part | path | may include |`."""
    rows = {}
    in_table = False
    with open(path, encoding="utf-8") as f:
        for line in f:
            cells = [c.strip() for c in line.strip().strip("|").split("|")]
            if not line.lstrip().startswith("|"):
                if in_table:
                    break
                continue
            if cells[:3] == ["part", "path", "may include"]:
                in_table = True
                continue
            if not in_table or set(cells[0]) <= set("-: "):
                continue
            part, paths, allowed = cells[0], cells[1], cells[2]
            paths = re.findall(r"`([^`]+)`", paths)
            if allowed == EVERY:
                may = EVERY
            elif allowed.startswith("("):
                may = set()
            else:
                may = {a.strip() for a in allowed.split(",") if a.strip()}
            rows[part] = (paths, may)
    if not rows:
        sys.exit(f"{path}: no include table (a row '| part | path | may include |') found")
    for part, (_, may) in rows.items():
        if may != EVERY:
            unknown = may - rows.keys()
            if unknown:
                sys.exit(f"{path}: part {part} names unknown parts {sorted(unknown)}")
    return rows


def part_of(relpath, rows):
    """The part whose path is the longest prefix of `relpath` (or equals it), or None."""
    best, best_len = None, -1
    for part, (paths, _) in rows.items():
        for p in paths:
            if (relpath == p or (p.endswith("/") and relpath.startswith(p))) and len(p) > best_len:
                best, best_len = part, len(p)
    return best


def main():
    root = os.path.abspath(sys.argv[1] if len(sys.argv) > 1 else
                           os.path.join(os.path.dirname(__file__), ".."))
    rows = read_table(os.path.join(root, "docs", "architecture.md"))
    faults = []
    for tree in TREES:
        for folder, _, files in os.walk(os.path.join(root, tree)):
            for name in sorted(files):
                if not name.endswith(SOURCE_SUFFIXES):
                    continue
                path = os.path.join(folder, name)
                rel = os.path.relpath(path, root).replace(os.sep, "/")
                source = part_of(rel, rows)
                if source is None:
                    faults.append(f"{rel}: in no part of the include table")
                    continue
                with open(path, encoding="utf-8", errors="replace") as f:
                    text = f.read()
                for m in INCLUDE.finditer(text):
                    target = m.group(1)
                    line = text.count("\n", 0, m.start()) + 1
                    where = f"{rel}:{line}: {source} -> "
                    # A private header serves only the library it sits in: libBase's own
                    # files may use Base's, libObrixBase's files ObrixBase's.
                    if target.endswith("_internal.h") and (
                            target.split("/")[0] != rel.split("/")[0]):
                        owner = "libBase" if target.startswith("Base/") else "libObrixBase"
                        faults.append(where + f"{target} is private to {owner}")
                        continue
                    dest = part_of(target, rows)
                    if dest is None:
                        faults.append(where + f"{target} is in no part of the include table")
                        continue
                    may = rows[source][1]
                    if dest != source and may != EVERY and dest not in may:
                        faults.append(where + f"{dest} ({target}) is not an allowed arrow")
    for fault in faults:
        print(fault)
    if faults:
        print(f"{len(faults)} include(s) break the table in docs/architecture.md")
        return 1
    print("every include follows docs/architecture.md")
    return 0


if __name__ == "__main__":
    sys.exit(main())
