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

/// The command line that makes one job again, with the options that the user gave as they are to stand in it.
std::string repeatCommand(const CheckJob& job, const std::string& userOptions);

/// A word as a shell takes it, in quotes if need be.
std::string shellWord(const std::string& word);

/// A pattern that meets this text alone.
std::string exactPattern(const std::string& text);

/// One line a subject, one line a finding, one line for each check and reason to skip it, the tally and the verdict.
/// @param onlyFailed leaves out what speaks for the library, and what says nothing
std::string checkText(const std::vector<CheckJob>& jobs, const std::string& userOptions, bool onlyFailed,
                      const TextStyle& style);

/// "passed", "failed" or "crashed", the worst that any job met, or "nothing was checked".
const char* overallVerdict(const std::vector<CheckJob>& jobs);
