// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

/// Calls that can be made to fail, on any thread of the process.
enum class FailingCall
{
    Allocation, ///< `operator new` throws; not under the thread sanitizer, which has its own
    GzOpen,
    GzRead, ///< of a byte, a line or a block
    OpenFolder,
    ReadFolder,
    FileStatus,
    FileAccess
};
inline constexpr int FAILING_CALL_KINDS = 7;

/// Makes one call of a kind fail during its own lifetime: call number `which`, counted from 0 at its construction.
class FailingCallScope
{
public:
    FailingCallScope(FailingCall kind, std::size_t which);
    ~FailingCallScope();
    FailingCallScope(const FailingCallScope&) = delete;
    FailingCallScope& operator=(const FailingCallScope&) = delete;

    /// True if that call was reached and failed.
    bool hasFailed() const;
    /// The number of calls of the kind so far.
    std::size_t callCount() const;

private:
    std::size_t m_which;
};
