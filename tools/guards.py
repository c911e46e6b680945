#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Removes the guards against bad input one by one and reports which tests notice.

usage: tools/guards.py FOLDER [REGEX]    build and test in FOLDER, only guards whose name matches REGEX
       tools/guards.py --check           only check that every edit still applies to the sources

FOLDER gets a copy of the sources and a build with the address and undefined-behaviour sanitizers; the next run reuses
both. Prints one row per guard with the first test of each group that failed. The exit code is 1 if an edit does not
apply, or if a group of tests does not notice that the guard is gone.

A comment with "guard: TAG" marks each guard in the sources. An entry below finds it by that tag anywhere under src/ and
edits the lines from the tag on, so code around it may change and be reformatted.
"""

import dataclasses
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys

# Lines from the tag on in which an edit applies.
WINDOW = 12
TAG = re.compile(r"//.*\bguard: ([a-z0-9-]+)")

# How ctest describes a failed test.
FAILED = "Failed|Timeout|SEGFAULT|Subprocess aborted|ILLEGAL"

# Fails huge allocations before they slow down the machine.
LIMIT = {"ASAN_OPTIONS": "max_allocation_size_mb=1024"}


class Unusable(Exception):
    """An edit that does not apply, or a mutant that cannot be tested."""


@dataclasses.dataclass
class Guard:
    name: str
    # Tag, regex and replacement. A blank in the regex matches any white space; it must match once after the tag.
    edits: list
    # One regex for ctest per group; at least one test of each group must fail.
    tests: list
    # What goes wrong without the guard.
    note: str
    env: dict = dataclasses.field(default_factory=dict)
    timeout: int = 120


GUARDS = [
    # --- text and numbers
    Guard("line longer than the margin of a chunk",
          [("chunk-line", r"buffer->grow\(used \+ LINE_BUFFER_SIZE, used\); (const std::size_t room =)[^;]*",
            r"\1 LINE_BUFFER_SIZE - 1")],
          ["OFFileLists.AsciiBinaryAndGzip|BadInput.LongLines.*labels"],
          "The second piece of the line is written past the chunk buffer."),
    Guard("line longer than the line buffer",
          [("stream-line", r"grow\(length \+ LINE_BUFFER_SIZE, length\); (const std::size_t room =)[^;]*",
            r"grow(LINE_BUFFER_SIZE, 0); \1 LINE_BUFFER_SIZE")],
          ["OFFileLines.FindsALine"],
          "The second piece of the line is written past the line buffer."),
    Guard("line longer than the margin of a caller's buffer",
          [("caller-chunk", r"\bMARGIN\)", "2 * MARGIN)")],
          ["OFFileLines.ChunksEnd"],
          "The end of the line is written past the buffer that the caller passed in."),
    Guard("end of the text in a search for a character",
          [("text-end", r"for \(; \*cursor != '\\0'; \+\+cursor\)", "for (;; ++cursor)")],
          ["OFFileVectors|BadInput.EveryPrefix.*vectors"],
          "The search runs past the text and its buffer."),
    Guard("digits of a label",
          [("label-length", r"\|\| static_cast<std::size_t>\(p - first\) > dvf::limits::NUMBER_LENGTH", "")],
          ["OFFileLines|OFFileLists|Fuzz.lists|BadInput.LongLines.*(labels|faces)"],
          "Thousands of digits pass as a label whose value has wrapped."),
    Guard("length of a number",
          [("number-length", r"token\.size\(\) > limits::NUMBER_LENGTH \|\|", "")],
          ["Numbers.ConvertWholeTokens"],
          "Tokens of any length are copied and converted."),

    Guard("end of a chunk of a dictionary",
          [("dictionary-chunk", r"m_next == m_chunk\.end && !fillChunk\(\)", "m_next == nullptr && !fillChunk()")],
          ["ExtendedReading.PatchesWithoutValues"],
          "Characters past the chunk are taken for those of the file."),
    Guard("header far from the start of a file",
          [("header-bytes", r"\+\+m_count > dvf::limits::HEADER_BYTES \? END :", "")],
          ["OFFileLists.ExtendedReadingSeeks"],
          "Each file in the place of a list is read to its end for a header, inflated if need be."),

    # --- more items in a file than its count says
    Guard("labels, ascii",
          [("labels-ascii", r"done < labels->size\(\) && \*p", "*p")],
          ["OFFileLists.ShortAndLong", "OFFileZones|Fuzz.zones"],
          "Labels are written past the list. Cell zones, face zones and flip maps share this."),
    Guard("labels, binary",
          [("labels-binary", r"labels->size\(\)\) :", "labels->size() + 1) :")],
          ["OFFileLists.AsciiBinaryAndGzip|BadInput.WrongCounts.*rawLabels"],
          "Only the size of the list limits a raw read; the bracket after it is written past the list."),
    Guard("points, ascii",
          [("points-parallel", r"std::min\(slot->count, m_values->size\(\) - m_done\)", "slot->count")],
          ["OFFileLists.ShortAndLong"],
          "All vectors of a chunk are copied, past the target too."),
    Guard("points, binary",
          [("points-binary", r"values->size\(\)\) :", "values->size() + 1) :")],
          ["OFFileLists.AsciiBinaryAndGzip"],
          "The bracket after the raw values is written past the target."),
    Guard("room for a vector in a worker's buffer",
          [("vector-slot", r"count \+ VECTOR_COMPONENTS > values\.capacity\(\)", "values.capacity() == 0")],
          ["OFFileLists.AsciiBinaryAndGzip"],
          "A chunk of more vectors than one step of growth is written past the buffer."),
    Guard("faces, ascii",
          [("faces-parallel", r"m_faces->faceCount\(\) - m_facesDone", "slot->faceCount")],
          ["OFFileLists.ShortAndLong|BadInput.WrongCounts.*faces"],
          "Counts and offsets of surplus faces are written past their arrays."),
    Guard("room for a face in a worker's buffer",
          [("face-slot", r"nodeCount \+ count > nodes\.capacity\(\)", "nodes.capacity() == 0")],
          ["OFFileFaces.ReadsFacesLarger"],
          "A face larger than one step of growth is written past the buffer."),
    Guard("faces, sequential and compact ascii",
          [("faces-sequential", r"!target->isFull\(\) && \*p", "*p")],
          ["OFFileFaces|Fuzz.lists", "BadInput.WrongCounts.*compactFaces"],
          "Surplus faces are written past the list, and the bracket that ends the list is taken for a bad face."),
    Guard("compact faces, binary: fewer labels than the offsets say",
          [("compact-faces-binary", r"&& nodesOfFaces\(offsets\.data\(\), \*found \+ 1\) <= labels", "")],
          ["OFFileFaces.WrongRawOffsets"],
          "Faces whose labels the file lacks count as read, with labels that do not exist."),
    Guard("compact faces, binary: falling offsets",
          [("falling-offsets", r"return static_cast[^;]*;", "return offsets == nullptr ? 0 : faceCount;")],
          ["OFFileFaces.WrongRawOffsets"],
          "A falling offset gives a face with a wrapped count, which may reach past the labels."),
    Guard("compact faces, binary: huge offsets",
          [("compact-offsets", r"text\.canHold\(labelCount, text\.rawForm\(\)\.labelSize\)", "true")],
          ["OFFileFaces.WrongRawOffsets"],
          "Memory is allocated for as many labels as the last offset claims.", env=LIMIT),
    Guard("face that claims more nodes than there is text",
          [("face-size", r"size > static_cast<std::size_t>\(end - p\) \|\|", "")],
          ["BadInput.WrongCounts.*/(f|compactF)aces"],
          "Memory is allocated for as many labels as the face claims.", env=LIMIT),
    Guard("face of no nodes: `0(`",
          [("face-of-no-nodes", r"\|\| count < 1", "")],
          ["BadInput.EveryByte.*/faces|Fuzz.lists"],
          "The last label of no labels is written before the array."),
    Guard("two-pass lists",
          [("two-pass-lines", r"std::min\(lines, items - itemsRead\)", "lines")],
          ["OFFileLines.ReadsAListOverMany"],
          "Lines after the list are written past the target."),
    Guard("count larger than the file: lists",
          [("list-count", r"&& file\.text\.canHold\([^;]*bytesPerItem\)", "")],
          ["OFFileLists.RefusesCount", "OFFileBoundary.RefusesCount"],
          "Memory is allocated for as many items as the count claims.", env=LIMIT),
    Guard("count larger than the file: labels of zones",
          [("zone-count", r"\|\| !text\.canHold\([^{]*BYTES_PER_NUMBER\)", "")],
          ["OFFileZones.RefusesAndReports"],
          "Memory is allocated for as many labels as the count claims. (A negative count is a huge one to canHold.)",
          env=LIMIT),
    Guard("uniform flips: a brace that ends the line",
          [("uniform-flips", r"i \+ 1 < line\.size\(\)", "i < line.size()")],
          ["BadInput.EveryByte.*ones"],
          "The character past the line is read as the flip."),

    # --- fields
    Guard("scalars, ascii",
          [("scalars-sequential", r"\*found < values->size\(\) && \*p", "*p")],
          ["FieldPieces.OddAndTooLong.*scalars|OFFileFields", "OFFileBoundaryFields|BadInput.WrongCounts.*field"],
          "Surplus scalars are written past the target. Interior and patches share this."),
    Guard("vectors, ascii (both guards)",
          [("vectors-sequential", r"\*found < values->size\(\) && TokenScanner", "TokenScanner"),
           ("vectors-sequential", r"std::min\(VECTOR_COMPONENTS, values->size\(\) - \*found\)", "VECTOR_COMPONENTS")],
          ["FieldPieces.OddAndTooLong.*vectors|OFFileBoundaryFields.PatchesGet|OFFileVectors"],
          "Surplus vectors are written past the target. Either guard alone prevents that."),
    Guard("vectors into an array whose size is no multiple of three",
          [("vectors-sequential", r"std::min\(VECTOR_COMPONENTS, values->size\(\) - \*found\)", "VECTOR_COMPONENTS")],
          ["OFFileBoundaryFields.ValuesOfTheWrongShape|OFFileVectors"],
          "A List<vector> in a patch of a scalar field of four faces writes two values past the array."),
    Guard("values in pieces",
          [("pieces-room", r"&& \*count \+ m_pieces\[used\]\.count < room", "")],
          ["FieldPieces.OddAndTooLong"],
          "Pieces after the end of the list are copied past the target."),
    Guard("values, binary",
          [("values-binary", r"values->data\(\), values->size\(\)\)", "values->data(), values->size() + 1)")],
          ["OFFileBoundaryFields.BinarySections"],
          "What follows the raw values is written past the target."),
    Guard("items of a list at its bracket",
          [("items-sequential", r"\*found \+ items\.components <= values->size\(\)",
            "!tokens.endsChunk() && *tokens.cursor() != ')'")],
          ["ListsAt.RefusesLists"],
          "Surplus items are written past the target."),
    Guard("count of a list at its bracket",
          [("list-at-count", r"!text\.canHold\(size, dvf::limits::BYTES_PER_NUMBER\)", "false")],
          ["ListsAt.RefusesCounts"],
          "Memory is allocated for as many items as the count claims.", env=LIMIT),
    Guard("labels wider than an int",
          [("wide-labels", r"return value >= [^?]*\?", "return true ?")],
          ["RawLists.LabelsThatDoNotFit"],
          "A label is cut to 32 bits and names another cell."),
    Guard("end of a raw list that a compressed file cannot hold",
          [("byte-ahead", r"!canHold\(distance\)", "false")],
          ["HugeText.*RawCountLarger"],
          "Memory is allocated for all bytes of the list, as its count claims.", env=LIMIT),
    Guard("patch lists, binary",
          [("raw-patch-list", r"std::min<std::uint64_t>\(present, values->size\(\)\)", "present")],
          ["OFFileBoundaryFields.BinarySections"],
          "The count in the file decides how much is written to the patch."),
    Guard("count of the interior",
          [("field-count", r"values\.size\(\) != static_cast<std::size_t>\(needed\)", "values.empty() && needed != 0")],
          ["OFFileFields.ReportsForms|Results.AreUndefinedWhere"],
          "A list of another size counts as read, and a list of fewer values than its count may divide by zero."),
    Guard("scalars on one line",
          [("scalars-on-line", r"for \(double& value : \*values\) \{ value = leadingNumber\(words\.next\(\)\);",
            "std::size_t i = 0;\n"
            "for (std::wstring_view word = words.next(); !word.empty(); word = words.next()) {\n"
            "(*values)[i++] = leadingNumber(word);")],
          ["OFFileFields.FillsAndReports|Fuzz.fields|BadInput.*fieldOnLines"],
          "The words decide how much is written, and not the target."),
    Guard("vectors on one line: missing words",
          [("vectors-on-line", r"component == 0 && !word\.empty\(\)", "component == 0")],
          ["OFFileFields.FillsAndReports"],
          "One character is taken off the front of an empty word."),
    Guard("list on one line that ends at its bracket (both guards)",
          [("line-tail", r"std::max\(first, wide\.size\(\) - std::min\(wide\.size\(\), LIST_TAIL\)\)",
            "wide.size() - LIST_TAIL"),
           ("line-tail", r"wide\.substr\(first, end - first\)", "wide.data() + first, end - first")],
          ["OFFileFields|Fuzz.fields|BadInput.EveryPrefix.*fieldOnLines"],
          "A text of negative length is taken from `3(`. Either guard alone prevents that."),
    Guard("uniform interior",
          [("uniform-interior", r"i \+ width <= values->size\(\)", "i < values->size()")],
          ["OFFileFields.ReadsEveryForm"],
          "An array whose size is no multiple of the width is overrun."),
    Guard("uniform vector of a patch",
          [("uniform-vector", r"i \+ 3 <= values->size\(\)", "i < values->size()")],
          ["OFFileBoundaryFields.ValuesOfTheWrongShape"],
          "An array whose size is no multiple of three is overrun."),
    Guard("uniform tensor of a patch",
          [("uniform-tensor", r"values->size\(\) / numbers\.size\(\)",
            "(values->size() + numbers.size() - 1) / numbers.size()")],
          ["OFFileBoundaryFields.Tensors"],
          "Nine values are written to a patch of one face, which has six."),
    Guard("patch values: `value ;`",
          [("value-token", r"tokens\.empty\(\)", "false")],
          ["OFFileBoundaryFields.ValuesOfTheWrongShape"],
          "The first of no tokens is read."),
    Guard("patch values: `value nonuniform;`",
          [("value-type", r"tokens\.size\(\) > 1 \? tokens\[1\] : dvn::Str\(\)", "tokens[1]")],
          ["OFFileBoundaryFields.ValuesOfTheWrongShape|BadInput.EveryByte.*/field"],
          "The second of one token is read."),
    Guard("patch values: `uniform ( 1 2 3)`",
          [("token-length", r"\|\| tokens\[index\]\.size\(\) <= skip", "")],
          ["OFFileBoundaryFields.ValuesOfTheWrongShape"],
          "The text past a lone bracket is taken."),
    Guard("tensor patches that take cell values",
          [("mesh-items", r"std::min\(components, source\.size\(\) - first\)", "components")],
          ["OFFileBoundaryFields.Tensors"],
          "Nine values are read where the array has three left."),
    Guard("mapping longer than the mesh",
          [("mesh-items", r"first < source\.size\(\)", "true")],
          ["OFFileBoundaryFields.Mappings"],
          "Values past the array of the mesh are read."),
    Guard("mapping shorter than its patch",
          [("mesh-items", r"i >= ids\.size\(\) \|\|", "")],
          ["OFFileBoundaryFields.Mappings"],
          "Ids past the mapping are read."),
    Guard("negative id in a mapping (both guards)",
          [("mesh-items", r"\|\| ids\[i\] < 0", ""), ("mesh-items", r"first < source\.size\(\)", "true")],
          ["OFFileBoundaryFields.Mappings"],
          "Values before the array of the mesh are read. A negative id gives a huge place, so either guard alone "
          "prevents that."),

    Guard("item of a field: `value uniform;`",
          [("item-brackets", r"end < first \+ 2 \|\|", "")],
          ["ExtendedReading.PatchesWithoutValues"],
          "The second of one token is read."),
    Guard("list of a field: `value nonuniform;`",
          [("short-list", r"next >= tokens\.size\(\) \|\|", "")],
          ["ExtendedReading.PatchesWithoutValues"],
          "The token after the last one is read."),
    Guard("rows of a table of a field",
          [("table-rows", r"tokens\.size\(\) < first \+ 1 \+ tokensPerRow \|\| [^{]*\) \{", "false) {")],
          ["ExtendedReading.PatchesWithoutValues"],
          "Tokens past the last one are read for a row that is too short."),
    Guard("uniform value in extended reading",
          [("uniform-values", r"i \+ width\(\) <= values->size\(\)", "i < values->size()")],
          ["ExtendedReading.PatchesThatWereBuilt"],
          "An array whose size is no multiple of the width is overrun."),
    Guard("values on points of a patch that was built in part",
          [("point-places", r"places\.size\(\) \* width != values->size\(\)", "values->empty()")],
          ["ExtendedReading.PatchesThatWereBuilt"],
          "Values past an array that is older than the points of the patch are read and written."),
    Guard("normals of a patch that was built in part",
          [("face-normals", r"first \+ VECTOR_COMPONENTS <= normals\.size\(\)", "first < static_cast<std::size_t>(-1)")],
          ["ExtendedReading.PatchesThatWereBuilt"],
          "Normals of faces that have none are read."),

    # --- labels, owners, neighbours and ranges that do not fit the mesh
    Guard("labels beyond the points",
          [("label-range", r"&& label < nodeCount", "")],
          ["DamagedMesh|Fuzz.meshes", "TriSurface.DropsFaces"],
          "Points that do not exist are read for patches and zones, and such labels reach the host."),
    Guard("negative labels",
          [("label-range", r"label >= 0 &&", "")],
          ["DamagedMesh.DropsLabels|Fuzz.meshes", "TriSurface.DropsFaces"],
          "Memory before the points is read."),
    Guard("face offsets beyond the labels",
          [("face-offset", r"&& offset <= nodesSize - faces\.nodeCounts\[face\]", "")],
          ["DamagedMesh.DropsLabels|MeshConversion.AllWays", "TriSurface.WrongOffsets"],
          "Memory past the labels is read."),
    Guard("negative face offsets",
          [("face-offset", r"offset >= 0 &&", "")],
          ["MeshConversion.AllWays"],
          "Memory before the labels is read."),
    Guard("labels of a sampled surface",
          [("surface-faces", r"return isLabel\(label, labelEnd\)", "return true || isLabel(label, labelEnd)")],
          ["TriSurface.DropsFaces"],
          "Labels without a point reach the host."),
    Guard("offsets of a sampled surface",
          [("surface-faces", r"\|\| !isInside\(\*faces, face, nodesSize\)", "")],
          ["TriSurface.WrongOffsets"],
          "Memory past the labels is read."),
    Guard("faces of a sampled surface that share labels",
          [("surface-faces", r"begin < keptEnd \|\|", "")],
          ["TriSurface.WrongOffsets"],
          "Labels that many faces claim are delivered many times."),
    Guard("owners and neighbours of cells at a cyclic patch",
          [("centre-cells", r"static_cast<std::uint32_t>\(cell\) < m_slots\.size\(\) && ", "")],
          ["Cyclic"],
          "A label beyond the cells of the mesh is looked up past the table of cells."),
    Guard("owners beyond the faces",
          [("centre-faces", r"std::min\(owners\.size\(\), faces\.faceCount\(\)\)", "owners.size()")],
          ["Cyclic"],
          "Owners without a face have a face looked up past the faces."),
    Guard("labels of a cyclic patch",
          [("cyclic-complete", r"areBelow\(patch\.faceConnectivity\(\), mesh\.nodeCount\(\)\) &&", "")],
          ["Cyclic"],
          "A node label beyond the points is read past them."),
    Guard("coupling of a patch that has changed",
          [("coupling-size", r"coupling\.cells\.size\(\) != values->size\(\) / width \|\|", "")],
          ["Cyclic|ExtendedReading"],
          "Values of faces that the patch does not have are written past the array."),
    Guard("offsets of polygons",
          [("fan-offset", r"begin > size \|\| faces\.nodeCounts\[face\] > size - begin", "false")],
          ["SurfaceFans.StayInBounds"],
          "Memory outside the labels is read."),
    Guard("labels of polygons",
          [("fan-labels", r"\|\| !std::ranges::all_of\(labels, isGood\)", "")],
          ["SurfaceFans.KeepTheOrder"],
          "Labels without a point reach the host."),
    Guard("polygons that share labels",
          [("fan-labels", r"\|\| labels\.data\(\) < keptEnd", "")],
          ["SurfaceFans.StayInBounds"],
          "Labels that many faces claim are delivered many times."),
    Guard("negative cell count",
          [("cell-count", r"claimed < 0", "false")],
          ["DamagedMesh.LimitsCellCount"],
          "Arrays of 2^64 cells are requested.", env=LIMIT),
    Guard("more cells than the faces can form",
          [("cell-count", r"claimed > bound", "false")],
          ["DamagedMesh.LimitsCellCount"],
          "Memory is allocated for as many cells as the note claims.", env=LIMIT),
    Guard("owners and neighbours that name no cell, when counted",
          [("cells-counted", r"; cell < cellCount", "; true")],
          ["DamagedMesh.SkipsOwners|Fuzz.meshes"],
          "Counters of cells that do not exist are written."),
    Guard("owners and neighbours that name no cell, when inserted",
          [("cells-inserted", r"; cell < cellCount", "; true")],
          ["DamagedMesh.SkipsOwners|Fuzz.meshes"],
          "Entries of cells that do not exist are written."),
    Guard("more owners than faces",
          [("owner-count", r"mesh->owners\(\)\.size\(\) > mesh->faces\(\)\.faceCount\(\)", "false")],
          ["DamagedMesh.SkipsOwners|Fuzz.meshes"],
          "Cells get faces that do not exist."),
    Guard("more neighbours than owners",
          [("neighbour-count", r"mesh->neighbors\(\)\.size\(\) > mesh->owners\(\)\.size\(\)", "false")],
          ["DamagedMesh.SkipsOwners|MeshConversion.AllWays"],
          "Neighbours are counted but not inserted: entries of the table stay uninitialised and name any face."),

    # --- patches and zones
    Guard("patch that ends beyond the mesh",
          [("patch-range", r"std::clamp<std::int64_t>\(start \+ claimed, first, meshEnd\)",
            "std::max<std::int64_t>(start + claimed, first)")],
          ["BoundaryGroup.DeliversOnly"],
          "Faces past the last one are read.", env=LIMIT),
    Guard("patch that starts below 0",
          [("patch-range", r"std::clamp<std::int64_t>\(start, 0, meshEnd\)", "std::min<std::int64_t>(start, meshEnd)")],
          ["BoundaryGroup.DeliversOnly"],
          "Faces before the first one are read.", env=LIMIT),
    Guard("patches that share faces (both guards)",
          [("patch-share", r"std::min\(facesLeft, ranges\[patch\]\.size\(\)\)", "ranges[patch].size()"),
           ("patch-share", r"&& nodeCounts\[first \+ count\] <= labelsLeft", "")],
          ["BoundaryGroup.(APatchThatClaims|Overlapping)"],
          "Many patches of all faces cost memory for as many copies of the mesh."),
    Guard("patch faces without an owner",
          [("patch-owners", r"face < owners\.size\(\) \? owners\[face\] : -1", "owners[face]")],
          ["BoundaryGroup.DeliversOnly"],
          "Owners past the end of a short list are read."),
    Guard("face zones",
          [("zone-faces", r"face >= 0 && index < mesh\.faceCount\(\) &&", "")],
          ["FaceZoneGroup"],
          "Faces that do not exist are read."),
    Guard("cell zones",
          [("zone-cells", r"return cell < 0 \|\| static_cast<std::size_t>\(cell\) >= elementCount",
            "return cell < 0 && elementCount == 0")],
          ["Geometry.ListsPart"],
          "Part ids of cells that do not exist are written, and such cells reach the host's sets."),
    Guard("cell zones, negative ids",
          [("zone-cells", r"cell < 0 \|\| static_cast<std::size_t>\(cell\) >= elementCount",
            "cell >= static_cast<int>(elementCount)")],
          ["^Geometry|Fuzz.case"],
          "Memory before the part ids is written."),

    # --- values
    Guard("fields without cell values before averaging (both guards)",
          [("cells-to-average", r"&& holdsValues\(\*cellValues\)", ""),
           ("average-values", r"std::min\((block\.firstItem \+ block\.itemCount), m_values\.size\(\) / m_width\)", r"\1")],
          ["Results.AreUndefinedWhere"],
          "Values are read from an empty array. Either guard alone prevents that."),
    Guard("fields without cell values before averaging (first guard)",
          [("cells-to-average", r"&& holdsValues\(\*cellValues\)", "")],
          ["Results.AreUndefinedWhere"],
          "Nodes show values that no cell has."),
    Guard("averaging: fewer nodes than the counts say",
          [("connectivity-end", r"&& nodeCounts\[item\] <= nodesLeft", "")],
          ["NodeAveraging.StaysInside"],
          "Memory past the connectivity is read."),
    Guard("averaging: fewer nodes of a patch than its counts say",
          [("patch-connectivity-end", r"&& nodeCounts\[faceCount\] <= nodesLeft", "")],
          ["NodeAveraging.StaysInside"],
          "Memory past the connectivity of the patch is read."),
    Guard("averaging: labels of cells outside the range of nodes",
          [("average-labels", r"if \(index >= range\.begin\(\) && index < range\.end\(\)\)", "")],
          ["NodeAveraging.StaysInside"],
          "Sums outside the node values are written."),
    Guard("averaging: blocks with labels beyond the range of nodes",
          [("block-labels", r"&& highest >= 0 && static_cast<std::size_t>\(highest\) < nodes\.end\(\)", "")],
          ["NodeAveraging.StaysInside"],
          "Sums past the node values are written."),
    Guard("averaging: blocks with negative labels",
          [("block-labels", r"lowest >= 0 &&", "")],
          ["NodeAveraging.StaysInside"],
          "Sums before the node values are written."),
    Guard("averaging: labels that name no node",
          [("node-label", r"static_cast<std::size_t>\(node\) < m_itemCounts\.size\(\)", "true")],
          ["NodeAveraging.StaysInside"],
          "Sums outside the node values are written."),
    Guard("moved points: fewer points than in the mesh",
          [("moved-points", r"item < sourceCount", "true")],
          ["Results.DisplaceNodes"],
          "Points past the end of the list are read."),
    Guard("values of a surface that has other faces at another time",
          [("sampled-counts", r"!hasCounts\(surface, counts, folder\) \|\|", "")],
          ["SampledSurfaces.ThatChange"],
          "Values of faces that the file lacks are read."),
    Guard("results before geometry",
          [("unknown-count", r"count == OFPart::UNKNOWN_COUNT \? 0 : count", "count")],
          ["Results.AreEmptyBefore"],
          "Arrays of 2^64 - 1 values are requested."),

    # --- files and folders
    Guard("folder, pipe or device in place of a file (all three guards)",
          [("regular-file", r"&& S_ISREG\(info\.st_mode\)", ""),
           ("regular-descriptor", r"\|\| !S_ISREG\(info\.st_mode\)", ""),
           ("regular-descriptor", r"O_CLOEXEC \| O_NONBLOCK", "O_CLOEXEC")],
          ["OFFileOpen.OpensOnlyRegular"],
          "Opening a pipe blocks, and a device is read forever. One check alone is enough unless the file is replaced "
          "between the two.", timeout=30),
    Guard("file that the system generates while it is read",
          [("generated-file", r"&& info\.st_size == 0", "&& false")],
          ["OFFileOpen.TreatsGenerated"],
          "A file that says it is empty is read without end.", timeout=30),
    Guard("failed read of a compressed file",
          [("failed-read", r"std::max\(came, 0\)", "came")],
          ["OFFileOpen.DamagedCompression|BadInput.EveryCompressedByte.*labels"],
          "The count of bytes wraps, and the NUL is written before the buffer."),
    Guard("surface folder without a time",
          [("first-time", r"; first != times\.end\(\)", "; true")],
          ["OFReaderCase|MetaData|Fuzz.case"],
          "The first of no names is read."),
]


def find_tags(root):
    """Maps each tag to the files that contain it, one per occurrence."""
    tags = {}
    for file in sorted((root / "src").rglob("*")):
        if file.suffix in (".cpp", ".h"):
            for tag in TAG.findall(file.read_text()):
                tags.setdefault(tag, []).append(file)
    return tags


def edited(text, tag, pattern, replacement):
    """Applies an edit to the text of a file."""
    mark = re.search(rf"//.*\bguard: {tag}(?![a-z0-9-])", text)
    first = text.rfind("\n", 0, mark.start()) + 1
    lines = text[first:].splitlines(keepends=True)
    window = "".join(lines[:WINDOW])
    changed, count = re.subn(pattern.replace(" ", r"\s+"), replacement, window)
    if count != 1:
        raise Unusable(f"after the tag {tag} the pattern matches {count} times, not once: {pattern}")
    return text[:first] + changed + "".join(lines[WINDOW:])


def mutant(guard, tags):
    """Maps each file that an entry edits to its text without the guard."""
    texts = {}
    for tag, pattern, replacement in guard.edits:
        files = tags.get(tag, [])
        if len(files) != 1:
            raise Unusable(f"the tag {tag} occurs {len(files)} times in the sources, not once")
        text = texts.get(files[0]) or files[0].read_text()
        texts[files[0]] = edited(text, tag, pattern, replacement)
    return texts


def check(root):
    tags = find_tags(root)
    problems = [f"the tag {tag} has no entry" for tag in tags.keys() - {edit[0] for g in GUARDS for edit in g.edits}]
    for guard in GUARDS:
        try:
            mutant(guard, tags)
        except Unusable as problem:
            problems.append(f"{guard.name}: {problem}")
    return problems


def run(command, folder, **options):
    return subprocess.run(command, cwd=folder, capture_output=True, text=True, errors="replace", **options)


def copy_sources(root, source):
    """Writes only files that differ, so that a build can be used again."""
    names = [name for name in run(["git", "ls-files"], root).stdout.splitlines() if (root / name).is_file()]
    for name in names:
        old, new = root / name, source / name
        if not (new.is_file() and new.read_bytes() == old.read_bytes()):
            new.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(old, new)
    for file in (source / "src").rglob("*.*"):
        if str(file.relative_to(source)) not in names:
            file.unlink()


def build(source, targets=()):
    if not (source / "build/asan/build.ninja").is_file():
        made = run(["cmake", "--preset", "asan", "-DCMAKE_UNITY_BUILD=OFF", "-DOFP_FUZZ=OFF",
                    "-DOFP_WARNINGS_AS_ERRORS=OFF"] + os.environ.get("GUARDS_CMAKE", "").split(), source)
        if made.returncode != 0:
            sys.exit(made.stderr)
    return run(["cmake", "--build", "build/asan", "--target", *(targets or ["all"])], source)


def programs(tests, source):
    """Returns the programs that contain the tests which a regex matches."""
    listed = json.loads(run(["ctest", "--preset", "asan", "--show-only=json-v1", "-R", tests], source).stdout)
    return {pathlib.Path(test["command"][0]).name for test in listed["tests"]}


def first_failure(tests, source, env={}, timeout=120):
    tested = run(["ctest", "--preset", "asan", "-j2", "-R", tests, "--timeout", str(timeout), "--stop-on-failure"],
                 source, env={**os.environ, **env})
    failed = re.findall(rf"^\t *\d+ - (\S+).* \((?:{FAILED}).*\)", tested.stdout, re.M)
    return failed[0] if failed else None


def verdict(guard, source):
    """Returns whether all groups of tests notice, and what to print."""
    originals = {}
    try:
        needed = [programs(tests, source) for tests in guard.tests]
        if not all(needed):
            raise Unusable("a regex matches no test")
        for file, text in mutant(guard, find_tags(source)).items():
            originals[file] = file.read_text()
            file.write_text(text)
        if build(source, set().union(*needed)).returncode != 0:
            raise Unusable("does not compile")
        failures = [first_failure(tests, source, guard.env, guard.timeout) for tests in guard.tests]
    except Unusable as problem:
        return False, str(problem)
    finally:
        for file, text in originals.items():
            file.write_text(text)
    return all(failures), ", ".join(failure or "NOT NOTICED" for failure in failures)


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    if len(sys.argv) < 2 or sys.argv[1].startswith("--") and sys.argv[1] != "--check":
        sys.exit(__doc__)
    problems = check(root)
    if problems:
        sys.exit("\n".join(problems))
    if sys.argv[1] == "--check":
        return
    source = pathlib.Path(sys.argv[1]).resolve() / "source"
    copy_sources(root, source)
    made = build(source)
    if made.returncode != 0:
        sys.exit(made.stdout[-2000:])
    chosen = [guard for guard in GUARDS if re.search(sys.argv[2] if len(sys.argv) > 2 else "", guard.name)]
    # A test that fails with all guards in place would seem to notice everything.
    failure = first_failure("|".join(group for guard in chosen for group in guard.tests), source, LIMIT)
    if failure:
        sys.exit(f"{failure} fails with all guards in place")
    missed = 0
    for guard in chosen:
        is_noticed, outcome = verdict(guard, source)
        missed += 0 if is_noticed else 1
        print(f"| {guard.name} | {outcome} |", flush=True)
    sys.exit(1 if missed else 0)


if __name__ == "__main__":
    main()
