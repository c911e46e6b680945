// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostError.h"

#include <mutex>
#include <string>

/// Says how a run failed: the library's errors and one line on stderr, and with --json the one document that the run
/// owes, unless it has been written.
///
/// One per process, because any thread may end the run.
class FailureReport
{
public:
    /// The one report of the process.
    static FailureReport& get();

    /// From now on a failure writes a document, also one that crashes the process.
    /// @param command the command of the run, or empty if it is not known
    void owesDocument(const std::string& command);

    /// The document is about to be written; a failure from now on is told on stderr alone.
    void documentStarts();

    /// Tells a failure. Throws nothing, even if stdout is closed.
    /// @param code one of `ExitCode`, or 128 plus a signal
    void tell(int code, const std::string& message) noexcept;

private:
    std::string documentOf(int code, const std::string& message) const;

    std::mutex m_mutex;
    std::string m_command;
    bool m_owes = false;
};
