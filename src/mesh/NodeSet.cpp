// SPDX-License-Identifier: MIT
#include "mesh/NodeSet.h"

#include <algorithm>
#include <array>
#include <bit>

namespace {

constexpr std::size_t SMALLEST_TABLE = 64;
/// Up to this count, ranking beats a sort by comparisons, which mispredicts half of its branches.
constexpr std::size_t LARGEST_RANKED = 64;

/// Writes `count` distinct labels in ascending order. The position of a label is the number of smaller ones.
void sortByRank(const int* nodes, std::size_t count, int* sorted)
{
    std::array<int, LARGEST_RANKED> ranks = {};
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t j = 0; j < count; ++j) {
            ranks[j] += nodes[i] < nodes[j] ? 1 : 0;
        }
    }
    for (std::size_t i = 0; i < count; ++i) {
        sorted[ranks[i]] = nodes[i];
    }
}

} // namespace

void NodeSet::restart(std::size_t maxCount)
{
    // At most half full, so that probes stay short.
    const std::size_t wanted = std::bit_ceil(std::max(2 * maxCount, SMALLEST_TABLE));
    if (m_entries.size() < wanted) {
        m_entries.assign(wanted, Entry());
        m_nodes.resize(wanted / 2);
        m_sorted.resize(wanted / 2);
        m_stamp = 0;
        m_mask = wanted - 1;
        m_shift = 32 - static_cast<unsigned>(std::min(std::countr_zero(wanted), 32));
    }
    m_count = 0;
    m_isCrowded = false;
    if (++m_stamp == 0) {
        std::fill(m_entries.begin(), m_entries.end(), Entry());
        m_stamp = 1;
    }
}

std::span<const int> NodeSet::sorted()
{
    if (m_count > LARGEST_RANKED) {
        const auto end = m_nodes.begin() + static_cast<std::ptrdiff_t>(m_count);
        std::sort(m_nodes.begin(), end);
        if (m_isCrowded) {
            m_count = static_cast<std::size_t>(std::unique(m_nodes.begin(), end) - m_nodes.begin());
        }
        return {m_nodes.data(), m_count};
    }
    sortByRank(m_nodes.data(), m_count, m_sorted.data());
    return {m_sorted.data(), m_count};
}
