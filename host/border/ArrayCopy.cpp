// SPDX-License-Identifier: MIT
#include "border/ArrayCopy.h"

#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <sys/mman.h>

namespace {

/// The size of a large page, and the smallest piece of work that is worth a task.
constexpr std::size_t BLOCK = 2097152;
/// The smallest page size in use.
constexpr std::size_t SMALL_PAGE = 4096;

/// Runs `work(first, end)` for each block of a range of bytes.
template <typename Work>
void forEachBlock(std::size_t byteCount, const Work& work)
{
    const std::size_t blockCount = (byteCount + BLOCK - 1) / BLOCK;
    // If a worker of the library calls this, it must not pick up other work of the library while it waits.
    tbb::this_task_arena::isolate([&] {
        tbb::parallel_for(std::size_t{0}, blockCount,
                          [&](std::size_t i) { work(i * BLOCK, std::min((i + 1) * BLOCK, byteCount)); });
    });
}

} // namespace

void prepareMemory(void* memory, std::size_t byteCount)
{
    if (memory == nullptr || std::align(BLOCK, BLOCK, memory, byteCount) == nullptr) {
        return;
    }
    char* const bytes = static_cast<char*>(memory);
    const std::size_t length = byteCount / BLOCK * BLOCK;
    // A hint: it affects only speed.
    static_cast<void>(madvise(bytes, length, MADV_HUGEPAGE));
    forEachBlock(length, [bytes](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; i += SMALL_PAGE) {
            *static_cast<volatile char*>(bytes + i) = 0;
        }
    });
}

void copyBytes(const void* source, std::size_t byteCount, void* target)
{
    const auto* const from = static_cast<const char*>(source);
    auto* const to = static_cast<char*>(target);
    if (byteCount < 2 * BLOCK) {
        std::copy_n(from, byteCount, to);
        return;
    }
    forEachBlock(byteCount,
                 [=](std::size_t begin, std::size_t end) { std::memcpy(to + begin, from + begin, end - begin); });
}
