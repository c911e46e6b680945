// SPDX-License-Identifier: MIT
#include "border/CellFaces.h"
#include "border/FacePlaces.h"
#include "check/Check.h"
#include "check/CheckRun.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

// What rounding may leave of a vector sum of areas, relative to the sum of their sizes.
constexpr double ROUNDING = 1e-9;

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
        face.key += mixedBits(static_cast<std::uint64_t>(nodes[k]) + 1);
        least = nodes[k] < nodes[least] ? k : least;
    }
    if (!nodes.empty()) {
        face.forward = nodes[(least + 1) % nodes.size()] < nodes[(least + nodes.size() - 1) % nodes.size()];
    }
    return face;
}

std::size_t countMissing(const std::vector<std::uint64_t>& keys, const std::vector<std::uint64_t>& others)
{
    std::vector<std::uint64_t> missing;
    std::ranges::set_difference(keys, others, std::back_inserter(missing));
    return missing.size();
}

/// The faces of a part's patches, by place.
struct PatchFaces
{
    std::vector<std::uint64_t> places;
    /// Where faces of coupled patches are, ascending. A mesh has another face of the same cell in the place of one that
    /// is open only in part, as cyclicACMI has it, or only at times, and solvers divide the area between the two.
    std::vector<std::uint64_t> coupled;
};

PatchFaces patchFacesOf(const SoundGeometry& sound, const HostGroup& part)
{
    PatchFaces faces;
    for (std::size_t i = 0; i < sound.groups.size(); ++i) {
        if (sound.groups[i]->kind() != HostGroupKind::Boundary || sound.groups[i]->parentId != part.id) {
            continue;
        }
        const HostElementGroup& patch = sound.geometry->elementGroups[i];
        const std::vector<double>& coordinates = sound.geometry->nodesOf(patch)->coordinates;
        auto& places = sound.groups[i]->type().starts_with("cyclic") ? faces.coupled : faces.places;
        forEachFace(patch, [&](std::size_t, std::span<const std::int32_t> nodes) {
            places.push_back(placeKey(coordinates, nodes));
        });
    }
    std::ranges::sort(faces.coupled);
    return faces;
}

/// The surface of one part: the faces of its cells, and among them those that belong to one cell only.
class PartSurface
{
public:
    PartSurface(CheckRun& run, const SoundGeometry& sound, std::size_t group)
        : m_run(run), m_name(sound.groups[group]->name), m_elements(sound.geometry->elementGroups[group]),
          m_nodes(*sound.geometry->nodesOf(m_elements)), m_coordinates(m_nodes.coordinates),
          m_patches(patchFacesOf(sound, *sound.groups[group])), m_hasUnknownFaces(!sound.cutCells[group].empty())
    {}

    bool hasPatches() const { return !m_patches.places.empty() || !m_patches.coupled.empty(); }
    /// True if some cell has faces that cannot be told from what was delivered.
    bool hasUnknownFaces() const { return m_hasUnknownFaces; }

    /// Checks that the faces of each cell close it.
    void checkCells()
    {
        Vector3 sum = {};
        double area = 0;
        std::size_t current = 0;
        const auto finish = [&] {
            if (lengthOf(sum) > ROUNDING * area) {
                noteOpenCell(current);
            }
        };
        forEachFaceOnce([&](std::size_t cell, std::span<const std::int32_t> nodes) {
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
        forEachFaceOnce([&](std::size_t cell, std::span<const std::int32_t> nodes) {
            // A cut face may have fewer than three nodes, and two of them could be any.
            if (nodes.size() >= 3) {
                faces.push_back(cellFaceOf(nodes, cell));
            }
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
        forEachFaceOnce([&](std::size_t cell, std::span<const std::int32_t> nodes) {
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
    void checkPatches()
    {
        std::vector<std::uint64_t> patchPlaces = m_patches.coupled;
        std::ranges::copy_if(m_patches.places, std::back_inserter(patchPlaces), [this](std::uint64_t place) {
            return !std::ranges::binary_search(m_patches.coupled, place);
        });
        keepUnpaired(&patchPlaces);
        keepUnpaired(&m_outerPlaces);
        const std::size_t unpatched = countMissing(m_outerPlaces, patchPlaces);
        const std::size_t loose = countMissing(patchPlaces, m_outerPlaces);
        m_run.expect(unpatched == 0, fmt::format("{}: {} outer faces are in no patch", m_name, unpatched));
        m_run.expect(loose == 0, fmt::format("{}: {} faces of patches are not outer faces", m_name, loose));
    }

private:
    /// Calls `visit(cell, nodes)` for each face of each cell, but only once for two faces of a cell that share the
    /// place of a coupled patch. Without patches any two may do so.
    template <typename Visit>
    void forEachFaceOnce(Visit visit) const
    {
        std::vector<std::uint64_t> seen;
        std::size_t current = m_elements.elementCount();
        forEachFace(m_elements, [&](std::size_t cell, std::span<const std::int32_t> nodes) {
            if (cell != current) {
                seen.clear();
                current = cell;
            }
            if (!m_patches.coupled.empty() || !hasPatches()) {
                const std::uint64_t place = placeKey(m_coordinates, nodes);
                if (std::ranges::find(seen, place) != seen.end()) {
                    return;
                }
                if (!hasPatches() || std::ranges::binary_search(m_patches.coupled, place)) {
                    seen.push_back(place);
                }
            }
            visit(cell, nodes);
        });
    }

    void noteOpenCell(std::size_t cell)
    {
        if (m_maybeCut.empty()) {
            m_maybeCut = cellsWithCutFaces(m_nodes, m_elements);
        }
        if (m_maybeCut[cell]) {
            m_hasUnknownFaces = true;
            m_run.limit(CUT_TABLES,
                        fmt::format("{}: cell {} is open, as it has a face of more than 255 nodes", m_name, cell));
        } else {
            m_run.fail(fmt::format("{}: the faces of cell {} do not close it", m_name, cell));
        }
    }

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
    const HostNodeGroup& m_nodes;
    const std::vector<double>& m_coordinates;
    PatchFaces m_patches;
    bool m_hasUnknownFaces;
    std::vector<bool> m_maybeCut; ///< for each cell whether it may have a cut face; empty until a cell is open
    std::vector<bool> m_outer;    ///< for each cell whether it has an outer face
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
        noteCutCells(run, sound.groups[i]->name, sound.cutCells[i]);
        PartSurface surface(run, sound, i);
        surface.checkCells();
        surface.pairFaces();
        // Where faces of a cell are unknown, those of its neighbours look like outer ones.
        if (surface.hasUnknownFaces()) {
            continue;
        }
        surface.checkOuter();
        // Without patches, or with some of them hidden, there is nothing to compare the outer faces with.
        if (surface.hasPatches() && !hides) {
            surface.checkPatches();
        }
    }
}
