// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/FacesData.h"
#include "interface/DataProviderInterface.h"

#include <tbb/cache_aligned_allocator.h>
#include <tbb/concurrent_vector.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/// One face of a cell.
struct CellFace
{
    int faceIndex = 0;    ///< index into `FacesData`
    bool isOwner = false; ///< whether the cell is the face's owner, so that the face's normal points out of it
};

/// The faces of one cell; owners and neighbours of many faces are added at the same time.
using CellFaceVector = tbb::concurrent_vector<CellFace, tbb::cache_aligned_allocator<CellFace>>;

/// The face tables of one general polyhedron.
struct PolyData
{
    int cellIndex = 0;                          ///< index of the cell inside its chunk
    int faceCount = 0;                          ///< number of faces of the cell
    std::size_t nodeCount = 0;                  ///< entries of `faceNodes`: a node counts once for each of its faces
    std::vector<std::uint8_t> nodeCountPerFace; ///< size of each face
    std::vector<int> faceNodes;                 ///< nodes of all faces, face after face
};

using PolyDataVector = tbb::concurrent_vector<PolyData, tbb::cache_aligned_allocator<PolyData>>;

/// One cell of the reference conversion (OFPolymeshToDDP.h): from its faces to the nodes of its element.
///
/// Fill `cellFaces`, call `buildElementData`, take `elementNodes`, and `clear` it for the next cell. Different cells
/// may be built at the same time.
class OFCell
{
public:
    /// Reserves enough for a hexahedron, which most cells are.
    OFCell();

    CellFaceVector& cellFaces() { return m_cellFaces; }
    const CellFaceVector& cellFaces() const { return m_cellFaces; }
    /// The element's nodes: in the host's order for a solid, the distinct ones in ascending order for a polyhedron.
    const std::vector<int>& elementNodes() const { return m_elementNodes; }
    /// Empties the cell for reuse; the storage of `elementNodes` is kept.
    void clear();

    /// Finds the cell's type and its nodes, and for a polyhedron its face tables.
    ///
    /// @param cellIndex index into `types`, also stored in the face tables of a polyhedron
    /// @return false if the faces of a solid do not form it; the element then keeps its type, and its nodes are in
    ///         ascending order, overwritten as far as the ordering got
    bool buildElementData(int cellIndex, DDPElementType* types, PolyDataVector* polys, const FacesData* faces);
    /// Appends the face tables of this cell to `polys`; always true.
    ///
    /// All faces point out of the cell: those of which it is the neighbour are reversed. In solids it is the owner's
    /// face that is reversed (docs/compatibility.md, "owner faces of solids").
    /// @param nodeCountPerFace size of each face; moved from
    bool buildElementPolyTables(int cellIndex, const FacesData* faces, std::vector<std::uint8_t>* nodeCountPerFace,
                                PolyDataVector* polys) const;

    /// The type of a cell with that many distinct nodes and faces of these sizes, in whatever order.
    static DDPElementType typeFromFaces(std::size_t nodeCount, const std::vector<std::uint8_t>* faceSizes);
    static bool isTetrahedron(std::size_t nodeCount, const std::vector<std::uint8_t>* faceSizes);
    static bool isPyramid(std::size_t nodeCount, const std::vector<std::uint8_t>* faceSizes);
    static bool isPentahedron(std::size_t nodeCount, const std::vector<std::uint8_t>* faceSizes);
    static bool isHexahedron(std::size_t nodeCount, const std::vector<std::uint8_t>* faceSizes);

    /// Puts the nodes of a solid in the host's order, the first suitable face being the base.
    ///
    /// @param[in,out] nodes must have the solid's size; entries that the faces do not settle keep their value
    /// @return false for a type that is not a solid, or if the faces do not form the solid
    static bool orderElementNodes(DDPElementType type, const CellFaceVector* cellFaces, const FacesData* faces,
                                  std::vector<int>* nodes);
    static bool orderTetrahedronNodes(const CellFaceVector* cellFaces, const FacesData* faces, std::vector<int>* nodes);
    static bool orderPyramidNodes(const CellFaceVector* cellFaces, const FacesData* faces, std::vector<int>* nodes);
    static bool orderPentahedronNodes(const CellFaceVector* cellFaces, const FacesData* faces, std::vector<int>* nodes);
    static bool orderHexahedronNodes(const CellFaceVector* cellFaces, const FacesData* faces, std::vector<int>* nodes);

private:
    CellFaceVector m_cellFaces;
    std::vector<int> m_elementNodes;
};
