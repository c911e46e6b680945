// SPDX-License-Identifier: MIT
#include "mesh/SurfaceFans.h"

#include "LibCore/Limits.h"

#include <algorithm>
#include <cstdint>
#include <span>

namespace {

constexpr std::size_t TRIANGLE_CORNERS = 3;
/// How many values a byte can have.
constexpr std::size_t BYTE_VALUES = 256;

/// Where a face begins in the list of labels; a negative offset lies beyond every list.
std::size_t beginOfFace(const FacesData& faces, std::size_t face)
{
    return static_cast<std::size_t>(faces.nodeOffsets[face]);
}

/// The labels of a face, none if it is partly outside the list.
///
/// A face ends where the next one begins, as the count, which is a byte, is too small for a face of more than 255
/// nodes. The last face ends with the list if the byte fits that. Faces that a short file lacks begin at 0.
std::span<const int> labelsOf(const FacesData& faces, std::size_t face)
{
    const std::size_t size = faces.nodes.size();
    const std::size_t begin = beginOfFace(faces, face);
    // guard: fan-offset
    if (begin > size || faces.nodeCounts[face] > size - begin) {
        return {};
    }
    std::size_t end = begin + faces.nodeCounts[face];
    if (face + 1 < faces.faceCount()) {
        const std::size_t next = beginOfFace(faces, face + 1);
        end = next > begin && next <= size ? next : end;
    } else if ((begin != 0 || face == 0) && (size - end) % BYTE_VALUES == 0) {
        end = size;
    }
    return {faces.nodes.data() + begin, end - begin};
}

void appendFan(std::span<const int> labels, int face, SurfaceFans* fans)
{
    FacesData& triangles = fans->triangles;
    for (std::size_t i = 1; i + 1 < labels.size(); ++i) {
        triangles.nodeCounts.push_back(static_cast<std::uint8_t>(TRIANGLE_CORNERS));
        triangles.nodeOffsets.push_back(static_cast<int>(triangles.nodes.size()));
        triangles.nodes.insert(triangles.nodes.end(), {labels[0], labels[i], labels[i + 1]});
        fans->faceOfTriangle.push_back(face);
    }
}

} // namespace

SurfaceFans fansOf(const FacesData& faces, std::size_t nodeCount)
{
    SurfaceFans fans;
    const auto isGood = [nodeCount](int label) { return label >= 0 && static_cast<std::size_t>(label) < nodeCount; };
    const int* keptEnd = faces.nodes.data(); // labels shared by damaged faces go to the first of them
    for (std::size_t face = 0; face < faces.faceCount(); ++face) {
        const std::span<const int> labels = labelsOf(faces, face);
        // guard: fan-labels
        if (labels.size() < TRIANGLE_CORNERS || labels.data() < keptEnd || !std::ranges::all_of(labels, isGood)) {
            continue;
        }
        // Offsets are ints, and a fan has up to three times as many labels as its face.
        if (fans.triangles.nodes.size() + TRIANGLE_CORNERS * labels.size() > dvf::limits::FACE_NODES) {
            break;
        }
        appendFan(labels, static_cast<int>(face), &fans);
        keptEnd = labels.data() + labels.size();
    }
    return fans;
}
