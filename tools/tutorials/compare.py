#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares what "ddphost stats" says of cases with what foamToVTK wrote of them.

usage: compare.py --ddphost PATH [--flags "..."] FOLDER < CASES

CASES has one line per case, whose first word is the path below FOLDER/cases. Prints a row per case and totals, and
writes FOLDER/differences.txt and FOLDER/causes.txt, which counts them by form of file and patch. The exit code is 1 if
an array is wrong.
"""

import argparse
import collections
import glob
import gzip
import json
import math
import os
import re
import shlex
import subprocess
import sys
import tempfile

import numpy
from vtkmodules.util.numpy_support import vtk_to_numpy
from vtkmodules.vtkCommonCore import vtkObject
from vtkmodules.vtkIOXML import vtkXMLPolyDataReader, vtkXMLUnstructuredGridReader

# foamToVTK writes floats, whose rounding is 6e-8 of the value; a mean of values of both signs loses a little more.
TOLERANCE = 1e-5
# Smaller values have no float, or one with few digits.
TINY = 1e-36

# VTK orders a symmetric tensor XX YY ZZ XY YZ XZ, OpenFOAM XX XY XZ YY YZ ZZ.
FOAM_ORDER = [0, 3, 5, 1, 4, 2]

# Stands for the folder of a mesh where a surface is meant.
SURFACES = "surfaces"

OUTCOMES = ["right", "wrong", "undefined", "not listed", "only ours"]
PLACES = ["interior", "patch", "point", "surface"]


class Array:
    """Count and per component least, greatest and mean of one array."""

    def __init__(self, count, least, greatest, mean, undefined=0):
        self.count, self.least, self.greatest, self.mean = count, least, greatest, mean
        self.undefined = undefined

    def text(self):
        def row(numbers):
            return " ".join(f"{x:.7g}" for x in numbers)

        return f"n {self.count} min {row(self.least)} max {row(self.greatest)} mean {row(self.mean)}"


def array_of(values):
    if values.ndim == 1:
        values = values[:, None]
    values = values.astype(float)
    if values.shape[1] == 6:
        values = values[:, FOAM_ORDER]
    elif values.shape[1] == 9:
        # Hosts get six numbers of a tensor: those of its symmetric part.
        transposed = values.reshape(-1, 3, 3).swapaxes(1, 2).reshape(-1, 9)
        values = ((values + transposed) / 2)[:, [0, 1, 2, 4, 5, 8]]
    if len(values) == 0:
        return None
    return Array(len(values), values.min(0), values.max(0), values.mean(0))


# --- what foamToVTK wrote


def quoted_name(match):
    return match.group().replace(b"<", b"&lt;").replace(b">", b"&gt;")


def read_arrays(file):
    """The arrays of a .vtu or .vtp: (name, is a point field) -> Array."""
    reader = vtkXMLUnstructuredGridReader() if file.endswith(".vtu") else vtkXMLPolyDataReader()
    with tempfile.NamedTemporaryFile(suffix=os.path.splitext(file)[1]) as copy:
        # foamToVTK does not quote names such as "EDC<psiReactionThermo>:kappa".
        with open(file, "rb") as stream:
            copy.write(re.sub(rb"Name='[^'\n]*[<>][^'\n]*'", quoted_name, stream.read()))
        copy.flush()
        reader.SetFileName(copy.name)
        reader.Update()
    data = reader.GetOutput()
    arrays = {}
    for is_point, attributes in ((False, data.GetCellData()), (True, data.GetPointData())):
        for i in range(attributes.GetNumberOfArrays()):
            array = array_of(vtk_to_numpy(attributes.GetArray(i)))
            name = attributes.GetArrayName(i)
            if array is not None and name not in ("cellID", "procID", "patchID", "pointID"):
                arrays[(name, is_point)] = array
    return arrays


def reference(case, base, region):
    """time text -> group -> (name, is a point field) -> Array, where the group of the interior is None."""
    times = collections.defaultdict(lambda: collections.defaultdict(dict))
    pattern = os.path.join(glob.escape(os.path.join(case, base, "VTK-" + region)), "**", "*.vtm.series")
    # Folders that were converted with more libraries come last and replace what the others have.
    for series in sorted(glob.glob(pattern, recursive=True), key=lambda path: ("/wall-functions/" in path, path)):
        with open(series) as file:
            entries = json.load(file)["files"]
        for entry in entries:
            stem = os.path.join(os.path.dirname(series), entry["name"][: -len(".vtm")])
            groups = times[entry["time"]]
            for internal in glob.glob(glob.escape(stem) + "/internal.vtu"):
                groups[None].update(read_arrays(internal))
            for patch in glob.glob(glob.escape(stem) + "/boundary/*.vtp"):
                groups[os.path.basename(patch)[: -len(".vtp")]].update(read_arrays(patch))
    return times


# --- what the library delivers


class Ours:
    """The answers of ddphost for one case."""

    def __init__(self, ddphost, flags, case):
        self.problem = ""
        info = self.run([ddphost, "--json", "-q"], ["info"], flags, case)
        stats = self.run([ddphost, "--json", "-q"], ["stats", "--state", "all"], flags, case) if info else None
        self.parts = info["parts"] if info else []
        self.surfaces = {s["name"]: s["id"] for s in info["surfaces"]} if info else {}
        self.results = {r["id"]: r for r in info["results"]} if info else {}
        self.times = [s["value"] for s in info["states"]] if info else []
        self.first_states = {}
        for state in info["states"] if info else []:
            self.first_states.setdefault(state["value"], state["id"])
        if len(self.first_states) < len(self.times):
            self.problem = "several states of the same time: only the first is compared"
        self.arrays = self.collect(stats["rows"]) if stats else {}

    def run(self, front, command, flags, case):
        result = subprocess.run(front + command + shlex.split(flags) + [case], capture_output=True, timeout=600)
        try:
            document = json.loads(result.stdout)
        except ValueError:
            document = {"error": None}
        if "error" not in document:
            return document
        errors = result.stderr.decode(errors="replace")
        self.problem = f"{command[0]}: exit code {result.returncode}: {errors[-300:]}"
        return None

    def collect(self, rows):
        """(time, group id) -> (name, is a point field) -> Array."""
        found = collections.defaultdict(lambda: collections.defaultdict(list))
        for row in rows:
            result = self.results[row["resultId"]]
            is_own = result["averageOf"] is None and row["componentName"] != "magnitude"
            if is_own and row["stateId"] == self.first_states[row["time"]]:
                found[row["time"], row["groupId"]][row["field"], result["mapping"] == "node"].append(row)
        return {
            place: {key: self.array(components) for key, components in arrays.items()}
            for place, arrays in found.items()
        }

    @staticmethod
    def array(rows):
        rows = sorted(rows, key=lambda row: row["component"])

        def numbers(key):
            return numpy.array([math.nan if row[key] is None else row[key] for row in rows])

        undefined = max(row["undefined"] for row in rows)
        return Array(rows[0]["items"], numbers("least"), numbers("greatest"), numbers("mean"), undefined)


# --- the comparison


def same(ours, theirs):
    if ours.count != theirs.count or len(ours.mean) != len(theirs.mean):
        return False
    with numpy.errstate(all="ignore"):
        magnitude = numpy.max(numpy.maximum(numpy.abs(theirs.least), numpy.abs(theirs.greatest)))
        for a, b in ((ours.least, theirs.least), (ours.greatest, theirs.greatest), (ours.mean, theirs.mean)):
            close = numpy.abs(a - b) <= TOLERANCE * magnitude + TINY
            # foamToVTK cuts what is beyond the range of floats.
            beyond = magnitude > 3.4e38
            if not numpy.all(close | beyond | (numpy.isnan(a) & numpy.isnan(b))):
                return False
    return True


def outcome(ours, theirs):
    if ours is None:
        return "not listed"
    if ours.undefined == ours.count and ours.count == theirs.count:
        return "undefined"
    if ours.undefined == 0 and same(ours, theirs):
        return "right"
    return "wrong"


def patch_entries(text):
    """patch name or pattern -> type and form of its value; good enough to sort differences by."""
    found = {}
    at = text.find("boundaryField")
    if at < 0:
        return found
    depth = 0
    name = last = ""
    text = re.sub(r"//[^\n]*|/\*.*?\*/", "", text[at + len("boundaryField"):], flags=re.S)
    for token in re.findall(r'"[^"]*"|[{};]|[^\s{};"]+', text):
        if token == "{":
            depth += 1
            if depth == 2:
                name = last
                found[name] = {"type": "no type", "value": "no value"}
        elif token == "}":
            depth -= 1
            if depth <= 0:
                break
        elif depth == 2 and last in ("type", "value"):
            found[name][last] = "value by macro" if last == "value" and token[0] == "$" else token
        elif depth == 2 and token[0] in "$#":
            found[name]["value"] = "macro or include"
        last = token
    return found


def entry_text(entries, patch):
    """What the file says of a patch, and how: by name, by pattern or not at all."""
    if patch in entries:
        return f"{entries[patch]['type']}, {entries[patch]['value']}"
    for pattern, entry in reversed(entries.items()):
        try:
            if pattern.startswith('"') and re.fullmatch(pattern.strip('"'), patch):
                return f"{entry['type']}, {entry['value']}, by pattern"
        except re.error:
            pass
    return "no entry of its name"


class Case:
    def __init__(self, folder, path, ddphost, flags):
        self.path = path
        self.folder = os.path.join(folder, "cases", path)
        self.counts = collections.Counter()
        self.differences = []
        self.files = {}
        self.causes = collections.defaultdict(list)
        self.ours = Ours(ddphost, flags, self.folder)
        with open(os.path.join(self.folder, "meshes")) as file:
            self.meshes = [line.split() for line in file]
        # A decomposed case has its results in the folders of the processors.
        if any(base != "." for base, _ in self.meshes):
            self.meshes = [mesh for mesh in self.meshes if mesh[0] != "."]

    def compare(self):
        for base, region in self.meshes:
            part = self.part_of(base, region)
            groups = {None: part["id"], **{p["name"]: p["id"] for p in part["patches"]}} if part else {}
            for time, arrays_of_group in reference(self.folder, base, region).items():
                for group, arrays in arrays_of_group.items():
                    self.compare_group(time, (base, region, group), groups.get(group), arrays)

        self.compare_surfaces()

    def compare_surfaces(self):
        """tools/tutorials.sh lets OpenFOAM write sampled surfaces twice, the second time as VTK."""
        root = os.path.join(self.folder, "postProcessing", "sampleSurfaceVtk")
        for file in glob.glob(glob.escape(root) + "/*/*.vtp"):
            time, name = float(os.path.basename(os.path.dirname(file))), os.path.basename(file)[: -len(".vtp")]
            group_id = self.ours.surfaces.get(name + "[Surf]")
            ours = self.ours.arrays.get((self.state(time), group_id), {})
            for (field, is_point), theirs in read_arrays(file).items():
                mine = ours.get((field, is_point))
                self.note(outcome(mine, theirs), time, (SURFACES, "", name), field, is_point, mine, theirs)

    def part_of(self, base, region):
        if base == ".":
            names = ["default_region", "region0"] if region == "region0" else [region]
        else:
            names = [base] if region == "region0" else [f"{base}/{region}"]
        for part in self.ours.parts:
            if part["name"] in names:
                return part
        return None

    def state(self, time):
        near = [t for t in self.ours.times if abs(t - time) <= 1e-5 * max(abs(t), abs(time))]
        return min(near, key=lambda t: abs(t - time)) if near else None

    def compare_group(self, time, place, group_id, arrays):
        ours = self.ours.arrays.get((self.state(time), group_id), {})
        for (name, is_point), theirs in arrays.items():
            # foamToVTK adds a field of points to each field of cells by interpolation, and shows the copies that
            # setFields starts from as fields.
            if not (is_point and (name, False) in arrays) and not name.endswith(".orig"):
                mine = ours.get((name, is_point))
                self.note(outcome(mine, theirs), time, place, name, is_point, mine, theirs)
        for (name, is_point), mine in ours.items():
            # foamToVTK takes "_0" for the values of the last step, and the moved points are not a field.
            is_left_out = name.endswith("_0") or name == "points"
            if (name, is_point) not in arrays and mine.undefined < mine.count and not is_left_out:
                self.note("only ours", time, place, name, is_point, mine, None)

    def note(self, result, time, place, name, is_point, mine, theirs):
        base, region, group = place
        where = "surface" if base == SURFACES else "point" if is_point else "interior" if group is None else "patch"
        self.counts[time == 0, where, result] += 1
        if result == "right":
            return
        when = "0" if time == 0 else "later"
        if where == "surface":
            cause = "values of points" if is_point else "values of faces"
        else:
            cause = self.cause(time, base, region, name, group)
        example = f"{self.path}: time {time}, {base}/{region}, {name}, {group or 'cells'}"
        self.causes[result, when, where, cause].append(example)
        self.differences.append(
            f"{self.path}\t{result}\t{when}\t{where}\t{time}\t{base}\t{region}\t{name}"
            f"\t{group or ''}\t{cause}\n    OpenFOAM {theirs.text() if theirs else 'has none'}\n"
            f"    ours     {mine.text() + f' undefined {mine.undefined}' if mine else 'not listed'}\n")

    def file_of(self, time, base, region, name):
        for folder in os.listdir(os.path.join(self.folder, base)):
            if re.fullmatch(r"[0-9][0-9.e+-]*", folder) and abs(float(folder) - time) <= 1e-5 * abs(time):
                file = os.path.join(self.folder, base, folder, "" if region == "region0" else region, name)
                for opener, path in ((open, file), (gzip.open, file + ".gz")):
                    if os.path.isfile(path):
                        with opener(path, "rb") as stream:
                            return stream.read().decode("latin-1")
        return ""

    def cause(self, time, base, region, name, patch):
        """The words under which a difference is counted: class and forms of the file, type and value of the patch."""
        key = (time, base, region, name)
        if key not in self.files:
            text = self.file_of(*key)
            body = re.sub(r"//[^\n]*|/\*.*?\*/", "", text[:200000], flags=re.S)
            words = [re.search(r"\bclass\s+([\w:]+)|$", body).group(1) or "no file"]
            words += ["binary"] if re.search(r"\bformat\s+binary", body) else []
            words += ["directives"] if re.search(r"^\s*#[a-z]", body, flags=re.M) else []
            words += ["macros"] if re.search(r"\$[\w.:{]", body) else []
            words += ["internalField by macro"] if re.search(r"internalField\s+(uniform\s+)?\$", body) else []
            self.files[key] = (", ".join(words), patch_entries(text))
        form, entries = self.files[key]
        return form if patch is None else f"{form}; {entry_text(entries, patch)}"


def row_text(counts, when, where):
    return " ".join(f"{counts[when, where, o]:6d}" for o in OUTCOMES[:4])


def print_table(cases):
    def line(title, counts):
        cells = "  |".join(row_text(counts, when, where) for when in (True, False) for where in PLACES[:2])
        print(f"{title[-50:]:50s}{cells}")

    heads = ("time 0, interior", "time 0, patches", "later, interior", "later, patches")
    print(f"{'':50s}" + "  |".join(f"{head:27s}" for head in heads))
    print(f"{'case':50s}" + "  |".join([" ".join(f"{w:>6s}" for w in ("right", "wrong", "undef", "unlist"))] * 4))
    total = collections.Counter()
    for case in cases:
        line(case.path, case.counts)
        total.update(case.counts)
        if not case.counts:
            print("    nothing to compare with: foamToVTK wrote nothing")
        if case.ours.problem:
            print(f"    {case.ours.problem}")
    line("total", total)
    for when, title in ((True, "time 0"), (False, "later")):
        for where in PLACES[2:]:
            print(f"{where}s, {title}: " + ", ".join(f"{total[when, where, o]} {o}" for o in OUTCOMES[:4]))
        only = sum(total[when, where, "only ours"] for where in PLACES)
        print(f"arrays that only the library has, {title}: {only}")
    return total


def write_causes(path, cases):
    """All differences by cause, most frequent first, each with its first example."""
    causes = collections.defaultdict(list)
    for case in cases:
        for cause, examples in case.causes.items():
            causes[cause] += examples
    with open(path, "w") as file:
        for (result, when, where, cause), examples in sorted(causes.items(), key=lambda item: -len(item[1])):
            file.write(f"{len(examples)}\t{result}\t{when}\t{where}\t{cause}\t{examples[0]}\n")


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("--ddphost", required=True)
    parser.add_argument("--flags", default="")
    parser.add_argument("folder")
    options = parser.parse_args()
    # A foamToVTK that ended early leaves a file that cannot be read; it then just has no arrays.
    vtkObject.GlobalWarningDisplayOff()
    cases = []
    with open(os.path.join(options.folder, "differences.txt"), "w") as differences:
        for line in sys.stdin:
            path = line.split()[0]
            if not os.path.isfile(os.path.join(options.folder, "cases", path, "converted")):
                print(f"{path}: was not run")
                continue
            case = Case(options.folder, path, options.ddphost, options.flags)
            case.compare()
            differences.writelines(case.differences)
            cases.append(case)
    write_causes(os.path.join(options.folder, "causes.txt"), cases)
    total = print_table(cases)
    return 1 if any(total[when, where, "wrong"] for when in (True, False) for where in PLACES) else 0


if __name__ == "__main__":
    sys.exit(main())
