// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace dvf {

/// Asks the system to back memory that is about to be filled with large pages; a hint that may go unheard.
///
/// The first touch of fresh memory costs four times as much as a copy, nearly all of it for entering small pages one by
/// one. Only whole large pages within the range are concerned, so small arrays are left alone.
void preferLargePages(void* memory, std::size_t byteCount);

/// The same, and touches the pages with all cores. The bytes are undefined behind the call.
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

/// An array of `size` equal values in large pages where they help. All of its memory is taken into use.
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
