#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs every command of ddphost with --json and checks what it writes against docs/schema.

usage: json_documents.py DDPHOST PLUGIN FAULTY_PLUGIN SOURCE_DIR
"""
import copy
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

try:
    import jsonschema
except ImportError:
    print("skipped: this python3 has no jsonschema; Debian's package is python3-jsonschema")
    sys.exit(77)

program, plugin, faulty_plugin, source = sys.argv[1:]
faults = 0


def fault(text):
    global faults
    faults += 1
    print(text)


def load_schemas():
    schemas = {}
    for path in sorted(pathlib.Path(source, "docs/schema").glob("*.json")):
        schema = json.loads(path.read_text())
        jsonschema.Draft202012Validator.check_schema(schema)
        schemas[path.stem] = jsonschema.Draft202012Validator(schema)
    return schemas


def check_commands():
    """A command without a schema would go unnoticed below."""
    shown = subprocess.run([program, "--help"], capture_output=True, text=True, check=True).stdout
    names = re.findall(r"^  ([a-z]+) ", shown.partition("Subcommands:")[2].partition("\n\n")[0], re.MULTILINE)
    if "info" not in names:
        fault(f"the help lists no commands:\n{shown}")
    for name in names:
        if name not in SCHEMAS:
            fault(f"docs/schema has no {name}.json")


def refuse_constant(text):
    raise ValueError(f"{text} is not JSON")


def objects_in(value, path=()):
    """Yields the paths of all objects of a document."""
    if isinstance(value, dict):
        yield path
    for key, item in value.items() if isinstance(value, dict) else enumerate(value):
        if isinstance(item, (dict, list)):
            yield from objects_in(item, path + (key,))


def with_surplus(document):
    """Yields copies of the document with one more key in an object, for one object of each kind."""
    kinds = {tuple(key for key in path if isinstance(key, str)): path for path in objects_in(document)}
    # What a library says about itself is up to the library.
    kinds.pop(("plugin",), None)
    kinds.pop(("library", "about"), None)
    for path in kinds.values():
        changed = copy.deepcopy(document)
        place = changed
        for key in path:
            place = place[key]
        place["surplus"] = None
        yield path, changed


def check_document(command, text, validator):
    try:
        document = json.loads(text, parse_constant=refuse_constant)
    except ValueError as error:
        fault(f"{command}: {error} in\n{text}")
        return
    # One is enough: the same mistake is usually in every row.
    error = next(validator.iter_errors(document), None)
    if error is not None:
        fault(f"{command}: {error.json_path}: {error.message}")
    for path, changed in with_surplus(document):
        if validator.is_valid(changed):
            fault(f"{command}: the schema allows any key at {path}")


def run(schema, arguments, code=0, lines=None, library=plugin, under=(), **environment):
    """Runs the program once, under another one if given. It writes one document of the schema, or this number of lines
    of one each."""
    command = " ".join(arguments)
    ended = subprocess.run([*under, program, *arguments, "--json"], capture_output=True, text=True, check=False,
                           env={**os.environ, "DDP_PLUGIN": library, **environment})
    if ended.returncode != code:
        fault(f"{command}: ended with {ended.returncode} instead of {code}: {ended.stderr}")
    texts = [ended.stdout] if lines is None else ended.stdout.splitlines()
    if lines is not None and len(texts) != lines:
        fault(f"{command}: wrote {len(texts)} lines instead of {lines}")
    for text in texts:
        check_document(command, text, SCHEMAS[schema])


def write_not_a_number(case):
    """Leaves a field of the last state without any ordinary value."""
    path = pathlib.Path(case, "0.5/p")
    head, _, tail = path.read_text().partition("internalField")
    path.write_text(f"{head}internalField uniform nan;{tail[tail.index(';') + 1:]}")


def try_commands(folder):
    cavity = f"{source}/examples/cavity"
    kinds = ("hex", "poly", "mixed", "zones", "regions", "decomposed", "moving", "surface")
    for kind in kinds:
        case = f"{folder}/{kind}"
        run("sample", ["sample", case, "--kind", kind, "--cells", "60"])
        run("info", ["info", case, "--counts", "--set", "LOAD_FACE_ZONES=on"])
        run("stats", ["stats", case, "--state", "all"])
        run("export", ["export", case, "-o", f"{folder}/vtk/{kind}", "--state", "all"])
        run("view", ["view", case, "-o", f"{folder}/{kind}.html", "--state", "latest"])
    run("info", ["info", cavity])
    run("export", ["export", cavity, "-o", f"{folder}/vtk/geometry"])
    run("doctor", ["doctor"])
    run("doctor", ["doctor", cavity], code=1)
    run("bench", ["bench", cavity, f"{folder}/hex", "--repeat", "2"])
    run("check", ["check", cavity, "--include", "load.symbols|^geometry"])
    run("check", ["check", "--list"])
    run("watch", ["watch", cavity, "--interval", "0", "--count", "1"], lines=3, library=faulty_plugin,
        FAULT="needless notice")
    write_not_a_number(f"{folder}/hex")
    run("stats", ["stats", f"{folder}/hex"], code=1)
    pathlib.Path(folder, "poly/constant/polyMesh/points").write_text("(")
    run("info", ["info", f"{folder}/poly", "--counts"], code=1)
    run("doctor", ["doctor", f"{folder}/poly"], code=1)
    run("doctor", ["doctor", f"{folder}/decomposed"], code=1)
    run("check", ["check", cavity, "--include", "geometry.order"], code=5, library=faulty_plugin, FAULT="crash")


def try_failures(folder):
    """One failure for each exit code and, where that differs, for each place that writes the document."""
    cavity = f"{source}/examples/cavity"
    run("error", ["stats", f"{folder}/absent"], code=3)
    run("error", ["stats", cavity, "--state", "all", "--no-such-option"], code=2)
    run("error", ["no-such-command"], code=2)
    run("error", ["check", cavity, "--include", "no such check"], code=2)
    run("error", ["info", cavity], code=4, library=f"{folder}/absent.so")
    run("error", ["doctor"], code=4, library=f"{folder}/absent.so")
    run("error", ["info", cavity, "--counts"], code=5, library=faulty_plugin, FAULT="crash")
    run("error", ["bench", cavity], code=5, library=faulty_plugin, FAULT="throws")
    run("error", ["export", cavity, "-o", "/dev/null/x"], code=6)
    run("error", ["sample", "/dev/null/x"], code=6)
    run("error", ["watch", cavity], code=130, under=["timeout", "--preserve-status", "-s", "INT", "1"])


with tempfile.TemporaryDirectory() as work:
    SCHEMAS = load_schemas()
    check_commands()
    try_commands(work)
    try_failures(work)
sys.exit(1 if faults else 0)
