// SPDX-License-Identifier: MIT
#include <tbb/global_control.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

#include <atomic>
#include <cstdio>
#include <thread>

/// Lets at least two workers increment one number without synchronisation.
int main()
{
    const tbb::global_control threads(tbb::global_control::max_allowed_parallelism, 8);
    int count = 0;
    // Waits for another worker without ordering what they do.
    std::atomic<int> present = 0;
    tbb::task_arena(8).execute([&] {
        tbb::parallel_for(
            0, 8,
            [&](int) {
                present.fetch_add(1, std::memory_order_relaxed);
                while (present.load(std::memory_order_relaxed) < 2) {
                    std::this_thread::yield();
                }
                ++count;
            },
            tbb::simple_partitioner());
    });
    std::printf("%d\n", count);
    return 0;
}
