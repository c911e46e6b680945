// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

/// How a check ended.
enum class CheckVerdict
{
    Passed,
    Skipped,  ///< it could not run, which says nothing about the library
    Failed,   ///< it found something
    TimedOut, ///< it took too long and was stopped
    Crashed   ///< its process ended without a result
};

/// The word for a verdict, in text and JSON alike.
const char* verdictName(CheckVerdict verdict);

/// The result of one check.
struct CheckOutcome
{
    CheckVerdict verdict = CheckVerdict::Crashed;
    std::vector<std::string> findings; ///< what is wrong, one sentence each; kept even if the check crashed later
    std::string reason;                ///< why it was skipped, or how it crashed
    bool refused = false;              ///< the library does not open the case; set only by the opening check
    int stopCode = 0;                  ///< unless 0, no check can run, and the whole run ends with this code
    double seconds = 0;                ///< from the start of the process to its end

    /// True for every verdict that counts against the library.
    bool bad() const { return verdict != CheckVerdict::Passed && verdict != CheckVerdict::Skipped; }
};
