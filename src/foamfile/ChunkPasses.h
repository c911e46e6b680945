// SPDX-License-Identifier: MIT
#pragma once

#include "LibCore/Parallel.h"
#include "foamfile/GrowingBuffer.h"

#include <array>
#include <cstddef>

/// What the worker of one slot of a pass owns besides its items: its chunk of the list.
struct ChunkSlot
{
    ChunkBuffer buffer;
    const char* begin = nullptr;
    const char* end = nullptr;
    /// Whether a chunk came; false once the file has ended.
    bool more = true;
};

/// Reads a long ascii list in passes of several chunks: the chunks are read one after the other on this thread, parsed
/// by one worker each, and what they hold is copied to the list, one worker's items after those of the worker before.
///
/// An item's place in the list is not known before the chunks in front of it are parsed, so each worker parses into
/// memory of its own. The copies never overlap: places are prefix sums that are complete before they start.
///
/// @tparam Slot a `ChunkSlot` with `void parse()`, which touches nothing but its own record
/// @param list `bool isFull()`; `bool fill(Slot*)`, which reads the next chunk; `void place(Slot*)`, called in order,
///             which cuts what the list has no room for and settles the place; `void makeRoom()`, called once the
///             places of a pass are settled; `void copy(const Slot&)`, called by several threads
template <typename Slot, std::size_t SLOTS, typename List>
void readInPasses(List* list)
{
    std::array<Slot, SLOTS> slots;
    while (!list->isFull() && slots.back().more) {
        for (Slot& slot : slots) {
            slot.more = list->fill(&slot);
        }
        dvf::forLargeItems(SLOTS, [&slots](const dvf::IndexRange& range) {
            for (std::size_t i = range.begin(); i != range.end(); ++i) {
                slots[i].parse();
            }
        });
        for (Slot& slot : slots) {
            list->place(&slot);
        }
        list->makeRoom();
        dvf::forLargeItems(SLOTS, [&slots, list](const dvf::IndexRange& range) {
            for (std::size_t i = range.begin(); i != range.end(); ++i) {
                list->copy(slots[i]);
            }
        });
    }
}
