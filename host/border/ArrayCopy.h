// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

/// Prepares fresh memory to be filled: asks for large pages and touches them with all cores.
///
/// Touching small pages for the first time, one by one, takes longer than copying into them. Does nothing for small
/// ranges.
/// @param memory reserved and not yet in use; its bytes are undefined after the call
void prepareMemory(void* memory, std::size_t byteCount);

/// Copies bytes, using all cores for large ranges; the ranges must not overlap.
void copyBytes(const void* source, std::size_t byteCount, void* target);

/// Replaces the content of the target by an array that a library lends for one call, with at most one allocation.
template <typename Value>
void copyArray(const Value* values, std::size_t count, std::vector<Value>* target)
{
    if (target->size() == count) {
        copyBytes(values, count * sizeof(Value), target->data());
        return;
    }
    target->clear();
    if (target->capacity() < count) {
        target->reserve(count);
        prepareMemory(target->data(), count * sizeof(Value));
    }
    target->assign(values, values + count);
}
