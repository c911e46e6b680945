// SPDX-License-Identifier: MIT
#include "support/ReferenceCells.h"

using Point = std::array<double, 3>;

const std::vector<ReferenceCell>& referenceCells()
{
    static const std::vector<ReferenceCell> CELLS = {
        {DDP_TETRAHEDRON,
         {{0, 0, 0}, {1.1, 0, 0.2}, {0.1, 1.3, 0}, {0.2, 0.3, 1.7}},
         {{0, 2, 1}, {0, 1, 3}, {1, 2, 3}, {0, 3, 2}}},
        {DDP_PYRAMID,
         {{0, 0, 0}, {1.1, 0, 0.2}, {1.3, 1.5, 0}, {0, 0.9, 0.1}, {0.4, 0.6, 1.7}},
         {{0, 3, 2, 1}, {0, 1, 4}, {1, 2, 4}, {2, 3, 4}, {3, 0, 4}}},
        {DDP_PENTAHEDRON,
         {{0, 0, 0}, {1.1, 0, 0.2}, {0.1, 1.3, 0}, {0, 0.1, 1.5}, {1.4, 0, 1.8}, {0.2, 1.2, 1.1}},
         {{0, 2, 1}, {3, 4, 5}, {0, 1, 4, 3}, {1, 2, 5, 4}, {2, 0, 3, 5}}},
        {DDP_HEXAHEDRON,
         {{0, 0, 0},
          {1.1, 0, 0.2},
          {1.3, 1.5, 0},
          {0, 0.9, 0.1},
          {0.1, 0, 1.4},
          {0.9, 0.2, 1.2},
          {1.6, 1.1, 1.5},
          {0, 1.2, 1.7}},
         {{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 1, 5, 4}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}}},
    };
    return CELLS;
}

double volumeInside(std::span<const Point> points, const std::vector<std::vector<int>>& faces)
{
    const auto at = [points](int node) { return points[static_cast<std::size_t>(node)]; };
    double volume = 0;
    for (const std::vector<int>& face : faces) {
        // A fan round the middle is the same whichever node the face begins with.
        Point middle = {};
        for (const int node : face) {
            for (std::size_t k = 0; k < 3; ++k) {
                middle[k] += at(node)[k] / static_cast<double>(face.size());
            }
        }
        for (std::size_t i = 0; i < face.size(); ++i) {
            const Point a = at(face[i]);
            const Point b = at(face[(i + 1) % face.size()]);
            volume += (middle[0] * (a[1] * b[2] - a[2] * b[1]) + middle[1] * (a[2] * b[0] - a[0] * b[2]) +
                       middle[2] * (a[0] * b[1] - a[1] * b[0])) /
                      6;
        }
    }
    return volume;
}

double signedVolume(DDPElementType type, std::span<const Point> points, std::span<const int> nodes)
{
    // The faces of each shape in the numbering that the host's interface draws.
    std::vector<std::vector<int>> faces;
    switch (type) {
    case DDP_TETRAHEDRON:
        faces = {{1, 2, 3}, {0, 2, 1}, {0, 3, 2}, {0, 1, 3}};
        break;
    case DDP_PYRAMID:
        faces = {{0, 3, 2, 1}, {0, 1, 4}, {1, 2, 4}, {2, 3, 4}, {3, 0, 4}};
        break;
    case DDP_PENTAHEDRON:
        faces = {{0, 2, 1}, {3, 4, 5}, {0, 1, 4, 3}, {1, 2, 5, 4}, {2, 0, 3, 5}};
        break;
    default:
        faces = {{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 1, 5, 4}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}};
        break;
    }
    for (std::vector<int>& face : faces) {
        for (int& node : face) {
            node = nodes[static_cast<std::size_t>(node)];
        }
    }
    return volumeInside(points, faces);
}

void CellInMesh::addFace(const std::vector<int>& fileNodes, bool isOwner)
{
    cell.cellFaces().push_back({static_cast<int>(faces.faceCount()), isOwner});
    faces.nodeCounts.push_back(static_cast<std::uint8_t>(fileNodes.size()));
    faces.nodeOffsets.push_back(static_cast<int>(faces.nodes.size()));
    faces.nodes.insert(faces.nodes.end(), fileNodes.begin(), fileNodes.end());
}
