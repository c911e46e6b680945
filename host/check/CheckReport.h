// SPDX-License-Identifier: MIT
#pragma once

#include "check/CheckRunner.h"
#include "output/Terminal.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

/// How many jobs ended in which way.
using CheckTally = std::map<CheckVerdict, std::size_t>;

CheckTally tallyOf(const std::vector<CheckJob>& jobs);

/// The command line that reproduces one job, including the given options of the user.
std::string repeatCommand(const CheckJob& job, const std::string& userOptions);

/// A regular expression that matches exactly this text.
std::string exactPattern(const std::string& text);

/// One line per subject, one per job with something to tell, one for each check and reason to skip it, the tally and
/// the verdict.
/// @param onlyFailed leaves out all jobs but those that count against the library
std::string checkText(const std::vector<CheckJob>& jobs, const std::string& userOptions, bool onlyFailed,
                      const TextStyle& style);

/// "passed", "failed" or "crashed", whichever is worst among the jobs, or "nothing was checked". Warnings and known
/// limits are counted: "passed with 2 warnings and 1 known limit".
std::string overallVerdict(const std::vector<CheckJob>& jobs);
