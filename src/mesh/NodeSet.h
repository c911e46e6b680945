// SPDX-License-Identifier: MIT
#pragma once

#include "LibCore/Limits.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// A set of node labels that is refilled for each cell and keeps its storage.
///
/// A hash table in which a stamp marks the entries of the current cell, so that clearing it costs nothing. A polyhedron
/// lists each node about three times; finding the repeats first saves most of the sort.
class NodeSet
{
public:
    /// Empties the set and makes room for `maxCount` insertions, which the caller must not exceed.
    void restart(std::size_t maxCount);

    void insert(int node)
    {
        std::size_t slot = firstSlot(node);
        for (std::size_t probes = 0; probes < dvf::limits::NODE_SET_PROBES; ++probes, slot = (slot + 1) & m_mask) {
            Entry& entry = m_entries[slot];
            if (entry.stamp != m_stamp) {
                entry = {node, m_stamp};
                m_nodes[m_count++] = node;
                return;
            }
            if (entry.node == node) {
                return;
            }
        }
        // Labels can be chosen so that all hash to one place. The sort removes the repeats among them.
        m_nodes[m_count++] = node;
        m_isCrowded = true;
    }

    /// The distinct labels in ascending order; valid until the next `restart`.
    std::span<const int> sorted();

private:
    struct Entry
    {
        int node = 0;
        std::uint32_t stamp = 0;
    };

    std::size_t firstSlot(int node) const
    {
        // Multiplication by the golden ratio spreads runs of neighbouring labels, which cells are made of.
        return (static_cast<std::uint32_t>(node) * 0x9E3779B1U) >> m_shift;
    }

    std::vector<Entry> m_entries;
    std::vector<int> m_nodes;
    std::vector<int> m_sorted;
    std::size_t m_count = 0;
    std::size_t m_mask = 0;
    unsigned m_shift = 0;
    std::uint32_t m_stamp = 0;
    bool m_isCrowded = false;
};
