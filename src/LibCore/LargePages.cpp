// SPDX-License-Identifier: MIT
#include "LibCore/LargePages.h"

#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

#include <cstdint>
#include <sys/mman.h>

namespace dvf {
namespace {

/// Size of a large page on the machines that have them; elsewhere the hint does nothing.
constexpr std::uintptr_t LARGE_PAGE = 2U * 1024U * 1024U;
/// The smallest page that systems have.
constexpr std::size_t SMALL_PAGE = 4096;

/// The whole large pages of a range.
struct LargePageRange
{
    std::uintptr_t first;
    std::uintptr_t end;

    LargePageRange(void* memory, std::size_t byteCount)
        : first((reinterpret_cast<std::uintptr_t>(memory) + LARGE_PAGE - 1) / LARGE_PAGE * LARGE_PAGE),
          end((reinterpret_cast<std::uintptr_t>(memory) + byteCount) / LARGE_PAGE * LARGE_PAGE)
    {}

    bool isEmpty() const { return first >= end; }
};

} // namespace

void preferLargePages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t byteCount)
{
#ifdef MADV_HUGEPAGE
    const LargePageRange pages(memory, byteCount);
    if (!pages.isEmpty()) {
        // What the system makes of it changes the speed alone.
        static_cast<void>(madvise(reinterpret_cast<void*>(pages.first), pages.end - pages.first, MADV_HUGEPAGE));
    }
#endif
}

void touchLargePages(void* memory, std::size_t byteCount)
{
    preferLargePages(memory, byteCount);
    const LargePageRange pages(memory, byteCount);
    if (pages.isEmpty()) {
        return;
    }
    // Callers are workers themselves: while they wait here, they must not begin with another part.
    tbb::this_task_arena::isolate([&pages] {
        tbb::parallel_for(pages.first, pages.end, LARGE_PAGE, [](std::uintptr_t page) {
            // A large page is entered by its first touch; where there are small ones, each takes a touch of its own.
            for (std::size_t i = 0; i < LARGE_PAGE; i += SMALL_PAGE) {
                *reinterpret_cast<volatile char*>(page + i) = 0;
            }
        });
    });
}

} // namespace dvf
