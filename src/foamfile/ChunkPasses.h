// SPDX-License-Identifier: MIT
#pragma once

#include "LibCore/Parallel.h"
#include "foamfile/TextSource.h"

#include <array>
#include <cstddef>

/// What the worker of one slot owns during a pass, besides its items: its chunk of the list.
struct ChunkSlot
{
    ChunkBuffer buffer;
    TextSource::Chunk chunk;
    /// Whether there was a chunk; false once the file has ended.
    bool more = true;
};

/// Reads a long ascii list in passes of several chunks: the chunks are read one after the other on this thread and
/// parsed by one worker each, and the items are copied to the list, worker after worker.
///
/// The place of an item in the list is not known until all earlier chunks are parsed, so each worker parses into its
/// own memory. The copies never overlap: places are prefix sums that are complete before they start.
///
/// @tparam Slot a `ChunkSlot` with `void parse()`, which touches nothing but its own record
/// @param list `bool isFull()`; `bool fill(Slot*)`, which reads the next chunk; `void place(Slot*)`, called in order,
///             which drops items that the list has no room for and fixes the place of the rest; `void makeRoom()`,
///             called once the places of a pass are fixed; `void copy(const Slot&)`, called by several threads
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
