// SPDX-License-Identifier: MIT
#include "LibCore/LargePages.h"

#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

#include <memory>
#include <sys/mman.h>

namespace dvf {
namespace {

/// Size of a large page on the machines that have them; elsewhere the hint does nothing.
constexpr std::size_t LARGE_PAGE = 2097152;
/// The smallest page that systems have.
constexpr std::size_t SMALL_PAGE = 4096;

/// The whole large pages of a range.
struct LargePages
{
    char* first = nullptr;
    std::size_t byteCount = 0; ///< 0 if the range has none

    LargePages(void* memory, std::size_t size)
    {
        if (memory != nullptr && std::align(LARGE_PAGE, LARGE_PAGE, memory, size) != nullptr) {
            first = static_cast<char*>(memory);
            byteCount = size / LARGE_PAGE * LARGE_PAGE;
        }
    }
};

} // namespace

void preferLargePages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t byteCount)
{
#ifdef MADV_HUGEPAGE
    const LargePages pages(memory, byteCount);
    if (pages.byteCount != 0) {
        // What the system makes of it changes the speed alone.
        static_cast<void>(madvise(pages.first, pages.byteCount, MADV_HUGEPAGE));
    }
#endif
}

void touchLargePages(void* memory, std::size_t byteCount)
{
    preferLargePages(memory, byteCount);
    const LargePages pages(memory, byteCount);
    if (pages.byteCount == 0) {
        return;
    }
    // Callers are workers themselves: while they wait here, they must not begin with another part.
    tbb::this_task_arena::isolate([&pages] {
        tbb::parallel_for(std::size_t{0}, pages.byteCount, LARGE_PAGE, [&pages](std::size_t page) {
            // A large page is entered by its first touch; where there are small ones, each takes a touch of its own.
            for (std::size_t i = 0; i < LARGE_PAGE; i += SMALL_PAGE) {
                *static_cast<volatile char*>(pages.first + page + i) = 0;
            }
        });
    });
}

} // namespace dvf
