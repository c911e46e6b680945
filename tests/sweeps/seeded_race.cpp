// SPDX-License-Identifier: MIT
#include <tbb/global_control.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

#include <cstdio>

/// Lets workers count into one number without an order among them.
int main()
{
    const tbb::global_control threads(tbb::global_control::max_allowed_parallelism, 8);
    int count = 0;
    tbb::task_arena(8).execute([&] { tbb::parallel_for(0, 100000, [&](int) { ++count; }); });
    std::printf("%d\n", count);
    return 0;
}
