#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Exports cases with ddphost and reads the files with VTK.

usage: tools/check_exports.py [--ascii] [--kills N] DDPHOST CASE...

Each case is exported with all states. Every file must be readable, and the nodes, elements, counts and ranges in it
must be those that `ddphost info` and `ddphost stats` report. With --kills, an export of another selection replaces the
one before it N times and is killed at a random moment; whatever has a final name after that must be readable and
complete. Prints one line for each case and for each fault, and exits with 1 if there is a fault.

Needs Debian's package python3-vtk9.
"""
import argparse
import json
import pathlib
import random
import subprocess
import sys
import tempfile
import time

try:
    import vtk
    from vtk.util.numpy_support import vtk_to_numpy
    import numpy
except ImportError:
    sys.exit("check_exports: the package python3-vtk9 is needed")

SETTINGS = ["--set", "LOAD_FACE_ZONES=on"]
READERS = {".vtu": vtk.vtkXMLUnstructuredGridReader, ".vtp": vtk.vtkXMLPolyDataReader}


class Faults:
    """Prints faults as they are found and counts them."""

    def __init__(self):
        self.count = 0
        self.place = ""

    def add(self, text):
        self.count += 1
        print(f"{self.place}: {text}")

    def expect(self, actual, expected, what):
        if actual != expected:
            self.add(f"{what} is {actual}, expected {expected}")


def read(reader, path, faults):
    """The output of a VTK reader; anything it complains about is a fault."""
    errors = vtk.vtkStringOutputWindow()
    vtk.vtkOutputWindow.SetInstance(errors)
    reader.SetFileName(str(path))
    reader.Update()
    if errors.GetOutput() or reader.GetErrorCode():
        faults.add(f"{path}: {errors.GetOutput().strip() or reader.GetErrorCode()}")
    return reader.GetOutput()


def texts_of(grid, name):
    array = grid.GetFieldData().GetAbstractArray(name)
    return [array.GetValue(i) for i in range(array.GetNumberOfValues())] if array else []


def leaves_of(blocks):
    """The leaves of the blocks in order; a block gives a list, a leaf outside of blocks itself."""
    found = []
    for i in range(blocks.GetNumberOfBlocks()):
        block = blocks.GetBlock(i)
        is_block = isinstance(block, vtk.vtkMultiBlockDataSet)
        found.append([block.GetBlock(k) for k in range(block.GetNumberOfBlocks())] if is_block else block)
    return found


def groups_of(info):
    """The groups that `info` lists, in the form of leaves_of."""
    parts = [[part] + part.get("patches", []) + part.get("faceZones", []) for part in info["parts"]]
    return parts + info.get("surfaces", [])


def run(program, *arguments):
    result = subprocess.run([program, *arguments, "-q", "--json"], stdout=subprocess.PIPE, check=False)
    # 1 stands for findings, such as values that are not numbers; the comparison goes on with them.
    if result.returncode not in (0, 1):
        raise RuntimeError(f"{arguments[0]} ended with {result.returncode}")
    return json.loads(result.stdout)


def check_range(values, row, what, faults):
    """Compares one component of an array with a row of `stats`."""
    finite = values[numpy.isfinite(values)]
    faults.expect(len(values), row["items"], f"items of {what}")
    faults.expect(int(numpy.isnan(values).sum()), row["undefined"] + row["nan"], f"undefined values of {what}")
    if len(finite):
        faults.expect((float(finite.min()), float(finite.max())), (row["least"], row["greatest"]), f"range of {what}")


def check_grid(grid, group, rows, faults):
    """Compares a file with the group of `info` and the rows of `stats` that it holds."""
    faults.expect(grid.GetNumberOfPoints(), group["nodes"], f"nodes of {group['name']}")
    faults.expect(grid.GetNumberOfCells(), group["elements"], f"elements of {group['name']}")
    compared = 0
    for row in rows:
        what = f"{row['result']} of {group['name']}"
        array = grid.GetCellData().GetArray(row["result"]) or grid.GetPointData().GetArray(row["result"])
        if row["componentName"] == "magnitude":
            continue  # the files have no array of it
        if row["displacement"]:
            array = grid.GetPoints().GetData()
        if array is None:
            faults.add(f"{what} is missing")
            continue
        values = vtk_to_numpy(array)
        check_range(values if values.ndim == 1 else values[:, row["component"]], row, what, faults)
        compared += 1
        if not row["displacement"]:
            position = texts_of(grid, "ResultName").index(row["result"])
            faults.expect(texts_of(grid, "ResultUnit")[position], row["unit"], f"unit of {what}")
            faults.expect(array.GetInformation().Get(vtk.vtkDataArray.UNITS_LABEL()), row["unit"] or None,
                          f"unit key of {what}")
    return compared


def check_case(program, case, options, faults):
    """Exports a case with all states and compares every file. Returns a summary."""
    info = run(program, "info", str(case), "--counts", *SETTINGS)
    results = {result["id"]: result for result in info["results"]}
    rows = {}
    if info["states"]:
        for row in run(program, "stats", str(case), "--state", "all", *SETTINGS)["rows"]:
            row["unit"] = results[row["resultId"]]["unit"].strip()
            row["displacement"] = results[row["resultId"]]["kind"] == "displacement"
            rows.setdefault((row["stateId"], row["groupId"]), []).append(row)
    with tempfile.TemporaryDirectory() as folder:
        export = run(program, "export", str(case), "-o", folder, *options,
                     *(["--state", "all"] if info["states"] else []))
        for entry in export["files"]:
            faults.expect(pathlib.Path(entry["path"]).stat().st_size, entry["bytes"], f"size of {entry['path']}")
        indexes = [(state["id"], state["index"]) for state in export["states"]] or [(0, export["index"])]
        compared = 0
        for state_id, index in indexes:
            for leaves, groups in zip(leaves_of(read(vtk.vtkXMLMultiBlockDataReader(), index, faults)),
                                      groups_of(info), strict=True):
                is_block = isinstance(leaves, list)
                for grid, group in zip(leaves if is_block else [leaves], groups if is_block else [groups], strict=True):
                    compared += check_grid(grid, group, rows.get((state_id, group["id"]), []), faults)
    return f"{len(export['states'])} states, {len(export['files'])} files, {compared} ranges compared"


def check_remains(folder, faults):
    """Reads everything that has a final name, and each index with what it names."""
    count = 0
    for path in sorted(folder.rglob("*")):
        relative = path.relative_to(folder)
        if relative.parts[0].startswith(".ddphost") or path.is_dir():
            continue
        count += 1
        if path.suffix in READERS:
            read(READERS[path.suffix](), path, faults)
        elif path.suffix == ".vtm":
            for leaf in leaves_of(read(vtk.vtkXMLMultiBlockDataReader(), path, faults)):
                if leaf is None or (isinstance(leaf, list) and None in leaf):
                    faults.add(f"{path} names a file that is missing")
        elif path.suffix == ".series":
            for entry in json.loads(path.read_text())["files"]:
                if not (folder / entry["name"]).exists():
                    faults.add(f"{path} names {entry['name']}, which is missing")
        else:
            faults.add(f"{path} is not one of the export's")
    return count


def check_kills(program, case, kills, faults):
    """Kills exports that replace each other. Returns a summary."""
    selections = [["--state", "all"], [], ["--state", "last", "--ascii"]]
    ended = 0
    remained = 0
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name) / "out"
        command = [program, "export", str(case), "-q", "-o", str(folder), "--overwrite"]
        start = time.monotonic()
        subprocess.run(command + selections[0], check=True)
        duration = time.monotonic() - start
        for i in range(kills):
            process = subprocess.Popen(command + selections[(i + 1) % len(selections)])
            try:
                process.wait(random.uniform(0, 1.1 * duration))
                ended += 1
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
            present = check_remains(folder, faults)
            if present == 0:
                faults.add("neither the old export nor the new one is left")
            remained += present
        subprocess.run(command + selections[0], check=True)
        check_remains(folder, faults)
        listed = (folder / ".ddphost-files").read_text().splitlines()[1:]
        there = [str(path.relative_to(folder)) for path in folder.rglob("*") if path.is_file()]
        faults.expect(sorted(there), sorted(listed + [".ddphost-files"]), "the list of files")
    return f"{kills - ended} exports killed, {ended} ended before; read {remained} files after them"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--ascii", action="store_true")
    parser.add_argument("--kills", type=int, default=0, metavar="N")
    parser.add_argument("program", metavar="DDPHOST")
    parser.add_argument("cases", metavar="CASE", nargs="+", type=pathlib.Path)
    arguments = parser.parse_args()
    faults = Faults()
    for case in arguments.cases:
        faults.place = str(case)
        try:
            if arguments.kills:
                summary = check_kills(arguments.program, case, arguments.kills, faults)
            else:
                summary = check_case(arguments.program, case, ["--ascii"] if arguments.ascii else [], faults)
            print(f"{case}: {summary}")
        except (RuntimeError, ValueError) as error:
            faults.add(str(error))
    print(f"{faults.count} faults")
    return 1 if faults.count else 0


if __name__ == "__main__":
    sys.exit(main())
