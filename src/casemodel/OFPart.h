// SPDX-License-Identifier: MIT
#pragma once

#include "DvnCore/Str.h"
#include "casemodel/ItemBlocks.h"
#include "records/OFBoundary.h"
#include "records/OFCellZone.h"
#include "records/OFFaceZone.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// One mesh of a case: the default region, a region, or a processor's piece. A plain value: copies are deep.
class OFPart
{
public:
    /// The node and element counts of a part whose mesh was never built; nothing may be sized from them.
    static constexpr std::size_t UNKNOWN_COUNT = static_cast<std::size_t>(-1);

    /// @param id     part id, from the counter that also counts the patches and zones of parts
    /// @param name   "default_region", the region's folder name or the processor folder's name
    /// @param folder path of the `polyMesh` folder
    OFPart(int id, const dvn::Str& name, const dvn::Str& folder);

    int id() const { return m_id; }
    const dvn::Str& name() const { return m_name; }
    const dvn::Str& folder() const { return m_folder; }
    /// True if results lie directly in the time folders, false if in sub-folders named after the part.
    bool isDefaultRegion() const { return m_isDefaultRegion; }
    void setDefaultRegion(bool isDefault) { m_isDefaultRegion = isDefault; }

    /// Makes the part a piece of a decomposed case, whose files may be in either of two layouts.
    ///
    /// @param processor the processor's folder
    /// @param region    the region in it; empty for the default one
    void setPiece(const dvn::Str& processor, const dvn::Str& region);
    /// The region of a piece; empty for the default one and for a part that is not a piece.
    const dvn::Str& pieceRegion() const { return m_pieceRegion; }
    bool isPiece() const { return !m_processor.isEmpty(); }
    /// The folders that may hold the part's files of one time, the preferred one first.
    ///
    /// The default region keeps its files in the time folder itself, any other part in a sub-folder. A piece may also
    /// have a time folder of its own, as solvers write it.
    /// @param timeFolder path of the case's folder of that time, which need not exist
    std::vector<dvn::Str> timeFolders(const dvn::Str& timeFolder) const;

    /// Counts of the built mesh, else `UNKNOWN_COUNT`.
    std::size_t nodeCount() const { return m_nodeCount; }
    void setNodeCount(std::size_t count) { m_nodeCount = count; }
    std::size_t elementCount() const { return m_elementCount; }
    void setElementCount(std::size_t count) { m_elementCount = count; }

    const std::vector<OFBoundary>& boundaries() const { return m_boundaries; }
    std::vector<OFBoundary>& boundaries() { return m_boundaries; }
    const std::vector<OFCellZone>& cellZones() const { return m_cellZones; }
    std::vector<OFCellZone>& cellZones() { return m_cellZones; }
    const std::vector<OFFaceZone>& faceZones() const { return m_faceZones; }
    std::vector<OFFaceZone>& faceZones() { return m_faceZones; }

    /// Takes over the 0-based node indices of all elements, element after element, and leaves the argument empty.
    void setConnectivities(std::vector<int>&& connectivities);
    /// Takes over the node count of each element and leaves the argument empty.
    void setNodesCountPerElt(std::vector<std::uint8_t>&& counts);
    std::uint8_t getElementNodesCount(std::size_t element) const { return m_nodesCountPerElt[element]; }
    const std::vector<int>& connectivities() const { return m_connectivities; }

    /// Averages cell values to nodes: each node gets the mean over the cells around it.
    ///
    /// `nodeValues` is added to and not cleared: pass in zeros for a true average. It has `nodeCount() * components`
    /// entries and `cellValues` `elementCount() * components`, item after item; elements beyond shorter arrays are left
    /// out. Compatibility (docs/compatibility.md, "averages of no items"): counters are bytes and wrap, so a node
    /// shared by exactly 256 cells comes out infinite.
    bool computeAverageNodeResult(const std::vector<double>& cellValues, std::vector<double>& nodeValues,
                                  int components) const;

    /// Averages to nodes, preferring patch values: a node on a patch that has values gets the mean over the patch
    /// faces around it, any other the mean over the cells around it.
    ///
    /// `nodeValues` is cleared first. `boundaryValues` has one array per patch, in patch order, face after face. A
    /// patch without values, or whose first one is the undefined mark, is ignored.
    bool computeAverageNodeResultAwareBC(const std::vector<double>& cellValues,
                                         const std::vector<std::vector<double>>& boundaryValues,
                                         std::vector<double>& nodeValues, int components) const;

private:
    int m_id;
    dvn::Str m_name;
    dvn::Str m_folder;
    dvn::Str m_processor;
    dvn::Str m_pieceRegion;
    std::size_t m_nodeCount = UNKNOWN_COUNT;
    std::size_t m_elementCount = UNKNOWN_COUNT;
    bool m_isDefaultRegion = false;
    std::vector<OFBoundary> m_boundaries;
    std::vector<OFCellZone> m_cellZones;
    std::vector<OFFaceZone> m_faceZones;
    std::vector<int> m_connectivities;
    std::vector<std::uint8_t> m_nodesCountPerElt;
    /// The elements in blocks, for averaging.
    std::vector<ItemBlock> m_elementBlocks;
};
