// SPDX-License-Identifier: MIT
#include "sample/SampleSurfaces.h"

#include "sample/FoamOutput.h"
#include "sample/SampleFields.h"

#include <array>
#include <map>
#include <string>
#include <vector>

namespace {

// The patch that is sampled too: high x.
constexpr std::size_t OUTLET = 1;

/// A surface of triangles.
struct TriangleSurface
{
    std::vector<double> points;
    std::vector<std::int32_t> nodes; ///< three per triangle

    /// Adds two triangles split along the first diagonal, both in the direction of the quadrilateral.
    void addQuad(const std::array<std::int32_t, 4>& quad)
    {
        for (const std::size_t corner : std::array<std::size_t, 6>{0, 1, 2, 2, 3, 0}) {
            nodes.push_back(quad[corner]);
        }
    }
};

/// The plane has the nodes of the lattice's lowest layer, moved up, and uses their numbering.
TriangleSurface middlePlane(const BoxLattice& lattice)
{
    TriangleSurface surface;
    const double z = 0.5 * lattice.size()[2];
    for (int j = 0; j <= lattice.counts[1]; ++j) {
        for (int i = 0; i <= lattice.counts[0]; ++i) {
            surface.points.insert(surface.points.end(), {BoxLattice::SPACING * i, BoxLattice::SPACING * j, z});
        }
    }
    for (int j = 0; j < lattice.counts[1]; ++j) {
        for (int i = 0; i < lattice.counts[0]; ++i) {
            surface.addQuad({lattice.node(i, j, 0), lattice.node(i + 1, j, 0), lattice.node(i + 1, j + 1, 0),
                             lattice.node(i, j + 1, 0)});
        }
    }
    return surface;
}

/// The faces of a patch with their own points, numbered in order of first use.
TriangleSurface patchSurface(const SampleMesh& mesh, const SamplePatch& patch)
{
    TriangleSurface surface;
    std::map<std::int32_t, std::int32_t> labels;
    for (int face = patch.startFace; face < patch.startFace + patch.faceCount; ++face) {
        std::array<std::int32_t, 4> quad = {};
        for (std::size_t k = 0; k < quad.size(); ++k) {
            const std::int32_t node = mesh.nodesOfFace(face)[k];
            const auto [label, added] = labels.try_emplace(node, static_cast<std::int32_t>(labels.size()));
            if (added) {
                const SamplePoint place = mesh.point(node);
                surface.points.insert(surface.points.end(), place.begin(), place.end());
            }
            quad[k] = label->second;
        }
        surface.addQuad(quad);
    }
    return surface;
}

SamplePoint pointOf(const TriangleSurface& surface, std::size_t label)
{
    return {surface.points[3 * label], surface.points[3 * label + 1], surface.points[3 * label + 2]};
}

/// The centres of the triangles; readers check that their number matches.
std::vector<double> centresOf(const TriangleSurface& surface)
{
    std::vector<double> centres;
    for (std::size_t first = 0; first < surface.nodes.size(); first += 3) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            double sum = 0;
            for (std::size_t k = 0; k < 3; ++k) {
                sum += pointOf(surface, static_cast<std::size_t>(surface.nodes[first + k]))[axis];
            }
            centres.push_back(sum / 3);
        }
    }
    return centres;
}

/// These files have a header, but no closing line.
void writeVectors(const std::filesystem::path& folder, const char* object, const std::vector<double>& values)
{
    FoamOutput file(folder / object);
    file.header({"vectorField", {}, object, {}});
    file.text("\n");
    file.valueList(values, 3);
    file.text("\n");
    file.close();
}

void writeTriangles(const std::filesystem::path& folder, const TriangleSurface& surface)
{
    std::vector<std::int32_t> offsets = {0};
    for (std::size_t end = 3; end <= surface.nodes.size(); end += 3) {
        offsets.push_back(static_cast<std::int32_t>(end));
    }
    FoamOutput file(folder / "faces");
    file.header({"faceList", {}, "faces", {}});
    file.text("\n");
    file.faceList(offsets, surface.nodes);
    file.text("\n");
    file.close();
}

/// Value files of sampled surfaces have no header; they begin with a blank line.
void writeValues(const std::filesystem::path& folder, const char* object, const std::vector<double>& values,
                 std::size_t dimension)
{
    makeFolder(folder);
    FoamOutput file(folder / object);
    file.text("\n");
    file.valueList(values, dimension);
    file.text("\n");
    file.close();
}

void writeSurface(const std::filesystem::path& folder, const TriangleSurface& surface, double time)
{
    makeFolder(folder);
    writeVectors(folder, "points", surface.points);
    writeTriangles(folder, surface);
    writeVectors(folder, "faceCentres", centresOf(surface));
    std::vector<double> temperatures;
    std::vector<double> velocities;
    for (std::size_t label = 0; label < surface.points.size() / 3; ++label) {
        temperatures.push_back(sampleTemperature(pointOf(surface, label), time));
        const SamplePoint velocity = sampleVelocity(pointOf(surface, label), time);
        velocities.insert(velocities.end(), velocity.begin(), velocity.end());
    }
    writeValues(folder / "scalarField", "T", temperatures, 1);
    writeValues(folder / "vectorField", "U", velocities, 3);
}

} // namespace

void writeSampledSurfaces(const std::filesystem::path& folder, const BoxLattice& lattice, const SampleMesh& mesh,
                          double time)
{
    writeSurface(folder / "middle", middlePlane(lattice), time);
    writeSurface(folder / "outlet", patchSurface(mesh, mesh.patches[OUTLET]), time);
}
