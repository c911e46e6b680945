// SPDX-License-Identifier: MIT
#pragma once

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/parallel_invoke.h>
#include <tbb/parallel_reduce.h>
#include <tbb/parallel_sort.h>
#include <tbb/partitioner.h>
#include <tbb/task_arena.h>
#include <tbb/task_group.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <functional>
#include <vector>

/// The forms of parallel loop in use. All of them fork, join, and return on the calling thread.
///
/// Nesting: every form may run inside another. Parts are worked on by an outer loop, and what a part does inside it is
/// itself parallel, so each form says what the waiting thread may do meanwhile.
///
/// Exceptions: an exception cancels the rest of its own form and, because contexts are bound, every form nested in it,
/// which then returns as if it had finished. Work that can throw and whose siblings must finish goes through
/// `dvf::Failures`.
namespace dvf {

using IndexRange = tbb::blocked_range<std::size_t>;

/// Whether a second thread could help at all.
inline bool hasSeveralThreads()
{
    return tbb::this_task_arena::max_concurrency() > 1;
}

/// Runs each of the calls once, in any order and at the same time.
///
/// While it waits, the thread may take up other tasks of the process, a whole other part included. Do not use it inside
/// a loop that keeps large buffers alive on the stack for each part; see `isolated`.
template <typename... Calls>
void invokeAll(const Calls&... calls)
{
    tbb::task_group_context context;
    tbb::parallel_invoke(calls..., context);
}

/// Runs `body(IndexRange)` over 0 to `count`, cut down to single indices. One index is a large job: a mesh, a patch.
///
/// The objects that `body` makes live as long as one sub-range. Waiting threads may take up other tasks.
template <typename Body>
void forLargeItems(std::size_t count, const Body& body)
{
    tbb::task_group_context context;
    tbb::parallel_for(IndexRange(0, count, 1), body, tbb::auto_partitioner(), context);
}

/// Runs `body(i)` for each index; TBB decides how many indices make up a task. Waiting threads may take up other tasks.
template <typename Body>
void forEachIndex(std::size_t count, const Body& body)
{
    tbb::parallel_for(std::size_t{0}, count, body);
}

/// The same for a body that takes a whole range, which spares a call for each index.
template <typename Body>
void forEachRange(std::size_t count, const Body& body)
{
    tbb::parallel_for(IndexRange(0, count), body);
}

/// Runs `call`. Any thread may take up the tasks that it forks, but this thread takes up nothing else while it waits.
///
/// For short loops within the work on one part: otherwise a wait of a millisecond could turn into work on another part,
/// and this part would hold its buffers until that one is done.
template <typename Call>
void isolated(const Call& call)
{
    tbb::this_task_arena::isolate(call);
}

/// True if `check(IndexRange)` holds for all ranges of at least `grain` indices. It may stop looking early.
template <typename Check>
bool allOf(std::size_t count, std::size_t grain, const Check& check)
{
    const auto checkOnward = [&check](const IndexRange& range, bool isGood) { return isGood && check(range); };
    return tbb::parallel_reduce(IndexRange(0, count, grain), true, checkOnward, std::logical_and<>());
}

/// Below this many values a parallel sort costs more than it gains; TBB itself stops splitting at this size.
inline constexpr std::size_t PARALLEL_SORT_SIZE = 500;

/// Sorts a random-access container ascending, with several threads where that pays. The order of equal values is left
/// open.
template <typename Container, typename Less = std::less<>>
void sortPar(Container* values, const Less& less = Less())
{
    if (values->size() < PARALLEL_SORT_SIZE) {
        std::sort(values->begin(), values->end(), less);
    } else {
        tbb::parallel_sort(values->begin(), values->end(), less);
    }
}

/// Keeps the exceptions of jobs that run at the same time until all of them have ended.
///
/// An exception that left a job at once would cancel the loops inside the others. Those return as if they had
/// finished, and half-made arrays would reach the host. Any thread may call `guard`, each with indices of its own.
class Failures
{
public:
    explicit Failures(std::size_t count) : m_failures(count) {}

    /// Runs the call for one index and keeps the exception that leaves it.
    template <typename Call>
    void guard(std::size_t index, const Call& call)
    {
        try {
            call();
        } catch (...) {
            m_failures[index] = std::current_exception();
        }
    }

    /// Throws the exception of the first index that has one.
    void rethrowFirst() const
    {
        for (const std::exception_ptr& failure : m_failures) {
            if (failure != nullptr) {
                std::rethrow_exception(failure);
            }
        }
    }

private:
    std::vector<std::exception_ptr> m_failures;
};

} // namespace dvf
