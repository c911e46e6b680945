#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Takes out the guards against access out of bounds, one after the other, and tells which tests notice.

usage: tools/guards.py FOLDER [REGEX]

FOLDER gets a copy of the sources and a build of it with the address and undefined-behaviour sanitizers, which is used
again. REGEX picks guards by their names. Prints a row for each; the exit code is 1 if no test notices one of them.

An entry has a name, an edit that takes the guard out (file, old and new, or several as edits; old occurs once), the tests
that are likely to notice, and what goes wrong without it. Where readers share one guard, the same edit stands several
times with the tests of each. `env` keeps a mutant from eating the machine, `timeout` ends one that hangs.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys

LIMIT = {"ASAN_OPTIONS": "max_allocation_size_mb=1024"}

LINES = "src/foamfile/OFFileLines.cpp"
LISTS = "src/foamfile/OFFileLists.cpp"
VECTORS = "src/foamfile/OFFileVectors.cpp"
FACES = "src/foamfile/OFFileFaces.cpp"
ZONES = "src/foamfile/OFFileZones.cpp"
FIELDS = "src/foamfile/OFFileFields.cpp"
PATCHES = "src/foamfile/OFFileBoundaryFields.cpp"
CHECK = "src/mesh/MeshConsistency.cpp"
TABLE = "src/mesh/CellFaceTable.cpp"
GROUPS = "src/mesh/OFPolymeshToDDPGroups.cpp"
GEOMETRY = "src/provider/OpenFoamProviderGeometry.cpp"
RESULTS = "src/provider/OpenFoamProviderResults.cpp"
AVERAGE = "src/casemodel/OFPartAveraging.cpp"

WALK_LABELS = dict(file=LISTS, old="while (done < labels->size() && *p != '\\0') {", new="while (*p != '\\0') {")
WALK_FACES = dict(file=FACES, old="while (!target.isFull() && *p != '\\0') {", new="while (*p != '\\0') {")
WALK_SCALARS = dict(file=FIELDS, old="while (*found < values->size() && *p != '\\0') {", new="while (*p != '\\0') {")
FIELD_COUNT = dict(
    file=FIELDS,
    old="if (values.size() != static_cast<std::size_t>(needed)) {",
    new="if (values.empty() && needed != 0) {")
ONLY_FINITE_WANTED = (VECTORS, "const std::size_t wanted = std::min(COMPONENTS, values->size() - *found);",
                      "const std::size_t wanted = COMPONENTS;")
HOLDS_VALUES = (RESULTS, "return isInteriorRead && holdsValues(*cellValues);", "return isInteriorRead;")

GUARDS = [
    # --- a list on one line longer than a chunk
    dict(place="a list on one line longer than a chunk (chunk buffer)", file=LINES,
         old="""        buffer->grow(used + LINE_BUFFER_SIZE, used);
        const std::size_t room = buffer->capacity() - used - 1;
""",
         new="""        const std::size_t room = LINE_BUFFER_SIZE - 1;
""",
         tests="OFFileLists.AsciiBinaryAndGzip|BadInput.LinesWithoutEnd.*labels",
         note="The second piece of a line longer than the margin is written behind the chunk buffer."),
    dict(place="a list on one line longer than a chunk (line buffer of the stream)", file=LINES,
         old="""        m_lineBuffer.grow(length + LINE_BUFFER_SIZE, length);
        const std::size_t room = m_lineBuffer.capacity() - length;
""",
         new="""        const std::size_t room = LINE_BUFFER_SIZE;
""",
         tests="OFFileLines.ALineIsFound",
         note="The second piece of a line of more than 4095 bytes is written behind the line buffer."),
    dict(place="a list on one line longer than a chunk (buffer of a caller)", file=LINES,
         old="const std::size_t more = m_stream->readToLineEnd(*chunk + *length, MARGIN);",
         new="const std::size_t more = m_stream->readToLineEnd(*chunk + *length, 2 * MARGIN);",
         tests="OFFileLines.AChunkEnds",
         note="A last line longer than the margin overruns the buffer that the caller handed in. Caught only since the test "
              "has a line of LINE_BUFFER_SIZE bytes (in the working tree; the committed one fits the margin exactly)."),

    # --- digit runs beyond the token buffer
    dict(place="digit runs beyond the token buffer (labels)", file="src/foamfile/TokenScanner.h",
         old="if (p == first || static_cast<std::size_t>(p - first) > dvf::MAX_NUMBER_LENGTH) {",
         new="if (p == first) {",
         tests="OFFileLines|OFFileLists|Fuzz.lists|BadInput.LinesWithoutEnd.*(labels|faces)",
         note="No buffer is overrun, as tokens are scanned in place: the limit alone is gone, and 5000 digits pass for a "
              "wrapped label."),
    dict(place="digit runs beyond the token buffer (reals)", file="src/LibCore/Numbers.cpp",
         old="if (token.size() > MAX_NUMBER_LENGTH || ClassicLocale::get() == nullptr) {",
         new="if (ClassicLocale::get() == nullptr) {",
         tests="Numbers.AWholeToken",
         note="Tokens of any length are copied and converted."),

    # --- more elements than the count
    dict(place="more elements than the count: labels ascii", tests="OFFileLists.AListThatDiffers",
         note="Writes behind the target.", **WALK_LABELS),
    dict(place="more elements than the count: labels binary", file=LISTS,
         old="readRaw(labels->data(), sizeof(int), labels->size()) : walkLabels(labels);",
         new="readRaw(labels->data(), sizeof(int), labels->size() + 1) : walkLabels(labels);",
         tests="OFFileLists.AsciiBinaryAndGzip|BadInput.CountsThatLieEnd.*rawLabels",
         note="Raw reads are bounded by the size of the target alone; with one more the bracket lands behind it."),
    dict(place="more elements than the count: points parallel", file=VECTORS,
         old="            threads[i].count = std::min(threads[i].count, values->size() - done);\n",
         new="",
         tests="OFFileLists.AListThatDiffers",
         note="All vectors of a chunk are copied behind the target."),
    dict(place="more elements than the count: points sequential (both guards)",
         edits=[(VECTORS, "while (*found < values->size() && skipToVector(p)) {", "while (skipToVector(p)) {"),
                ONLY_FINITE_WANTED],
         tests="FieldPieces.AListOfOdd.*vectors|OFFileBoundaryFields.PatchesGet|OFFileVectors",
         note="Either guard alone keeps the writes inside: the loop ends at a full target, and a vector takes no more "
              "components than there is room for. Both out: the vectors behind the list's end are written behind it."),
    dict(place="more elements than the count: vectors into an array that is no multiple of three",
         file=ONLY_FINITE_WANTED[0], old=ONLY_FINITE_WANTED[1], new=ONLY_FINITE_WANTED[2],
         tests="Fuzz.fields|OFFileBoundaryFields|OFFileVectors|BadInput.*vectorField",
         note="A List<vector> in a patch of a scalar field of, say, four faces writes two values behind the array. No "
              "written test has a list of another kind than its field."),
    dict(place="more elements than the count: fields in pieces", file="src/foamfile/FieldPieces.h",
         old="m_pieces[used].isClean && *count + m_pieces[used].count < room; ++used) {",
         new="m_pieces[used].isClean; ++used) {",
         tests="FieldPieces.AListOfOdd",
         note="Pieces behind the end of the target are copied all the same."),
    dict(place="more elements than the count: points binary", file=VECTORS,
         old="m_isBinary ? readRaw(values->data(), sizeof(double), values->size()) : readVectorsPar(values);",
         new="m_isBinary ? readRaw(values->data(), sizeof(double), values->size() + 1) : readVectorsPar(values);",
         tests="OFFileLists.AsciiBinaryAndGzip",
         note="The bracket behind the raw values lands behind the target."),
    dict(place="more elements than the count: faces parallel", file=FACES,
         old="""            const bool isTooMuch = nodesDone + threads[i].nodeCount > MAX_NODES;
            threads[i].cutTo(isTooMuch ? 0 : faces->faceCount() - facesDone);
""",
         new="""            if (nodesDone + threads[i].nodeCount > MAX_NODES) {
                threads[i].cutTo(0);
            }
""",
         tests="OFFileLists.AListThatDiffers|BadInput.CountsThatLieEnd.*faces",
         note="Counts and offsets of the faces beyond the promised ones are written behind their arrays."),
    dict(place="more elements than the count: faces sequential", tests="OFFileFaces|Fuzz.lists",
         note="Shared with the ascii compact list. Asks the tests of the sequential door alone; besides the overrun the "
              "bracket that ends the list is taken for a bad face.", **WALK_FACES),
    dict(place="more elements than the count: compact faces ascii", tests="BadInput.CountsThatLieEnd.*compactFaces",
         note="The same guard, seen by lists of compact faces whose count is too small.", **WALK_FACES),
    dict(place="more elements than the count: compact faces binary, fewer labels than offsets say", file=FACES,
         old="    while (*found < planned && nodesOfFaces(offsets.data(), *found + 1) <= labels) {",
         new="    while (*found < planned && labels != MAX_NODES) {", tests="OFFileFaces.RawOffsets",
         note="Faces whose labels the file lacks count as read, with labels that are not there."),
    dict(place="more elements than the count: cell zones", tests="BadInput.CountsThatLieEnd.*ones|OFFileZones|Fuzz.zones",
         note="The guard of the labels, seen by cell zones.", **WALK_LABELS),
    dict(place="more elements than the count: face zones and flip maps", tests="OFFileZones|Fuzz.zones",
         note="The guard of the labels, seen by the tests of zones alone; flips are read by the same walk.", **WALK_LABELS),
    dict(place="more elements than the count: flip maps, a brace at the end of the line", file=ZONES,
         old="for (std::size_t i = 0; i + 1 < line.size(); ++i) {",
         new="for (std::size_t i = 0; i < line.size(); ++i) {",
         tests="BadInput.EveryByte.*ones",
         note="The character behind the line is read as the flip."),
    dict(place="more elements than the count: fields scalar interior", tests="FieldPieces.AListOfOdd.*scalars|OFFileFields",
         note="Scalars behind the end of the target are written behind it.", **WALK_SCALARS),
    dict(place="more elements than the count: patch lists ascii",
         tests="OFFileBoundaryFields|BadInput.CountsThatLieEnd.*field",
         note="The same guard, seen by the tests of patches.", **WALK_SCALARS),
    dict(place="more elements than the count: scalar interior on one line", file=FIELDS,
         old="""    for (double& value : *values) {
        value = leadingNumber(words.next());
    }
""",
         new="""    std::size_t i = 0;
    for (std::wstring_view word = words.next(); !word.empty(); word = words.next()) {
        (*values)[i++] = leadingNumber(word);
    }
""",
         tests="OFFileFields|Fuzz.fields|BadInput.*fieldOnLines",
         note="Walks over the words and not over the target. No test has more words on the line than its count, and none "
              "has fewer for scalars (WhatALineLacks has it for vectors)."),
    dict(place="more elements than the count: count of the interior against the array",
         tests="OFFileFields.FormsThat|Results.AreUndefinedWhere",
         note="A list of another size than the array counts as read. Reads stay within the array, but where the file has "
              "fewer values than the array and the count is larger than the array, `found / width` divides by 0.",
         **FIELD_COUNT),
    dict(place="more elements than the count: uniform interior", file=FIELDS,
         old="for (std::size_t i = 0; i + width <= values->size(); i += width) {",
         new="for (std::size_t i = 0; i < values->size(); i += width) {",
         tests="OFFileFields.EveryForm",
         note="An array that is no multiple of the width is overrun."),
    dict(place="more elements than the count: uniform tensor patch (nine values into six)", file=PATCHES,
         old="const std::size_t rounds = values->size() / numbers.size();",
         new="const std::size_t rounds = (values->size() + numbers.size() - 1) / numbers.size();",
         tests="OFFileBoundaryFields.Tensors|Fuzz.fields|Fuzz.case",
         note="A patch of one face has six values and nine are written; of two faces (12) the second round ends exactly at "
              "12. The test has three faces only, where both forms make two rounds."),
    dict(place="more elements than the count: patch lists binary", file=PATCHES,
         old="const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(present, values->size()));",
         new="const auto wanted = static_cast<std::size_t>(present);",
         tests="OFFileBoundaryFields.ABinaryCase",
         note="The count in the file decides how much is written into the array of the patch."),
    dict(place="more elements than the count: interior binary", file=FIELDS,
         old="*found = readRaw(values->data(), sizeof(double), values->size());",
         new="*found = readRaw(values->data(), sizeof(double), values->size() + 1);",
         tests="OFFileBoundaryFields.ABinaryCase",
         note="What follows the raw values lands behind the array."),

    # --- faceCompactList
    dict(place="faceCompactList with falling offsets", file=FACES,
         old="return static_cast<std::size_t>(std::is_sorted_until(offsets, offsets + faceCount + 1) - offsets) - 1;",
         new="return offsets == nullptr ? 0 : faceCount;", tests="OFFileFaces.RawOffsets",
         note="A falling offset gives a face of a wrapped count (254 labels), which may reach beyond the labels."),
    dict(place="faceCompactList with huge offsets", file=FACES,
         old="readCompactNodes(faces, claimed, canHold(claimed, sizeof(int)))", new="readCompactNodes(faces, claimed, true)",
         tests="OFFileFaces.RawOffsets", env=LIMIT,
         note="Memory is taken for as many labels as the last offset says: 8 and 16 GB in the test, hence env."),

    # --- labels, owners, neighbours, ranges, ids beyond the mesh
    dict(place="labels beyond the mesh; fewer points than labels say", file=CHECK,
         old="return label >= 0 && label < nodeCount;", new="return label >= 0 && nodeCount >= 0;",
         tests="DamagedMesh|Fuzz.meshes|TriSurface.FacesWithout",
         note="Points of labels beyond the points are read for patches and zones, and reach the host."),
    dict(place="faces whose offsets lie outside the labels", file=CHECK,
         old="return offset >= 0 && offset <= nodesSize - faces.nodeCounts[face];",
         new="return offset >= 0 && nodesSize >= 0;",
         tests="DamagedMesh.LabelsWithout|MeshConversion.EveryRoad|TriSurface.Offsets",
         note="Labels are read behind `nodes`."),
    dict(place="owners (negative in binary) and neighbours beyond the cells", file=TABLE,
         old="""            if (const auto cell = static_cast<std::uint32_t>(label); cell < cellCount) {
                ++m_ends[cell];
""",
         new="""            if (const auto cell = static_cast<std::uint32_t>(label); cell < cellCount || cell != 0) {
                ++m_ends[cell];
""",
         tests="DamagedMesh.OwnersAnd|Fuzz.meshes",
         note="Counters of cells that are not there are written. (The pass that inserts has its own test: see EXTRA.)"),
    dict(place="more owners than faces", file=CHECK,
         old="""    if (mesh->owners().size() > mesh->faces().faceCount()) {
        mesh->owners().resize(mesh->faces().faceCount());
    }
""",
         new="",
         tests="DamagedMesh.OwnersAnd|Fuzz.meshes",
         note="Cells get faces that are not there."),
    dict(place="more neighbours than owners", file=CHECK,
         old="""    if (mesh->neighbors().size() > mesh->owners().size()) {
        mesh->neighbors().resize(mesh->owners().size());
    }
""",
         new="",
         tests="DamagedMesh.OwnersAnd|MeshConversion.EveryRoad",
         note="Neighbours are counted, but not inserted: entries of the table stay uninitialised and name any face."),
    dict(place="patch ranges beyond the mesh", file=GROUPS,
         old="const std::int64_t end = std::clamp<std::int64_t>(start + claimed, first, meshEnd);",
         new="const std::int64_t end = std::max<std::int64_t>(start + claimed, first);",
         tests="BoundaryGroup.APatchBeyond", env=LIMIT,
         note="Faces behind the last one are read. A later case of the test asks for 17 GB, hence env."),
    dict(place="patch faces without an owner", file=GROUPS,
         old="boundary->cellIndex(i) = face < owners.size() ? owners[face] : -1;",
         new="boundary->cellIndex(i) = owners[face];",
         tests="BoundaryGroup.APatchBeyond",
         note="Owners behind the end of a short list are read."),
    dict(place="face zone ids beyond the mesh", file=GROUPS,
         old="if (face >= 0 && index < mesh.faceCount() && mesh.nodeCounts[index] <= labelsLeft) {",
         new="if (mesh.nodeCounts[index] <= labelsLeft) {", tests="FaceZoneGroup",
         note="Faces that are not there are read. (`face >= 0` is no guard of its own: a negative label is a huge size.)"),
    dict(place="cell zone ids beyond the mesh", file=GEOMETRY,
         old="return cell < 0 || static_cast<std::size_t>(cell) >= elementCount; });",
         new="return cell < 0 && static_cast<std::size_t>(cell) >= elementCount; });",
         tests="Geometry.LaysGroupsOut",
         note="Part ids of cells that are not there are written, and such cells reach the host's sets."),

    # --- values
    dict(place="the tensor stride", file=PATCHES,
         old="std::min(components, source.size() - first),", new="components,",
         tests="OFFileBoundaryFields.Tensors",
         note="Nine values are read where the array has three left."),
    dict(place="the tensor stride; a mapping older than the mesh", file=PATCHES,
         old="if (first < source.size()) {", new="if (first != source.size()) {",
         tests="OFFileBoundaryFields|Fuzz.fields",
         note="Values behind the mesh's array are read. The written test has the id 3 for three values, where the minimum "
              "below copies nothing (so `!=` and no guard at all are the same to it); a larger id occurs in Fuzz.fields "
              "only."),
    dict(place="`List<scalar> 0();` before averaging (both guards)",
         edits=[HOLDS_VALUES,
                (AVERAGE, "const std::size_t itemCount = std::min(nodeCounts.size(), itemValues.size() / width);",
                 "const std::size_t itemCount = nodeCounts.size();")],
         tests="Results.AreUndefinedWhere",
         note="Either alone suffices: without values nothing is averaged, and the walk ends with the shorter array. Both "
              "out: values are read from an empty array."),

    # --- one-line lists
    dict(place="one-line lists with too few tokens", file=FIELDS,
         old="if (component == 0 && !word.empty()) {", new="if (component == 0) {",
         tests="OFFileFields.WhatALineLacks",
         note="One character is taken off an empty word."),
    dict(place="one-line lists with a line too short (both guards)",
         edits=[(FIELDS, "const std::size_t end = std::max(first, text.size() - std::min(text.size(), LIST_TAIL));",
                 "const std::size_t end = text.size() - LIST_TAIL;"),
                (FIELDS, "const dvn::Str items(std::wstring(text.substr(first, end - first)));",
                 "const dvn::Str items(std::wstring(text.data() + first, end - first));")],
         tests="OFFileFields|Fuzz.fields|BadInput.EveryPrefix.*fieldOnLines",
         note="`substr` cuts at the end of the text, so either alone suffices. Both out: std::length_error of a negative "
              "length leaves for `... 3(`. BadInput swallows every std::logic_error, std::length_error among them, so only "
              "a fuzz input can show it."),

    # --- later files, order of calls
    dict(place="a later `points` file with fewer points", file=RESULTS,
         old="if (item < sourceCount) {", new="if (item < sourceCount || sourceCount != 0) {",
         tests="Results.DisplaceNodes",
         note="Points behind the end of the file's list are read."),
    dict(place="results before geometry", file="src/provider/ValueArrays.cpp",
         old="return count == OFPart::UNKNOWN_COUNT ? 0 : count;", new="return count;",
         tests="Results.AreEmptyBefore",
         note="Arrays of 2^64 - 1 values: std::length_error."),

    # --- files
    dict(place="a folder, FIFO or device in place of a file (all three guards)",
         edits=[("src/foamfile/OFUtilities.cpp", "return stat(path.toUtf8().c_str(), &info) == 0 && S_ISREG(info.st_mode);",
                 "return stat(path.toUtf8().c_str(), &info) == 0;"),
                ("src/foamfile/GzStream.cpp",
                 "if (descriptor >= 0 && (fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode))) {",
                 "if (descriptor >= 0 && fstat(descriptor, &info) != 0) {"),
                ("src/foamfile/GzStream.cpp", "O_RDONLY | O_CLOEXEC | O_NONBLOCK", "O_RDONLY | O_CLOEXEC")],
         tests="OFFileOpen.OnlyRegular", timeout=30,
         note="Opening the pipe blocks; /dev/zero is read for ever. Hangs, hence timeout. The stat alone suffices for a "
              "file that stays what it is, the fstat alone suffices too: each single mutant is equivalent but for a file "
              "that is replaced between the two, which no test does."),
    dict(place="`gzread` of -1", file="src/foamfile/GzStream.cpp",
         old="done += static_cast<std::size_t>(std::max(came, 0));", new="done += static_cast<std::size_t>(came);",
         tests="OFFileOpen.DamagedCompression|BadInput.EveryByte.*labels",
         note="The count of bytes wraps to 2^64 - 1, and the terminating NUL goes in front of the buffer."),

    # --- the rest
    dict(place="the flags of two finishing tasks", file="src/mesh/OFTriSurfaceReader.cpp",
         old="""    bool hasPoints = false;
    bool hasCenters = false;
    bool hasFaces = false;
    tbb::task_group_context context;
    tbb::parallel_invoke([&] { hasPoints = readPoints(folder, &surface->points()); },
                         [&] { hasCenters = readFaceCenters(folder, &surface->facecenters()); },
                         [&] { hasFaces = readFaces(folder, &surface->faces()); }, context);
    return hasPoints && hasCenters && hasFaces;
""",
         new="""    bool isRead = false;
    tbb::task_group_context context;
    tbb::parallel_invoke([&] { isRead = readPoints(folder, &surface->points()); },
                         [&] { isRead = readFaceCenters(folder, &surface->facecenters()); },
                         [&] { isRead = readFaces(folder, &surface->faces()); }, context);
    return isRead;
""",
         tests="TriSurface",
         note="A race, which only the thread sanitizer sees for sure; with address alone it is caught if the missing file's "
              "task does not end last. Repeat it some times. (The flags of OFTriSurfaceToDDP are always true, so one "
              "shared flag there shows in the thread sanitizer alone.)"),
    dict(place="code units beyond ASCII given to the C library's case functions", file="src/LibCore/String.cpp",
         old="    return String(mapUnits(m_units, L'A', L'Z', L'a' - L'A'));\n",
         new="""    std::wstring units = m_units;
    for (wchar_t& unit : units) {
        unit = static_cast<wchar_t>(std::tolower(static_cast<int>(unit)));
    }
    return String(std::move(units));
""",
         tests="Str.BytesBeyondAscii",
         note="The C library takes -128 to 255, and gives the byte 0xC4 back as 196. Units outside that cannot come from "
              "files, whose bytes are widened with their sign."),
    dict(place="an empty `sampleSurface`", file="src/casemodel/OFReaderGeometry.cpp",
         old="    if (const auto first = std::min_element(times.begin(), times.end()); first != times.end()) {\n",
         new="""    {
        const auto first = std::min_element(times.begin(), times.end());
""",
         tests="OFReaderCase|MetaData|Fuzz.case",
         note="The first of no names is followed: a null pointer. No test has the folder without a time folder in it."),
]

EXTRA = [
    dict(place="labels below 0", file=CHECK, old="return label >= 0 && label < nodeCount;",
         new="return label < nodeCount;", tests="DamagedMesh.LabelsWithout|TriSurface.FacesWithout|Fuzz.meshes",
         note="A negative label reads in front of the points."),
    dict(place="face offsets below 0", file=CHECK,
         old="return offset >= 0 && offset <= nodesSize - faces.nodeCounts[face];",
         new="return offset <= nodesSize - faces.nodeCounts[face];", tests="MeshConversion.EveryRoad",
         note="Labels are read in front of `nodes`."),
    dict(place="owners and neighbours beyond the cells, second pass", file=TABLE,
         old="""        if (const auto cell = static_cast<std::uint32_t>(label); cell < cellCount) {
            m_entries[m_ends[cell]++] = entry;
""",
         new="""        if (const auto cell = static_cast<std::uint32_t>(label); cell < cellCount || cell != 0) {
            m_entries[m_ends[cell]++] = entry;
""",
         tests="DamagedMesh.OwnersAnd|Fuzz.meshes", note="The same in the pass that inserts."),
    dict(place="patch start below 0", file=GROUPS,
         old="const std::int64_t first = std::clamp<std::int64_t>(start, 0, meshEnd);",
         new="const std::int64_t first = std::min<std::int64_t>(start, meshEnd);", tests="BoundaryGroup.APatchBeyond",
         env=LIMIT, note="Faces in front of the first one are read."),
    dict(place="cell zone ids below 0 (binary)", file=GEOMETRY,
         old="return cell < 0 || static_cast<std::size_t>(cell) >= elementCount; });",
         new="return static_cast<int>(elementCount) >= 0 && cell >= static_cast<int>(elementCount); });",
         tests="Geometry|Fuzz.case|OpenFoamProvider", note="Written in front of the part ids."),
    dict(place="labels of a sampled surface beyond its points", file=CHECK,
         old="""        if (!labels.empty() &&
            std::ranges::all_of(labels, [labelEnd](int label) { return isLabel(label, labelEnd); })) {
""",
         new="""        if (!labels.empty() && labelEnd >= 0) {
""",
         tests="TriSurface.FacesWithout", note="Labels without a point reach the host."),
    dict(place="offsets of a sampled surface outside its labels", file=CHECK,
         old="if (begin < keptEnd || !isInside(*faces, face, nodesSize)) {", new="if (begin < keptEnd) {",
         tests="TriSurface.Offsets", note="Labels are read behind `nodes`."),
    dict(place="a mapping shorter than its patch", file=PATCHES, old="if (i >= ids.size() || ids[i] < 0) {",
         new="if (ids[i] < 0) {", tests="OFFileBoundaryFields.AMapping", note="Ids behind the mapping are read."),
    dict(place="a negative id in a mapping (both guards)",
         edits=[(PATCHES, "if (i >= ids.size() || ids[i] < 0) {", "if (i >= ids.size()) {"),
                (PATCHES, "if (first < source.size()) {", "if (first != source.size()) {")],
         tests="OFFileBoundaryFields.AMapping",
         note="`ids[i] < 0` alone is covered by the test of `first`, as a negative id gives a huge place."),
    dict(place="`List<scalar> 0();` before averaging (first guard)", file=HOLDS_VALUES[0], old=HOLDS_VALUES[1],
         new=HOLDS_VALUES[2], tests="Results.AreUndefinedWhere", note="Nodes show what no cell gave them."),
    dict(place="averaging: connectivity shorter than the node counts",
         edits=[(AVERAGE, "item < itemCount && nodeCounts[item] <= nodesLeft; ++item) {", "item < itemCount; ++item) {"),
                (AVERAGE, "    std::size_t nodesLeft = nodes.size();\n", ""),
                (AVERAGE, "        nodesLeft -= count;\n", "")],
         tests="NodeAveraging.StaysInside", note="Labels behind the connectivity are read."),
    dict(place="averaging: labels that name no node", file=AVERAGE,
         old="bool hasNode(int node) const { return static_cast<std::size_t>(node) < m_itemCounts.size(); }",
         new="bool hasNode(int node) const { return node != 0 || !m_itemCounts.empty(); }",
         tests="NodeAveraging.StaysInside", note="Sums outside the node values are written."),
    dict(place="patch values without a token: `value ;`", file=PATCHES,
         old="""    if (tokens.empty()) {
        return;
    }
    *firstToken""",
         new="    *firstToken", tests="OFFileBoundaryFields|BadInput.*field|Fuzz.fields",
         note="The first of no tokens is followed. No written test and no corpus entry has the line."),
    dict(place="patch values with one token: `value nonuniform;`", file=PATCHES,
         old="const dvn::Str type = tokens.size() > 1 ? tokens[1] : dvn::Str();",
         new="const dvn::Str type = tokens[1];", tests="BadInput.EveryByte.*/field",
         note="The second of one token is followed."),
    dict(place="a uniform vector whose first token is the bracket alone: `uniform ( 1 2 3)`", file=PATCHES,
         old="if (index >= tokens.size() || tokens[index].size() <= skip) {", new="if (index >= tokens.size()) {",
         tests="OFFileBoundaryFields|BadInput.*field|Fuzz.fields",
         note="`subStr` from behind the text: an assertion, and an empty text where there are none."),
    dict(place="two-pass lists with more lines than the target", file="src/foamfile/OFFileChunkStrategy.cpp",
         old="const std::size_t count = std::min(lines, items - itemsRead);", new="const std::size_t count = lines;",
         tests="OFFileLines.AListOverMany", note="Lines behind the list are written behind the target."),
    dict(place="a face of no nodes: `0(`", file=FACES,
         old="if (!TokenScanner::scanFaceSize<END>(p, &count) || count < 1) {",
         new="if (!TokenScanner::scanFaceSize<END>(p, &count)) {", tests="BadInput.EveryByte.*/faces|Fuzz.lists",
         note="The last label of no labels is written in front of the array."),
    dict(place="a worker's chunk of more vectors than one step of growth", file=VECTORS,
         old="if (thread->count + COMPONENTS > thread->values.capacity()) {", new="if (thread->values.capacity() == 0) {",
         tests="OFFileLists.AsciiBinaryAndGzip", note="The values of a chunk on one line are written behind the buffer."),
    dict(place="a negative cell count", file=CHECK, old="""    if (claimed < 0) {
        mesh->setCellCount(0);
    } else if (claimed > bound) {
""", new="""    if (claimed > bound) {
""", tests="DamagedMesh.CellCount", env=LIMIT, note="Arrays of 2^64 - 3 cells: std::length_error."),
    dict(place="a cell count that no faces can fill", file=CHECK, old="} else if (claimed > bound) {",
         new="} else if (claimed > bound && bound < 0) {", tests="DamagedMesh.CellCount", env=LIMIT,
         note="Memory for two thousand million cells."),
    dict(place="counts beyond the file: zones", file=ZONES,
         old="if (count < 0 || !canHold(static_cast<std::uint64_t>(count), BYTES_PER_NUMBER)) {", new="if (count < 0) {",
         tests="OFFileZones.Broken", env=LIMIT,
         note="Memory for what the count says. (`count < 0` is covered by canHold, a negative count being a huge one.)"),
    dict(place="counts beyond the file: lists", file=LISTS,
         old="*count >= 0 && *count <= largest && canHold(static_cast<std::uint64_t>(*count), bytesPerItem);",
         new="*count >= 0 && *count <= largest && bytesPerItem != 0;", tests="OFFileLists.ACountBeyond", env=LIMIT,
         note="Memory for what the count says."),
    dict(place="the end of the text in every scan for a character", file="src/foamfile/TokenScanner.h",
         old="""    for (; *cursor != '\\0'; ++cursor) {
        if (*cursor == sought) {
            ++cursor;
            return true;
        }
    }
    return false;
""",
         new="""    while (*cursor != sought) {
        ++cursor;
    }
    ++cursor;
    return true;
""",
         tests="OFFileVectors|BadInput.EveryPrefix.*vectors", timeout=120,
         note="Scans run on behind the chunk to the end of its buffer and beyond."),
]

# Spots beside the first one of their place; kept out of GUARDS to leave that at a size that can be built.

GUARDS += EXTRA


def edits_of(guard):
    return guard["edits"] if "edits" in guard else [(guard["file"], guard["old"], guard["new"])]


def run(command, folder, **options):
    return subprocess.run(command, cwd=folder, capture_output=True, text=True, errors="replace", **options)


def copy_sources(root, source):
    """Only what differs is written, so that a build is used again."""
    for name in run(["git", "ls-files"], root).stdout.split("\n"):
        old, new = root / name, source / name
        if name and old.is_file() and not (new.is_file() and new.read_bytes() == old.read_bytes()):
            new.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(old, new)


def build(source):
    if not (source / "build/asan/build.ninja").is_file():
        made = run(["cmake", "--preset", "asan", "-DCMAKE_UNITY_BUILD=OFF", "-DOFP_FUZZ=OFF",
                    "-DOFP_WARNINGS_AS_ERRORS=OFF"] + os.environ.get("GUARDS_CMAKE", "").split(), source)
        if made.returncode != 0:
            sys.exit(made.stderr)
    return run(["cmake", "--build", "build/asan"], source)


def verdict(guard, source):
    originals = {}
    for file, old, new in edits_of(guard):
        text = (source / file).read_text()
        if text.count(old) != 1:
            return "the text to change is not there once"
        originals.setdefault(file, text)
        (source / file).write_text(text.replace(old, new))
    try:
        made = build(source)
        if made.returncode != 0:
            return "does not compile"
        limit = str(guard.get("timeout", 120))
        # Several rounds for what depends on which thread ends first.
        tested = run(["ctest", "--preset", "asan", "-j2", "-R", guard["tests"], "--timeout", limit, "--repeat",
                      f"until-fail:{guard.get('rounds', 1)}", "--stop-on-failure"], source,
                     env={**os.environ, **guard.get("env", {})})
    finally:
        for file, text in originals.items():
            (source / file).write_text(text)
    if "No tests were found" in tested.stdout + tested.stderr:
        return "no such tests"
    failed = re.findall(r"^\t *\d+ - (.*) \((?:Failed|Timeout|SEGFAULT|Subprocess aborted|ILLEGAL).*\)", tested.stdout, re.M)
    return f"noticed by {failed[0]}" if failed else "NOT NOTICED"


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    source = pathlib.Path(sys.argv[1]).resolve() / "source"
    copy_sources(pathlib.Path(__file__).resolve().parent.parent, source)
    made = build(source)
    if made.returncode != 0:
        sys.exit(made.stdout[-2000:])
    missed = 0
    for guard in GUARDS:
        if re.search(sys.argv[2] if len(sys.argv) > 2 else "", guard["place"]):
            told = verdict(guard, source)
            missed += 0 if told.startswith("noticed") else 1
            print(f"| {guard['place']} | {told} |", flush=True)
    sys.exit(1 if missed else 0)


if __name__ == "__main__":
    main()
