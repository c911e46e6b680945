// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>
#include <string>

/// The exit codes of the host.
enum class ExitCode : int
{
    Good = 0,
    Findings = 1,       ///< the run itself succeeded, but found something wrong
    Usage = 2,          ///< the command line makes no sense
    CaseRefused = 3,    ///< the library does not open the case or the item asked for
    LibraryRefused = 4, ///< no library, no entry in it, or another version of the interface
    Misbehaved = 5,     ///< the library crashed, threw across the interface or delivered broken arrays
    CannotWrite = 6,    ///< an output file or stream cannot be written
    Interrupted = 130   ///< by SIGINT; after SIGTERM the code is 143, each 128 plus the signal
};

/// The meaning of a code in a few words, for JSON output.
inline const char* exitCodeName(ExitCode code)
{
    switch (code) {
    case ExitCode::Good:
        return "success";
    case ExitCode::Findings:
        return "findings";
    case ExitCode::Usage:
        return "usage";
    case ExitCode::CaseRefused:
        return "case refused";
    case ExitCode::LibraryRefused:
        return "library refused";
    case ExitCode::Misbehaved:
        return "library misbehaved";
    case ExitCode::CannotWrite:
        return "cannot write";
    default:
        return "interrupted";
    }
}

/// Ends a run of the host with an exit code and one line for the user.
///
/// Thrown by the host's own code only, never from a callback that the library runs, because exceptions must not unwind
/// through foreign frames, perhaps on a worker thread. Callbacks leave a note in `BorderFaults` instead.
class HostError : public std::runtime_error
{
public:
    HostError(ExitCode code, const std::string& message) : std::runtime_error(message), m_code(code) {}

    /// The exit code for the run.
    ExitCode code() const { return m_code; }

private:
    ExitCode m_code;
};
