// SPDX-License-Identifier: MIT
#pragma once

#include "check/CheckOutcome.h"
#include "check/CheckRun.h"

#include <string_view>

// The two ends of the line between a check's own process and the program that waits for it. The result goes through a
// descriptor of its own, so that all on stdout and stderr is the library's.

/// The descriptor that the process of a check writes its result to.
inline constexpr int RESULT_DESCRIPTOR = 3;

/// Makes one check and writes what comes of it to the result descriptor, finding by finding.
/// @throws HostError of `Usage` for a check that does not exist
void runCheckChild(std::string_view checkName, const CheckTask& task);

/// Reads what a process wrote up to its end, which may have come at any point.
/// @return false if the result is not complete; `outcome` then has what was found so far
bool readCheckResult(const std::string& text, CheckOutcome* outcome);
