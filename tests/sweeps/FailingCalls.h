// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

/// Calls that can be made to fail, all in the present process and on any of its threads.
enum class FailingCall
{
    Allocation, ///< `operator new`, which throws; never under the thread sanitizer, whose run-time has its own
    GzOpen,
    GzRead, ///< a byte, a line or a block; all answer with their error
    OpenFolder,
    ReadFolder,
    FileStatus,
    FileAccess
};
inline constexpr int FAILING_CALL_KINDS = 7;

/// Lets the call number `which` of a kind fail, from 0, while it lives; calls are counted from its construction on.
class FailingCallScope
{
public:
    FailingCallScope(FailingCall kind, std::size_t which);
    ~FailingCallScope();
    FailingCallScope(const FailingCallScope&) = delete;
    FailingCallScope& operator=(const FailingCallScope&) = delete;

    /// True if so many calls were made that one failed.
    bool hasFailed() const;
    /// The number of calls of the kind so far.
    std::size_t callCount() const;

private:
    std::size_t m_which;
};
