#!/usr/bin/env python3
"""Checks that each folder uses only what stands below it, that below Managers nothing uses Qt, and that code is in namespace gavrel.

The order of the folders is that in which CMakeLists.txt adds them; README.md and CONTRIBUTING.md have to tell the same.
Prints a line for each fault, and ends with 1 if there is one.
"""
import re
import sys
from pathlib import Path

root = Path(__file__).resolve().parent.parent
USE = re.compile(r'^\s*(?:#include "|import Gavrel\.)(\w+)|^\s*#include <(Q)\w')


def folders():
    """The folders with code of the programs, the lowest first."""
    added = re.findall(r"add_subdirectory\((\w+)\)", (root / "CMakeLists.txt").read_text())
    return [folder for folder in added if folder not in ("Tests", "Benchmarks", "Packaging")]


def faults_of_files(order):
    for folder in order:
        below = order[: order.index(folder) + 1]
        for file in sorted((root / folder).rglob("*")):
            if file.suffix not in (".h", ".cpp", ".qml"):
                continue
            text = file.read_text()
            if file.suffix != ".qml" and "namespace gavrel {" not in text and file.name != "main.cpp":
                yield f"{file.relative_to(root)}: stands in no namespace gavrel"
            for number, line in enumerate(text.splitlines(), 1):
                used = USE.match(line)
                if not used or used[1] in below or used[2] and "Managers" in below:
                    continue
                reason = "Qt below Managers" if used[2] else f"{used[1]} does not stand below {folder}"
                yield f"{file.relative_to(root)}:{number}: {line.strip()}: {reason}"


def faults_of_documents(order):
    readme = re.findall(r"^\| `(\w+)/`", (root / "README.md").read_text(), re.M)
    rule = re.search(r"- A file includes only.*?\n- ", (root / "CONTRIBUTING.md").read_text(), re.S)
    for document, told in ("README.md", readme), ("CONTRIBUTING.md", re.findall(r"over\s+`(\w+)`", rule[0] if rule else "")):
        told = [folder for folder in told if folder in order]
        if told != order[::-1]:
            yield f"{document}: the folders are {', '.join(told)}; in CMakeLists.txt {', '.join(order[::-1])}"


order = folders()
faults = [*faults_of_files(order), *faults_of_documents(order)]
print("\n".join(faults) or f"{len(order)} folders in order")
sys.exit(bool(faults))
