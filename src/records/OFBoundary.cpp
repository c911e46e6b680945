// SPDX-License-Identifier: MIT
#include "records/OFBoundary.h"

#include "records/Components.h"
#include "records/GroupInfo.h"

#include <algorithm>
#include <cmath>

using rotation::Vector;

namespace {

/// From one point to another.
Vector between(const double* from, const double* to)
{
    return {to[0] - from[0], to[1] - from[1], to[2] - from[2]};
}

/// The direction of a face's area, which is the sum of those of the triangles around its first node.
void setNormal(const double* points, const int* nodes, std::size_t count, double* normal)
{
    Vector area = {};
    const auto point = [points, nodes](std::size_t i) {
        return points + static_cast<std::size_t>(nodes[i]) * VECTOR_COMPONENTS;
    };
    for (std::size_t i = 1; i + 1 < count; ++i) {
        const Vector a = between(point(0), point(i));
        const Vector b = between(point(0), point(i + 1));
        area[0] += a[1] * b[2] - a[2] * b[1];
        area[1] += a[2] * b[0] - a[0] * b[2];
        area[2] += a[0] * b[1] - a[1] * b[0];
    }
    const double length = std::hypot(area[0], area[1], area[2]);
    for (std::size_t k = 0; k < VECTOR_COMPONENTS && length > 0.0; ++k) {
        normal[k] = area[k] / length;
    }
}

} // namespace

void OFBoundary::addBoundaryInfo(int offset, DDPElementGroupInfo* info)
{
    m_geometryGlobalPartId = offset + m_boundaryID;
    addGroupOfPart({m_geometryGlobalPartId, m_patchName, true, m_type}, m_partID, info);
}

DDPElementType OFBoundary::typeFromFaceNodeCount(std::size_t nodeCount)
{
    switch (nodeCount) {
    case 3:
        return DDP_TRIANGLE;
    case 4:
        return DDP_QUADRILATERAL;
    default:
        return DDP_POLY;
    }
}

void OFBoundary::computeFaceNormals(const std::vector<double>& points)
{
    const std::size_t pointCount = points.size() / VECTOR_COMPONENTS;
    m_faceNormals.assign(m_nodeCountPerFace.size() * VECTOR_COMPONENTS, 0.0);
    std::size_t first = 0;
    for (std::size_t face = 0; face < m_nodeCountPerFace.size(); ++face) {
        const std::size_t count = m_nodeCountPerFace[face];
        // A built patch has the nodes of all its faces.
        if (count > m_faceConnectivity.size() - first) {
            break;
        }
        const int* const nodes = m_faceConnectivity.data() + first;
        first += count;
        // The faces of a built patch name only points of the mesh.
        if (std::all_of(nodes, nodes + count,
                        [pointCount](int node) { return node >= 0 && static_cast<std::size_t>(node) < pointCount; })) {
            setNormal(points.data(), nodes, count, m_faceNormals.data() + face * VECTOR_COMPONENTS);
        }
    }
}

bool OFBoundary::isResultKeyString(const std::string& key)
{
    return key == "value" || key == "refValue" || key == "valueFraction";
}

bool OFBoundary::isKeyForUsingCellValue(const std::string& key)
{
    return key == "zeroGradient" || key == "empty" || key == "calculated";
}
