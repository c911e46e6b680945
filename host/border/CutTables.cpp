// SPDX-License-Identifier: MIT
#include "border/CutTables.h"

#include "border/CellFaces.h"
#include "border/DeliveryCheck.h"
#include "border/FacePlaces.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <numeric>
#include <set>
#include <span>
#include <string>
#include <utility>

namespace {

constexpr std::size_t MOST_IN_A_BYTE = std::numeric_limits<unsigned char>::max();

/// What a count that does not fit loses at least.
constexpr std::size_t LEAST_LOSS = MOST_IN_A_BYTE + 1;

/// Where the tables hold the faces of one general element.
struct Share
{
    std::size_t element;
    std::span<const std::int32_t> listed; ///< its nodes in the connectivity
    std::size_t faces;
    std::size_t wanted; ///< labels that its faces need
    std::size_t stored; ///< labels that it has in the face connectivity
    bool cut;
};

/// The shares of all general elements, each with as many labels as the low byte of its number.
/// @return empty if there are none, or if the tables before the face connectivity disagree
std::vector<Share> sharesOf(const HostElementGroup& elements)
{
    const HostPolyhedra& tables = elements.polyhedra;
    const auto general = static_cast<std::size_t>(std::ranges::count(elements.types, std::int32_t{DDP_POLY}));
    const auto faces =
        std::accumulate(tables.facesPerPolyhedron.begin(), tables.facesPerPolyhedron.end(), std::size_t{0});
    std::vector<Share> shares;
    if (tables.nodesPerPolyhedron.size() != general || faces != tables.nodesPerFace.size()) {
        return shares;
    }
    std::size_t node = 0;
    auto size = tables.nodesPerFace.begin();
    for (std::size_t element = 0; element < elements.elementCount(); ++element) {
        const bool isGeneral = elements.types[element] == DDP_POLY;
        const std::size_t polyhedron = shares.size();
        const int known = nodeCountOfType(elements.types[element]);
        const std::size_t count = isGeneral ? tables.nodesPerPolyhedron[polyhedron] : static_cast<std::size_t>(known);
        if (known < 0 || count > elements.connectivity.size() - node) {
            return {};
        }
        if (isGeneral) {
            const auto end = size + tables.facesPerPolyhedron[polyhedron];
            const std::size_t wanted = std::accumulate(size, end, std::size_t{0});
            shares.push_back({element, std::span(elements.connectivity).subspan(node, count),
                              static_cast<std::size_t>(end - size), wanted, wanted % LEAST_LOSS,
                              wanted > MOST_IN_A_BYTE});
            size = end;
        }
        node += count;
    }
    return shares;
}

/// True if the labels from `first` on are exactly the nodes of a share that is not cut.
bool isWholeAt(const Share& share, const std::vector<std::int32_t>& labels, std::size_t first)
{
    if (share.cut || first > labels.size() || share.wanted > labels.size() - first) {
        return false;
    }
    const auto own = std::span(labels).subspan(first, share.wanted);
    return std::set<std::int32_t>(own.begin(), own.end()) ==
           std::set<std::int32_t>(share.listed.begin(), share.listed.end());
}

/// Finds the shares of elements of more than 255 faces: the tables list only some of these, so they do not tell how
/// many labels there are. It is as many as let the next element find its own.
/// @return false if that explains nothing
bool findManyFaced(const std::vector<std::int32_t>& labels, std::vector<Share>* shares)
{
    std::size_t first = 0;
    for (std::size_t i = 0; i < shares->size(); ++i) {
        Share& share = (*shares)[i];
        if (!isWholeAt(share, labels, first)) {
            share.cut = true;
            share.stored = 0;
            const auto fits = [&] {
                return i + 1 == shares->size() ? first + share.stored == labels.size()
                                               : isWholeAt((*shares)[i + 1], labels, first + share.stored);
            };
            while (!fits()) {
                if (++share.stored > MOST_IN_A_BYTE) {
                    return false;
                }
            }
        }
        first += share.stored;
    }
    return first == labels.size();
}

void emptyTables(const std::vector<Share>& shares, HostPolyhedra* tables)
{
    HostPolyhedra kept;
    auto size = tables->nodesPerFace.begin();
    auto label = tables->faceConnectivity.begin();
    for (std::size_t i = 0; i < shares.size(); ++i) {
        const auto endOfSizes = size + static_cast<std::ptrdiff_t>(shares[i].faces);
        const auto endOfLabels = label + static_cast<std::ptrdiff_t>(shares[i].stored);
        if (shares[i].cut) {
            tables->facesPerPolyhedron[i] = 0;
        } else {
            kept.nodesPerFace.insert(kept.nodesPerFace.end(), size, endOfSizes);
            kept.faceConnectivity.insert(kept.faceConnectivity.end(), label, endOfLabels);
        }
        size = endOfSizes;
        label = endOfLabels;
    }
    tables->nodesPerFace = std::move(kept.nodesPerFace);
    tables->faceConnectivity = std::move(kept.faceConnectivity);
}

/// The number of faces of a part and its patches that have no other side, as if cells were missing. Without patches the
/// outer faces would count too, so it is 0 then.
std::size_t facesWithoutOtherSide(const std::vector<const HostGroup*>& declared, const HostGeometry& geometry,
                                  std::size_t part)
{
    std::vector<std::uint64_t> places;
    bool hasPatches = false;
    for (std::size_t i = 0; i < declared.size(); ++i) {
        const bool isPatch =
            declared[i]->kind() == HostGroupKind::Boundary && declared[i]->parentId == declared[part]->id;
        const HostElementGroup& elements = geometry.elementGroups[i];
        const HostNodeGroup* const nodes = geometry.nodesOf(elements);
        hasPatches = hasPatches || (isPatch && elements.elementCount() != 0);
        if ((i == part || isPatch) && nodes != nullptr && findGroupFault(*nodes, elements).empty()) {
            forEachFace(elements, [&](std::size_t, std::span<const std::int32_t> face) {
                places.push_back(placeKey(nodes->coordinates, face));
            });
        }
    }
    keepUnpaired(&places);
    return hasPatches ? places.size() : 0;
}

/// The same as `emptyCutTables` for one part.
std::vector<std::size_t> emptyCutTablesOf(const std::vector<const HostGroup*>& declared, HostGeometry* geometry,
                                          std::size_t part)
{
    HostElementGroup& elements = geometry->elementGroups[part];
    const HostNodeGroup* const nodes = geometry->nodesOf(elements);
    std::vector<Share> shares = sharesOf(elements);
    const std::vector<std::int32_t>& labels = elements.polyhedra.faceConnectivity;
    const auto sumOf = [&](std::size_t Share::*count) {
        return std::transform_reduce(shares.begin(), shares.end(), std::size_t{0}, std::plus<>(),
                                     [&](const Share& share) { return share.*count; });
    };
    if (nodes == nullptr || shares.empty() || sumOf(&Share::wanted) == labels.size()) {
        return {};
    }
    const bool manyFaced = sumOf(&Share::stored) != labels.size();
    if ((manyFaced && !findManyFaced(labels, &shares)) || std::ranges::any_of(labels, [&](std::int32_t label) {
            return label < 0 || static_cast<std::size_t>(label) >= nodes->nodeCount();
        })) {
        return {};
    }
    HostPolyhedra before = elements.polyhedra;
    emptyTables(shares, &elements.polyhedra);
    // An element of that many faces leaves them without their other side. Anything less is another fault.
    if (!findGroupFault(*nodes, elements).empty() ||
        (manyFaced && facesWithoutOtherSide(declared, *geometry, part) < LEAST_LOSS)) {
        elements.polyhedra = std::move(before);
        return {};
    }
    std::vector<std::size_t> cut;
    for (const Share& share : shares) {
        if (share.cut) {
            cut.push_back(share.element);
        }
    }
    return cut;
}

/// The edges that one face of a cell has and no other has in the opposite direction. Reorders them.
std::size_t countOpen(std::vector<std::pair<std::int32_t, std::int32_t>>* edges)
{
    std::ranges::sort(*edges);
    return static_cast<std::size_t>(std::ranges::count_if(*edges, [&](const auto& edge) {
        return !std::ranges::binary_search(*edges, std::pair(edge.second, edge.first));
    }));
}

} // namespace

ElementsByGroup emptyCutTables(const HostMetaData& metaData, HostGeometry* geometry)
{
    const std::vector<const HostGroup*> declared = metaData.geometryGroups();
    ElementsByGroup cut(geometry->elementGroups.size());
    if (declared.size() != cut.size()) {
        return cut;
    }
    for (std::size_t i = 0; i < cut.size(); ++i) {
        if (declared[i]->kind() == HostGroupKind::Part) {
            cut[i] = emptyCutTablesOf(declared, geometry, i);
        }
    }
    return cut;
}

std::vector<std::string> padShortSurfaces(const HostMetaData& metaData, HostGeometry* geometry)
{
    const std::vector<const HostGroup*> declared = metaData.geometryGroups();
    std::vector<std::string> padded;
    for (std::size_t i = 0; i < std::min(declared.size(), geometry->elementGroups.size()); ++i) {
        HostElementGroup& elements = geometry->elementGroups[i];
        const std::size_t needed = 3 * elements.elementCount();
        if (declared[i]->kind() == HostGroupKind::Surface && elements.uniform &&
            elements.connectivity.size() < needed) {
            elements.connectivity.resize(needed);
            padded.push_back(declared[i]->name);
        }
    }
    return padded;
}

std::vector<bool> cellsWithCutFaces(const HostNodeGroup& nodes, const HostElementGroup& elements)
{
    std::vector<bool> used(nodes.nodeCount());
    std::vector<std::size_t> open(elements.elementCount());
    std::vector<std::pair<std::int32_t, std::int32_t>> edges;
    std::size_t current = 0;
    forEachFace(elements, [&](std::size_t element, std::span<const std::int32_t> face) {
        if (element != current) {
            open[current] = countOpen(&edges);
            edges.clear();
            current = element;
        }
        for (std::size_t k = 0; k < face.size(); ++k) {
            edges.emplace_back(face[k], face[(k + 1) % face.size()]);
            used[static_cast<std::size_t>(face[k])] = true;
        }
    });
    if (!open.empty()) {
        open[current] = countOpen(&edges);
    }
    // A face that is cut leaves at most the two cells at it open. Where more cells are, the mesh itself is cut off.
    const auto unused = static_cast<std::size_t>(std::ranges::count(used, false));
    const std::size_t openCells = open.size() - static_cast<std::size_t>(std::ranges::count(open, std::size_t{0}));
    const bool someLost = unused >= LEAST_LOSS * std::max<std::size_t>(openCells / 2, 1);
    std::vector<bool> maybeCut(elements.elementCount());
    for (std::size_t element = 0; element < maybeCut.size(); ++element) {
        maybeCut[element] = elements.types[element] == DDP_POLY && (someLost || open[element] > LEAST_LOSS);
    }
    return maybeCut;
}
