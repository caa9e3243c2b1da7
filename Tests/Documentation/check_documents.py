#!/usr/bin/env python3
"""Tries what the documents say: links, names of files and tests, JSON, and commands with the output shown for them.

usage: check_documents.py BUILD [DOCUMENT...]   BUILD: a build folder with programs and tests in it
"""
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
BUILD = Path(sys.argv[1]).resolve()
BIN = BUILD / "bin"
DISPLAY = f"{ROOT}/Packaging/with-display.sh 1200x800"
# Files that commands read, but neither the examples nor commands before them make.
INPUTS = {"frame.dxf": "0\nSECTION\n2\nENTITIES\n0\nLINE\n10\n0\n20\n0\n11\n4\n21\n0\n0\nENDSEC\n0\nEOF\n"}
faults = []


def documents():
    if sys.argv[2:]:
        return [Path(name).resolve() for name in sys.argv[2:]]
    folders = [ROOT, ROOT / "Documentation", ROOT / "Examples"]
    return sorted(file for folder in folders for file in folder.glob("*.md"))


def slug(heading):
    """The anchor of a heading, as the usual viewers make it."""
    return re.sub(r"[^\w\- ]", "", heading.strip().lower()).replace(" ", "-")


def parse(text):
    """The text outside of code, and blocks of code as (language, text)."""
    blocks = []

    def take(match):
        indent = match[1]
        lines = match[3].split("\n")
        blocks.append((match[2], "\n".join(line.removeprefix(indent) for line in lines)))
        return ""

    prose = re.sub(r"^( *)```(\w*)\n(.*?)^ *```$", take, text, flags=re.M | re.S)
    indented = re.findall(r"(?<=\n\n)(?:    .*\n)+", prose)
    blocks += [("sh", re.sub(r"^    ", "", block, flags=re.M)) for block in indented]
    return prose, blocks


def check_links(document, prose, fault):
    for target in re.findall(r"\]\(([^)\s]+)\)", prose):
        if "://" in target:
            continue
        name, _, anchor = target.partition("#")
        file = (document.parent / name).resolve() if name else document
        if not file.exists():
            fault(f"the link to {target} leads nowhere")
        elif anchor and anchor not in map(slug, re.findall(r"^#+ (.*)$", file.read_text(), re.M)):
            fault(f"there is no heading for the link to {target}")


def check_names(prose, words, tests, fault):
    for name in re.findall(r"`([^`\s]+)`", prose):
        folder = name.split("/")[0]
        if "/" in name and folder not in ("", "build") and (ROOT / folder).is_dir():
            if not any(ROOT.glob(name.rstrip("/"))) and not any(ROOT.glob(name + ".*")):
                fault(f"there is no {name}")
        if re.fullmatch(r"[A-Z]\w+\.[A-Z]\w+", name) and name not in tests:
            fault(f"there is no test {name}")
        if re.fullmatch(r"\w*[a-z][A-Z]\w*(?<!CamelCase)(::\w+)?", name) and not words.issuperset(name.split("::")):
            fault(f"the code has no {name}")


def run(command, folder):
    return subprocess.run(["bash", "-c", command], cwd=folder, capture_output=True, text=True, timeout=100,
                          env={**os.environ, "PATH": f"{BIN}:{os.environ['PATH']}"})


def check_options(prose, folder, fault):
    """A command that is described, with names for its files, has the options that stand there."""
    for line in re.findall(r"`(gavrel-cli [a-z][^`]*)`", prose):
        words = line.split()
        kind = "lattice " if words[1] == "generate" else ""
        known = run(f"gavrel-cli {words[1]} {kind}--help", folder)
        for option in re.findall(r"(?<![\w-])--?[a-z][\w-]*", line):
            if known.returncode != 0 or not re.search(rf"(?<![\w-]){option}(?![\w-])", known.stdout):
                fault(f"gavrel-cli {words[1]} knows no {option}")


def as_tried_here(command):
    """The command with the programs of this build; None if it is not for a test to try."""
    command = re.sub(r"^\./run (?=\w)", "gavrel-cli ", re.sub(r"\s+#.*", "", command).strip())
    command = re.sub(r"^(\w+=\S+ )*(Packaging/with-display.sh \S+ )?", "", command)
    program = command.split(" ")[0]
    if re.search(r"--(png|screenshot) ", command):
        return f"{DISPLAY} {command}" if (BIN / "gavrel").exists() else None
    if program == "gavrel-cli" or command.startswith("python3 Examples/"):
        return command
    if command.startswith("ctest --test-dir build/release"):
        return f"{command.replace('build/release', str(BUILD))} -N | tee /dev/stderr | grep -q 'Total Tests: [1-9]'"
    if program.startswith("build/") and "--gtest_filter" in command and (BIN / Path(program).name).exists():
        return f"{BIN / Path(program).name}{command.removeprefix(program)} --gtest_list_tests | grep -q ^."
    return None


def check_output(command, shown, got, fault):
    """Every line stands in the output in this order; times, and residuals that are rounding errors, may differ."""
    def alike(line):
        return re.sub(r"[\d.]+ s$", "TIME", re.sub(r"^\d\.\d+e-1\d$", "TINY", line.rstrip()))

    lines = [alike(line) for line in got.splitlines()]
    for line in shown:
        if line.strip() in ("", "..."):
            continue
        if alike(line) not in lines:
            return fault(f"{command} does not print “{line}”")
        lines = lines[lines.index(alike(line)) + 1:]


def check_commands(prose, blocks, folder, fault):
    tried = 0
    inline = [" ".join(line.split()) for line in re.findall(r"`(gavrel-cli [^`]*)`", prose) if re.search(r"\.\w", line)]
    blocks += [("sh", line) for line in inline]
    for language, text in blocks:
        if language == "json":
            json.loads(text)
        if language == "python":
            run_python = subprocess.run([sys.executable, "-c", text], cwd=folder, capture_output=True, text=True)
            if run_python.returncode != 0:
                fault(f"the Python lines fail: {run_python.stderr}")
            for name in re.findall(r'open\("(\w+\.json)", "w"\)', text):
                blocks.append(("sh", f"gavrel-cli solve {name} --strict"))
        if language not in ("sh", "console"):
            continue
        text = text.replace("\\\n", " ")
        parts = re.split(r"^\$ ", text, flags=re.M)[1:] if language == "console" else text.split("\n")
        for part in parts:
            line, *shown = part.split("\n")
            command = as_tried_here(line)
            if not command or re.search(r"\b(NAME|MODEL|FILES?|ARGUMENTS)\b", command):
                continue
            tried += 1
            print(line)
            done = run(command, folder)
            if done.returncode != 0:
                fault(f"{line} ends with {done.returncode}: {done.stdout[-500:]}{done.stderr[-500:]}")
            check_output(line, shown, done.stdout + done.stderr, fault)
    return tried


def main():
    folders = [folder for folder in ROOT.iterdir() if folder.is_dir() and folder not in (ROOT / "build", BUILD)]
    files = [file for folder in folders for file in folder.rglob("*") if file.suffix in (".h", ".cpp", ".qml")]
    files += [*ROOT.glob("*.h"), *ROOT.glob("*.cpp"), *ROOT.glob("*.qml")]
    sources = "\n".join(file.read_text() for file in files)
    words = set(re.findall(r"\w+", sources)) | {file.stem for file in files}
    tests = {f"{suite}.{name}" for suite, name in re.findall(r"^TEST(?:_[FP])?\((\w+),\s*(\w+)\)", sources, re.M)}
    tried = 0
    for document in documents():
        def fault(what, name=os.path.relpath(document, ROOT)):
            faults.append(f"{name}: {what}")

        prose, blocks = parse(document.read_text())
        with tempfile.TemporaryDirectory() as folder:
            shutil.copytree(ROOT / "Examples", Path(folder) / "Examples")
            for example in ROOT.glob("Examples/*.json"):
                shutil.copy(example, folder)
            for name, text in INPUTS.items():
                (Path(folder) / name).write_text(text)
            check_links(document, prose, fault)
            check_names(prose, words, tests, fault)
            check_options(prose, folder, fault)
            tried += check_commands(prose, blocks, folder, fault)
    print("\n".join(faults) or f"{tried} commands tried, no fault found")
    sys.exit(1 if faults or (tried == 0 and not sys.argv[2:]) else 0)


main()
