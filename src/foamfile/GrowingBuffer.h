// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

/// An array of plain values that can grow and is never cleared: clearing would touch every page once more, which for
/// the buffers of the list readers costs as much as parsing.
template <typename T>
class GrowingBuffer
{
    static_assert(std::is_trivially_copyable_v<T>);

public:
    /// The values; null until there is room.
    T* data() { return m_values.get(); }
    const T* data() const { return m_values.get(); }
    std::size_t capacity() const { return m_capacity; }

    /// Makes room for `capacity` values; the first `keep` of the old ones stay.
    void grow(std::size_t capacity, std::size_t keep)
    {
        if (capacity <= m_capacity) {
            return;
        }
        // At least doubled, so that what arrives in pieces is not copied once for each piece.
        const std::size_t roomy = std::max(capacity, 2 * m_capacity);
        auto values = std::make_unique_for_overwrite<T[]>(roomy);
        if (keep != 0) {
            std::memcpy(values.get(), m_values.get(), keep * sizeof(T));
        }
        m_values = std::move(values);
        m_capacity = roomy;
    }

    /// Frees the memory.
    void release()
    {
        m_values.reset();
        m_capacity = 0;
    }

    /// True if `place` is within the array.
    bool contains(const T* place) const
    {
        const std::less<> before;
        const T* const first = m_values.get();
        return first != nullptr && !before(place, first) && before(place, first + m_capacity);
    }

private:
    std::unique_ptr<T[]> m_values;
    std::size_t m_capacity = 0;
};

using ChunkBuffer = GrowingBuffer<char>;
