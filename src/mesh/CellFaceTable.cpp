// SPDX-License-Identifier: MIT
#include "mesh/CellFaceTable.h"

CellFaceTable::CellFaceTable(const OFPolymesh& mesh) : m_ends(mesh.cellCount())
{
    const std::size_t cellCount = m_ends.size();
    const auto countLabels = [this, cellCount](const std::vector<int>& labels) {
        for (const int label : labels) {
            // A negative label becomes a huge one. guard: cells-counted
            if (const auto cell = static_cast<std::uint32_t>(label); cell < cellCount) {
                ++m_ends[cell];
            }
        }
    };
    countLabels(mesh.owners());
    countLabels(mesh.neighbors());

    // These are the starts for now; filling moves each of them to the end of its cell.
    std::uint32_t total = 0;
    for (std::uint32_t& end : m_ends) {
        const std::uint32_t count = end;
        end = total;
        total += count;
    }
    // Not cleared, since each entry is written below.
    m_entries.reset(new Entry[total]);
    const auto insert = [this, cellCount](int label, Entry entry) {
        // guard: cells-inserted
        if (const auto cell = static_cast<std::uint32_t>(label); cell < cellCount) {
            m_entries[m_ends[cell]++] = entry;
        }
    };
    const std::size_t neighborCount = mesh.neighbors().size();
    for (std::size_t face = 0; face < mesh.owners().size(); ++face) {
        insert(mesh.owners()[face], static_cast<Entry>(2 * face));
        if (face < neighborCount) {
            insert(mesh.neighbors()[face], static_cast<Entry>(2 * face + 1));
        }
    }
}

void CellFaceTable::startCell(std::size_t cell, const FacesData& faces, CellBuilder* builder) const
{
    const std::span<const Entry> cellFaces = entries(cell);
    builder->startCell(cellFaces.size());
    for (std::size_t i = 0; i < cellFaces.size(); ++i) {
        builder->setFace(i, faces, cellFaces[i] / 2, cellFaces[i] % 2 == 0);
    }
}
