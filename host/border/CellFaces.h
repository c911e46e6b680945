// SPDX-License-Identifier: MIT
#pragma once

#include "border/DeliveryCheck.h"
#include "border/HostGeometry.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

using Vector3 = std::array<double, 3>;

/// The faces of a solid in the interface's node order, counter-clockwise seen from outside; unused places hold -1.
///
/// Empty for a general element and for types that are not solids.
std::span<const std::array<int, 4>> facesOfSolid(std::int32_t type);

/// The area vector of a polygon: along its normal, with its area as length.
Vector3 areaVector(const std::vector<double>& coordinates, std::span<const std::int32_t> face);

/// The part of a cell's volume between one of its faces and a point; the sum over all faces is the volume.
double volumeUnder(const std::vector<double>& coordinates, std::span<const std::int32_t> face, const Vector3& apex);

double lengthOf(const Vector3& vector);
Vector3 nodeAt(const std::vector<double>& coordinates, std::int32_t node);

/// Calls `visit(element, nodes)` for each face of each element of a sound group, element after element.
///
/// A solid has the faces of its shape and a general element those of its table; a flat element is a face itself. The
/// nodes are positions in the node group, valid only during the call.
template <typename Visit>
void forEachFace(const HostElementGroup& elements, Visit visit)
{
    std::size_t node = 0;
    std::size_t polyhedron = 0;
    std::size_t tableFace = 0;
    std::size_t tableNode = 0;
    for (std::size_t element = 0; element < elements.elementCount(); ++element) {
        const std::int32_t type = elements.types[element];
        if (type == DDP_POLY) {
            for (unsigned face = 0; face < elements.polyhedra.facesPerPolyhedron[polyhedron]; ++face) {
                const std::size_t size = elements.polyhedra.nodesPerFace[tableFace++];
                visit(element, std::span(elements.polyhedra.faceConnectivity).subspan(tableNode, size));
                tableNode += size;
            }
            node += elements.polyhedra.nodesPerPolyhedron[polyhedron++];
            continue;
        }
        const auto size = static_cast<std::size_t>(nodeCountOfType(type));
        const auto corners = std::span(elements.connectivity).subspan(node, size);
        node += size;
        if (type == DDP_TRIANGLE || type == DDP_QUADRILATERAL) {
            visit(element, corners);
        }
        for (const std::array<int, 4>& corner : facesOfSolid(type)) {
            std::array<std::int32_t, 4> face = {};
            std::size_t count = 0;
            while (count < face.size() && corner[count] >= 0) {
                face[count] = corners[static_cast<std::size_t>(corner[count])];
                ++count;
            }
            visit(element, std::span<const std::int32_t>(face).first(count));
        }
    }
}
