// SPDX-License-Identifier: MIT
#include "support/ReferenceCells.h"

#include <algorithm>

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

double ReferenceCell::volume() const
{
    return volumeInside(points, faces);
}

double volumeInside(std::span<const ReferencePoint> points, const ReferenceFaces& faces)
{
    const auto at = [points](int node) { return points[static_cast<std::size_t>(node)]; };
    double volume = 0;
    for (const std::vector<int>& face : faces) {
        // A fan around the middle does not depend on the node that the face begins with.
        ReferencePoint middle = {};
        for (const int node : face) {
            for (std::size_t k = 0; k < 3; ++k) {
                middle[k] += at(node)[k] / static_cast<double>(face.size());
            }
        }
        for (std::size_t i = 0; i < face.size(); ++i) {
            const ReferencePoint a = at(face[i]);
            const ReferencePoint b = at(face[(i + 1) % face.size()]);
            volume += (middle[0] * (a[1] * b[2] - a[2] * b[1]) + middle[1] * (a[2] * b[0] - a[0] * b[2]) +
                       middle[2] * (a[0] * b[1] - a[1] * b[0])) /
                      6;
        }
    }
    return volume;
}

double signedVolume(std::int32_t type, std::span<const ReferencePoint> points, std::span<const int> nodes)
{
    const auto reference = std::ranges::find(referenceCells(), type, &ReferenceCell::type);
    ReferenceFaces faces = reference == referenceCells().end() ? ReferenceFaces() : reference->faces;
    for (std::vector<int>& face : faces) {
        for (int& node : face) {
            node = nodes[static_cast<std::size_t>(node)];
        }
    }
    return volumeInside(points, faces);
}

DeliveredCells::DeliveredCells()
{
    for (const ReferenceCell& cell : referenceCells()) {
        addCell(cell, cell.type);
    }
    const auto firstOfLast = static_cast<std::int32_t>(points.size() / 3);
    addCell(referenceCells().back(), DDP_POLY);
    for (const std::vector<int>& face : referenceCells().back().faces) {
        for (const int node : face) {
            faceConnectivity.push_back(firstOfLast + node);
        }
    }
}

void DeliveredCells::addCell(const ReferenceCell& cell, std::int32_t type)
{
    const double shift = 2.0 * static_cast<double>(types.size());
    types.push_back(type);
    for (const ReferencePoint& point : cell.points) {
        connectivity.push_back(static_cast<std::int32_t>(points.size() / 3));
        points.insert(points.end(), {point[0] + shift, point[1], point[2]});
    }
}

void DeliveredCells::deliverTo(DDPNodeGroup* nodes, DDPElementGroup* elements) const
{
    const std::vector<unsigned char> nodesPerFace(6, 4);
    const unsigned char nodeCount = 8;
    const unsigned char faceCount = 6;
    nodes->setNodes(points.data(), points.size() / 3);
    elements->setMixedElements(types.data(), types.size(), connectivity.data(), connectivity.size(), ids.data());
    elements->setPolyhedra(&nodeCount, &faceCount, 1, nodesPerFace.data(), faceCount, faceConnectivity.data(),
                           faceConnectivity.size());
}
