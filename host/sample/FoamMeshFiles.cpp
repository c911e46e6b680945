// SPDX-License-Identifier: MIT
#include "sample/FoamMeshFiles.h"

#include <fmt/format.h>

namespace {

// Lists up to this length are on the line of their key, as OpenFOAM writes them.
constexpr std::size_t SHORT_LIST = 10;

/// The note contains the counts of the mesh; it is where readers find the number of cells.
void writeLabelFile(const FoamPlace& place, const std::string& object, const std::vector<std::int32_t>& labels,
                    const std::string& note, const FoamFormat& format)
{
    FoamOutput file(place.file(object), format);
    file.header({"labelList", place.location, object, note});
    file.text("\n");
    file.labelList(labels);
    file.footer();
}

/// Ascii and binary faces are different classes, not one class in two formats.
void writeFaces(const FoamPlace& place, const SampleMesh& mesh, const FoamFormat& format)
{
    FoamOutput file(place.file("faces"), format);
    file.header({format.binary ? "faceCompactList" : "faceList", place.location, "faces", {}});
    file.text("\n");
    file.faceList(mesh.faceOffsets, mesh.faceNodes);
    file.footer();
}

/// A dictionary, so it is plain text even with binary lists.
void writeBoundary(const FoamPlace& place, const std::vector<SamplePatch>& patches)
{
    FoamOutput file(place.file("boundary"));
    file.header({"polyBoundaryMesh", place.location, "boundary", {}});
    file.text(fmt::format("{}\n(\n", patches.size()));
    for (const SamplePatch& patch : patches) {
        file.text(fmt::format("    {}\n    {{\n        {:<16}{};\n", patch.name, "type", patch.type));
        for (const auto& [key, value] : patch.entries) {
            file.text(fmt::format("        {:<15} {};\n", key, value));
        }
        file.text(fmt::format("        {:<16}{};\n", "nFaces", patch.faceCount));
        file.text(fmt::format("        {:<16}{};\n    }}\n", "startFace", patch.startFace));
    }
    file.text(")");
    file.footer();
}

/// The labels entry of a zone, short or long.
void writeZoneLabels(FoamOutput* file, const std::string& key, const std::vector<std::int32_t>& labels)
{
    file->text(fmt::format("{:<16}List<label> ", key));
    if (labels.size() <= SHORT_LIST) {
        file->text(fmt::format("{}({});\n", labels.size(), fmt::join(labels, " ")));
        return;
    }
    file->text("\n");
    file->labelList(labels);
    file->text("\n;\n");
}

/// There is a short form for a value that applies to all faces.
void writeFlips(FoamOutput* file, const SampleFaceZone& zone)
{
    if (zone.flips.size() == 1) {
        file->text(fmt::format("{:<16}List<bool> {}{{{:d}}};\n", "flipMap", zone.faces.size(), bool{zone.flips[0]}));
        return;
    }
    file->text(fmt::format("{:<16}List<bool> \n", "flipMap"));
    file->labelList(std::vector<std::int32_t>(zone.flips.begin(), zone.flips.end()));
    file->text("\n;\n");
}

} // namespace

void writeMeshFiles(const FoamPlace& place, const SampleMesh& mesh, const FoamFormat& format)
{
    const std::string note = fmt::format("nPoints:{}  nCells:{}  nFaces:{}  nInternalFaces:{}", mesh.pointCount(),
                                         mesh.cellCount, mesh.faceCount(), mesh.internalFaceCount());
    writePoints(place, mesh.points, format);
    writeFaces(place, mesh, format);
    writeLabelFile(place, "owner", mesh.owners, note, format);
    writeLabelFile(place, "neighbour", mesh.neighbours, note, format);
    writeBoundary(place, mesh.patches);
}

void writePoints(const FoamPlace& place, const std::vector<double>& points, const FoamFormat& format)
{
    makeFolder(place.caseFolder / place.location);
    FoamOutput file(place.file("points"), format);
    file.header({"vectorField", place.location, "points", {}});
    file.text("\n");
    file.valueList(points, 3);
    file.footer();
}

void writeCellZones(const FoamPlace& place, const std::vector<SampleCellZone>& zones)
{
    FoamOutput file(place.file("cellZones"));
    file.header({"regIOobject", place.location, "cellZones", {}});
    file.text(fmt::format("{}\n(\n", zones.size()));
    for (const SampleCellZone& zone : zones) {
        file.text(fmt::format("{}\n{{\n    type cellZone;\n", zone.name));
        writeZoneLabels(&file, "cellLabels", zone.cells);
        file.text(&zone == &zones.back() ? "}\n" : "}\n\n");
    }
    file.text(")");
    file.footer();
}

void writeFaceZones(const FoamPlace& place, const std::vector<SampleFaceZone>& zones)
{
    FoamOutput file(place.file("faceZones"));
    file.header({"regIOobject", place.location, "faceZones", {}});
    file.text(fmt::format("{}\n(\n", zones.size()));
    for (const SampleFaceZone& zone : zones) {
        file.text(fmt::format("{}\n{{\n    type faceZone;\n", zone.name));
        // The count of a face zone is on its own line, where some readers expect it.
        file.text(fmt::format("{:<16}List<label> \n", "faceLabels"));
        file.labelList(zone.faces);
        file.text("\n;\n");
        writeFlips(&file, zone);
        file.text(&zone == &zones.back() ? "}\n" : "}\n\n");
    }
    file.text(")");
    file.footer();
}
