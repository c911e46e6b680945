// SPDX-License-Identifier: MIT
#include "sample/SampleMesh.h"

#include <cmath>

namespace {

SamplePoint operator+(const SamplePoint& a, const SamplePoint& b)
{
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
SamplePoint operator-(const SamplePoint& a, const SamplePoint& b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
SamplePoint operator*(double factor, const SamplePoint& a)
{
    return {factor * a[0], factor * a[1], factor * a[2]};
}

double dot(const SamplePoint& a, const SamplePoint& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

SamplePoint cross(const SamplePoint& a, const SamplePoint& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

/// Faces need not be flat, as in a moved mesh; OpenFOAM then defines the area by the fan of triangles about the mean.
void measureFace(const SampleMesh& mesh, int face, SamplePoint* area, SamplePoint* centre)
{
    const std::span<const std::int32_t> nodes = mesh.nodesOfFace(face);
    SamplePoint mean = {};
    for (const std::int32_t node : nodes) {
        mean = mean + mesh.point(node);
    }
    mean = (1.0 / static_cast<double>(nodes.size())) * mean;
    SamplePoint weighted = {};
    double weight = 0;
    *area = {};
    for (std::size_t k = 0; k < nodes.size(); ++k) {
        const SamplePoint here = mesh.point(nodes[k]);
        const SamplePoint next = mesh.point(nodes[(k + 1) % nodes.size()]);
        const SamplePoint triangle = 0.5 * cross(here - mean, next - mean);
        const double size = std::sqrt(dot(triangle, triangle));
        *area = *area + triangle;
        weighted = weighted + (size / 3) * (here + next + mean);
        weight += size;
    }
    *centre = weight > 0 ? (1 / weight) * weighted : mean;
}

/// Calls `use(cell, face, sign)` for both sides of every face; the area vector times the sign points out of the cell.
template <typename Use>
void forEachSide(const SampleMesh& mesh, Use use)
{
    for (std::size_t face = 0; face < mesh.owners.size(); ++face) {
        use(static_cast<std::size_t>(mesh.owners[face]), face, 1.0);
        if (face < mesh.neighbours.size()) {
            use(static_cast<std::size_t>(mesh.neighbours[face]), face, -1.0);
        }
    }
}

/// Two passes over the faces, because the first one must find a point inside each cell.
void measureCells(const SampleMesh& mesh, SampleMeasures* measures)
{
    const auto cellCount = static_cast<std::size_t>(mesh.cellCount);
    std::vector<SamplePoint> middles(cellCount, SamplePoint{});
    std::vector<double> sides(cellCount, 0.0);
    forEachSide(mesh, [&](std::size_t cell, std::size_t face, double) {
        middles[cell] = middles[cell] + measures->faceCentres[face];
        sides[cell] += 1;
    });
    measures->cellVolumes.assign(cellCount, 0.0);
    measures->cellCentres.assign(cellCount, SamplePoint{});
    forEachSide(mesh, [&](std::size_t cell, std::size_t face, double sign) {
        const SamplePoint middle = (1 / sides[cell]) * middles[cell];
        const SamplePoint& base = measures->faceCentres[face];
        const double volume = sign * dot(measures->faceAreas[face], base - middle) / 3;
        measures->cellVolumes[cell] += volume;
        // The centre of a pyramid is at a quarter of its height.
        measures->cellCentres[cell] = measures->cellCentres[cell] + volume * (0.75 * base + 0.25 * middle);
    });
    for (std::size_t cell = 0; cell < cellCount; ++cell) {
        measures->cellCentres[cell] = (1 / measures->cellVolumes[cell]) * measures->cellCentres[cell];
    }
}

} // namespace

std::vector<SamplePatch> boxPatches()
{
    return {{"inlet", "patch"},       {"outlet", "patch"},       {"front", "symmetryPlane", "symmetryPlane"},
            {"back", "wall", "wall"}, {"floor", "wall", "wall"}, {"ceiling", "patch"}};
}

SampleMeasures measure(const SampleMesh& mesh)
{
    SampleMeasures measures;
    measures.faceAreas.resize(mesh.owners.size());
    measures.faceCentres.resize(mesh.owners.size());
    for (int face = 0; face < mesh.faceCount(); ++face) {
        const auto i = static_cast<std::size_t>(face);
        measureFace(mesh, face, &measures.faceAreas[i], &measures.faceCentres[i]);
    }
    measureCells(mesh, &measures);
    return measures;
}
