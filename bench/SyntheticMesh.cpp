// SPDX-License-Identifier: MIT
#include "bench/SyntheticMesh.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace {

void append(std::string* text, double value)
{
    std::array<char, 32> digits = {};
    text->append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr);
}

template <typename T>
std::string rawBytes(const std::vector<T>& values)
{
    return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T)};
}

std::string header(const std::string& className, const std::string& object, const std::string& format,
                   const OFPolymesh& mesh)
{
    std::string text =
        "FoamFile\n{\n    version     2.0;\n    format      " + format + ";\n    class       " + className + ";\n";
    if (className == "labelList") {
        text += "    note        \"nPoints:" + std::to_string(mesh.nodeCount()) +
                "  nCells:" + std::to_string(mesh.cellCount()) + "  nFaces:" + std::to_string(mesh.owners().size()) +
                "  nInternalFaces:" + std::to_string(mesh.neighbors().size()) + "\";\n";
    }
    return text + "    location    \"constant/polyMesh\";\n    object      " + object + ";\n}\n\n\n";
}

std::string asciiLabels(const std::vector<int>& labels)
{
    std::string text = std::to_string(labels.size()) + "\n(\n";
    for (const int label : labels) {
        text += std::to_string(label) + "\n";
    }
    return text + ")\n";
}

std::string asciiPoints(const std::vector<double>& points)
{
    std::string text = std::to_string(points.size() / 3) + "\n(\n";
    for (std::size_t i = 0; i < points.size(); ++i) {
        text += i % 3 == 0 ? '(' : ' ';
        append(&text, points[i]);
        text += i % 3 == 2 ? ")\n" : "";
    }
    return text + ")\n";
}

std::string asciiFaces(const FacesData& faces)
{
    std::string text = std::to_string(faces.faceCount()) + "\n(\n";
    for (std::size_t i = 0; i < faces.faceCount(); ++i) {
        text += std::to_string(faces.nodeCounts[i]);
        for (std::size_t k = 0; k < faces.nodeCounts[i]; ++k) {
            text += (k == 0 ? '(' : ' ') + std::to_string(faces.faceNodes(i)[k]);
        }
        text += ")\n";
    }
    return text + ")\n";
}

std::string binaryList(std::size_t count, const std::string& bytes)
{
    return std::to_string(count) + "\n(" + bytes + ")\n";
}

std::string binaryFaces(const FacesData& faces)
{
    std::vector<int> offsets = faces.nodeOffsets;
    offsets.push_back(static_cast<int>(faces.nodes.size()));
    return binaryList(offsets.size(), rawBytes(offsets)) + binaryList(faces.nodes.size(), rawBytes(faces.nodes));
}

/// Labels of points on a grid, numbered in order of first use.
class PointGrid
{
public:
    PointGrid(MeshJoiner* joiner, int size) : m_joiner(joiner), m_size(size)
    {
        const auto edge = static_cast<std::size_t>(size);
        m_labels.assign(edge * edge * edge, -1);
    }

    int label(int x, int y, int z)
    {
        int& label = m_labels[static_cast<std::size_t>((z * m_size + y) * m_size + x)];
        if (label < 0) {
            label = m_joiner->addPoint(x, y, z);
        }
        return label;
    }

private:
    MeshJoiner* m_joiner;
    int m_size;
    std::vector<int> m_labels;
};

using Corner = std::array<int, 3>;

/// The faces of a truncated octahedron around the origin, counter-clockwise seen from outside.
std::vector<std::vector<Corner>> octahedronFaces()
{
    std::vector<std::vector<Corner>> faces;
    const auto push = [&faces](std::vector<Corner> face, bool turned) {
        if (turned) {
            std::reverse(face.begin(), face.end());
        }
        faces.push_back(std::move(face));
    };
    for (const int s : {-1, 1}) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            std::vector<Corner> square;
            for (const auto& [a, b] : {std::array{1, 0}, {0, 1}, {-1, 0}, {0, -1}}) {
                Corner corner = {};
                corner[axis] = 2 * s;
                corner[(axis + 1) % 3] = a;
                corner[(axis + 2) % 3] = b;
                square.push_back(corner);
            }
            push(square, s < 0);
        }
    }
    for (const auto& [x, y, z] :
         {Corner{1, 1, 1}, {1, 1, -1}, {1, -1, 1}, {1, -1, -1}, {-1, 1, 1}, {-1, 1, -1}, {-1, -1, 1}, {-1, -1, -1}}) {
        push({{2 * x, y, 0}, {x, 2 * y, 0}, {0, 2 * y, z}, {0, y, 2 * z}, {x, 0, 2 * z}, {2 * x, 0, z}}, x * y * z < 0);
    }
    return faces;
}

} // namespace

int MeshJoiner::addPoint(double x, double y, double z)
{
    m_points.insert(m_points.end(), {x, y, z});
    return static_cast<int>(m_points.size() / 3) - 1;
}

void MeshJoiner::addFace(const std::vector<int>& nodes)
{
    std::array<int, 3> lowest = {};
    std::partial_sort_copy(nodes.begin(), nodes.end(), lowest.begin(), lowest.end());
    std::uint64_t key = 0;
    for (const int node : lowest) {
        key = key * 2097169 + static_cast<std::uint64_t>(node);
    }
    const auto [entry, isNew] = m_faceOfKey.try_emplace(key, m_faces.size());
    if (isNew) {
        m_faces.push_back({nodes, m_cellCount - 1, -1});
    } else {
        m_faces[entry->second].neighbour = m_cellCount - 1;
    }
}

OFPolymesh MeshJoiner::join() const
{
    std::vector<const Face*> ordered;
    ordered.reserve(m_faces.size());
    for (const Face& face : m_faces) {
        ordered.push_back(&face);
    }
    std::stable_sort(ordered.begin(), ordered.end(), [](const Face* a, const Face* b) {
        return std::array{a->neighbour < 0 ? 1 : 0, a->owner, a->neighbour} <
               std::array{b->neighbour < 0 ? 1 : 0, b->owner, b->neighbour};
    });
    OFPolymesh mesh;
    mesh.points() = m_points;
    mesh.setCellCount(m_cellCount);
    FacesData& faces = mesh.faces();
    for (const Face* const face : ordered) {
        faces.nodeCounts.push_back(static_cast<std::uint8_t>(face->nodes.size()));
        faces.nodeOffsets.push_back(static_cast<int>(faces.nodes.size()));
        faces.nodes.insert(faces.nodes.end(), face->nodes.begin(), face->nodes.end());
        mesh.owners().push_back(face->owner);
        if (face->neighbour >= 0) {
            mesh.neighbors().push_back(face->neighbour);
        }
    }
    return mesh;
}

OFPolymesh hexahedronMesh(int nx, int ny, int nz)
{
    MeshJoiner joiner;
    for (int z = 0; z <= nz; ++z) {
        for (int y = 0; y <= ny; ++y) {
            for (int x = 0; x <= nx; ++x) {
                joiner.addPoint(x, y, z);
            }
        }
    }
    const int dy = nx + 1;
    const int dz = dy * (ny + 1);
    for (int cell = 0; cell < nx * ny * nz; ++cell) {
        const int o = cell % nx + cell / nx % ny * dy + cell / (nx * ny) * dz;
        joiner.startCell();
        joiner.addFace({o, o + dz, o + dy + dz, o + dy});
        joiner.addFace({o + 1, o + 1 + dy, o + 1 + dy + dz, o + 1 + dz});
        joiner.addFace({o, o + 1, o + 1 + dz, o + dz});
        joiner.addFace({o + dy, o + dy + dz, o + 1 + dy + dz, o + 1 + dy});
        joiner.addFace({o, o + dy, o + 1 + dy, o + 1});
        joiner.addFace({o + dz, o + 1 + dz, o + 1 + dy + dz, o + dy + dz});
    }
    return joiner.join();
}

OFPolymesh octahedronMesh(int n)
{
    MeshJoiner joiner;
    PointGrid grid(&joiner, 4 * n + 3);
    const std::vector<std::vector<Corner>> faces = octahedronFaces();
    for (int layer = 0; layer < 2 * n; ++layer) {
        for (int cell = 0; cell < n * n; ++cell) {
            const int shift = 2 + layer % 2 * 2;
            const Corner centre = {shift + cell % n * 4, shift + cell / n * 4, 2 + layer * 2};
            joiner.startCell();
            for (const std::vector<Corner>& face : faces) {
                std::vector<int> nodes;
                for (const Corner& corner : face) {
                    nodes.push_back(grid.label(centre[0] + corner[0], centre[1] + corner[1], centre[2] + corner[2]));
                }
                joiner.addFace(nodes);
            }
        }
    }
    return joiner.join();
}

MeshFiles asciiFiles(const OFPolymesh& mesh)
{
    return {header("vectorField", "points", "ascii", mesh) + asciiPoints(mesh.points()),
            header("faceList", "faces", "ascii", mesh) + asciiFaces(mesh.faces()),
            header("labelList", "owner", "ascii", mesh) + asciiLabels(mesh.owners()),
            header("labelList", "neighbour", "ascii", mesh) + asciiLabels(mesh.neighbors())};
}

MeshFiles binaryFiles(const OFPolymesh& mesh)
{
    return {header("vectorField", "points", "binary", mesh) + binaryList(mesh.nodeCount(), rawBytes(mesh.points())),
            header("faceCompactList", "faces", "binary", mesh) + binaryFaces(mesh.faces()),
            header("labelList", "owner", "binary", mesh) + binaryList(mesh.owners().size(), rawBytes(mesh.owners())),
            header("labelList", "neighbour", "binary", mesh) +
                binaryList(mesh.neighbors().size(), rawBytes(mesh.neighbors()))};
}
