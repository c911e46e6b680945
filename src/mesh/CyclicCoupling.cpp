// SPDX-License-Identifier: MIT
#include "mesh/CyclicCoupling.h"

#include "records/Components.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <utility>

using rotation::Matrix;
using rotation::Vector;

namespace {

struct FaceGeometry
{
    Vector centre = {};
    Vector area = {}; ///< along the normal, as long as the face is large
};

Vector pointOf(const std::vector<double>& points, int node)
{
    const double* const point = points.data() + static_cast<std::size_t>(node) * VECTOR_COMPONENTS;
    return {point[0], point[1], point[2]};
}

Vector minus(const Vector& a, const Vector& b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

void addScaled(double factor, const Vector& vector, Vector* sum)
{
    for (std::size_t k = 0; k < VECTOR_COMPONENTS; ++k) {
        (*sum)[k] += factor * vector[k];
    }
}

Vector scaled(double factor, const Vector& vector)
{
    return {factor * vector[0], factor * vector[1], factor * vector[2]};
}

/// The mean of the centres of the triangles between the edges of a face and the mean of its points, by their areas. A
/// face that is not flat has the same centre in OpenFOAM only if it is divided in this way.
FaceGeometry geometryOfFace(const std::vector<double>& points, const int* nodes, std::size_t count)
{
    FaceGeometry face;
    if (count == 0) {
        return face;
    }
    Vector middle = {};
    for (std::size_t i = 0; i < count; ++i) {
        addScaled(1.0 / static_cast<double>(count), pointOf(points, nodes[i]), &middle);
    }
    double areas = 0.0;
    Vector weightedCentres = {};
    for (std::size_t i = 0; i < count; ++i) {
        const Vector a = pointOf(points, nodes[i]);
        const Vector b = pointOf(points, nodes[i + 1 == count ? 0 : i + 1]);
        const Vector doubled = rotation::cross(minus(b, a), minus(middle, a));
        const double area = 0.5 * std::sqrt(rotation::dot(doubled, doubled));
        addScaled(0.5, doubled, &face.area);
        for (const Vector& corner : {a, b, middle}) {
            addScaled(area / 3.0, corner, &weightedCentres);
        }
        areas += area;
    }
    face.centre = areas > 0.0 ? scaled(1.0 / areas, weightedCentres) : middle;
    return face;
}

/// The centres of a few cells.
class CellCentres
{
public:
    explicit CellCentres(std::size_t cellCount) : m_slots(cellCount, NO_SLOT) {}

    /// Asks for the centres of these cells, all of which the mesh has.
    void add(const std::vector<int>& cells);
    /// Computes all centres that were asked for.
    void compute(const OFPolymesh& mesh);
    const Vector& of(int cell) const { return m_centres[slotOf(cell)]; }

private:
    static constexpr std::uint32_t NO_SLOT = std::numeric_limits<std::uint32_t>::max();

    /// A face of one of the cells, with its area pointing out of the cell.
    struct Side
    {
        std::uint32_t slot;
        FaceGeometry face;
    };

    std::uint32_t slotOf(int cell) const { return m_slots[static_cast<std::size_t>(cell)]; }
    bool isAskedFor(int cell) const
    {
        // A negative label becomes a huge one. guard: centre-cells
        return static_cast<std::uint32_t>(cell) < m_slots.size() && slotOf(cell) != NO_SLOT;
    }
    std::vector<Side> sidesOf(const OFPolymesh& mesh) const;
    void setMeans(const std::vector<Side>& sides);

    std::vector<std::uint32_t> m_slots; ///< the place of each cell in the centres
    std::vector<Vector> m_centres;
};

void CellCentres::add(const std::vector<int>& cells)
{
    for (const int cell : cells) {
        if (!isAskedFor(cell)) {
            m_slots[static_cast<std::size_t>(cell)] = static_cast<std::uint32_t>(m_centres.size());
            m_centres.emplace_back();
        }
    }
}

std::vector<CellCentres::Side> CellCentres::sidesOf(const OFPolymesh& mesh) const
{
    std::vector<Side> sides;
    const FacesData& faces = mesh.faces();
    const std::vector<int>& owners = mesh.owners();
    const std::vector<int>& neighbours = mesh.neighbors();
    // guard: centre-faces
    const std::size_t faceCount = std::min(owners.size(), faces.faceCount());
    for (std::size_t i = 0; i < faceCount; ++i) {
        const bool isOfOwner = isAskedFor(owners[i]);
        const bool isOfNeighbour = i < neighbours.size() && isAskedFor(neighbours[i]);
        if (!isOfOwner && !isOfNeighbour) {
            continue;
        }
        FaceGeometry face = geometryOfFace(mesh.points(), faces.faceNodes(i), faces.nodeCounts[i]);
        if (isOfOwner) {
            sides.push_back({slotOf(owners[i]), face});
        }
        if (isOfNeighbour) {
            face.area = scaled(-1.0, face.area);
            sides.push_back({slotOf(neighbours[i]), face});
        }
    }
    return sides;
}

/// Makes the centre of each cell the mean of the centres of its faces.
void CellCentres::setMeans(const std::vector<Side>& sides)
{
    std::vector<double> counts(m_centres.size());
    for (const Side& side : sides) {
        addScaled(1.0, side.face.centre, &m_centres[side.slot]);
        counts[side.slot] += 1.0;
    }
    for (std::size_t i = 0; i < m_centres.size(); ++i) {
        m_centres[i] = scaled(1.0 / std::max(counts[i], 1.0), m_centres[i]);
    }
}

/// A cell is divided into pyramids from its faces to the mean of their centres. The centre of a pyramid is a quarter of
/// its height above its face, and that of the cell is the mean of these by volume.
void CellCentres::compute(const OFPolymesh& mesh)
{
    const std::vector<Side> sides = sidesOf(mesh);
    setMeans(sides);
    std::vector<double> volumes(m_centres.size());
    std::vector<Vector> offsets(m_centres.size());
    for (const Side& side : sides) {
        const Vector fromMean = minus(side.face.centre, m_centres[side.slot]);
        const double volume = rotation::dot(side.face.area, fromMean) / 3.0;
        addScaled(0.75 * volume, fromMean, &offsets[side.slot]);
        volumes[side.slot] += volume;
    }
    for (std::size_t i = 0; i < m_centres.size(); ++i) {
        if (volumes[i] != 0.0) {
            addScaled(1.0 / volumes[i], offsets[i], &m_centres[i]);
        }
    }
}

Vector faceNormal(const OFBoundary& patch, std::size_t face)
{
    const double* const normal = patch.faceNormals().data() + face * VECTOR_COMPONENTS;
    return {normal[0], normal[1], normal[2]};
}

/// The distance from each face to the centre of its cell, along the normal.
std::vector<double> depthsOf(const OFBoundary& patch, const std::vector<double>& points, const CellCentres& centres)
{
    std::vector<double> depths;
    depths.reserve(patch.nodeCountPerFace().size());
    const int* nodes = patch.faceConnectivity().data();
    for (std::size_t face = 0; face < patch.nodeCountPerFace().size(); ++face) {
        const std::size_t count = patch.nodeCountPerFace()[face];
        const Vector centre = geometryOfFace(points, nodes, count).centre;
        depths.push_back(
            rotation::dot(faceNormal(patch, face), minus(centre, centres.of(patch.faceToCellMapping()[face]))));
        nodes += count;
    }
    return depths;
}

/// True for a patch of which each face has a cell, a normal and nodes.
bool isComplete(const OFBoundary& patch, const OFPolymesh& mesh)
{
    const std::vector<std::uint8_t>& sizes = patch.nodeCountPerFace();
    std::size_t nodeCount = 0;
    for (const std::uint8_t size : sizes) {
        nodeCount += size;
    }
    const auto areBelow = [](const std::vector<int>& labels, std::size_t end) {
        return std::ranges::all_of(labels, [end](int label) { return static_cast<std::size_t>(label) < end; });
    };
    // guard: cyclic-complete
    return !sizes.empty() && sizes.size() == patch.faceCount() && patch.faceToCellMapping().size() == sizes.size() &&
           patch.faceNormals().size() == sizes.size() * VECTOR_COMPONENTS &&
           patch.faceConnectivity().size() == nodeCount && areBelow(patch.faceConnectivity(), mesh.nodeCount()) &&
           areBelow(patch.faceToCellMapping(), mesh.cellCount());
}

/// The complete cyclic patches by name; the first one of several has the name.
std::map<dvn::Str, const OFBoundary*> cyclicPatches(const std::vector<OFBoundary>& patches, const OFPolymesh& mesh)
{
    std::map<dvn::Str, const OFBoundary*> byName;
    for (const OFBoundary& patch : patches) {
        if (patch.type() == "cyclic" && isComplete(patch, mesh)) {
            byName.emplace(patch.patchName(), &patch);
        }
    }
    return byName;
}

/// One rotation about an axis for all faces. Faces of a blade's passage may be curved, and their normals need not be
/// perpendicular to the axis; only what is perpendicular turns, and all faces turn by the same angle.
std::vector<Matrix> rotationAbout(const Vector& axis, const OFBoundary& patch, const OFBoundary& neighbour)
{
    double cosine = 0.0;
    double sine = 0.0;
    for (std::size_t face = 0; face < patch.nodeCountPerFace().size(); ++face) {
        const Vector from = faceNormal(neighbour, face);
        const Vector to = scaled(-1.0, faceNormal(patch, face));
        cosine += rotation::dot(from, to) - rotation::dot(from, axis) * rotation::dot(to, axis);
        sine += rotation::dot(axis, rotation::cross(from, to));
    }
    const double length = std::hypot(cosine, sine);
    return length > 0.0 ? std::vector<Matrix>{rotation::about(axis, cosine / length, sine / length)}
                        : std::vector<Matrix>();
}

/// For each face the shortest rotation that takes its normal in one patch to that in the other.
std::vector<Matrix> rotationsOfNormals(const OFBoundary& patch, const OFBoundary& neighbour)
{
    // Below this the difference of two normals comes from rounding.
    constexpr double PARALLEL = 1.0 - 1e-10;
    std::vector<Matrix> rotations;
    rotations.reserve(patch.nodeCountPerFace().size());
    bool isTurned = false;
    for (std::size_t face = 0; face < patch.nodeCountPerFace().size(); ++face) {
        const Vector from = faceNormal(neighbour, face);
        const Vector to = scaled(-1.0, faceNormal(patch, face));
        const bool isFaceTurned = std::abs(rotation::dot(from, to)) < PARALLEL && from != Vector{} && to != Vector{};
        rotations.push_back(isFaceTurned ? rotation::between(from, to) : rotation::about({}, 1.0, 0.0));
        isTurned = isTurned || isFaceTurned;
    }
    return isTurned ? std::move(rotations) : std::vector<Matrix>();
}

std::vector<Matrix> rotationsTo(const OFBoundary& patch, const OFBoundary& neighbour)
{
    if (patch.cyclicTransform() == "translational") {
        return {};
    }
    const Vector& axis = patch.rotationAxis();
    const double length = std::hypot(axis[0], axis[1], axis[2]);
    if (patch.cyclicTransform() == "rotational" && length > 0.0) {
        return rotationAbout(scaled(1.0 / length, axis), patch, neighbour);
    }
    return rotationsOfNormals(patch, neighbour);
}

/// @return an empty coupling if the depths give no weights
CyclicCoupling couplingOf(const OFBoundary& patch, const std::vector<double>& depths, const OFBoundary& neighbour,
                          const std::vector<double>& depthsBeyond)
{
    CyclicCoupling coupling;
    coupling.weights.reserve(depths.size());
    for (std::size_t face = 0; face < depths.size(); ++face) {
        const double weight = depthsBeyond[face] / (depths[face] + depthsBeyond[face]);
        if (!std::isfinite(weight)) {
            return {};
        }
        coupling.weights.push_back(weight);
    }
    coupling.cells = neighbour.faceToCellMapping();
    coupling.rotations = rotationsTo(patch, neighbour);
    return coupling;
}

} // namespace

void coupleCyclicPatches(const OFPolymesh& mesh, std::vector<OFBoundary>* patches)
{
    for (OFBoundary& patch : *patches) {
        patch.setCyclicCoupling({});
    }
    const std::map<dvn::Str, const OFBoundary*> byName = cyclicPatches(*patches, mesh);
    if (byName.empty()) {
        return;
    }
    CellCentres centres(mesh.cellCount());
    for (const auto& [name, patch] : byName) {
        centres.add(patch->faceToCellMapping());
    }
    centres.compute(mesh);
    std::map<dvn::Str, std::vector<double>> depths;
    for (const auto& [name, patch] : byName) {
        depths.emplace(name, depthsOf(*patch, mesh.points(), centres));
    }
    for (OFBoundary& patch : *patches) {
        const auto own = byName.find(patch.patchName());
        const auto other = byName.find(patch.neighbourPatch());
        if (own == byName.end() || own->second != &patch || other == byName.end() ||
            other->second->faceCount() != patch.faceCount()) {
            continue;
        }
        patch.setCyclicCoupling(couplingOf(patch, depths.at(own->first), *other->second, depths.at(other->first)));
    }
}
