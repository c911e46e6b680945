// SPDX-License-Identifier: MIT
#include "mesh/LocalNumbering.h"

#include "mesh/MeshArrays.h"

#include <algorithm>
#include <bit>

namespace {

constexpr unsigned WORD_BITS = 64;

} // namespace

LocalNumbering::LocalNumbering(const std::vector<int>& labels)
{
    if (labels.empty()) {
        return;
    }
    const auto [lowest, highest] = std::minmax_element(labels.begin(), labels.end());
    m_lowest = *lowest;
    const std::size_t wordCount = static_cast<std::size_t>(*highest - *lowest) / WORD_BITS + 1;
    // Beyond that the words would take more memory than the labels.
    if (wordCount <= labels.size()) {
        m_words.resize(wordCount);
        collectBits(labels);
    } else {
        m_labels = labels;
        sortUnique(&m_labels);
    }
}

void LocalNumbering::collectBits(const std::vector<int>& labels)
{
    for (const int label : labels) {
        const auto distance = static_cast<unsigned>(label - m_lowest);
        m_words[distance / WORD_BITS].bits |= std::uint64_t{1} << distance % WORD_BITS;
    }
    std::size_t count = 0;
    for (Word& word : m_words) {
        word.start = static_cast<int>(count);
        count += static_cast<std::size_t>(std::popcount(word.bits));
    }
    m_labels.reserve(count);
    int wordLabel = m_lowest;
    for (const Word& word : m_words) {
        for (std::uint64_t bits = word.bits; bits != 0; bits &= bits - 1) {
            m_labels.push_back(wordLabel + std::countr_zero(bits));
        }
        wordLabel += static_cast<int>(WORD_BITS);
    }
}

int LocalNumbering::position(int label) const
{
    if (m_words.empty()) {
        return static_cast<int>(std::lower_bound(m_labels.begin(), m_labels.end(), label) - m_labels.begin());
    }
    const auto distance = static_cast<unsigned>(label - m_lowest);
    const Word& word = m_words[distance / WORD_BITS];
    const std::uint64_t below = (std::uint64_t{1} << distance % WORD_BITS) - 1;
    return word.start + std::popcount(word.bits & below);
}
