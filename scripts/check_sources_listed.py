#!/usr/bin/env python3
"""Fails when a C or C++ source file in the tree is named in no CMakeLists.txt: every source
is listed explicitly, so a file that no list names is either dead or silently unbuilt.

A CMakeLists.txt names a file by a path relative to its own folder, or through
${PROJECT_SOURCE_DIR}, ${CMAKE_SOURCE_DIR} or ${CMAKE_CURRENT_SOURCE_DIR}.

Usage: check_sources_listed.py [repository root]   (default: the parent of this script's folder)
"""
import os
import re
import sys

TREES = ("Base", "ObrixBase", "programs", "tests", "examples", "bench", "fuzz")
SOURCE_SUFFIXES = (".c", ".cpp")
TOKEN = re.compile(r'[^\s()"]+')


def named_files(root):
    named = set()
    for folder, dirs, files in os.walk(root):
        dirs[:] = [d for d in dirs if not d.startswith(".") and d != "build"]
        if "CMakeLists.txt" not in files:
            continue
        with open(os.path.join(folder, "CMakeLists.txt"), encoding="utf-8") as f:
            text = re.sub(r"#.*", "", f.read())
        for token in TOKEN.findall(text):
            if not token.endswith(SOURCE_SUFFIXES):
                continue
            for var, base in (("${PROJECT_SOURCE_DIR}/", root), ("${CMAKE_SOURCE_DIR}/", root),
                              ("${CMAKE_CURRENT_SOURCE_DIR}/", folder)):
                if token.startswith(var):
                    token = os.path.join(base, token[len(var):])
                    break
            if "$" in token:
                continue
            named.add(os.path.normpath(os.path.join(folder, token)))
    return named


def main():
    root = os.path.abspath(sys.argv[1] if len(sys.argv) > 1 else
                           os.path.join(os.path.dirname(__file__), ".."))
    named = named_files(root)
    missing = []
    for tree in TREES:
        for folder, _, files in os.walk(os.path.join(root, tree)):
            for name in files:
                path = os.path.normpath(os.path.join(folder, name))
                if name.endswith(SOURCE_SUFFIXES) and path not in named:
                    missing.append(os.path.relpath(path, root).replace(os.sep, "/"))
    for path in sorted(missing):
        print(f"{path}: named in no CMakeLists.txt")
    if missing:
        return 1
    print("every source is listed")
    return 0


if __name__ == "__main__":
    sys.exit(main())
