// SPDX-License-Identifier: MIT
#pragma once

#include "mesh/CellBuilder.h"
#include "mesh/OFPolymesh.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

/// The faces of every cell of a mesh in one flat table.
///
/// The faces of a cell are in ascending order, so a mesh comes out the same on every run. Labels of owners and
/// neighbours that name no cell are left out. Once built, the table no longer needs the lists.
class CellFaceTable
{
public:
    /// @param mesh has been through `makeConsistent`: no more owners than faces, no more neighbours than owners
    explicit CellFaceTable(const OFPolymesh& mesh);

    std::size_t cellCount() const { return m_ends.size(); }
    /// Hands the faces of a cell to a builder.
    void startCell(std::size_t cell, const FacesData& faces, CellBuilder* builder) const;

private:
    /// Twice the index of the face, plus one where the cell is the neighbour. If both sides of a face name the same
    /// cell, that of the owner comes first.
    using Entry = std::uint32_t;

    std::span<const Entry> entries(std::size_t cell) const
    {
        const std::uint32_t begin = cell == 0 ? 0 : m_ends[cell - 1];
        return {m_entries.get() + begin, m_ends[cell] - begin};
    }

    std::vector<std::uint32_t> m_ends;
    std::unique_ptr<Entry[]> m_entries;
};
