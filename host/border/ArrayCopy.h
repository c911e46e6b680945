// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

/// Makes fresh memory ready for being filled: asks for large pages and touches them with all cores.
///
/// The first touch of small pages one by one takes longer than a copy into them. Small ranges are left alone.
/// @param memory reserved and not yet in use; its bytes are undefined behind the call
void prepareMemory(void* memory, std::size_t byteCount);

/// Copies bytes with all cores where they are many; the ranges do not overlap.
void copyBytes(const void* source, std::size_t byteCount, void* target);

/// Copies an array that a library lends for one call, in place of what the target holds, with one allocation at most.
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
