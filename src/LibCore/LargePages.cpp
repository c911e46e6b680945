// SPDX-License-Identifier: MIT
#include "LibCore/LargePages.h"

#include "LibCore/Parallel.h"

#include <memory>
#include <sys/mman.h>

namespace dvf {
namespace {

/// Size of a large page on the machines that have them; elsewhere the hint does nothing.
constexpr std::size_t LARGE_PAGE = 2097152;
/// The smallest page of any system we run on.
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
        // Whether the system follows the hint affects only the speed.
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
    // Callers are workers themselves: while they wait here, they must not start on another part. Each index touches its
    // own page.
    isolated([&pages] {
        forEachIndex(pages.byteCount / LARGE_PAGE, [&pages](std::size_t page) {
            // One touch maps a large page; if the system gave small ones, each needs a touch.
            for (std::size_t i = 0; i < LARGE_PAGE; i += SMALL_PAGE) {
                *static_cast<volatile char*>(pages.first + page * LARGE_PAGE + i) = 0;
            }
        });
    });
}

} // namespace dvf
