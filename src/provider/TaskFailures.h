// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <exception>
#include <vector>

/// Keeps the exceptions of parts that are worked on at the same time until all have ended.
///
/// An exception that left a task at once would cancel the loops within the others: those return as if they were done,
/// and arrays half made would go to the host. Any thread may call `guard`, each with indices of its own.
class TaskFailures
{
public:
    explicit TaskFailures(std::size_t count) : m_failures(count) {}

    /// Makes a call for one index and keeps the exception that leaves it.
    template <typename Call>
    void guard(std::size_t index, const Call& call)
    {
        try {
            call();
        } catch (...) {
            m_failures[index] = std::current_exception();
        }
    }

    /// Lets out the exception of the first index that has one.
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
