// SPDX-License-Identifier: MIT
#include "sample/SampleMeshBuilder.h"

#include <algorithm>
#include <utility>

int SampleMeshBuilder::addPoint(const SamplePoint& place)
{
    m_mesh.addPoint(place);
    return m_mesh.pointCount() - 1;
}

void SampleMeshBuilder::addFace(std::span<const std::int32_t> nodes)
{
    m_sides.push_back({m_mesh.cellCount - 1, -1});
    m_nodes.insert(m_nodes.end(), nodes.begin(), nodes.end());
    m_offsets.push_back(static_cast<std::int32_t>(m_nodes.size()));
}

std::span<const std::int32_t> SampleMeshBuilder::nodesOf(std::size_t side) const
{
    const auto first = static_cast<std::size_t>(m_offsets[side]);
    return std::span(m_nodes).subspan(first, static_cast<std::size_t>(m_offsets[side + 1]) - first);
}

SampleMesh SampleMeshBuilder::build(const std::array<double, 3>& size)
{
    findTwins();
    m_mesh.patches = boxPatches();
    addInternalFaces();
    addPatches(size);
    return std::move(m_mesh);
}

void SampleMeshBuilder::findTwins()
{
    // Sides of the same face have the same lowest node, so only the few sides with the same lowest node are compared.
    std::vector<std::int32_t> heads(static_cast<std::size_t>(m_mesh.pointCount()), -1);
    std::vector<std::int32_t> next(m_sides.size(), -1);
    const auto sameNodes = [this](std::size_t a, std::size_t b) {
        const std::span<const std::int32_t> first = nodesOf(a);
        const std::span<const std::int32_t> second = nodesOf(b);
        return first.size() == second.size() && std::ranges::is_permutation(first, second);
    };
    for (std::size_t side = 0; side < m_sides.size(); ++side) {
        std::int32_t& head = heads[static_cast<std::size_t>(std::ranges::min(nodesOf(side)))];
        for (std::int32_t other = head; other >= 0; other = next[static_cast<std::size_t>(other)]) {
            Side& candidate = m_sides[static_cast<std::size_t>(other)];
            if (candidate.twin < 0 && sameNodes(side, static_cast<std::size_t>(other))) {
                candidate.twin = static_cast<std::int32_t>(side);
                m_sides[side].twin = other;
                break;
            }
        }
        next[side] = head;
        head = static_cast<std::int32_t>(side);
    }
}

void SampleMeshBuilder::addInternalFaces()
{
    // Sides are in the order of their cells, so owners come out in order; the neighbours of each owner are sorted here.
    std::vector<std::pair<std::int32_t, std::size_t>> ofOwner; // neighbour, side
    const auto flush = [&] {
        std::ranges::sort(ofOwner);
        for (const auto& [neighbour, side] : ofOwner) {
            m_mesh.addFace(nodesOf(side), m_sides[side].cell);
            m_mesh.neighbours.push_back(neighbour);
        }
        ofOwner.clear();
    };
    for (std::size_t side = 0; side < m_sides.size(); ++side) {
        if (side != 0 && m_sides[side].cell != m_sides[side - 1].cell) {
            flush();
        }
        const std::int32_t twin = m_sides[side].twin;
        if (twin >= 0 && m_sides[static_cast<std::size_t>(twin)].cell > m_sides[side].cell) {
            ofOwner.emplace_back(m_sides[static_cast<std::size_t>(twin)].cell, side);
        }
    }
    flush();
}

void SampleMeshBuilder::addPatches(const std::array<double, 3>& size)
{
    std::vector<std::vector<std::size_t>> sidesOfPatch(m_mesh.patches.size());
    for (std::size_t side = 0; side < m_sides.size(); ++side) {
        if (m_sides[side].twin < 0) {
            sidesOfPatch[patchOf(side, size)].push_back(side);
        }
    }
    for (std::size_t number = 0; number < sidesOfPatch.size(); ++number) {
        m_mesh.patches[number].startFace = m_mesh.faceCount();
        m_mesh.patches[number].faceCount = static_cast<int>(sidesOfPatch[number].size());
        for (const std::size_t side : sidesOfPatch[number]) {
            m_mesh.addFace(nodesOf(side), m_sides[side].cell);
        }
    }
}

std::size_t SampleMeshBuilder::patchOf(std::size_t side, const std::array<double, 3>& size) const
{
    for (std::size_t number = 0; number < 6; ++number) {
        const std::size_t axis = number / 2;
        const double plane = number % 2 == 0 ? 0.0 : size[axis];
        // Coordinates of sample meshes are exact, so a face is in a plane either to the last bit or not at all.
        if (std::ranges::all_of(nodesOf(side), [&](std::int32_t node) { return m_mesh.point(node)[axis] == plane; })) {
            return number;
        }
    }
    // Two cells that do not match would leave a face here; it goes into the last patch, where it is visible.
    return 5;
}
