// SPDX-License-Identifier: MIT
#include "LibCore/LargePages.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace {

constexpr std::size_t LARGE_PAGE = 2097152;

struct Free
{
    void operator()(char* memory) const { std::free(memory); }
};

} // namespace

// Touching writes to each page, so one page too many would overwrite the memory next to an array.
TEST(LargePages, TouchesNothingPastTheRange)
{
    const std::unique_ptr<char, Free> memory(static_cast<char*>(std::aligned_alloc(LARGE_PAGE, 3 * LARGE_PAGE)));
    ASSERT_NE(memory, nullptr);
    char& past = memory.get()[2 * LARGE_PAGE];
    past = 'x';
    dvf::touchLargePages(memory.get(), 2 * LARGE_PAGE);
    EXPECT_EQ(past, 'x');
    // Only the first page lies within this range as a whole.
    past = memory.get()[LARGE_PAGE] = 'y';
    dvf::touchLargePages(memory.get(), 2 * LARGE_PAGE - 1);
    EXPECT_EQ(memory.get()[LARGE_PAGE], 'y');
    EXPECT_EQ(past, 'y');
}
