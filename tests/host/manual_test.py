#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares the manual pages, as they are displayed, with what --help prints, and checks their source for mistakes.

usage: manual_test.py DDPHOST
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

program = sys.argv[1]
faults = 0


def fault(text):
    global faults
    faults += 1
    print(text)


def output_of(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True, env={**os.environ, "LC_ALL": "C"}).stdout


def words_of(text):
    """The text without the places where its lines break."""
    return " ".join(text.split())


def displayed(page):
    """A page as a terminal shows it, too wide for any line to break."""
    if shutil.which("groff"):
        return output_of("groff", "-man", "-Tascii", "-P-cbou", "-rLL=2000n", "-rHY=0", str(page))
    return re.sub(".\b", "", output_of("mandoc", "-Tascii", "-Owidth=2000", str(page)))


def check_source(page):
    for checker in (["groff", "-man", "-ww", "-z"], ["mandoc", "-Tlint"], ["man", "--warnings", "-EUTF-8", "-l"]):
        if shutil.which(checker[0]) is None:
            print(f"not run: {checker[0]}")
            continue
        ended = subprocess.run([*checker, str(page)], capture_output=True, text=True, check=False)
        complaints = ended.stderr if checker[0] == "man" else ended.stdout + ended.stderr
        if ended.returncode != 0 or complaints:
            fault(f"{' '.join(checker)} {page.name}: {complaints}")


def check_page(page, arguments):
    """All that help says must stand in the page, with the same words."""
    shown = words_of(displayed(page))
    text = output_of(program, *arguments, "--help")
    # The descriptions begin at one column or on a line of their own; the lists after them are indented less.
    texts = re.findall(r"^ {2}(?:[-A-Z]\S* .*?)? {2,}(\S.*)$|^ {26,}(\S.*)$|^ {6}(\S.*)$", text, re.MULTILINE)
    wanted = [found for groups in texts for found in groups if found]
    for names, kind in re.findall(r"^  (-\S+)(?: ([A-Z=]+|\S+\|\S+)(?= |$))?", text, re.MULTILINE):
        wanted += names.split(",") + [f"{names.split(',')[-1]} {kind}".strip()]
    wanted += re.findall(r"^  (ddphost .*)$", text, re.MULTILINE)
    wanted += re.findall(r"[:,] (\d+ [a-z ]+)", words_of(text.partition("Exit codes")[2]))
    wanted += re.findall(r"\b[A-Z]+_[A-Z_]+\b|\blib\w+\.so\b", text)
    if len(wanted) < 20:
        fault(f"{page.name}: found only {wanted} in the help")
    for want in wanted:
        if words_of(want) not in shown:
            fault(f"{page.name} lacks '{want}'")


if not shutil.which("groff") and not shutil.which("mandoc"):
    print("skipped: there is neither groff nor mandoc to show a page")
    sys.exit(77)
with tempfile.TemporaryDirectory() as folder:
    subprocess.run([program, "manual", folder, "2026-01-02"], check=True)
    commands = output_of(program, "--help").partition("Subcommands:")[2].partition("\n\n")[0]
    names = re.findall(r"^  ([a-z]+) ", commands, re.MULTILINE)
    expected = {"ddphost.1": []} | {f"ddphost-{name}.1": [name] for name in names}
    written = {path.name for path in pathlib.Path(folder).iterdir()}
    if written != set(expected) or "info" not in names:
        fault(f"the pages are {sorted(written)}, the commands {names}")
    for name in sorted(written & set(expected)):
        check_page(pathlib.Path(folder, name), expected[name])
        check_source(pathlib.Path(folder, name))
sys.exit(1 if faults else 0)
