// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

/// How a check ended.
enum class CheckVerdict
{
    Passed,
    Skipped,  ///< it could not be made, which says nothing of the library
    Failed,   ///< it found something
    TimedOut, ///< it was ended, because it took too long
    Crashed   ///< its process ended without a result
};

/// The word for a verdict, in text and document alike.
const char* verdictName(CheckVerdict verdict);

/// What came of one check.
struct CheckOutcome
{
    CheckVerdict verdict = CheckVerdict::Crashed;
    std::vector<std::string> findings; ///< what is wrong, a sentence each; also of a check that crashed behind them
    std::string reason;                ///< why it was skipped, or how it crashed
    bool refused = false;              ///< the library does not open the case; of the opening check alone
    int stopCode = 0;                  ///< unless 0, no check can be made, and the run ends with this code
    double seconds = 0;                ///< from the start of the process to its end

    /// True for every verdict that speaks against the library.
    bool bad() const { return verdict != CheckVerdict::Passed && verdict != CheckVerdict::Skipped; }
};
