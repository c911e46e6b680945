// SPDX-License-Identifier: MIT
#include "output/VtkGrid.h"

#include "border/DeliveryCheck.h"

#include <array>
#include <cstddef>

namespace {

// Cell types of the VTK file formats.
constexpr std::uint8_t VTK_TYPE_TRIANGLE = 5;
constexpr std::uint8_t VTK_TYPE_POLYGON = 7;
constexpr std::uint8_t VTK_TYPE_QUAD = 9;
constexpr std::uint8_t VTK_TYPE_TETRA = 10;
constexpr std::uint8_t VTK_TYPE_HEXAHEDRON = 12;
constexpr std::uint8_t VTK_TYPE_WEDGE = 13;
constexpr std::uint8_t VTK_TYPE_PYRAMID = 14;
constexpr std::uint8_t VTK_TYPE_POLYHEDRON = 42;

// The only shape whose node order differs: both triangles of a wedge run in the opposite direction.
constexpr std::array<std::size_t, 6> WEDGE_ORDER = {0, 2, 1, 3, 5, 4};

/// The VTK type of a host element; a general one is a polygon or a polyhedron, depending on its group.
std::uint8_t vtkType(std::int32_t type, bool surface)
{
    switch (type) {
    case DDP_TRIANGLE:
        return VTK_TYPE_TRIANGLE;
    case DDP_QUADRILATERAL:
        return VTK_TYPE_QUAD;
    case DDP_TETRAHEDRON:
        return VTK_TYPE_TETRA;
    case DDP_HEXAHEDRON:
        return VTK_TYPE_HEXAHEDRON;
    case DDP_PENTAHEDRON:
        return VTK_TYPE_WEDGE;
    case DDP_PYRAMID:
        return VTK_TYPE_PYRAMID;
    default:
        return surface ? VTK_TYPE_POLYGON : VTK_TYPE_POLYHEDRON;
    }
}

/// Walks the elements of a group and appends them to a grid one by one.
class GridBuilder
{
public:
    GridBuilder(const HostElementGroup& elements, bool surface, VtkGrid* grid)
        : m_elements(elements), m_surface(surface), m_grid(*grid)
    {}

    /// A grid without polyhedra has no face offsets: the file then omits both arrays.
    void build()
    {
        m_grid.connectivity.reserve(m_elements.connectivity.size());
        m_grid.offsets.reserve(m_elements.elementCount());
        m_grid.types.reserve(m_elements.elementCount());
        for (const std::int32_t type : m_elements.types) {
            append(type);
        }
        if (m_grid.faces.empty()) {
            m_grid.faceOffsets.clear();
        }
    }

private:
    /// Advances all four positions, so that each element finds its own entries in the tables.
    void append(std::int32_t type)
    {
        const bool general = type == DDP_POLY;
        const std::size_t count = general ? m_elements.polyhedra.nodesPerPolyhedron[m_polyhedron]
                                          : static_cast<std::size_t>(nodeCountOfType(type));
        appendNodes(type, count);
        m_grid.offsets.push_back(static_cast<std::int64_t>(m_grid.connectivity.size()));
        m_grid.types.push_back(vtkType(type, m_surface));
        if (general && !m_surface) {
            appendFaces();
            m_grid.faceOffsets.push_back(static_cast<std::int64_t>(m_grid.faces.size()));
        } else {
            m_grid.faceOffsets.push_back(-1);
        }
        m_polyhedron += general ? 1 : 0;
        m_node += count;
    }

    /// Copies the nodes of one element in VTK order.
    void appendNodes(std::int32_t type, std::size_t count)
    {
        for (std::size_t k = 0; k < count; ++k) {
            const std::size_t source = type == DDP_PENTAHEDRON ? WEDGE_ORDER[k] : k;
            m_grid.connectivity.push_back(m_elements.connectivity[m_node + source]);
        }
    }

    /// The faces of a polyhedron keep their order and direction, since both the interface and VTK have them outward.
    void appendFaces()
    {
        const HostPolyhedra& tables = m_elements.polyhedra;
        const std::size_t faceCount = tables.facesPerPolyhedron[m_polyhedron];
        m_grid.faces.push_back(static_cast<std::int64_t>(faceCount));
        for (std::size_t k = 0; k < faceCount; ++k) {
            const std::size_t nodeCount = tables.nodesPerFace[m_face++];
            m_grid.faces.push_back(static_cast<std::int64_t>(nodeCount));
            for (std::size_t n = 0; n < nodeCount; ++n) {
                m_grid.faces.push_back(tables.faceConnectivity[m_faceNode++]);
            }
        }
    }

    const HostElementGroup& m_elements;
    bool m_surface;
    VtkGrid& m_grid;
    std::size_t m_node = 0;       ///< position in the connectivity
    std::size_t m_polyhedron = 0; ///< general elements so far
    std::size_t m_face = 0;       ///< faces of general elements so far
    std::size_t m_faceNode = 0;   ///< position in the face connectivity
};

} // namespace

VtkGrid makeVtkGrid(const HostNodeGroup& nodes, const HostElementGroup& elements, bool surface,
                    std::int32_t defaultPartId)
{
    VtkGrid grid;
    grid.points = &nodes.coordinates;
    GridBuilder(elements, surface, &grid).build();
    grid.partIds = elements.partIds;
    if (grid.partIds.empty()) {
        grid.partIds.assign(elements.elementCount(), defaultPartId);
    }
    return grid;
}
