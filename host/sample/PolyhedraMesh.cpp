// SPDX-License-Identifier: MIT
#include "sample/PolyhedraMesh.h"

#include "sample/SampleMeshBuilder.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

// In lattice units: the edge of a cube of the body-centred lattice is 4, so that the vertices of a truncated octahedron
// about the origin are the permutations of (0, +-1, +-2).
constexpr int UNITS_PER_CUBE = 4;
constexpr double UNIT = 1.0 / 16.0;

using Place = std::array<int, 3>;
using Polygon = std::vector<Place>;

int dot(const Place& a, const Place& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

/// The 24 points whose coordinates are 0, 1 and 2 in any order and with any signs.
std::vector<Place> octahedronVertices()
{
    std::vector<Place> vertices;
    for (int x = -2; x <= 2; ++x) {
        for (int y = -2; y <= 2; ++y) {
            for (int z = -2; z <= 2; ++z) {
                std::array<int, 3> sizes = {std::abs(x), std::abs(y), std::abs(z)};
                std::ranges::sort(sizes);
                if (sizes == std::array<int, 3>{0, 1, 2}) {
                    vertices.push_back({x, y, z});
                }
            }
        }
    }
    return vertices;
}

/// Puts the corners of a convex polygon in counter-clockwise order seen from the tip of the normal.
Polygon ordered(Polygon polygon, const Place& normal)
{
    // Any vector not along the normal gives a first axis; the second completes a right-handed system.
    const Place guess = normal[1] == 0 && normal[2] == 0 ? Place{0, 1, 0} : Place{1, 0, 0};
    const auto cross = [](const Place& a, const Place& b) {
        return Place{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    };
    const Place second = cross(normal, guess);
    const Place first = cross(second, normal);
    const double firstLength = std::sqrt(dot(first, first));
    const double secondLength = std::sqrt(dot(second, second));
    std::ranges::sort(polygon, {}, [&](const Place& place) {
        return std::atan2(dot(place, second) / secondLength, dot(place, first) / firstLength);
    });
    return polygon;
}

/// The vertices that lie in the plane of this normal and distance, as an ordered polygon.
Polygon polygonIn(const Place& normal, int distance)
{
    Polygon polygon;
    for (const Place& vertex : octahedronVertices()) {
        if (dot(vertex, normal) == distance) {
            polygon.push_back(vertex);
        }
    }
    return ordered(std::move(polygon), normal);
}

/// The faces of a truncated octahedron about the origin, and its sections through the centre.
struct CellShape
{
    std::vector<Polygon> faces;
    std::array<Polygon, 6> sections; ///< outward normal towards low x, high x, low y, high y, low z, high z

    CellShape()
    {
        for (std::size_t side = 0; side < sections.size(); ++side) {
            Place normal = {};
            normal[side / 2] = side % 2 == 0 ? -1 : 1;
            faces.push_back(polygonIn(normal, 2));
            sections[side] = polygonIn(normal, 0);
        }
        for (const int x : {-1, 1}) {
            for (const int y : {-1, 1}) {
                for (const int z : {-1, 1}) {
                    faces.push_back(polygonIn({x, y, z}, 3));
                }
            }
        }
    }
};

/// Cuts a polygon at a plane across an axis and keeps the part on the inner side.
///
/// Integers are enough: a boundary plane goes through the centre of a cell, where each edge that crosses it does so at
/// a lattice point.
Polygon clipped(const Polygon& polygon, std::size_t axis, int plane, int inward)
{
    Polygon result;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const Place& here = polygon[i];
        const Place& next = polygon[(i + 1) % polygon.size()];
        const int inside = inward * (here[axis] - plane);
        const int nextInside = inward * (next[axis] - plane);
        if (inside >= 0) {
            result.push_back(here);
        }
        if ((inside > 0 && nextInside < 0) || (inside < 0 && nextInside > 0)) {
            Place crossing = {};
            for (std::size_t k = 0; k < 3; ++k) {
                crossing[k] = here[k] + (next[k] - here[k]) * inside / (inside - nextInside);
            }
            result.push_back(crossing);
        }
    }
    return result;
}

/// Fills the cube cell by cell.
class PolyhedraMesher
{
public:
    explicit PolyhedraMesher(int cubesPerEdge)
        : m_cubes(cubesPerEdge), m_end(UNITS_PER_CUBE * cubesPerEdge), m_labels(gridSize(), -1)
    {}

    SampleMesh mesh()
    {
        for (int k = 0; k <= m_cubes; ++k) {
            addLayer(m_cubes + 1, UNITS_PER_CUBE * k, 0);
            if (k < m_cubes) {
                addLayer(m_cubes, UNITS_PER_CUBE * k + UNITS_PER_CUBE / 2, UNITS_PER_CUBE / 2);
            }
        }
        const double edge = UNIT * m_end;
        return m_builder.build({edge, edge, edge});
    }

private:
    std::size_t gridSize() const
    {
        const auto perEdge = static_cast<std::size_t>(m_end) + 1;
        return perEdge * perEdge * perEdge;
    }

    /// One layer of cells with their centres in a plane: the corners of the lattice, or its body centres.
    void addLayer(int count, int z, int shift)
    {
        for (int j = 0; j < count; ++j) {
            for (int i = 0; i < count; ++i) {
                addCell({UNITS_PER_CUBE * i + shift, UNITS_PER_CUBE * j + shift, z});
            }
        }
    }

    /// A cell on the boundary gets its section there as an additional face; the other faces are cut.
    void addCell(const Place& centre)
    {
        m_builder.beginCell();
        for (const Polygon& face : m_shape.faces) {
            addFace(face, centre);
        }
        for (std::size_t side = 0; side < m_shape.sections.size(); ++side) {
            if (centre[side / 2] == (side % 2 == 0 ? 0 : m_end)) {
                addFace(m_shape.sections[side], centre);
            }
        }
    }

    /// Moves a face to its cell, cuts it at the box and adds it with the labels of its corners.
    void addFace(const Polygon& shape, const Place& centre)
    {
        Polygon polygon = shape;
        for (Place& place : polygon) {
            for (std::size_t axis = 0; axis < 3; ++axis) {
                place[axis] += centre[axis];
            }
        }
        for (std::size_t axis = 0; axis < 3; ++axis) {
            polygon = clipped(polygon, axis, 0, 1);
            polygon = clipped(polygon, axis, m_end, -1);
        }
        // Of a face that only touches the box from outside, an edge or a corner is left, which bounds nothing.
        if (polygon.size() < 3) {
            return;
        }
        std::vector<std::int32_t> nodes;
        for (const Place& place : polygon) {
            nodes.push_back(labelOf(place));
        }
        m_builder.addFace(nodes);
    }

    /// Cells meet at integer coordinates, so a table finds existing points without a tolerance.
    std::int32_t labelOf(const Place& place)
    {
        const auto perEdge = static_cast<std::size_t>(m_end) + 1;
        const std::size_t slot =
            (static_cast<std::size_t>(place[2]) * perEdge + static_cast<std::size_t>(place[1])) * perEdge +
            static_cast<std::size_t>(place[0]);
        if (m_labels[slot] < 0) {
            m_labels[slot] = m_builder.addPoint({UNIT * place[0], UNIT * place[1], UNIT * place[2]});
        }
        return m_labels[slot];
    }

    CellShape m_shape;
    int m_cubes;
    int m_end;                          ///< edge of the whole cube in lattice units
    std::vector<std::int32_t> m_labels; ///< label of the point at each lattice position, -1 until there is one
    SampleMeshBuilder m_builder;
};

} // namespace

SampleMesh makePolyhedraMesh(int cubesPerEdge)
{
    return PolyhedraMesher(cubesPerEdge).mesh();
}
