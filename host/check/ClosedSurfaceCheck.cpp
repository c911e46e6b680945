// SPDX-License-Identifier: MIT
#include "check/CellFaces.h"
#include "check/Check.h"
#include "check/CheckRun.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>

namespace {

// What rounding may leave of a vector sum of areas, relative to the sum of their sizes.
constexpr double ROUNDING = 1e-9;

/// Mixes the bits of a number over the whole word.
std::uint64_t mixed(std::uint64_t value)
{
    value ^= value >> 31;
    value *= 0x9E3779B97F4A7C15U;
    value ^= value >> 29;
    value *= 0xBF58476D1CE4E5B9U;
    return value ^ (value >> 32);
}

/// One face of one cell. Faces with the same nodes have the same key, whatever node they start with and whichever way
/// they run. With 64 bits, accidental matches are negligible in any mesh that fits into memory.
struct CellFace
{
    std::uint64_t key;
    bool forward; ///< which of the two directions it runs in
    std::uint32_t cell;
};

CellFace cellFaceOf(std::span<const std::int32_t> nodes, std::size_t cell)
{
    CellFace face = {0, false, static_cast<std::uint32_t>(cell)};
    std::size_t least = 0;
    for (std::size_t k = 0; k < nodes.size(); ++k) {
        face.key += mixed(static_cast<std::uint64_t>(nodes[k]) + 1);
        least = nodes[k] < nodes[least] ? k : least;
    }
    if (!nodes.empty()) {
        face.forward = nodes[(least + 1) % nodes.size()] < nodes[(least + nodes.size() - 1) % nodes.size()];
    }
    return face;
}

/// The same for faces of groups that number their nodes independently: computed from the positions of the nodes.
std::uint64_t placeKey(const std::vector<double>& coordinates, std::span<const std::int32_t> nodes)
{
    std::uint64_t key = 0;
    for (const std::int32_t node : nodes) {
        std::uint64_t place = 0;
        for (const double coordinate : nodeAt(coordinates, node)) {
            place = mixed(place + std::bit_cast<std::uint64_t>(coordinate));
        }
        key += mixed(place);
    }
    return key;
}

/// Sorts, and keeps one entry of each key that occurs an odd number of times and none of the others: two faces in one
/// place, as in a baffle or between unconnected cells, bound nothing.
void keepUnpaired(std::vector<std::uint64_t>* keys)
{
    std::ranges::sort(*keys);
    std::vector<std::uint64_t> unpaired;
    for (const std::uint64_t key : *keys) {
        if (!unpaired.empty() && unpaired.back() == key) {
            unpaired.pop_back();
        } else {
            unpaired.push_back(key);
        }
    }
    *keys = std::move(unpaired);
}

std::size_t countMissing(const std::vector<std::uint64_t>& keys, const std::vector<std::uint64_t>& others)
{
    std::vector<std::uint64_t> missing;
    std::ranges::set_difference(keys, others, std::back_inserter(missing));
    return missing.size();
}

/// The surface of one part: the faces of its cells, and among them those that belong to one cell only.
class PartSurface
{
public:
    PartSurface(CheckRun& run, const SoundGeometry& sound, std::size_t group)
        : m_run(run), m_name(sound.groups[group]->name), m_elements(sound.geometry->elementGroups[group]),
          m_coordinates(sound.geometry->nodesOf(m_elements)->coordinates)
    {}

    /// Checks that the faces of each cell close it.
    void checkCells()
    {
        Vector3 sum = {};
        double area = 0;
        std::size_t current = 0;
        const auto finish = [&] {
            if (lengthOf(sum) > ROUNDING * area) {
                m_run.fail(fmt::format("{}: the faces of cell {} do not close it", m_name, current));
            }
        };
        forEachFace(m_elements, [&](std::size_t cell, std::span<const std::int32_t> nodes) {
            if (cell != current) {
                finish();
                sum = {};
                area = 0;
                current = cell;
            }
            addArea(nodes, &sum, &area);
        });
        finish();
    }

    /// Checks that each face has one cell, or two on opposite sides.
    void pairFaces()
    {
        std::vector<CellFace> faces;
        forEachFace(m_elements, [&](std::size_t cell, std::span<const std::int32_t> nodes) {
            faces.push_back(cellFaceOf(nodes, cell));
        });
        std::ranges::sort(faces, {}, &CellFace::key);
        m_outer.assign(m_elements.elementCount(), false);
        for (std::size_t first = 0; first < faces.size();) {
            std::size_t end = first + 1;
            while (end < faces.size() && faces[end].key == faces[first].key) {
                ++end;
            }
            checkSharing(std::span(faces).subspan(first, end - first));
            first = end;
        }
        std::ranges::sort(m_outerKeys);
    }

    /// Checks that the outer faces together close the part.
    void checkOuter()
    {
        Vector3 sum = {};
        double area = 0;
        forEachFace(m_elements, [&](std::size_t cell, std::span<const std::int32_t> nodes) {
            if (m_outer[cell] && std::ranges::binary_search(m_outerKeys, cellFaceOf(nodes, cell).key)) {
                addArea(nodes, &sum, &area);
                m_outerPlaces.push_back(placeKey(m_coordinates, nodes));
            }
        });
        if (lengthOf(sum) > ROUNDING * area) {
            m_run.fail(fmt::format("{}: the outer faces leave an area of {} open", m_name, lengthOf(sum)));
        }
    }

    /// Checks that the outer faces are those of the patches.
    void checkPatches(std::vector<std::uint64_t> patchPlaces)
    {
        keepUnpaired(&patchPlaces);
        keepUnpaired(&m_outerPlaces);
        const std::size_t unpatched = countMissing(m_outerPlaces, patchPlaces);
        const std::size_t loose = countMissing(patchPlaces, m_outerPlaces);
        m_run.expect(unpatched == 0, fmt::format("{}: {} outer faces are in no patch", m_name, unpatched));
        m_run.expect(loose == 0, fmt::format("{}: {} faces of patches are not outer faces", m_name, loose));
    }

private:
    void addArea(std::span<const std::int32_t> nodes, Vector3* sum, double* area) const
    {
        const Vector3 vector = areaVector(m_coordinates, nodes);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            (*sum)[axis] += vector[axis];
        }
        *area += lengthOf(vector);
    }

    void checkSharing(std::span<const CellFace> sharers)
    {
        if (sharers.size() == 1) {
            m_outer[sharers[0].cell] = true;
            m_outerKeys.push_back(sharers[0].key);
        } else if (sharers.size() > 2) {
            m_run.fail(
                fmt::format("{}: {} cells share a face, one of them {}", m_name, sharers.size(), sharers[0].cell));
        } else if (sharers[0].forward == sharers[1].forward) {
            m_run.fail(fmt::format("{}: cells {} and {} lie on the same side of their face", m_name, sharers[0].cell,
                                   sharers[1].cell));
        }
    }

    CheckRun& m_run;
    std::string m_name;
    const HostElementGroup& m_elements;
    const std::vector<double>& m_coordinates;
    std::vector<bool> m_outer; ///< for each cell whether it has an outer face
    std::vector<std::uint64_t> m_outerKeys;
    std::vector<std::uint64_t> m_outerPlaces;
};

} // namespace

void checkClosedSurfaces(CheckRun& run)
{
    const SoundGeometry sound = run.openGeometry();
    sound.needCells();
    const DDPString hiding("HIDE_PARALLEL_INTERFACES");
    const bool hides = sound.open->options().hasOption(hiding) && sound.open->options().boolOption(hiding);
    for (std::size_t i = 0; i < sound.groups.size(); ++i) {
        if (sound.groups[i]->kind() != HostGroupKind::Part) {
            continue;
        }
        PartSurface surface(run, sound, i);
        surface.checkCells();
        surface.pairFaces();
        surface.checkOuter();
        std::vector<std::uint64_t> patchPlaces;
        for (std::size_t j = 0; j < sound.groups.size(); ++j) {
            const HostElementGroup& patch = sound.geometry->elementGroups[j];
            if (sound.groups[j]->kind() == HostGroupKind::Boundary &&
                sound.groups[j]->parentId == sound.groups[i]->id) {
                const std::vector<double>& coordinates = sound.geometry->nodesOf(patch)->coordinates;
                forEachFace(patch, [&](std::size_t, std::span<const std::int32_t> nodes) {
                    patchPlaces.push_back(placeKey(coordinates, nodes));
                });
            }
        }
        // Without patches, or with some of them hidden, there is nothing to compare the outer faces with.
        if (!patchPlaces.empty() && !hides) {
            surface.checkPatches(std::move(patchPlaces));
        }
    }
}
