// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

/// x, y and z.
using SamplePoint = std::array<double, 3>;

/// One boundary patch: a range of faces after the internal ones.
struct SamplePatch
{
    std::string name;
    std::string type;       ///< such as "wall"; also determines the entries of fields
    std::string group = {}; ///< the group of patches it is in, if any
    std::vector<std::pair<std::string, std::string>> entries = {}; ///< other entries of its dictionary
    int faceCount = 0;
    int startFace = 0;
};

/// A mesh as OpenFOAM keeps it: points, faces, and for each face the cells on its two sides.
///
/// All labels count from 0. Internal faces come first, sorted by owner and then by neighbour, with owner < neighbour;
/// the patches follow one after the other. The nodes of a face run counter-clockwise seen from the tip of its normal,
/// which points from owner to neighbour or out of the mesh.
struct SampleMesh
{
    std::vector<double> points;                  ///< x, y, z of each point
    std::vector<std::int32_t> faceOffsets = {0}; ///< start of each face in `faceNodes`, and the end of the last
    std::vector<std::int32_t> faceNodes;         ///< nodes of all faces, face after face
    std::vector<std::int32_t> owners;            ///< one per face
    std::vector<std::int32_t> neighbours;        ///< one per internal face
    std::vector<SamplePatch> patches;
    int cellCount = 0;

    /// All points, internal or not.
    int pointCount() const { return static_cast<int>(points.size() / 3); }
    /// All faces, internal ones and those of the patches.
    int faceCount() const { return static_cast<int>(owners.size()); }
    /// Faces between two cells; they are the first ones.
    int internalFaceCount() const { return static_cast<int>(neighbours.size()); }

    /// The nodes of a face; valid until a face is added.
    std::span<const std::int32_t> nodesOfFace(int face) const
    {
        const auto first = static_cast<std::size_t>(faceOffsets[static_cast<std::size_t>(face)]);
        const auto last = static_cast<std::size_t>(faceOffsets[static_cast<std::size_t>(face) + 1]);
        return std::span(faceNodes).subspan(first, last - first);
    }

    /// A point by its label.
    SamplePoint point(int label) const
    {
        const std::size_t first = 3 * static_cast<std::size_t>(label);
        return {points[first], points[first + 1], points[first + 2]};
    }

    /// Appends a point.
    void addPoint(const SamplePoint& place) { points.insert(points.end(), place.begin(), place.end()); }

    /// Appends a face; the caller ensures the order described above.
    void addFace(std::span<const std::int32_t> nodes, int owner)
    {
        faceNodes.insert(faceNodes.end(), nodes.begin(), nodes.end());
        faceOffsets.push_back(static_cast<std::int32_t>(faceNodes.size()));
        owners.push_back(owner);
    }
};

/// The patches of a box, still without faces: x, y and z, each low end before high end.
std::vector<SamplePatch> boxPatches();

/// Area vectors and centres of all faces, volumes and centres of all cells.
///
/// Faces are split into triangles about the mean of their nodes and cells into pyramids about the mean of their face
/// centres, as OpenFOAM does, so that the cell average of a field that is linear in space is its value at the cell
/// centre.
struct SampleMeasures
{
    std::vector<SamplePoint> faceAreas; ///< area vectors, along the normals
    std::vector<SamplePoint> faceCentres;
    std::vector<double> cellVolumes;
    std::vector<SamplePoint> cellCentres;
};

/// Measures a mesh whose cells are all closed.
SampleMeasures measure(const SampleMesh& mesh);
