// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/FacesData.h"
#include "records/Components.h"

#include <cstddef>
#include <vector>

/// The raw, face-based mesh of one `polyMesh` folder. It has no objects for cells.
///
/// After a good read there is one owner per face, and the first `neighbors().size()` faces are the internal ones; all
/// others are boundary faces, which have only an owner. A failed read keeps what it got, and nothing is checked here.
class OFPolymesh
{
public:
    /// x, y, z of each point in turn.
    std::vector<double>& points() { return m_points; }
    const std::vector<double>& points() const { return m_points; }
    /// All faces, internal ones first.
    FacesData& faces() { return m_faces; }
    const FacesData& faces() const { return m_faces; }
    /// For each internal face the 0-based cell on its far side.
    std::vector<int>& neighbors() { return m_neighbors; }
    const std::vector<int>& neighbors() const { return m_neighbors; }
    /// For each face the 0-based cell that its normal points out of.
    std::vector<int>& owners() { return m_owners; }
    const std::vector<int>& owners() const { return m_owners; }

    std::size_t nodeCount() const { return m_points.size() / VECTOR_COMPONENTS; }
    /// The count that the header of the `owner` file claims; it is not derived from the lists.
    std::size_t cellCount() const { return static_cast<std::size_t>(m_cellCount); }
    void setCellCount(int count) { m_cellCount = count; }

private:
    std::vector<double> m_points;
    FacesData m_faces;
    std::vector<int> m_neighbors;
    std::vector<int> m_owners;
    int m_cellCount = 0;
};
