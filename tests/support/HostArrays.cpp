// SPDX-License-Identifier: MIT
#include "support/HostArrays.h"
#include "support/ReferenceCells.h"

#include <algorithm>

FaceTables faceTables(const HostElementGroup& elements)
{
    const HostPolyhedra& tables = elements.polyhedra;
    const auto numbers = [](const auto& values) { return std::vector<int>(values.begin(), values.end()); };
    return {numbers(tables.nodesPerPolyhedron), numbers(tables.facesPerPolyhedron), numbers(tables.nodesPerFace),
            tables.faceConnectivity};
}

std::vector<double> elementVolumes(const HostNodeGroup& nodes, const HostElementGroup& elements)
{
    std::vector<ReferencePoint> points(nodes.nodeCount());
    for (std::size_t i = 0; i < points.size(); ++i) {
        std::copy_n(nodes.coordinates.begin() + static_cast<std::ptrdiff_t>(3 * i), 3, points[i].begin());
    }
    std::vector<double> volumes;
    std::span<const std::int32_t> connectivity = elements.connectivity;
    std::span<const std::int32_t> faceNodes = elements.polyhedra.faceConnectivity;
    auto faceSize = elements.polyhedra.nodesPerFace.begin();
    std::size_t polyhedron = 0;
    for (const std::int32_t type : elements.types) {
        const auto solid = std::ranges::find(referenceCells(), type, &ReferenceCell::type);
        if (solid != referenceCells().end()) {
            volumes.push_back(signedVolume(type, points, connectivity));
            connectivity = connectivity.subspan(solid->points.size());
            continue;
        }
        ReferenceFaces faces(elements.polyhedra.facesPerPolyhedron.at(polyhedron));
        for (std::vector<int>& face : faces) {
            face.assign(faceNodes.begin(), faceNodes.begin() + *faceSize);
            faceNodes = faceNodes.subspan(*faceSize++);
        }
        volumes.push_back(volumeInside(points, faces));
        connectivity = connectivity.subspan(elements.polyhedra.nodesPerPolyhedron[polyhedron++]);
    }
    return volumes;
}
