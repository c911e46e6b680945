// SPDX-License-Identifier: MIT
#pragma once

#include "check/CheckOutcome.h"
#include "check/CheckRun.h"

#include <string_view>

// The two ends of the channel between the process of a check and the program that waits for it. The result has its own
// descriptor, so that everything on stdout and stderr comes from the library.

/// The descriptor that the process of a check writes its result to.
inline constexpr int RESULT_DESCRIPTOR = 3;

/// Runs one check and writes its result to the result descriptor, finding by finding.
/// @throws HostError of `Usage` for a check that does not exist
void runCheckChild(std::string_view checkName, const CheckTask& task);

/// Reads what a process wrote before it ended, at whatever point that was.
/// @return false if the result is not complete; `outcome` then holds the findings so far
bool readCheckResult(const std::string& text, CheckOutcome* outcome);
