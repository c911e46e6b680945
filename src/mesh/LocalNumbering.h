// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// Numbers a selection of labels from 0 in ascending order.
///
/// Labels that are close together, like those of large patches, are kept as one bit per label of their range: no sort,
/// and a position is a count of bits. A few labels far apart are sorted and searched instead.
class LocalNumbering
{
public:
    /// @param labels not negative; they may repeat
    explicit LocalNumbering(const std::vector<int>& labels);

    /// The distinct labels in ascending order.
    const std::vector<int>& labels() const { return m_labels; }
    /// Position in `labels` of a label that is in it.
    int position(int label) const;

private:
    /// 64 labels of the range.
    struct Word
    {
        std::uint64_t bits = 0;
        int start = 0; ///< number of labels before this word
    };

    void collectBits(const std::vector<int>& labels);

    std::vector<int> m_labels;
    int m_lowest = 0;
    std::vector<Word> m_words;
};
