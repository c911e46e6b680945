// SPDX-License-Identifier: MIT
#pragma once

#include "LibCore/Parallel.h"
#include "interface/DataProviderInterface.h"
#include "mesh/MeshArrays.h"
#include "mesh/OFCell.h"
#include "mesh/OFPolymesh.h"
#include "records/OFBoundary.h"
#include "records/OFFaceZone.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// Turns a face-based mesh into the element and node groups of the host.
///
/// `createMesh` frees parts of the mesh as it goes, which fixes the order of use: first `populateBoundaryGroup` and
/// `populateFaceZoneGroup`, which may run on several threads at once for different groups, then `createMesh`, then
/// `populateElementGroup` and `populateNodeGroup`, and last the moves out of `nodesCountPerElt` and `connectivities`.
class OFPolymeshToDDP
{
public:
    /// Takes a mesh that must outlive this object, and removes from it whatever points to nothing (`makeConsistent`).
    explicit OFPolymeshToDDP(OFPolymesh* mesh);

    /// Converts all cells; always true. Afterwards the mesh holds only its points.
    ///
    /// A solid whose faces do not form it is delivered as it is, so one bad cell never stops a mesh.
    bool createMesh();

    /// Hands over the points of the mesh, with ids from 1.
    bool populateNodeGroup(DDPNodeGroup* group, std::size_t* nodeCount) const;
    /// Hands over the elements, with ids from 0, and frees their storage except `connectivities`, so it works only
    /// once.
    /// @return false, the group untouched, if there are no elements
    bool populateElementGroup(DDPElementGroup* group, std::size_t* elementCount);

    /// Hands over a patch as a surface with its own nodes, numbered from 0, and adds the mappings to the patch.
    ///
    /// If a patch reaches beyond the faces of the mesh, those that exist are delivered and its own counts stay.
    /// @param mostFaces upper limit of the faces delivered
    bool populateBoundaryGroup(OFBoundary& boundary, DDPNodeGroup* nodes, std::size_t* nodeCount,
                               DDPElementGroup* elements, std::size_t* elementCount,
                               std::size_t mostFaces = static_cast<std::size_t>(-1)) const;
    /// How many faces each patch gets: in a sound mesh all that it claims.
    ///
    /// Each of many patches could claim the whole mesh, so all together they get no more than twice the faces and node
    /// labels of the mesh. Shorter patches are served first: a patch that claims too much takes nothing from the
    /// others.
    std::vector<std::size_t> facesPerPatch(const std::vector<OFBoundary>& boundaries) const;
    /// The same for a face zone. Labels that name no face are left out, and all elements have the id 0.
    bool populateFaceZoneGroup(OFFaceZone& zone, DDPNodeGroup* nodes, std::size_t* nodeCount, DDPElementGroup* elements,
                               std::size_t* elementCount) const;
    /// Sorts ascending and removes duplicates; always true.
    bool removeDuplicates(std::vector<int>& values) const;

    /// For each element the number of its entries in `connectivities`; the caller may move from it at the end.
    std::vector<std::uint8_t>& nodesCountPerElt() { return m_elements.nodeCounts; }
    /// 0-based nodes of all elements, element after element; the caller may move from it at the end.
    std::vector<int>& connectivities() { return m_elements.connectivities; }

    // --- reference conversion (OFPolymeshToDDPReference.cpp)
    //
    // Serves tests as a second path: the same conversion step by step, on `OFCell` objects. No host reaches it. It is
    // several times slower and larger than `createMesh`, which must deliver the same.

    /// The same as `createMesh`, cell object by cell object in eight chunks.
    bool createMeshInChunks();
    /// Sizes of the eight chunks, all equal except the last, which takes the remainder.
    std::vector<std::size_t> createCellsChunks(std::size_t cellCount) const;
    /// Makes `count` the number of cells of the current chunk. This and all operations below always return true.
    bool allocateCells(std::size_t count);
    /// Gives the cells of the current chunk, which are those from `first` up to but excluding `last`, their faces.
    bool assignCellFaces(int first, int last);
    /// The same; the order of the faces of a cell depends on the threads.
    bool assignCellFacesPar(int first, int last);
    /// The same with the faces of each cell in ascending order.
    bool assignCellFacesSeq(int first, int last);
    /// Builds all cells of the current chunk, whose first cell is `firstCell`, and drops earlier polyhedra.
    bool buildElementData(std::size_t firstCell);
    /// The same, but appends to the polyhedra of earlier calls; all of them are sorted by cell.
    bool buildElementDataPar(std::size_t firstCell);
    /// The same without the sort.
    bool buildElementDataSeq(std::size_t firstCell);
    /// Stores the nodes of the current chunk after the first `nodeBase` entries of `connectivities`, and clears the
    /// cells.
    bool buildDDPMeshData(std::size_t firstCell, std::size_t nodeBase);
    /// Stores the polyhedra of the current chunk after those of earlier chunks, whose counts are the three bases.
    bool BuildDDPMeshForPolys(std::size_t firstCell, std::size_t polyBase, std::size_t faceBase, std::size_t nodeBase);

    /// The cells of the current chunk.
    const std::vector<OFCell>& cells() const { return m_cells; }

private:
    DDPElementType* typesFrom(std::size_t firstCell);
    void finishElements(double buildTime, double storeTime);

    OFPolymesh* m_mesh;
    std::vector<OFCell> m_cells;
    PolyDataVector m_polys;
    ElementArrays m_elements;
    PolyhedronArrays m_polyhedra;
};

/// Reference conversion: body of the parallel face assignment. A cell gets faces from many ranges at once, so its list
/// is a concurrent one.
class OFInsertCellFacesDataFunctor
{
public:
    std::vector<OFCell>* cells;
    const std::vector<int>* owners;
    const std::vector<int>* neighbors;
    std::size_t neighborCount;
    int firstCell;
    int endCell;

    /// Adds each face to its owner and its neighbour if they are cells of the chunk.
    void operator()(const dvf::IndexRange& faces) const;

private:
    void insertSide(int cell, std::size_t face, bool isOwner) const;
};

/// Reference conversion: body of the parallel element build. Each cell writes only its own data and type, and appends
/// to the concurrent list of polyhedra.
class OFBuildElementDataFunctor
{
public:
    std::vector<OFCell>* cells;
    const FacesData* faces;
    PolyDataVector* polys;
    DDPElementType* types; ///< of the chunk's first cell

    void operator()(const dvf::IndexRange& range) const;
};
