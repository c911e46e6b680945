// SPDX-License-Identifier: MIT
#pragma once

#include "check/Check.h"
#include "check/CheckOutcome.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/// One check of one case, or of the library alone.
struct CheckJob
{
    const Check* check;
    std::string subject; ///< the case as the user named it, the name of a sample, or empty for the library
    std::filesystem::path casePath;
    bool sample = false;
    std::vector<std::string> settings; ///< of the sample; those of the user come behind them
    CheckOutcome outcome;              ///< filled when it has run

    /// The text that patterns are matched against, as in "load.twice" or "poll.remove@moving" for a sample.
    std::string id() const { return std::string(check->name) + (sample ? "@" + subject : ""); }
};

/// What all jobs of a run share.
struct CheckRunOptions
{
    std::filesystem::path library;
    std::vector<std::string> settings; ///< as KEY=VALUE
    int threads = 0;                   ///< 0 leaves the number to the machine
    std::size_t parallelJobs = 1;      ///< so many processes at a time
    double timeLimit = 60;             ///< seconds for one job
    std::filesystem::path workFolder;  ///< each job gets a folder of its own in it
};

/// Runs all jobs, each in a process of its own, and fills in what came of them.
///
/// @param onDone called behind each job
/// @param goOn   asked many times a second; false ends what runs
/// @return false if it was ended; what has not run is then skipped
/// @throws HostError of `LibraryRefused` when there is no library in the file, of `Usage` for a setting that it lacks
bool runChecks(std::vector<CheckJob>* jobs, const CheckRunOptions& options, const std::function<void()>& onDone,
               const std::function<bool()>& goOn);
