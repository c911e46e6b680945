#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares what "ddphost doctor" says of cases with what "ddphost stats" delivers.

usage: tools/doctor_sweep.py [--ddphost PATH] FOLDER...

Every array of a field on disk that is undefined, not listed, or has another range than with extended reading must have
a line of the doctor, and no other array may have one. Sampled surfaces are not compared.
"""
import argparse
import collections
import gzip
import json
import os
import re
import subprocess
import sys

FIELD_CLASS = re.compile(r"(vol|point)(Scalar|Vector|SphericalTensor|SymmTensor|Tensor)Field(::Internal)?")
SET_ASIDE = re.compile(r"^\.|(~|\.orig|\.bak|\.BAK|\.old|\.save)$")
TIME = re.compile(r"[0-9.+\-][0-9.+\-eE]*")
PROCESSOR = re.compile(r"processor[0-9]+")
ITSELF = ["--set", "RESULTS_NAMES_MAPPING="]


def run(ddphost, *arguments):
    """The JSON document of a run; None if it failed."""
    done = subprocess.run([ddphost, *arguments, "--json"], capture_output=True, text=True, check=False)
    return json.loads(done.stdout) if done.returncode in (0, 1) else None


def class_of(path):
    """The class in the header of a file, plain or gzip; empty if there is none."""
    opened = open(path, "rb") if os.path.isfile(path) else gzip.open(path + ".gz", "rb")
    with opened as file:
        text = file.read(4000).decode("latin1")
    text = re.sub(r"//.*", "", re.sub(r"/\*.*?\*/", "", text, flags=re.S))
    header = re.search(r"FoamFile\s*\{(.*?)\}", text, re.S)
    found = header and re.search(r"class\s+([^;\s]+)\s*;", header.group(1))
    return found.group(1) if found else ""


class Delivered:
    """What one way of reading delivers: ranges by (time, part, patch, field, class prefix)."""

    def __init__(self, ddphost, case, flags):
        self.arrays = {}
        self.info = run(ddphost, "info", *flags, *ITSELF, case)
        stats = self.info and run(ddphost, "stats", "--state", "all", *flags, *ITSELF, case)
        if not stats:
            self.info = None
            return
        groups = {part["id"]: (part["name"], "") for part in self.info["parts"]}
        for part in self.info["parts"]:
            groups.update({patch["id"]: (part["name"], patch["name"]) for patch in part["patches"]})
        first_state = {}
        for state in self.info["states"]:
            first_state.setdefault(state["value"], state["id"])
        kinds = {result["id"]: result["kind"] for result in self.info["results"]}
        for row in stats["rows"]:
            name, place = row["result"], "vol"
            if name.endswith(" [N]"):
                name, place = name[:-4], "point"
            skip = name.endswith(" [node]") or kinds[row["resultId"]] == "displacement"
            if skip or row["groupId"] not in groups or row["stateId"] != first_state[row["time"]]:
                continue
            key = (row["time"], *groups[row["groupId"]], name, place)
            array = self.arrays.setdefault(key, {"whole": True, "range": []})
            array["whole"] &= row["items"] > 0 and row["undefined"] == 0
            array["range"].append((row["least"], row["mean"], row["greatest"]))


def times_of(case):
    folders = [case] + [f"{case}/{name}" for name in os.listdir(case) if PROCESSOR.fullmatch(name)]
    return sorted({name for folder in folders for name in os.listdir(folder) if TIME.fullmatch(name)}, key=float)


def fields_on_disk(case, part, time):
    """Yields (name, class) of all fields of a part at a time."""
    processor, _, region = part.partition("/")
    if PROCESSOR.fullmatch(processor):
        folders = [f"{case}/{time}/{processor}/{region}", f"{case}/{processor}/{time}/{region}"]
    else:
        folders = [f"{case}/{time}" if part == "default_region" else f"{case}/{time}/{part}"]
    paths = {}
    for folder in filter(os.path.isdir, folders):
        for entry in sorted(os.listdir(folder)):
            name = entry[:-3] if entry.endswith(".gz") else entry
            if os.path.isfile(f"{folder}/{entry}") and not SET_ASIDE.search(name):
                paths.setdefault(name, f"{folder}/{name}")
    for name, path in paths.items():
        kind = FIELD_CLASS.fullmatch(class_of(path))
        if kind:
            yield name, kind


def check_case(ddphost, case, counts):
    """Yields what disagrees."""
    doctor = run(ddphost, "doctor", "--state", "all", case)
    plain = Delivered(ddphost, case, ["--plain"])
    extended = Delivered(ddphost, case, [])
    if doctor is None or extended.info is None:
        yield "not examined", doctor is None
        return
    told = {}
    for finding in doctor["case"]["findings"]:
        counts["findings, " + finding["kind"]] += 1
        counts["findings without a cause"] += finding["cause"] == "unknown"
        for array in finding["arrays"]:
            key = (float(array["time"]), array["part"], array["group"], array["field"])
            told[key] = (finding["kind"], array["plain"])
    for part in extended.info["parts"]:
        patches = [patch["name"] for patch in part["patches"] if patch["type"] != "empty"]
        for time in times_of(case):
            for name, kind in fields_on_disk(case, part["name"], time):
                for group in [""] + ([] if kind.group(3) else patches):
                    key = (float(time), part["name"], group, name)
                    ours = extended.arrays.get(key + (kind.group(1),), {"whole": False, "range": None})
                    theirs = plain.arrays.get(key + (kind.group(1),), {"whole": False, "range": None})
                    line = told.get(key)
                    counts["arrays"] += 1
                    counts["arrays that extended reading does not show"] += not ours["whole"]
                    counts["arrays that plain reading does not show"] += not theirs["whole"]
                    shows = ours["whole"] and theirs["whole"] and ours["range"] == theirs["range"]
                    counts["arrays that plain reading shows otherwise"] += (
                        ours["whole"] and theirs["whole"] and not shows)
                    # Values in another order have the same range.
                    if shows and line and line[1] != "other values":
                        yield "shows and has a line", key, line
                    if not shows and not line:
                        yield "has no line", key
                    if line and (line[0] == "hidden") == ours["whole"]:
                        yield "wrong kind of line", key, line


def cases_below(folders):
    for folder in folders:
        for path, sub_folders, _ in os.walk(folder):
            if os.path.isfile(f"{path}/system/controlDict"):
                sub_folders[:] = []
                yield path


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--ddphost", default="build/release/host/ddphost")
    parser.add_argument("folders", nargs="+", metavar="FOLDER")
    options = parser.parse_args()
    counts = collections.Counter()
    problems = 0
    for case in sorted(cases_below(options.folders)):
        counts["cases"] += 1
        for problem in check_case(options.ddphost, case, counts):
            problems += 1
            print(case, *problem)
    for name, count in sorted(counts.items()):
        print(f"{count:8} {name}")
    print(f"{problems:8} disagreements")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
