#!/usr/bin/env python3
"""Checks that each folder uses only what stands below it and what its targets link, that code is in namespace gavrel,
and that no two files of tests have one name.

Below Managers nothing uses Qt, and nothing but Managers uses Qt Network, which Qt's own QML library links.
The order of the folders is that in which CMakeLists.txt adds them; README.md and CONTRIBUTING.md have to tell the same.
Prints a line for each fault, and ends with 1 if there is one.
"""
import re
import sys
from pathlib import Path

root = Path(__file__).resolve().parent.parent
USE = re.compile(r'^\s*(?:#include "|import Gavrel\.)(\w+)|^\s*#include <(Q\w+)')
NETWORK = re.compile(r"Q(Network|Ssl|Tcp|Udp|Host|Dns|AbstractSocket|Local(Server|Socket))")


def folders():
    """The folders with code of the programs, the lowest first."""
    added = re.findall(r"add_subdirectory\((\w+)\)", (root / "CMakeLists.txt").read_text())
    return [folder for folder in added if folder not in ("Tests", "Benchmarks", "Packaging")]


def links(order):
    """For each folder, those that its targets link, directly or through what those pass on; "" is the application's."""
    folder_of, linked, passed_on = {}, {}, {}
    for folder in [*order, ""]:
        text = re.sub("#.*", "", (root / folder / "CMakeLists.txt").read_text())
        for target in re.findall(r"(?:add_library|add_executable|qt_add_qml_module)\(\s*([\w-]+)", text):
            folder_of[target], linked[target], passed_on[target] = folder, [], []
        for target, libraries in re.findall(r"target_link_libraries\(\s*([\w-]+)([^)]*)", text):
            for library in libraries.split():
                if library in ("PUBLIC", "INTERFACE", "PRIVATE"):
                    scope = library
                elif library in folder_of:
                    linked[target].append(library)
                    if scope != "PRIVATE":
                        passed_on[target].append(library)

    def reached(target):
        return {folder_of[target]}.union(*map(reached, passed_on[target]))

    result = {folder: {folder} for folder in folder_of.values()}
    for target, folder in folder_of.items():
        result[folder] = result[folder].union(*map(reached, linked[target]))
    return result


def faults_of_files(order):
    linked = links(order)
    linked[""] |= {file.stem for file in root.glob("*.h")}
    for folder in [*order, ""]:
        below = order[: order.index(folder) + 1] if folder else order
        for file in sorted((root / folder).rglob("*") if folder else root.glob("*")):
            if file.suffix not in (".h", ".cpp", ".qml"):
                continue
            text = file.read_text()
            if file.suffix != ".qml" and "namespace gavrel {" not in text and file.name != "main.cpp":
                yield f"{file.relative_to(root)}: stands in no namespace gavrel"
            for number, line in enumerate(text.splitlines(), 1):
                used = USE.match(line)
                if not used:
                    continue
                reason = None
                if used[2] and "Managers" not in below:
                    reason = "Qt below Managers"
                elif used[2] and NETWORK.match(used[2]) and folder != "Managers":
                    reason = "Qt Network outside Managers"
                elif used[1] in order and used[1] not in below:
                    reason = f"{used[1]} does not stand below {folder}"
                elif used[1] and used[1] not in linked[folder]:
                    reason = f"{folder or 'the application'} does not link {used[1]}"
                if reason:
                    yield f"{file.relative_to(root)}:{number}: {line.strip()}: {reason}"


def faults_of_documents(order):
    readme = re.findall(r"^\| `(\w+)/`", (root / "README.md").read_text(), re.M)
    rule = re.search(r"- A file includes only.*?\n- ", (root / "CONTRIBUTING.md").read_text(), re.S)
    for document, told in ("README.md", readme), ("CONTRIBUTING.md", re.findall(r"over\s+`(\w+)`", rule[0] if rule else "")):
        told = [folder for folder in told if folder in order]
        if told != order[::-1]:
            yield f"{document}: the folders are {', '.join(told)}; in CMakeLists.txt {', '.join(order[::-1])}"


def faults_of_tests():
    """Files of tests are told apart by their names alone, in lists of failures as in an editor."""
    seen = {}
    for file in sorted(file for file in (root / "Tests").rglob("*") if file.suffix in (".h", ".cpp", ".qml", ".py")):
        if file.name in seen:
            yield f"{file.relative_to(root)}: {seen[file.name]} has that name already"
        seen[file.name] = file.relative_to(root)


order = folders()
faults = [*faults_of_files(order), *faults_of_documents(order), *faults_of_tests()]
print("\n".join(faults) or f"{len(order)} folders in order")
sys.exit(bool(faults))
