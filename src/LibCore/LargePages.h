// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace dvf {

/// Asks the system to use large pages for memory that is about to be filled; only a hint.
///
/// The first touch of fresh memory costs four times as much as a copy, nearly all of it for mapping small pages one by
/// one. Only the whole large pages of the range are affected, so small arrays are left alone.
void preferLargePages(void* memory, std::size_t byteCount);

/// The same, and touches the pages with all cores. The bytes are undefined afterwards.
void touchLargePages(void* memory, std::size_t byteCount);

/// Makes room for `size` values in large pages where they help. Call it before an array is filled for the first time.
template <typename T>
void reserveLarge(std::vector<T>* values, std::size_t size)
{
    if (size > values->capacity()) {
        values->reserve(size);
        preferLargePages(values->data(), size * sizeof(T));
    }
}

/// An array of `size` equal values in large pages where they help. All of its memory is touched at once.
template <typename T>
std::vector<T> filledLarge(std::size_t size, T value)
{
    std::vector<T> values;
    values.reserve(size);
    touchLargePages(values.data(), size * sizeof(T));
    values.assign(size, value);
    return values;
}

} // namespace dvf
