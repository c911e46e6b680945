// SPDX-License-Identifier: MIT
#include "border/CellFaces.h"

#include <cmath>

namespace {

using SolidFace = std::array<int, 4>;

//     tetrahedron 0 the apex, beyond the base 1 2 3     hexahedron  7---6
//     pyramid     4 the apex over the base 0 1 2 3                 4---5|   top 4 5 6 7
//     pentahedron 3 4 5 the top over the base 0 1 2                |3--|2   base 0 1 2 3
//                                                                  0---1
constexpr std::array<SolidFace, 4> TETRAHEDRON = {{{1, 2, 3, -1}, {0, 2, 1, -1}, {0, 3, 2, -1}, {0, 1, 3, -1}}};
constexpr std::array<SolidFace, 5> PYRAMID = {
    {{0, 3, 2, 1}, {0, 1, 4, -1}, {1, 2, 4, -1}, {2, 3, 4, -1}, {3, 0, 4, -1}}};
constexpr std::array<SolidFace, 5> PENTAHEDRON = {
    {{0, 2, 1, -1}, {3, 4, 5, -1}, {0, 1, 4, 3}, {1, 2, 5, 4}, {2, 0, 3, 5}}};
constexpr std::array<SolidFace, 6> HEXAHEDRON = {
    {{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 1, 5, 4}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}}};

Vector3 minus(const Vector3& a, const Vector3& b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

Vector3 cross(const Vector3& a, const Vector3& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double dot(const Vector3& a, const Vector3& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

} // namespace

std::span<const SolidFace> facesOfSolid(std::int32_t type)
{
    switch (type) {
    case DDP_TETRAHEDRON:
        return TETRAHEDRON;
    case DDP_PYRAMID:
        return PYRAMID;
    case DDP_PENTAHEDRON:
        return PENTAHEDRON;
    case DDP_HEXAHEDRON:
        return HEXAHEDRON;
    default:
        return {};
    }
}

Vector3 nodeAt(const std::vector<double>& coordinates, std::int32_t node)
{
    const auto first = 3 * static_cast<std::size_t>(node);
    return {coordinates[first], coordinates[first + 1], coordinates[first + 2]};
}

Vector3 areaVector(const std::vector<double>& coordinates, std::span<const std::int32_t> face)
{
    Vector3 sum = {};
    if (face.empty()) {
        return sum;
    }
    // Relative to the face's first node, so that a mesh far from the origin loses no digits.
    const Vector3 origin = nodeAt(coordinates, face[0]);
    for (std::size_t k = 1; k + 1 < face.size(); ++k) {
        const Vector3 normal =
            cross(minus(nodeAt(coordinates, face[k]), origin), minus(nodeAt(coordinates, face[k + 1]), origin));
        for (std::size_t axis = 0; axis < 3; ++axis) {
            sum[axis] += normal[axis] / 2;
        }
    }
    return sum;
}

double volumeUnder(const std::vector<double>& coordinates, std::span<const std::int32_t> face, const Vector3& apex)
{
    if (face.empty()) {
        return 0;
    }
    // A fan around the centre, so that both cells of a warped face use the same surface, whatever node it starts with.
    Vector3 middle = {};
    for (const std::int32_t node : face) {
        const Vector3 corner = minus(nodeAt(coordinates, node), apex);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            middle[axis] += corner[axis] / static_cast<double>(face.size());
        }
    }
    double sum = 0;
    for (std::size_t k = 0; k < face.size(); ++k) {
        const Vector3 a = minus(nodeAt(coordinates, face[k]), apex);
        const Vector3 b = minus(nodeAt(coordinates, face[(k + 1) % face.size()]), apex);
        sum += dot(middle, cross(a, b)) / 6;
    }
    return sum;
}

double lengthOf(const Vector3& vector)
{
    return std::sqrt(dot(vector, vector));
}
